#include "vaskel/vk_Options.h"

#include "UT/UT_Environment.h"
#include "vaskel/params/vk_Nearest.h"
#include "vaskel/params/vk_Params.h"
#include "vaskel/scene/vk_Line.h"

#include <algorithm>

namespace
{
using Handler = bool (*)(vk_Options &, const std::string &value, std::string &error);

const char *const VARIABLE = "VELDRIN_VASKEL_OPTIONS";

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
    if (!vk_parseNumber(value, name, 1, static_cast<float>(most), number, error))
        return false;
    count = static_cast<int>(number);
    if (static_cast<float>(count) == number)
        return true;
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
    return vk_parseNumber(value, "--limit", 0, vk_Options::LONGEST_LIMIT, options.limit, error);
}

bool takeOutput(vk_Options &options, const std::string &value, std::string &error)
{
    options.output = value;
    if (!value.empty())
        return true;
    error = "-o expected a file's name, found nothing";
    return false;
}

bool takeFormat(vk_Options &options, const std::string &value, std::string &error)
{
    options.format = value;
    if (value == "jpg" || value == "png")
        return true;
    error = "--format expected jpg or png, found " + vk_quoted(value);
    return false;
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

struct Option {
    const char *name;
    const char *other; // name; null: none
    const char *value; // what stands behind it; null: nothing
    Handler handler;
    const char *what;
};
constexpr Option OPTIONS[] = {
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

const Option *find(const std::string &word)
{
    for (const Option &option : OPTIONS)
        if (word == option.name || (option.other != nullptr && word == option.other))
            return &option;
    return nullptr;
}

// Takes the option at `at`, and its value.
bool takeOption(const vk_Words &words, std::size_t &at, vk_Options &options, std::string &error)
{
    const Option *const option = find(words[at]);
    if (option == nullptr) {
        error = "unknown option " + vk_quoted(words[at]);
        return false;
    }
    if (option->value == nullptr)
        return option->handler(options, "", error);
    if (++at < words.size())
        return option->handler(options, words[at], error);
    error = std::string(option->name) + " expected a value behind it";
    return false;
}

bool isOption(const std::string &word)
{
    return word.size() > 1 && word[0] == '-';
}

// Only options: the scene is the caller's.
bool takeEnvironment(vk_Options &options, std::string &error)
{
    const char *const text = UTgetenv(VARIABLE);
    vk_Words words;
    bool good = text == nullptr || vk_splitLine(text, words, error);
    for (std::size_t i = 0; good && i < words.size(); ++i) {
        good = isOption(words[i]) && takeOption(words, i, options, error);
        if (!good && error.empty())
            error = "expected options, found " + vk_quoted(words[i]);
    }
    if (!good)
        error = std::string(VARIABLE) + ": " + error;
    return good;
}
} // namespace

bool vk_parseOptions(int argc, const char *const argv[], vk_Options &options, std::string &error)
{
    const vk_Words words(argv + std::min(argc, 1), argv + argc);
    int scenes = 0;
    bool inOptions = true;
    std::string first; // complaint
    static_cast<void>(takeEnvironment(options, first));
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string wrong;
        if (inOptions && words[i] == "--")
            inOptions = false;
        else if (inOptions && isOption(words[i]))
            static_cast<void>(takeOption(words, i, options, wrong));
        else if (++scenes == 1)
            options.scene = words[i];
        else
            wrong = "expected one scene, found " + vk_quoted(words[i]) + " too";
        if (first.empty())
            first = wrong;
    }
    error = first;
    return error.empty() || options.action != VK_DRAW;
}

std::string vk_usage()
{
    std::string text = "Usage: vaskel [options] [scene]\n"
                       "Draws the picture that a scene describes. The scene is a file,\n"
                       "or standard input when it is left out or '-'.\n"
                       "Options:\n";
    for (const Option &option : OPTIONS) {
        std::string left = "  ";
        if (option.other != nullptr)
            left += std::string(option.other) + ", ";
        left += option.name;
        if (option.value != nullptr)
            left += std::string(" ") + option.value;
        left.resize(20, ' ');
        text += left + option.what + "\n";
    }
    return text +
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
