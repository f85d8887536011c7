// The command line of vcpp: the options of the preprocessor itself, which go on to
// CPP_Manager::parseOptions, and those of the command.
#pragma once

#include "vcpp/vcpp_Messages.h"

#include <string>
#include <vector>

struct vcpp_Options {
    enum Action { PREPROCESS, HELP, VERSION };
    enum Print { TEXT, MACROS, RULE }; // what goes to the output

    Action action = PREPROCESS;
    Print print = TEXT;
    std::vector<std::string> forManager; // one option or value each
    std::vector<std::string> files;      // the operands
    std::vector<std::string> includes;   // read in front of the file
    std::string output;                  // a file's name; empty or "-": standard output

    bool honoursOnce = false; // #pragma once
    vcpp_Messages messages;
    std::vector<CPP_Message> warnings; // about the command line itself

    // The rule for make.
    bool hasRule = false;
    bool omitsSystem = false; // files from the search path that every manager has
    bool hasPhony = false;    // rules without prerequisites, for files that may go
    std::string ruleFile;
    std::vector<std::string> targets; // as they are written
};

// Takes options and operands in any order; "--" ends the options. False and a message
// when something is wrong, unless help or version was asked for.
[[nodiscard]] bool vcpp_parseOptions(int argc, char *argv[], vcpp_Options &options,
                                     std::string &error);

// What --help prints.
std::string vcpp_usage();
