#include "vcpp/vcpp_Options.h"

#include "CPP/CPP_Manager.h"
#include "UT/UT_MakeRule.h"
#include "UT/UT_OptionTable.h"
#include "vcpp/vcpp_Dependencies.h"

#include <cstring>

namespace
{
// What the scan has to know and the program does not.
struct Scan {
    vcpp_Options &options;
    std::string error;
    bool definesToOne = false;
};

using Handler = void (*)(Scan &, const char *value);

template <vcpp_Options::Action Action>
void act(Scan &scan, const char *)
{
    if (scan.options.action == vcpp_Options::PREPROCESS)
        scan.options.action = Action;
}

template <vcpp_Options::Print Print>
void print(Scan &scan, const char *)
{
    scan.options.print = Print;
}

template <bool IsAll, bool OmitsSystem>
void makeRule(Scan &scan, const char *)
{
    scan.options.hasRule = true;
    scan.options.omitsSystem = scan.options.omitsSystem || OmitsSystem;
    if (IsAll)
        scan.options.print = vcpp_Options::RULE;
}

template <bool vcpp_Options::*Member>
void switchOn(Scan &scan, const char *)
{
    scan.options.*Member = true;
}

template <std::string vcpp_Options::*Member>
void keep(Scan &scan, const char *value)
{
    scan.options.*Member = value;
}

template <std::vector<std::string> vcpp_Options::*Member>
void append(Scan &scan, const char *value)
{
    (scan.options.*Member).emplace_back(value);
}

void appendQuoted(Scan &scan, const char *value)
{
    scan.options.targets.push_back(UTquoteForMake(value));
}

void defineToOne(Scan &scan, const char *)
{
    scan.definesToOne = true;
}

void silence(Scan &scan, const char *)
{
    scan.options.messages.silence();
}

void selectWarning(Scan &scan, const char *value)
{
    if (!scan.options.messages.select(value) && scan.error.empty())
        scan.error = "there is no warning '" + std::string(value) + "'";
}

void ignore(Scan &, const char *) {}

// A null name begins a paragraph of the help. Options without a handler, letters all of
// them, go on to the manager.
struct Option {
    const char *name;
    const char *value; // what stands behind it; null: nothing
    Handler handler;
    const char *what;
};
const Option OPTIONS[] = {
    {nullptr, nullptr, nullptr, "Text"},
    {"-D", "name[=value]", nullptr, "Define a macro; without a value it is empty"},
    {"--define-to-1", nullptr, defineToOne, "Let -D name mean -D name=1, as C compilers do"},
    {"-U", "name", nullptr, "Remove a macro"},
    {"-I", "directory", nullptr, "Search include files there too"},
    {"-include", "file", append<&vcpp_Options::includes>, "Read this file in front of FILE"},
    {"--once", nullptr, switchOn<&vcpp_Options::honoursOnce>, "Heed #pragma once"},
    {"-r", "number", nullptr, "Nest macros at most this deep (128)"},
    {"-C", nullptr, nullptr, "Keep comments: for text that its reader strips"},
    {"-c", nullptr, nullptr, "Take // and /* for text: for lists of files, URLs"},
    {"-h", nullptr, nullptr, "Take # behind a line's start for a comment: for RIB, shell"},
    {"-H", nullptr, nullptr, "Accept include lines without # and bare names: for old scripts"},
    {"-x", nullptr, nullptr, "Expand variables in include names (always done)"},
    {"-n", nullptr, nullptr, "No effect"},
    {"-E", nullptr, ignore, "No effect, as this is all that is done"},
    {nullptr, nullptr, nullptr, "Output"},
    {"-o", "file", keep<&vcpp_Options::output>, "Write there; after an error it stays as it was"},
    {"-P", nullptr, nullptr, "Write no line markers: for readers that do not know them"},
    {"-dM", nullptr, print<vcpp_Options::MACROS>,
     "Write the macros' definitions in place of the text"},
    {nullptr, nullptr, nullptr, "Messages"},
    {"-w", nullptr, silence, "No warnings"},
    {"-W", "[no-]name", selectWarning, "Give a warning, or not; the names are below"},
    {"-W", "[no-]error", selectWarning, "Let warnings count as errors, or not"},
    {nullptr, nullptr, nullptr, "A rule for make(1)"},
    {"-M", nullptr, makeRule<true, false>, "Write the files that were read in place of the text"},
    {"-MM", nullptr, makeRule<true, true>, "The same without those from the standard search path"},
    {"-MD", nullptr, makeRule<false, false>, "Write them to a file beside the text"},
    {"-MMD", nullptr, makeRule<false, true>,
     "The same without those from the standard search path"},
    {"-MF", "file", keep<&vcpp_Options::ruleFile>, "Write the rule there"},
    {"-MT", "target", append<&vcpp_Options::targets>, "Name the rule's target, as it is written"},
    {"-MQ", "target", appendQuoted, "The same, with what make would not read escaped"},
    {"-MP", nullptr, switchOn<&vcpp_Options::hasPhony>,
     "Let make go on when an include file is gone"},
    {nullptr, nullptr, nullptr, "Information"},
    {"--help", nullptr, act<vcpp_Options::HELP>, "Print this text"},
    {"--version", nullptr, act<vcpp_Options::VERSION>, "Print the version"},
};

// The row of a word, and the value if it is attached: "-oFILE". No option that has a value
// begins the name of another.
const Option *findOption(const char *word, const char *&attached)
{
    attached = nullptr;
    for (const Option &option : OPTIONS) {
        if (option.name == nullptr || option.handler == nullptr)
            continue;
        const size_t length = std::strlen(option.name);
        const bool begins = std::strncmp(word, option.name, length) == 0;
        if (!begins || (word[length] != '\0' && option.value == nullptr))
            continue;
        attached = word[length] != '\0' ? word + length : nullptr;
        return &option;
    }
    return nullptr;
}

// The words of a command line, in turn.
class Parser
{
public:
    Parser(int argc, char *argv[], Scan &scan) : myArgc(argc), myArgv(argv), myScan(scan) {}

