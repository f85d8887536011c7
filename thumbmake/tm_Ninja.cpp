#include "thumbmake/tm_Ninja.h"

#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Progress.h"
#include "thumbmake/tm_Recipe.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
const char *const MANIFEST = "/build.ninja";

// In front of names in ninja's lines: it would drop a blank that one begins with.
constexpr char TITLE = '>';

// Ninja stays in the caller's folder: settings may hold relative paths.
std::string rule(const std::string &cache, const std::string &recipeFile)
{
    return "ninja_required_version = 1.8\n"
           "builddir = " +
           tm_quoteForNinja(cache) +
           "\n"
           "bar = |\n"
           "rule picture\n"
           "  command = exec " + // a shell that waits would keep the cache's lock
           tm_quoteForNinja(tm_quoteForShell(tm_findProgram("thumbmake")) + " --job " +
                            tm_quoteForShell(recipeFile)) +
           " $in $out $picture $state\n"
           // Not in ninja's own log of these, which forgets what is not asked for now.
           "  depfile = $out.d\n"
           "  description = $title\n";
}

// Of the palette: one that is put in its place may have an older date.
std::string stateOf(const std::string &palette)
{
    struct stat info = {};
    static_cast<void>(!stat(palette.c_str(), &info)); // zeros tell as well
    return std::to_string(info.st_mtim.tv_sec) + "." + std::to_string(info.st_mtim.tv_nsec) + "." +
           std::to_string(info.st_size);
}

std::string edge(const tm_Item &item)
{
    return "build " + tm_ninjaPath(item.stamp) + ": picture " + tm_ninjaPath(item.palette) +
           "\n  picture = " + tm_quoteForNinja(tm_quoteForShell(item.picture)) +
           "\n  state = " + stateOf(item.palette) +
           "\n  title = " + tm_quoteForNinja(TITLE + item.name) + "\n";
}

// A picture that somebody removed or put something else in place of, or that is not as new
// as its palette, is to be made whatever ninja's stamp says.
bool isStale(const tm_Item &item)
{
    struct stat picture = {}, palette = {};
    return lstat(item.picture.c_str(), &picture) != 0 || !S_ISREG(picture.st_mode) ||
           picture.st_size == 0 ||
           (stat(item.palette.c_str(), &palette) == 0 &&
            picture.st_mtim.tv_sec < palette.st_mtim.tv_sec);
}

// Ninja as a child whose output comes line by line. Its own processes get the terminal's
// Ctrl-C as we do; it ends them, and we wait for it.
class Ninja
{
public:
    Ninja(const std::string &cache, const std::vector<std::string> &options)
    {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        myChild = fork();
        if (myChild == 0)
            become(cache, options, ends);
        close(ends[1]);
        myOutput = myChild > 0 ? fdopen(ends[0], "r") : nullptr;
    }
    Ninja(const Ninja &) = delete;
    Ninja &operator=(const Ninja &) = delete;
    ~Ninja()
    {
        if (myOutput != nullptr)
            std::fclose(myOutput);
        std::free(myLine);
    }

    bool isRunning() const { return myOutput != nullptr; }

    // False at the end, or when isWhole() is false afterwards, with errno.
    bool readLine(std::string &line)
    {
        const ssize_t length = getline(&myLine, &myRoom, myOutput);
        if (length <= 0)
            return false;
        line.assign(myLine, static_cast<size_t>(length));
        line.erase(line.find_last_not_of('\n') + 1);
        return true;
    }

    // All that it said was read.
    bool isWhole() const { return std::feof(myOutput) != 0; }

    // What was not read is dropped, so that it does not wait for a reader.
    int wait()
    {
        std::fclose(myOutput);
        myOutput = nullptr;
        int status = 0;
        while (waitpid(myChild, &status, 0) < 0 && errno == EINTR)
            continue;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    [[noreturn]] static void become(const std::string &cache,
                                    const std::vector<std::string> &options, const int ends[2])
    {
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        signal(SIGINT, SIG_DFL);
        unsetenv("CLICOLOR_FORCE"); // its lines are read here
        setenv("NINJA_STATUS", "[%f/%t] ", 1);
        const std::string manifest = cache + MANIFEST;
        std::vector<const char *> words = {"ninja", "-f", manifest.c_str()};
        for (const std::string &option : options)
            words.push_back(option.c_str());
        words.push_back(nullptr);
        execvp("ninja", const_cast<char *const *>(words.data()));
        std::printf("ninja: error: cannot be started: %s (Debian's package is ninja-build)\n",
                    std::strerror(errno));
        std::fflush(stdout);
        _exit(1);
    }

    pid_t myChild = -1;
    FILE *myOutput = nullptr;
    char *myLine = nullptr;
    size_t myRoom = 0;
};

bool startsWith(const std::string &text, const char *prefix)
{
    return text.compare(0, std::strlen(prefix), prefix) == 0;
}

// "[3/17] >NAME": how far it is.
bool parseStatus(const std::string &line, long &done, long &all, std::string &name)
{
    int length = 0;
    if (std::sscanf(line.c_str(), "[%ld/%ld] %n", &done, &all, &length) != 2 || length == 0)
        return false;
    const auto title = static_cast<size_t>(length);
    if (title >= line.size() || line[title] != TITLE)
        return false;
    name = line.substr(title + 1);
    return true;
}

// Sorts ninja's lines: how far it is, what the job said whose end that was (behind a tab),
// its own errors. Other lines are the commands of jobs that failed.
class Listener
{
public:
    std::function<void(long done, long all, const std::string &name)> onStatus;
    std::function<void(const std::string &said, bool isFailure)> onMessage;

