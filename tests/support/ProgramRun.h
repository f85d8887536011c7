// One run of a program, with everything that it can see and say.
#pragma once

#include <string>
#include <vector>

struct ProgramRun {
    // In.
    std::vector<std::string> arguments;   // the first is the program's path
    std::vector<std::string> environment; // "NAME=value", nothing is inherited
    std::string folder = ".";             // where it runs
    std::string input;                    // its standard input
    std::string inputFrom;                // a file for its standard input, not `input`
    std::string outputTo;                 // a file for its standard output, not `out`

    // Out.
    int status = -1; // exit status, or 128 and the number of the signal that ended it
    std::string out;
    std::string err;

    // Runs it to its end.
    void run();
};
