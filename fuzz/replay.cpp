// Stands in for libFuzzer's main: feeds a target each file of the given folders.
#include "fuzz/fuzz.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

int main(int argc, char *argv[])
{
    size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
            std::printf("%s\n", entry.path().c_str());
            std::ifstream in(entry.path(), std::ios::binary);
            fuzz(std::string(std::istreambuf_iterator<char>(in), {}));
            ++count;
        }
    }
    return count > 0 ? 0 : 1;
}
