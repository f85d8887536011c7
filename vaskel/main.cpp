// vaskel: draws the scene of a file or of standard input.
#include "UT/UT_MakeRule.h"
#include "UT/UT_Process.h"
#include "UT/UT_SafeFile.h"
#include "UT/UT_SignalPause.h"
#include "vaskel/file/vk_Picture.h"
#include "vaskel/params/vk_Nearest.h"
#include "vaskel/scene/vk_SceneReader.h"
#include "vaskel/scene/vk_ShaderList.h"
#include "vaskel/vk_Options.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include <sys/time.h>
#include <unistd.h>

namespace
{
constexpr int FAILURE = 1;
constexpr int BAD_COMMAND = 2;

// Tables of shaders are made before main() begins; memory may run out there, too.
struct EarlyHandler {
    EarlyHandler() { std::set_new_handler(UTdieWithoutMemory); }
};
// The first of ours that the loader runs.
[[gnu::init_priority(101)]] const EarlyHandler theEarlyHandler;

// Whom a message is about: us, or the picture once it is known. Signal handlers read it.
std::atomic<const char *> theSubject = "vaskel";

void setSubject(const std::string &picture)
{
    static std::string name;
    name = picture;
    UTmakePrintable(name.data(), name.size());
    theSubject = name.c_str();
}

int fail(const std::string &message)
{
    std::fprintf(stderr, "%s: error: %s\n", theSubject.load(), message.c_str());
    return FAILURE;
}

// For signal handlers, and where there is no memory.
[[noreturn]] void die(const char *message)
{
    // Nothing that might allocate or lock: a handler may interrupt malloc().
    for (const char *text : {theSubject.load(), ": error: ", message})
        static_cast<void>(!write(STDERR_FILENO, text, std::strlen(text)));
    _exit(FAILURE);
}

// What is called when TBB throws because the system has no further thread for it.
[[noreturn]] void dieWithoutThreads()
{
    die("cannot start threads (out of memory? see VELDRIN_MAXTHREADS)\n");
}

extern "C" void giveUp(int)
{
    die("not finished within the limit (--limit, VELDRIN_VASKEL_OPTIONS)\n");
}

// Somebody else's scene gets a limit in any case: what its samples cost is not known
// before.
void setTimer(const vk_Options &options)
{
    // A limit that is given counts, also that of 0, which means none.
    const bool isStrange = options.limit < 0 && options.scene == "-";
    const float seconds = isStrange ? vk_Options::INPUT_LIMIT : options.limit;
    if (seconds <= 0)
        return;
    std::signal(SIGALRM, giveUp);
    itimerval timer = {};
    timer.it_value.tv_sec = static_cast<time_t>(seconds);
    // Zero would stop the timer in place of setting it.
    // A whole million is no valid fraction: hence 999999.
    timer.it_value.tv_usec = std::max(1L, std::lround(std::fmod(seconds, 1.f) * 999999));
    setitimer(ITIMER_REAL, &timer, nullptr);
}

// What is finished in time is kept: a limit must not speak of a picture that is there.
void stopTimer()
{
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
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

// What the command line says wins over the scene, and counts before the limits do.
void applyOptions(const vk_Options &options, vk_Scene &scene)
{
    if (!options.output.empty())
        scene.picture = options.output;
    // The reader has seen to it that there is a suffix.
    else if (!options.format.empty())
        scene.picture.replace(scene.picture.rfind('.') + 1, std::string::npos, options.format);
    if (options.size == 0)
        return;
    const int longer = std::max(scene.width, scene.height);
    // Sides keep their ratio; neither vanishes.
    scene.width = std::max(1, scene.width * options.size / longer);
    scene.height = std::max(1, scene.height * options.size / longer);
}

bool write(const std::vector<std::uint8_t> &bytes, UT_SafeFile &file)
{
    stopTimer();
    const UT_SignalPause pause; // where even a file that is being written has a name
    std::FILE *const out = file.open();
    if (out == nullptr)
        return false;
    // A write that fails is remembered by the stream: commit() asks it.
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    return file.commit();
}

int draw(const vk_Scene &scene, const vk_Options &options, vk_Stats &stats)
{
    // The place is tried before the work is done.
    UT_SafeFile file(scene.picture, UT_SafeFile::REPLACE_LINKS);
    vk_Film film;
    std::vector<std::uint8_t> bytes;
    std::string error;
    // The format that was asked for, whatever the file is called.
    const std::string encoded = options.format.empty() ? scene.picture : "x." + options.format;
    if (!vk_isPictureName(encoded))
        return fail("expected a name that ends in .jpg, .jpeg or .png");
    if (!file.isWritable())
        return fail(file.error());
    if (!vk_render(scene, settingsOf(options, stats), film, error))
        return fail(error);
    // What was drawn until then would look like a picture and be none.
    if (scene.osl != nullptr && scene.osl->isStopped())
        return fail("a shader was stopped");
    const double start = vk_seconds();
    if (!vk_encode(film, encoded, scene.comment, bytes, error))
        return fail(error);
    if (!write(bytes, file))
        return fail(file.error());
    stats.writing = vk_seconds() - start;
    return 0;
}

// A palette's author may ask for hours of somebody else's machine.
bool isTooMuch(const vk_Scene &scene, const vk_Options &options)
{
    const bool isInput = options.scene == "-";
    return isInput && options.limit < 0 && scene.work() > vk_Scene::MOST_WORK;
}

int readAndDraw(const vk_Options &options)
{
    vk_Stats stats;
    const double start = vk_seconds();
    const bool isInput = options.scene == "-";
    std::FILE *const file = isInput ? stdin : std::fopen(options.scene.c_str(), "rb");
    if (file == nullptr)
        return fail("cannot open " + vk_quotedName(options.scene) + ": " + std::strerror(errno));
    vk_Scene scene;
    vk_SceneReader reader(isInput ? nullptr : options.scene.c_str(), scene);
    const bool good = reader.read(file);
    if (!isInput)
        std::fclose(file);
    for (const std::string &message : reader.messages())
        std::fprintf(stderr, "%s\n", message.c_str());
    // Compiling the scene's shaders included.
    stats.reading = vk_seconds() - start;
    if (!good)
        return FAILURE;
    applyOptions(options, scene);
    setSubject(scene.picture);
    if (isTooMuch(scene, options))
        return fail(
            "width times height times samples expected at most " +
            std::to_string(vk_Scene::MOST_WORK) +
            " in a scene from standard input; --limit or VELDRIN_VASKEL_OPTIONS lifts that");
    const int status = draw(scene, options, stats);
    std::string error;
    // After the picture: the rule must not promise one that failed.
    if (scene.osl != nullptr && !UTaddPictureRule(scene.picture, scene.osl->opened(), error))
        return fail(error);
    if (options.stats && status == 0)
        std::fputs(stats.text().c_str(), stderr);
    return status;
}
} // namespace

int main(int argc, char *argv[])
{
    UTstartProgram();
    // Nothing of ours throws; what ends here comes from TBB.
    std::set_terminate(dieWithoutThreads);
    vk_Options options;
    std::string error;
    if (!vk_parseOptions(argc, argv, options, error)) {
        fail(error);
        std::fputs(vk_usage().c_str(), stderr);
        return BAD_COMMAND;
    }
    // Before the scene is read: a writer that hangs counts, too.
    setTimer(options);
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
