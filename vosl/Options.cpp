#include "Options.h"

#include <charconv>
#include <cstdlib>
#include <cstring>

const char Options::USAGE[] =
    "Usage: vosl [options] FILE.osl\n"
    "Compiles a shader, runs it at each point of a grid and prints what it prints.\n"
    "Options:\n"
    "  -g W H             Points of the grid (1 1)\n"
    "  --center           Take the middle of cells, not their corners\n"
    "  -param NAME VALUE  A parameter's value; of a name the last one counts\n"
    "                     -param:type=vector NAME 1,2,3 gives its type, float[5] for arrays\n"
    "  -I path            Look for include files there too\n"
    "  -D name[=value]    Define a macro\n"
    "  --info             Print type, parameters, defaults and metadata\n"
    "  --time             Print how fast it was\n"
    "  -h, --help         Print this text and end\n"
    "  --version          Print the version and end\n"
    "A shader is a program of yours here: its fprintf() writes to the files that it names.\n"
    "Status: 0; 1 for a shader that does not compile, is stopped or cannot print; 2 for bad\n"
    "usage.\n";

namespace
{
constexpr int MAX_SIDE = 16384;

bool isNumber(const std::string &text, bool &isInt)
{
    if (text.empty())
        return false;
    char *end;
    std::strtol(text.c_str(), &end, 10);
    isInt = *end == '\0';
    std::strtof(text.c_str(), &end);
    return *end == '\0';
}

bool parseSide(const std::string &text, int &side)
{
    const char *const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, side);
    return read.ec == std::errc() && read.ptr == end && side > 0 && side <= MAX_SIDE;
}

std::vector<std::string> splitAt(const std::string &text, char separator)
{
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

// "vector", "float[5]", "int[]"; UNKNOWN for anything else.
osl_Type typeOf(std::string word, int values)
{
    int length = 0;
    const size_t bracket = word.find('[');
    if (bracket != std::string::npos) {
        length = std::atoi(word.c_str() + bracket + 1);
        word.resize(bracket);
    }
    osl_Type type(osl_typeByName(word));
    if (bracket != std::string::npos && length == 0)
        length = values / (type.isUnknown() ? 1 : type.components());
    type.array = length;
    return type;
}

// A value without a told type is what it looks like.
OSL_Value guessed(const std::string &text)
{
    bool isInt = false;
    if (!isNumber(text, isInt))
        return OSL_Value::ofString(text);
    return isInt ? OSL_Value::ofInt(std::atoi(text.c_str()))
                 : OSL_Value::ofFloat(std::strtof(text.c_str(), nullptr));
}

bool valueOf(const std::string &word, const std::string &text, OSL_Value &value)
{
    const std::vector<std::string> parts = splitAt(text, ',');
    value.type = typeOf(word, static_cast<int>(parts.size()));
    if (value.type.isUnknown())
        return false;
    for (const std::string &part : parts) {
        if (value.type.base == osl_Type::INT)
            value.ints.push_back(std::atoi(part.c_str()));
        else if (value.type.base == osl_Type::STRING)
            value.strings.push_back(part);
        else
            value.floats.push_back(std::strtof(part.c_str(), nullptr));
    }
    const auto wanted = static_cast<size_t>(value.type.components() *
                                            (value.type.array > 0 ? value.type.array : 1));
    const size_t given = value.ints.size() + value.floats.size() + value.strings.size();
    if (given == 1 && wanted > 1 && !value.floats.empty())
        value.floats.assign(wanted, value.floats[0]);
    return given == wanted || given == 1;
}
} // namespace

std::string Options::takeGrid(int argc, char *argv[], int &at)
{
    if (at + 2 >= argc)
        return "-g needs two numbers";
    const bool isGood = parseSide(argv[at + 1], width) && parseSide(argv[at + 2], height);
    at += 2;
    return isGood ? "" : "a grid has 1 to 16384 points in each direction";
}

std::string Options::takeParameter(int argc, char *argv[], int &at)
{
    const std::string option = argv[at];
    if (at + 2 >= argc)
        return option + " needs a name and a value";
    const std::string name = argv[at + 1];
    const std::string text = argv[at + 2];
    at += 2;
    OSL_Value value = guessed(text);
    for (const std::string &part : splitAt(option, ':')) {
        if (part.compare(0, 5, "type=") != 0)
            continue;
        value = OSL_Value();
        if (!valueOf(part.substr(5), text, value))
            return "\"" + text + "\" is no " + part.substr(5);
    }
    bindings.emplace_back(name, value);
    return "";
}

std::string Options::parse(int argc, char *argv[])
{
    for (int at = 1; at < argc; ++at) {
        const std::string word = argv[at];
        std::string problem;
        if (word == "-g")
            problem = takeGrid(argc, argv, at);
        else if (word == "--center")
            isByCentres = true;
        else if (word == "--info")
            wantsInformation = true;
        else if (word == "--time")
            wantsTime = true;
        else if (word == "--help" || word == "-h")
            wantsHelp = true;
        else if (word == "--version")
            wantsVersion = true;
        else if (word == "-param" || word.compare(0, 7, "-param:") == 0)
            problem = takeParameter(argc, argv, at);
        else if (word.compare(0, 2, "-I") == 0 && word.size() > 2)
            compile.includePaths.push_back(word.substr(2));
        else if (word.compare(0, 2, "-D") == 0 && word.size() > 2)
            compile.definitions.push_back(word.substr(2));
        else if ((word == "-I" || word == "-D") && at + 1 < argc)
            (word == "-I" ? compile.includePaths : compile.definitions).emplace_back(argv[++at]);
        else if (word.size() > 1 && word[0] == '-')
            problem = "unknown option \"" + word + "\"";
        else if (!file.empty())
            problem = "more than one file";
        else
            file = word;
        if (!problem.empty())
            return problem;
    }
    return wantsHelp || wantsVersion || !file.empty() ? "" : "no file";
}