    void take(const std::string &line)
    {
        long done = 0, all = 0;
        std::string name;
        if (startsWith(line, "\t")) {
            onMessage(myName + ": " + line.substr(1), inFailure);
            hasSaid = true;
        } else if (startsWith(line, "FAILED: ")) {
            inFailure = true;
        } else if (startsWith(line, "ninja: error: ")) {
            error = line.substr(14);
        } else if (startsWith(line, "ninja: build stopped: interrupted")) {
            wasInterrupted = true;
        } else if (parseStatus(line, done, all, name)) {
            endJob();
            myName = name;
            onStatus(done, all, name);
        }
    }

    // A job that was killed says nothing itself.
    void endJob()
    {
        if (inFailure && !hasSaid)
            onMessage(myName + ": its job was killed", true);
        inFailure = hasSaid = false;
    }

    bool wasInterrupted = false;
    std::string error;

private:
    std::string myName;
    bool inFailure = false, hasSaid = false; // of the last job
};

void listen(Ninja &ninja, Listener &listener, tm_Outcome &outcome)
{
    if (!ninja.isRunning()) {
        outcome.error = std::string("cannot start ninja: ") + std::strerror(errno);
        return;
    }
    for (std::string line; ninja.readLine(line);)
        listener.take(line);
    if (!ninja.isWhole())
        outcome.error = std::string("cannot read what it says: ") + std::strerror(errno);
    listener.endJob();
    const int status = ninja.wait();
    outcome.wasInterrupted = listener.wasInterrupted;
    if (!listener.error.empty())
        outcome.error = listener.error;
    if (status != 0 && outcome.failures.empty() && outcome.error.empty() && !outcome.wasInterrupted)
        outcome.error = "ninja ended with status " + std::to_string(status);
}
} // namespace

bool tm_writeGraph(const std::string &cache, const std::string &recipeFile,
                   const tm_Library &library, const tm_Options &options)
{
    std::string text = rule(cache, recipeFile);
    for (const tm_Item &item : library.items) {
        text += edge(item);
        if (options.isForced && !options.isDryRun)
            unlink((item.stamp + ".farm").c_str());
        if ((options.isForced && !options.isDryRun) || isStale(item))
            unlink(item.stamp.c_str());
    }
    return tm_writeFile(cache + MANIFEST, text);
}

tm_Outcome tm_runNinja(const std::string &cache, const tm_Options &options)
{
    tm_Outcome outcome;
    const std::vector<std::string> words = {"-k", std::to_string(options.failures), "-j",
                                            std::to_string(options.jobs)};
    // Ninja and its jobs end at Ctrl-C; the summary is still ours to give.
    const auto before = signal(SIGINT, SIG_IGN);
    tm_Progress progress(options);
    Listener listener;
    long finished = 0;
    listener.onStatus = [&](long done, long all, const std::string &name) {
        finished = done;
        progress.show(done, all, name);
    };
    listener.onMessage = [&](const std::string &said, bool isFailure) {
        if (isFailure)
            outcome.failures.push_back(said);
        if (isFailure || !options.isQuiet)
            progress.say(said);
    };
    Ninja ninja(cache, words);
    listen(ninja, listener, outcome);
    signal(SIGINT, before);
    outcome.made = finished - static_cast<long>(outcome.failures.size());
    return outcome;
}

tm_Outcome tm_askNinja(const std::string &cache, std::vector<std::string> &names)
{
    tm_Outcome outcome;
    Listener listener;
    listener.onStatus = [&](long, long, const std::string &name) { names.push_back(name); };
    listener.onMessage = [](const std::string &, bool) {};
    Ninja ninja(cache, {"-n"});
    listen(ninja, listener, outcome);
    return outcome;
}
