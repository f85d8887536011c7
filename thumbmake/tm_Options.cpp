#include "thumbmake/tm_Options.h"

#include "UT/UT_OptionTable.h"
#include "thumbmake/tm_Farm.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <string_view>

namespace
{
constexpr int LARGEST_SIZE = 4096; // what vaskel draws as a square
constexpr int MOST_JOBS = 10000;
constexpr int MOST_CHUNKS = 1000000;

template <bool tm_Options::*FLAG, bool VALUE>
bool set(tm_Options &options, const std::string &, std::string &)
{
    options.*FLAG = VALUE;
    return true;
}

template <std::string tm_Options::*TEXT>
bool take(tm_Options &options, const std::string &value, std::string &)
{
    options.*TEXT = value;
    return !value.empty() && !tm_hasControl(value);
}

bool parseNumber(const std::string &text, int least, int most, int &number)
{
    const char *const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end && number >= least && number <= most;
}

template <int tm_Options::*NUMBER, int LEAST, int MOST>
bool take(tm_Options &options, const std::string &value, std::string &)
{
    return parseNumber(value, LEAST, MOST, options.*NUMBER);
}

using Words = std::initializer_list<std::string_view>;

// thumbrender looks at a word's beginning only, and takes any other for its default.
bool begins(Words words, const std::string &value)
{
    return !value.empty() && std::any_of(words.begin(), words.end(), [&](std::string_view word) {
        return word.substr(0, value.size()) == value;
    });
}

bool takeShape(tm_Options &options, const std::string &value, std::string &)
{
    options.geometry = value;
    return begins({"sphere", "grid", "cylinder", "teapot"}, value);
}

bool takeRenderer(tm_Options &options, const std::string &value, std::string &)
{
    options.renderer = value;
    return begins({"vaskel", "prman", "entropy", "rdc", "render", "mi"}, value);
}

bool takeQuality(tm_Options &options, const std::string &value, std::string &)
{
    options.quality = value;
    return value == "draft" || value == "default" || value == "final";
}

bool takeFormat(tm_Options &options, const std::string &value, std::string &)
{
    options.format = value;
    return value == "jpg" || value == "png";
}

bool takeEngine(tm_Options &options, const std::string &value, std::string &)
{
    options.submit = value;
    return tm_isEngine(value);
}

bool takeChunk(tm_Options &options, const std::string &value, std::string &)
{
    const size_t slash = value.find('/');
    return slash != value.npos &&
           parseNumber(value.substr(slash + 1), 1, MOST_CHUNKS, options.chunkCount) &&
           parseNumber(value.substr(0, slash), 1, options.chunkCount, options.chunk);
}

constexpr UT_Option<tm_Options> ROWS[] = {
    {"-g", nullptr, "TYPE", takeShape, "shape: sphere, grid, cylinder or teapot"},
    {"-b", nullptr, nullptr, set<&tm_Options::hasBackground, false>, "no background"},
    {"-s", nullptr, nullptr, set<&tm_Options::hasShadows, false>, "no shadows"},
    {"-r", nullptr, "RENDERER", takeRenderer, "vaskel, prman, entropy, rdc or mi"},
    {"--size", nullptr, "N", take<&tm_Options::size, 1, LARGEST_SIZE>,
     "pixels of the longer side (vaskel)"},
    {"--format", nullptr, "F", takeFormat, "jpg or png (vaskel)"},
    {"--quality", nullptr, "Q", takeQuality, "draft, default or final (vaskel)"},
    {"-o", nullptr, "FOLDER", take<&tm_Options::output>,
     "put pictures there, in folders as the palettes' (vaskel)"},
    {"-j", nullptr, "N", take<&tm_Options::jobs, 1, MOST_JOBS>,
     "pictures at a time; one for each processor"},
    {"-k", nullptr, "N", take<&tm_Options::failures, 0, MOST_JOBS>,
     "stop after N failures; 0, the default: never"},
    {"-n", nullptr, nullptr, set<&tm_Options::isDryRun, true>, "only say what would be made"},
    {"--force", nullptr, nullptr, set<&tm_Options::isForced, true>, "make all pictures again"},
    {"--delete-on-error", nullptr, nullptr, set<&tm_Options::deletesOnError, true>,
     "remove a picture that is older than its palette or its shader when that fails"},
    {"-q", nullptr, nullptr, set<&tm_Options::isQuiet, true>, "say nothing but failures"},
    {"-v", nullptr, nullptr, set<&tm_Options::isVerbose, true>,
     "a line for each picture, on a terminal too"},
    {"--page", nullptr, "FOLDER", take<&tm_Options::page>,
     "then, with -n too, write FOLDER/index.html, which shows the pictures"},
    {"--submit", nullptr, "ENGINE", takeEngine, "have a farm make them (see below)"},
    {"--wait", nullptr, nullptr, set<&tm_Options::waits, true>,
     "with --submit slurm: wait for the end and say what became of all"},
    {"--chunk", nullptr, "K/N", takeChunk, "make part K of N of a list: what a farm runs"},
    {"--help", "-h", nullptr, set<&tm_Options::wantsHelp, true>, "print this text and end"},
    {"--version", nullptr, nullptr, set<&tm_Options::wantsVersion, true>,
     "print the version and end"},
};

constexpr UT_OptionTable<tm_Options> OPTIONS = ROWS;

// What does not go together or is missing.
const char *complaint(const tm_Options &options)
{
    if (options.inputs.empty())
        return "expected a folder or a palette";
    if (options.chunk > 0 && options.inputs.size() != 1)
        return "--chunk expected one list";
    if (options.waits && options.submit != "slurm")
        return "--wait goes with --submit slurm";
    if (!options.submit.empty() && !options.page.empty() && !options.waits)
        return "--page needs the pictures: with --submit it goes with --wait";
    return nullptr;
}
} // namespace

bool tm_parseOptions(const std::vector<std::string> &words, tm_Options &options, std::string &error)
{
    bool inOptions = true;
    for (size_t i = 0; i < words.size(); ++i) {
        if (inOptions && words[i] == "--")
            inOptions = false;
        else if (!inOptions || !OPTIONS.isOption(words[i]))
            options.inputs.push_back(words[i]);
        else if (!OPTIONS.take(words, i, options, error))
            return false;
    }
    if (options.wantsHelp || options.wantsVersion)
        return true;
    // The page of a folder is about what lies in it.
    if (options.inputs.empty() && !options.page.empty())
        options.inputs.push_back(options.page);
    if (const char *const wrong = complaint(options))
        error = wrong;
    return error.empty();
}

std::string tm_usage()
{
    return "Usage: thumbmake [options] FOLDER|FILE...\n"
           "Makes the pictures of palettes that are out of date.\n"
           "Options:\n" +
           OPTIONS.help(21) + "Engines: " + tm_engineNames() +
           ".\n"
           "Status: 0; 1 when a picture could not be made; 2 for bad usage.\n"
           "What was made of what is remembered in $XDG_CACHE_HOME/veldrin/thumbmake, or\n"
           "~/.cache/veldrin/thumbmake.\n";
}
