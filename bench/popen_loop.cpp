// popen_loop COUNT FILE COMMAND: hands the file's bytes COUNT times to the command,
// which is started for each: what driving a renderer costs at the very least.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char *argv[])
{
    if (argc != 4)
        return 2;
    std::ifstream file(argv[2], std::ios::binary);
    const std::string scene{std::istreambuf_iterator<char>(file), {}};
    for (int i = std::atoi(argv[1]); i > 0; --i) {
        FILE *pipe = popen(argv[3], "w");
        if (pipe == nullptr)
            return 1;
        std::fwrite(scene.data(), 1, scene.size(), pipe);
        pclose(pipe);
    }
    return 0;
}
