// What vosl writes: texts that come from outside, line by line without what could steer a
// terminal.
#pragma once

#include <string>

void writeError(const std::string &text);
void writeOutput(const std::string &text);

// Whether all of standard output was written. Says so when it was not.
[[nodiscard]] bool finishOutput();
