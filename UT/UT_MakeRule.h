// Rules for make: what a file depends on, as compilers write it.
#pragma once

#include <string>
#include <vector>

// A name as make reads it back: blanks, '#' and '$' are escaped.
std::string UTquoteForMake(const std::string &name);

// "TARGETS: FILE FILE ...\n", in lines of 72 characters where names allow it. The targets
// stand as they are, the files are quoted.
std::string UTmakeRule(const std::string &targets, const std::vector<std::string> &files);
