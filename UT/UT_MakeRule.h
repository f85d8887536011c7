// Rules for make: what a file depends on, as compilers write it.
#pragma once

#include <string>
#include <vector>

// A name as make reads it back: blanks, '#' and '$' are escaped.
std::string UTquoteForMake(const std::string &name);

// "TARGETS: FILE FILE ...\n", in lines of 72 characters where names allow it. The targets
// stand as they are, the files are quoted.
std::string UTmakeRule(const std::string &targets, const std::vector<std::string> &files);

// The files of rules in that form, unquoted; those of several rules one after the other.
std::vector<std::string> UTfilesOfMakeRules(const std::string &text);

// Adds the rule of a picture, for a caller that makes it again when a file changes: to the
// end of the file that the variable VELDRIN_THUMB_DEPFILE names, if there is one. Every
// program that has a part in the picture adds one. False, and `error` says why, when that
// file cannot be written.
[[nodiscard]] bool UTaddPictureRule(const std::string &picture,
                                    const std::vector<std::string> &files, std::string &error);
