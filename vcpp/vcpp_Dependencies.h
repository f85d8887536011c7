// What the output depends on, as a rule for make(1).
#pragma once

#include <string>
#include <vector>

struct vcpp_Options;

// "TARGET: FILE FILE ...", in lines of 72 characters where names allow it. The targets are
// those of the options, or else made of the output's or the input's name.
std::string vcpp_makeRule(const vcpp_Options &options, const std::vector<std::string> &files);

// Where the rule goes beside the text: the output's or the input's name with the suffix
// ".d", unless the options tell.
std::string vcpp_ruleFile(const vcpp_Options &options);
