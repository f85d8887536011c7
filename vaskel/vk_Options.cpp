#include "vaskel/vk_Options.h"

#include "UT/UT_Environment.h"
#include "UT/UT_OptionTable.h"
#include "vaskel/params/vk_Nearest.h"
#include "vaskel/params/vk_Params.h"
#include "vaskel/scene/vk_Line.h"

#include <algorithm>
#include <sstream>

namespace
{
// The words of somebody who starts vaskel by way of another program.
const char *const VARIABLE = "VELDRIN_VASKEL_OPTIONS";

// The last of them wins, as with all options.
template <vk_Action Action>
bool act(vk_Options &options, const std::string &, std::string &)
{
    options.action = Action;
    return true;
}

bool takeStats(vk_Options &options, const std::string &, std::string &)
{
    options.stats = true;
    return true;
}

bool takeCount(const std::string &value, const char *name, int most, int &count, std::string &error)
{
    float number = 0;
    // From 1 on: 0 stands for an option that was not given.
    if (!vk_parseNumber(value, name, 1, static_cast<float>(most), number, error))
        return false;
    // Counts are read as numbers are, so that messages about them are alike; all fit a float.
    count = static_cast<int>(number);
    if (static_cast<float>(count) == number)
        return true;
    // A float says yes to 2.5; a count does not.
    error = std::string(name) + " expected a whole number, found " + vk_quoted(value);
    return false;
}

bool takeSamples(vk_Options &options, const std::string &value, std::string &error)
{
    return takeCount(value, "--samples", vk_Scene::MOST_SAMPLES, options.samples, error);
}

bool takeSize(vk_Options &options, const std::string &value, std::string &error)
{
    return takeCount(value, "--size", vk_Options::LARGEST_SIZE, options.size, error);
}

bool takeLimit(vk_Options &options, const std::string &value, std::string &error)
{
    // Here 0 is a value, no limit; what was not given is below 0.
    return vk_parseNumber(value, "--limit", 0, vk_Options::LONGEST_LIMIT, options.limit, error);
}

bool takeOutput(vk_Options &options, const std::string &value, std::string &)
{
    // What is wrong with an empty name the table tells.
    options.output = value;
    return !value.empty();
}

bool takeFormat(vk_Options &options, const std::string &value, std::string &)
{
    options.format = value;
    return value == "jpg" || value == "png";
}

bool takeQuality(vk_Options &options, const std::string &value, std::string &error)
{
    std::vector<std::string_view> known;
    for (const vk_Quality &quality : VK_QUALITIES) {
        known.push_back(quality.name);
        if (value != quality.name)
            continue;
        options.quality = &quality;
        return true;
    }
    error = "--quality expected draft, default or final, found " + vk_quoted(value) +
            "; nearest is " + vk_quoted(vk_nearest(value, known));
    return false;
}

// In the order of --help: what is drawn, how well, and then what is only told.
constexpr UT_Option<vk_Options> ROWS[] = {
    {"-o", nullptr, "FILE", takeOutput, "write this picture, whatever the scene says"},
    {"--size", nullptr, "N", takeSize, "pixels of the longer side, whatever the scene says"},
    {"--format", nullptr, "F", takeFormat, "jpg or png, whatever the file's suffix says"},
    {"--quality", nullptr, "Q", takeQuality, "draft, default or final"},
    {"--samples", nullptr, "N", takeSamples, "samples for every pixel, quiet or not"},
    {"--limit", nullptr, "SECONDS", takeLimit,
     "give up after so long; 0: never, however much is asked for"},
    {"--stats", nullptr, nullptr, takeStats, "tell on standard error what the picture took"},
    {"--list-shaders", nullptr, nullptr, act<VK_LIST_SHADERS>,
     "print the shaders with their parameters"},
    {"--help", "-h", nullptr, act<VK_HELP>, "print this text and end"},
    {"--version", nullptr, nullptr, act<VK_VERSION>, "print the version and end"},
};

constexpr UT_OptionTable<vk_Options> OPTIONS = ROWS;

// Only options: the scene is the caller's.
bool takeWords(const vk_Words &words, vk_Options &options, std::string &error)
{
    bool good = true;
    for (std::size_t i = 0; good && i < words.size(); ++i) {
        // take() leaves `i` at the last word of the option.
        good = OPTIONS.isOption(words[i]) && OPTIONS.take(words, i, options, error);
        if (!good && error.empty())
            error = "expected options, found " + vk_quoted(words[i]);
    }
    return good;
}

// Line by line: a comment or an open quote in somebody's own text ends with its line and
// cannot swallow what a program adds.
bool takeEnvironment(vk_Options &options, std::string &error)
{
    const char *const variable = UTgetenv(VARIABLE);
    vk_Words words, line;
    std::istringstream text(variable != nullptr ? variable : "");
    bool good = true;
    for (std::string part; good && std::getline(text, part);) {
        good = vk_splitLine(part, line, error);
        words.insert(words.end(), line.begin(), line.end());
    }
    good = good && takeWords(words, options, error);
    if (!good)
        // Nobody sees these words on the command line, so the message says where they stand.
        error = std::string(VARIABLE) + ": " + error;
    return good;
}
} // namespace

bool vk_parseOptions(int argc, const char *const argv[], vk_Options &options, std::string &error)
{
    // A program may be started without even its own name (POSIX execve).
    const vk_Words words(argv + std::min(argc, 1), argv + argc);
    int scenes = 0;
    bool inOptions = true;
    std::string first; // complaint
    // First, so that the command line wins.
    static_cast<void>(takeEnvironment(options, first));
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string wrong;
        // Behind it a scene's name may begin with '-'.
        if (inOptions && words[i] == "--")
            inOptions = false;
        else if (inOptions && OPTIONS.isOption(words[i]))
            static_cast<void>(!OPTIONS.take(words, i, options, wrong));
        else if (++scenes == 1)
            options.scene = words[i];
        else
            wrong = "expected one scene, found " + vk_quoted(words[i]) + " too";
        // The first mistake: later ones are often its consequences.
        if (first.empty())
            first = wrong;
    }
    error = first;
    // Who asks for help gets it, whatever else is wrong.
    return error.empty() || options.action != VK_DRAW;
}

std::string vk_usage()
{
    return "Usage: vaskel [options] [scene]\n"
           "Draws the picture that a scene describes. The scene is a file,\n"
           "or standard input when it is left out or '-'.\n"
           "Options:\n" +
           OPTIONS.help(20) +
           "Environment:\n"
           "  VELDRIN_MAXTHREADS  how many threads draw, 1 to 100;\n"
           "                      0 or -1: one for each processor\n"
           "  VELDRIN_VASKEL_OPTIONS  options in front of those given\n"
           "Of a scene from standard input, width times height times samples may be at\n"
           "most " +
           std::to_string(vk_Scene::MOST_WORK) +
           " (2048 x 2048 pixels with 256 samples), and it has ten minutes; a limit that is\n"
           "given takes the place of both.\n"
           "The scene language is described in doc/scene.md.\n";
}
