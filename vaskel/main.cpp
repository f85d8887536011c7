// vaskel: draws the scene of a file or of standard input.
#include "vaskel/vk_Picture.h"
#include "vaskel/vk_Renderer.h"
#include "vaskel/vk_SafeFile.h"
#include "vaskel/vk_SceneReader.h"
#include "vaskel/vk_ShaderList.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace
{
constexpr int FAILURE = 1;
constexpr int BAD_COMMAND = 2;

const char *const USAGE = "Usage: vaskel [options] [scene]\n"
                          "Draws the picture that a scene describes. The scene is a file,\n"
                          "or standard input when it is left out or '-'.\n"
                          "Options:\n"
                          "  --list-shaders  print the shaders with their parameters and end\n"
                          "  --help          print this text and end\n"
                          "  --version       print the version and end\n"
                          "Environment:\n"
                          "  VELDRIN_MAXTHREADS  how many threads draw, 1 to 100;\n"
                          "                      0 or -1: one for each processor\n"
                          "The scene language is described in doc/scene.md.\n";

int fail(const std::string &message)
{
    std::fprintf(stderr, "vaskel: error: %s\n", message.c_str());
    return FAILURE;
}

// Prints to standard output; a full device or a closed pipe is a failure.
int print(const std::string &text)
{
    if (std::fputs(text.c_str(), stdout) != EOF && std::fflush(stdout) == 0)
        return 0;
    return fail(std::string("cannot write: ") + std::strerror(errno));
}

int draw(const vk_Scene &scene)
{
    // The place is tried before the work is done.
    vk_SafeFile file;
    vk_Film film;
    std::vector<std::uint8_t> bytes;
    std::string error;
    if (!file.open(scene.picture))
        return fail(file.error());
    if (!vk_render(scene, vk_threadCount(), film, error) ||
        !vk_encode(film, scene.picture, bytes, error))
        return fail(error);
    if (!file.commit(bytes.data(), bytes.size()))
        return fail(file.error());
    return 0;
}

int readAndDraw(const char *name)
{
    const bool isInput = std::strcmp(name, "-") == 0;
    std::FILE *const file = isInput ? stdin : std::fopen(name, "rb");
    if (file == nullptr)
        return fail(std::string("cannot open '") + name + "': " + std::strerror(errno));
    vk_Scene scene;
    vk_SceneReader reader(isInput ? "<stdin>" : name, scene);
    const bool good = reader.read(file);
    if (!isInput)
        std::fclose(file);
    for (const std::string &message : reader.messages())
        std::fprintf(stderr, "%s\n", message.c_str());
    return good ? draw(scene) : FAILURE;
}

// Whether an option is among the arguments, wherever it stands.
bool has(int argc, char *const argv[], const char *option)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], option) == 0)
            return true;
    return false;
}
} // namespace

int main(int argc, char *argv[])
{
    if (has(argc, argv, "--help"))
        return print(USAGE);
    if (has(argc, argv, "--version"))
        return print("vaskel 1.0\n");
    if (has(argc, argv, "--list-shaders"))
        return print(vk_listShaders());
    const bool isOption = argc == 2 && argv[1][0] == '-' && argv[1][1] != '\0';
    if (argc > 2 || isOption) {
        std::fprintf(stderr, "vaskel: error: expected one scene and no option but these\n%s",
                     USAGE);
        return BAD_COMMAND;
    }
    return readAndDraw(argc == 2 ? argv[1] : "-");
}
