// The slow, obvious version of comment stripping, to check the fast one against.
#pragma once

#include <string>

// What stripComments leaves of `line`; `isOpen` is its argument and its result.
std::string plainStripComments(const std::string &line, bool bySlash, bool byHash, bool &isOpen);
