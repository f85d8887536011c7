// Text files in memory.
#pragma once

#include <string>

// All of a regular file of at most 32 MB: a pipe or a device could go on for ever. False
// when it cannot be read.
[[nodiscard]] bool osl_readText(const std::string &path, std::string &text);
