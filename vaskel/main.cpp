// vaskel: draws the scene of a file or of standard input.
#include "vaskel/vk_Options.h"
#include "vaskel/vk_Picture.h"
#include "vaskel/vk_SafeFile.h"
#include "vaskel/vk_SceneReader.h"
#include "vaskel/vk_ShaderList.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include <unistd.h>

namespace
{
constexpr int FAILURE = 1;
constexpr int BAD_COMMAND = 2;

int fail(const std::string &message)
{
    std::fprintf(stderr, "vaskel: error: %s\n", message.c_str());
    return FAILURE;
}

// Takes no memory. Of several threads the first one speaks.
template <std::size_t SIZE>
[[noreturn]] void die(const char (&message)[SIZE])
{
    static std::atomic_flag isDying = ATOMIC_FLAG_INIT;
    while (isDying.test_and_set())
        pause();
    vk_SafeFile::abandon();
    static_cast<void>(!write(STDERR_FILENO, message, SIZE - 1));
    _exit(FAILURE);
}

// What operator new calls.
[[noreturn]] void dieWithoutMemory()
{
    die("vaskel: error: out of memory\n");
}

// What is called when TBB throws because the system has no further thread for it.
[[noreturn]] void dieWithoutThreads()
{
    die("vaskel: error: cannot start threads (out of memory? see VELDRIN_MAXTHREADS)\n");
}

// Prints to standard output; a full device or a closed pipe is a failure.
int print(const std::string &text)
{
    if (std::fputs(text.c_str(), stdout) != EOF && std::fflush(stdout) == 0)
        return 0;
    return fail(std::string("cannot write: ") + std::strerror(errno));
}

void showProgress(int percent)
{
    std::fprintf(stderr, "\r%3d %%%s", percent, percent == 100 ? "\r     \r" : "");
}

vk_RenderSettings settingsOf(const vk_Options &options, vk_Stats &stats)
{
    vk_RenderSettings settings;
    settings.threads = vk_threadCount();
    settings.quality = options.quality;
    settings.samples = options.samples;
    settings.stats = &stats;
    if (options.quality->showsProgress && isatty(STDERR_FILENO) != 0)
        settings.progress = showProgress;
    return settings;
}

int draw(const vk_Scene &scene, const vk_Options &options, vk_Stats &stats)
{
    // The place is tried before the work is done.
    vk_SafeFile file;
    vk_Film film;
    std::vector<std::uint8_t> bytes;
    std::string error;
    if (!file.open(scene.picture))
        return fail(file.error());
    if (!vk_render(scene, settingsOf(options, stats), film, error))
        return fail(error);
    const double start = vk_seconds();
    if (!vk_encode(film, scene.picture, bytes, error))
        return fail(error);
    if (!file.commit(bytes.data(), bytes.size()))
        return fail(file.error());
    stats.writing = vk_seconds() - start;
    return 0;
}

int readAndDraw(const vk_Options &options)
{
    vk_Stats stats;
    const double start = vk_seconds();
    const bool isInput = std::strcmp(options.scene, "-") == 0;
    std::FILE *const file = isInput ? stdin : std::fopen(options.scene, "rb");
    if (file == nullptr)
        return fail(std::string("cannot open '") + options.scene + "': " + std::strerror(errno));
    vk_Scene scene;
    vk_SceneReader reader(isInput ? "<stdin>" : options.scene, scene);
    const bool good = reader.read(file);
    if (!isInput)
        std::fclose(file);
    for (const std::string &message : reader.messages())
        std::fprintf(stderr, "%s\n", message.c_str());
    stats.reading = vk_seconds() - start;
    if (!good)
        return FAILURE;
    const int status = draw(scene, options, stats);
    if (options.stats && status == 0)
        std::fputs(stats.text().c_str(), stderr);
    return status;
}
} // namespace

int main(int argc, char *argv[])
{
    std::set_new_handler(dieWithoutMemory);
    std::set_terminate(dieWithoutThreads);
    vk_Options options;
    std::string error;
    if (!vk_parseOptions(argc, argv, options, error)) {
        fail(error);
        std::fputs(vk_usage().c_str(), stderr);
        return BAD_COMMAND;
    }
    switch (options.action) {
    case VK_HELP:
        return print(vk_usage());
    case VK_VERSION:
        return print("vaskel 1.0\n");
    case VK_LIST_SHADERS:
        return print(vk_listShaders());
    case VK_DRAW:
        break;
    }
    return readAndDraw(options);
}
