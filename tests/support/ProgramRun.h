// One run of a program, with everything that it can see and say.
#pragma once

#include <string>
#include <vector>

struct ProgramRun {
    int status = -1; // exit status, or 128 and the number of the signal that ended it
    std::string out;
    std::string err;
};

using Texts = std::vector<std::string>;

// The first argument is the program's path. It sees this environment ("NAME=value") and
// no other, and reads `input`.
ProgramRun runProgram(Texts arguments, Texts environment, const std::string &folder = ".",
                      const std::string &input = "");

// The same for a line of bash. In front of the path of a program from this build stands
// $RUN, which starts it where the kernel does not.
ProgramRun runLine(const std::string &line, Texts environment, const std::string &folder,
                   const std::string &input = "");
