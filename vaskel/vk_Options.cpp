#include "vaskel/vk_Options.h"

#include "UT/UT_Environment.h"
#include "vaskel/params/vk_Nearest.h"
#include "vaskel/params/vk_Params.h"

#include <cstring>

namespace
{
using Handler = bool (*)(vk_Options &, const char *value, std::string &error);

template <vk_Action Action>
bool act(vk_Options &options, const char *, std::string &)
{
    options.action = Action;
    return true;
}

bool takeStats(vk_Options &options, const char *, std::string &)
{
    options.stats = true;
    return true;
}

bool takeSamples(vk_Options &options, const char *value, std::string &error)
{
    float count = 0;
    if (!vk_parseNumber(value, "--samples", 1, vk_Scene::MOST_SAMPLES, count, error))
        return false;
    options.samples = static_cast<int>(count);
    if (static_cast<float>(options.samples) == count)
        return true;
    error = "--samples expected a whole number, found " + vk_quoted(value);
    return false;
}

const char *const LIMIT_VARIABLE = "VELDRIN_VASKEL_LIMIT";

bool takeLimit(vk_Options &options, const char *value, std::string &error)
{
    return vk_parseNumber(value, "--limit", 0, vk_Options::LONGEST_LIMIT, options.limit, error);
}

// A driver starts us without options.
bool takeEnvironment(vk_Options &options, std::string &error)
{
    const char *const value = UTgetenv(LIMIT_VARIABLE);
    return value == nullptr || *value == '\0' ||
           vk_parseNumber(value, LIMIT_VARIABLE, 0, vk_Options::LONGEST_LIMIT, options.limit,
                          error);
}

bool takeQuality(vk_Options &options, const char *value, std::string &error)
{
    std::vector<std::string_view> known;
    for (const vk_Quality &quality : VK_QUALITIES) {
        known.push_back(quality.name);
        if (std::strcmp(value, quality.name) != 0)
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
    const char *value; // what stands behind it; null: nothing
    Handler handler;
    const char *what;
};
constexpr Option OPTIONS[] = {
    {"--samples", "N", takeSamples, "samples for every pixel, quiet or not"},
    {"--quality", "Q", takeQuality, "draft, default or final"},
    {"--limit", "SECONDS", takeLimit, "give up after so long; 0: never, however much is asked for"},
    {"--stats", nullptr, takeStats, "tell on standard error what the picture took"},
    {"--list-shaders", nullptr, act<VK_LIST_SHADERS>, "print the shaders with their parameters"},
    {"--help", nullptr, act<VK_HELP>, "print this text and end"},
    {"--version", nullptr, act<VK_VERSION>, "print the version and end"},
};

const Option *find(const char *word)
{
    for (const Option &option : OPTIONS)
        if (std::strcmp(word, option.name) == 0)
            return &option;
    return nullptr;
}

// Takes the option at `at`, and its value.
bool takeOption(int argc, const char *const argv[], int &at, vk_Options &options,
                std::string &error)
{
    const Option *const option = find(argv[at]);
    if (option == nullptr) {
        error = "unknown option " + vk_quoted(argv[at]);
        return false;
    }
    if (option->value == nullptr)
        return option->handler(options, nullptr, error);
    if (++at < argc)
        return option->handler(options, argv[at], error);
    error = std::string(option->name) + " expected a value behind it";
    return false;
}
} // namespace

bool vk_parseOptions(int argc, const char *const argv[], vk_Options &options, std::string &error)
{
    int scenes = 0;
    bool inOptions = true;
    std::string first; // complaint
    static_cast<void>(takeEnvironment(options, first));
    for (int i = 1; i < argc; ++i) {
        std::string wrong;
        if (inOptions && std::strcmp(argv[i], "--") == 0)
            inOptions = false;
        else if (inOptions && argv[i][0] == '-' && argv[i][1] != '\0')
            static_cast<void>(takeOption(argc, argv, i, options, wrong));
        else if (++scenes == 1)
            options.scene = argv[i];
        else
            wrong = "expected one scene, found " + vk_quoted(argv[i]) + " too";
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
        std::string left = std::string("  ") + option.name;
        if (option.value != nullptr)
            left += std::string(" ") + option.value;
        left.resize(20, ' ');
        text += left + option.what + "\n";
    }
    return text +
           "Environment:\n"
           "  VELDRIN_MAXTHREADS  how many threads draw, 1 to 100;\n"
           "                      0 or -1: one for each processor\n"
           "  VELDRIN_VASKEL_LIMIT  stands for a --limit that is not given\n"
           "Of a scene from standard input, width times height times samples may be at\n"
           "most " +
           std::to_string(vk_Scene::MOST_WORK) +
           " (2048 x 2048 pixels with 256 samples); any limit lifts that.\n"
           "The scene language is described in doc/scene.md.\n";
}
