#include "thumbmake/tm_Job.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_MakeRule.h"
#include "UT/UT_Process.h"
#include "thumbmake/tm_Text.h"
#include "thumbnail/PaletteHead.h"
#include "thumbnail/ThumbRenderer.h"
#include "thumbnail/ThumbState.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

extern char **environ;

namespace
{
constexpr size_t MOST_SAID = 1 << 16; // bytes of messages that are kept

using Identity = std::optional<struct stat>;

Identity identify(const std::string &path)
{
    struct stat info = {};
    return lstat(path.c_str(), &info) == 0 ? Identity(info) : Identity();
}

// Of the file behind a link.
Identity identifySource(const std::string &path)
{
    struct stat info = {};
    return stat(path.c_str(), &info) == 0 ? Identity(info) : Identity();
}

bool isSameTime(const timespec &a, const timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Another file in the place of an old one, or in a place that was empty.
bool isNew(const Identity &before, const Identity &after)
{
    if (!after || !S_ISREG(after->st_mode) || after->st_size == 0)
        return false;
    if (!before)
        return true;
    return before->st_ino != after->st_ino || before->st_dev != after->st_dev ||
           !isSameTime(before->st_mtim, after->st_mtim) ||
           !isSameTime(before->st_ctim, after->st_ctim);
}

// Runs a program and returns what it said; nothing when it could not be started.
std::optional<std::string> runAndListen(const std::vector<std::string> &words)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_adddup2(&actions, ends[1], descriptor);
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t child = -1;
    const int code =
        posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::string said;
    char block[4096];
    ssize_t count = 0;
    while (code == 0 &&
           ((count = read(ends[0], block, sizeof block)) > 0 || (count < 0 && errno == EINTR)))
        if (count > 0 && said.size() < MOST_SAID)
            said.append(block, static_cast<size_t>(count));
    close(ends[0]);
    if (code == 0)
        waitpid(child, nullptr, 0);
    errno = code;
    return code == 0 ? std::optional<std::string>(said) : std::nullopt;
}

std::string firstLine(const std::string &said)
{
    const size_t start = said.find_first_not_of('\n');
    return start == said.npos ? "" : said.substr(start, said.find('\n', start) - start);
}

// A message that begins with the picture's name, as an editor wants it: the palette is
// named in front of it already.
std::string withoutPicture(const std::string &line, const std::string &palette)
{
    const std::string stem = fs::path(palette).replace_extension().string() + ".";
    const size_t end = line.find(": error: ");
    if (end == line.npos || line.compare(0, stem.size(), stem) != 0)
        return line;
    const size_t colon = line.find(':', stem.size());
    const std::string number =
        colon < end ? "scene line " + line.substr(colon + 1, end - colon - 1) + ": " : "";
    return number + line.substr(end + 9);
}

class Job
{
public:
    Job(const tm_Item &item, const tm_Recipe &recipe) : myItem(item), myRecipe(recipe) {}

    // The rule for make is in rule() afterwards.
    tm_Result make()
    {
        if (isElsewhere() && !isForVaskel())
            return {false, "-o and --format go with vaskel, which does not draw this palette"};
        std::error_code ignored; // what comes next tells
        fs::create_directories(fs::path(myItem.stamp).parent_path(), ignored);
        fs::create_directories(fs::path(myItem.picture).parent_path(), ignored);
        // In memory, so that nothing is left of it when we are killed.
        const int rule = memfd_create("rule", MFD_CLOEXEC);
        if (rule < 0)
            return {false, std::string("cannot take a note: ") + std::strerror(errno)};
        const std::string depfile =
            "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(rule);
        setEnvironment(depfile);
        const Identity before = identify(myItem.picture);
        const std::optional<std::string> said = runAndListen(command());
        const int code = errno;
        const bool hasRule = readRule(depfile);
        close(rule);
        if (!said)
            return {false, "cannot start thumbrender: " + std::string(std::strerror(code))};
        const std::string line = firstLine(*said);
        if (!isNew(before, identify(myItem.picture)))
            return {false, line.empty() ? "no picture " + myItem.picture + " was made"
                                        : withoutPicture(line, myItem.palette)};
        if (!hasRule)
            return {false, "it is not known what " + myItem.picture + " was made of"};
        return {true, *said};
    }

    const std::string &rule() const { return myRule; }

private:
    // Not where renderers other than vaskel put it.
    bool isElsewhere() const
    {
        return myRecipe.hasOutput || fs::path(myItem.picture).extension() != ".jpg";
    }

    // True for a palette that cannot be read, too: thumbrender says why.
    bool isForVaskel() const
    {
        theRendererName = !myRecipe.renderer.empty()
                              ? myRecipe.renderer.c_str()
                              : UT_EnvControl::instance().getString(ENV_VELDRIN_THUMB_RENDER);
        PaletteHead head;
        UT_String error;
        if (!readPaletteHead(myItem.palette.c_str(), head, error))
            return true;
        const ThumbRenderer *const row =
            chooseRenderer(head.vvaskelShader, head.ribShader, head.miShader);
        return row == nullptr || row->myKind == THUMB_IFD;
    }

    std::vector<std::string> command() const
    {
        std::vector<std::string> words = {tm_findProgram("thumbrender")};
        words.insert(words.end(), myRecipe.thumbrender.begin(), myRecipe.thumbrender.end());
        if (!myRecipe.renderer.empty())
            words.insert(words.end(), {"-r", myRecipe.renderer});
        words.insert(words.end(), {"--", myItem.palette});
        return words;
    }