    bool parse(std::string &error)
    {
        bool inOptions = true;
        for (; myNext < myArgc; ++myNext) {
            const char *word = myArgv[myNext];
            if (inOptions && std::strcmp(word, "--") == 0)
                inOptions = false;
            else if (!inOptions || word[0] != '-' || word[1] == '\0')
                myScan.options.files.emplace_back(word);
            else
                takeOption(word);
        }
        error = myError.empty() ? myScan.error : myError;
        return error.empty();
    }

private:
    void fail(const std::string &message)
    {
        if (myError.empty())
            myError = message;
    }

    void takeOption(const char *word)
    {
        const char *value = nullptr;
        const Option *option = findOption(word, value);
        if (option == nullptr)
            takeLetters(word);
        else if (option->value == nullptr || takeValue(option->name, value))
            apply(*option, value);
    }

    // Whether there is one, attached or as the next word.
    bool takeValue(const std::string &name, const char *&value)
    {
        if (value == nullptr && ++myNext < myArgc)
            value = myArgv[myNext];
        if (value == nullptr)
            fail("nothing behind " + name);
        return value != nullptr;
    }

    // "-" alone is standard input or output.
    void apply(const Option &option, const char *value)
    {
        if (value != nullptr && value[0] == '-' && value[1] != '\0')
            myScan.options.warnings.push_back(CPP_optionNameMessage(option.name, value));
        option.handler(myScan, value);
    }

    // A cluster of letters for the manager.
    void takeLetters(const char *word)
    {
        for (const char *letter = word + 1; *letter != '\0'; ++letter) {
            const std::string name = {'-', *letter};
            const char *known = std::strchr(CPP_Manager::OPTION_LETTERS, *letter);
            if (known == nullptr || *letter == ':') {
                fail("unknown option '" + std::string(word) + "'");
                return;
            }
            myScan.options.forManager.push_back(name);
            if (known[1] != ':')
                continue;
            const char *value = letter[1] != '\0' ? letter + 1 : nullptr;
            if (takeValue(name, value))
                myScan.options.forManager.emplace_back(value);
            return;
        }
    }

    int myArgc;
    char **myArgv;
    Scan &myScan;
    int myNext = 1;
    std::string myError;
};

void defineAllToOne(std::vector<std::string> &words)
{
    for (size_t i = 0; i + 1 < words.size(); ++i) {
        if (words[i][0] != '-' || std::strchr(CPP_Manager::OPTION_LETTERS, words[i][1])[1] != ':')
            continue;
        std::string &value = words[++i];
        if (words[i - 1] == "-D" && value.find_first_of("=(") == value.npos)
            value += "=1";
    }
}

bool hasRuleOptions(const vcpp_Options &options)
{
    return options.hasPhony || !options.ruleFile.empty() || !options.targets.empty();
}

// What the options mean together; empty when all is well.
std::string findConflict(const vcpp_Options &options)
{
    if (options.files.size() > 1)
        return "more than one file";
    if (hasRuleOptions(options) && !options.hasRule)
        return "-MF, -MT, -MQ and -MP need -M, -MM, -MD or -MMD";
    const bool isStdin = options.files.empty() || options.files[0] == "-";
    if (options.hasRule && options.print != vcpp_Options::RULE && isStdin &&
        options.output.empty() && options.ruleFile.empty())
        return "-MD and -MMD need -MF, -o or a file's name";
    return "";
}
} // namespace

bool vcpp_parseOptions(int argc, char *argv[], vcpp_Options &options, std::string &error)
{
    Scan scan = {options, "", false};
    Parser parser(argc, argv, scan);
    if (parser.parse(error))
        error = findConflict(options);
    if (scan.definesToOne)
        defineAllToOne(options.forManager);
    return error.empty() || options.action != vcpp_Options::PREPROCESS;
}

std::string vcpp_usage()
{
    std::string text = "Usage: vcpp [options] [FILE]\n"
                       "Preprocesses FILE (\"-\" or none: standard input) to standard output.\n";
    for (const Option &option : OPTIONS) {
        if (option.name == nullptr) {
            text += std::string(option.what) + ":\n";
            continue;
        }
        std::string left = std::string("  ") + option.name;
        if (option.value != nullptr)
            left += std::string(" ") + option.value;
        text += UThelpLine(left, option.what, vcpp_Messages::HELP_COLUMN);
    }
    return text + "Warnings, all on:\n" + vcpp_Messages::list() +
           "Status: 0; 1 after an error in the text or in writing; 2 for bad usage.\n";
}
