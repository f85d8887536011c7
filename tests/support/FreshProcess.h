// For tests of what happens once in a process.
#pragma once

#include <string>
#include <vector>

// Runs the calling test again, in a process of its own with this environment, and
// gives true there: that is where the test does its work. Gives false in the process
// that asked, where a failure in the other one counts as well.
bool isFreshProcess(std::vector<std::string> environment);
