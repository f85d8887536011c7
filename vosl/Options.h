// The arguments of vosl.
#pragma once

#include "osl/OSL_Shader.h"

#include <string>
#include <vector>

struct Options {
    static const char USAGE[];

    int width = 1;
    int height = 1;
    bool isByCentres = false;
    bool wantsInformation = false;
    bool wantsTime = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
    std::string file;
    OSL_CompileOptions compile;
    std::vector<OSL_Binding> bindings;

    // Empty when all is well, else what is wrong.
    std::string parse(int argc, char *argv[]);

private:
    std::string takeGrid(int argc, char *argv[], int &at);
    std::string takeParameter(int argc, char *argv[], int &at);
};