    void setEnvironment(const std::string &depfile) const
    {
        static const char *const own = std::getenv("VELDRIN_VASKEL_OPTIONS");
        static const std::string first = own != nullptr ? own : "";
        std::string options = first + "\n";
        for (const std::string &word : myRecipe.vaskel)
            options += " " + tm_quoteForVaskel(word);
        if (myRecipe.hasOutput)
            options += " -o " + tm_quoteForVaskel(myItem.picture);
        setenv("VELDRIN_VASKEL_OPTIONS", options.c_str(), 1);
        setenv("VELDRIN_THUMB_DEPFILE", depfile.c_str(), 1);
    }

    // One rule under the stamp's name, which ninja expects, of those that thumbrender and
    // the renderer left. False when there was none.
    bool readRule(const std::string &depfile)
    {
        std::string text;
        static_cast<void>(tm_readFile(depfile, text));
        myRule = UTmakeRule(UTquoteForMake(myItem.stamp), UTfilesOfMakeRules(text));
        return !text.empty();
    }

    const tm_Item &myItem;
    const tm_Recipe &myRecipe;
    std::string myRule;
};

bool isOlder(const struct stat &a, const struct stat &b)
{
    return a.st_mtim.tv_sec != b.st_mtim.tv_sec ? a.st_mtim.tv_sec < b.st_mtim.tv_sec
                                                : a.st_mtim.tv_nsec < b.st_mtim.tv_nsec;
}

// There is a picture, and all files are there and not newer.
bool isNewest(const tm_Item &item, const std::vector<std::string> &files)
{
    const Identity picture = identify(item.picture);
    return picture && std::all_of(files.begin(), files.end(), [&](const std::string &file) {
               const Identity source = identifySource(file);
               return source && !isOlder(*picture, *source);
           });
}

// The rule that a farm left for a picture made with this recipe, when neither the palette
// nor anything else that the rule names has changed since.
std::string farmRule(const tm_Item &item, const std::string &recipeName)
{
    std::string text;
    if (!tm_readFile(item.stamp + ".farm", text) ||
        text.compare(0, recipeName.size() + 1, recipeName + "\n") != 0)
        return "";
    const std::string rule = text.substr(recipeName.size() + 1);
    std::vector<std::string> files = UTfilesOfMakeRules(rule);
    files.push_back(item.palette);
    return isNewest(item, files) ? rule : "";
}

// What ninja reads in a rule; it stops at quotes and other signs that shells know.
bool isForNinja(const std::string &file)
{
    return std::all_of(file.begin(), file.end(), [](char c) {
        return (c & 0x80) != 0 || std::isalnum(static_cast<unsigned char>(c)) != 0 ||
               std::strchr("+,/_.~()}{%=@[]!- #$", c) != nullptr;
    });
}

// The rule for ninja; a link in the cache stands for a file whose name it cannot read.
std::string ruleForNinja(const tm_Item &item, const std::string &rule)
{
    const fs::path names = fs::path(item.stamp).parent_path() / ".." / ".." / "names";
    std::vector<std::string> files = UTfilesOfMakeRules(rule);
    for (std::string &file : files) {
        if (isForNinja(file))
            continue;
        std::error_code ignored; // of one that is there; a missing one makes the picture again
        fs::create_directories(names.lexically_normal(), ignored);
        const std::string name = (names / tm_hex(tm_hash(file))).lexically_normal();
        fs::create_symlink(fs::absolute(file), name, ignored);
        file = name;
    }
    return UTmakeRule(UTquoteForMake(item.stamp), files);
}

tm_Result concludeFailure(const tm_Item &item, tm_Result result)
{
    UTmakePrintable(result.said.data(), result.said.size());
    static_cast<void>(!tm_writeFile(item.stamp + ".failed", result.said));
    return result;
}
} // namespace

tm_Result tm_makePicture(const tm_Item &item, const tm_Recipe &recipe,
                         const std::string &recipeName)
{
    Job job(item, recipe);
    std::string rule = farmRule(item, recipeName);
    tm_Result result = {true, ""};
    if (rule.empty()) {
        result = job.make();
        rule = job.rule();
    }
    if (!result.isGood)
        return concludeFailure(item, result);
    std::error_code ignored;
    fs::remove(item.stamp + ".failed", ignored);
    fs::remove(item.stamp + ".farm", ignored);
    if (!tm_writeFile(item.stamp + ".d", ruleForNinja(item, rule)) || !tm_writeFile(item.stamp, ""))
        return {false, "cannot write " + item.stamp + ": " + std::strerror(errno)};
    return result;
}

tm_Result tm_makeFarmPicture(const tm_Item &item, const tm_Recipe &recipe,
                             const std::string &recipeName)
{
    if (!farmRule(item, recipeName).empty())
        return {true, ""};
    Job job(item, recipe);
    const tm_Result result = job.make();
    if (!result.isGood)
        return concludeFailure(item, result);
    std::error_code ignored;
    fs::remove(item.stamp + ".failed", ignored);
    if (!tm_writeFile(item.stamp + ".farm", recipeName + "\n" + job.rule()))
        return {false, "cannot write " + item.stamp + ".farm: " + std::strerror(errno)};
    return result;
}

bool tm_isOutdated(const tm_Item &item)
{
    std::string rule; // none: nothing more is known
    static_cast<void>(!tm_readFile(item.stamp + ".d", rule));
    std::vector<std::string> files = UTfilesOfMakeRules(rule);
    files.push_back(item.palette);
    return !isNewest(item, files);
}

std::string tm_failure(const tm_Item &item)
{
    std::string text;
    return tm_readFile(item.stamp + ".failed", text) ? text : "";
}
