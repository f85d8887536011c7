// The options of a manager, and the macros that every manager has.
#include "CPP/CPP_Manager.h"

#include "CPP/cpp_Reports.h"
#include "UT/UT_Args.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace
{
// What a letter does to the flags; the letters with a value are not here.
const struct {
    char letter;
    CPP_Manager::Flag flag;
    bool on;
} FLAG_OPTIONS[] = {
    {'P', CPP_Manager::LINE_MARKERS, false},       // no line markers
    {'C', CPP_Manager::STRIP_COMMENTS, false},     // comments stay, '#' starts none
    {'h', CPP_Manager::HASH_COMMENTS, true},       // '#' starts a comment
    {'H', CPP_Manager::OLD_STYLE_INCLUDE, true},   // "include" lines without '#'
    {'c', CPP_Manager::KEEP_SLASH_COMMENTS, true}, // slashes start no comment
    {'x', CPP_Manager::EXPAND_INCLUDE_NAMES, true},
};

const struct {
    const char *name;
    cpp_Macro::Builtin builtin;
} BUILTINS[] = {
    {"__FILE__", cpp_Macro::FILE_NAME},
    {"__LINE__", cpp_Macro::LINE_NUMBER},
    {"__DATE__", cpp_Macro::DATE},
    {"__TIME__", cpp_Macro::TIME},
};

// A number may begin with a sign.
bool takesName(int letter)
{
    return letter == 'U' || letter == 'D' || letter == 'I';
}

// A scan that stops inside a word would be gone on with by the next one.
void finishScan(int argc, char *argv[])
{
    const int callersMessages = opterr;
    opterr = 0;
    while (getopt(argc, argv, CPP_Manager::OPTION_LETTERS) != -1) {
    }
    opterr = callersMessages;
}
} // namespace

const char CPP_Manager::VERSION[] = "9.0.653";
const char CPP_Manager::OPTION_LETTERS[] = "PCU:D:I:r:nhHcx";

void CPP_Manager::defineBuiltins()
{
    for (const auto &row : BUILTINS)
        myMacros.defineBuiltin(row.name, row.builtin);

    int major = 0;
    int minor = 0;
    if (std::sscanf(VERSION, "%d.%d", &major, &minor) != 2)
        return;
    UT_String ignored;
    UT_String definition;
    defineMacro("__zel", ignored, false);
    definition.sprintf("__zel_major=%d", major);
    defineMacro(definition, ignored, true);
    definition.sprintf("__zel_minor=%d", minor);
    defineMacro(definition, ignored, true);
    defineMacro("LINUX", ignored, true);
}

bool CPP_Manager::applyOption(char letter, const char *value)
{
    for (const auto &row : FLAG_OPTIONS) {
        if (row.letter == letter)
            setFlag(row.flag, row.on);
    }
    UT_String ignored;
    switch (letter) {
    case 'U':
        return undefineMacro(value, ignored);
    case 'D':
        return defineMacro(value, ignored, true);
    case 'I':
        addIncludePath(value);
        return true;
    case 'r':
        myRecursionLimit = UT_String(value).toInt();
        return true;
    default:
        return letter != '?';
    }
}

int CPP_Manager::parseOptions(int argc, char *argv[])
{
    const int callersIndex = optind;
    const int linesOwed = myBlankLinesOwed;
    optind = 1;
    int letter;
    bool isGood = true;
    // Nothing is told about the definitions themselves.
    CPP_Listener listener = myReports->exchangeListener(nullptr);
    while (isGood && (letter = getopt(argc, argv, OPTION_LETTERS)) != -1) {
        if (listener && takesName(letter) && *optarg == '-' && optarg[1] != '\0')
            listener(CPP_optionNameMessage({'-', static_cast<char>(letter)}, optarg));
        isGood = applyOption(static_cast<char>(letter), optarg);
    }
    myReports->exchangeListener(std::move(listener));
    const int firstOperand = isGood ? optind : 0;
    finishScan(argc, argv);
    optind = callersIndex;
    myBlankLinesOwed = linesOwed;
    if (myRecursionLimit < 0)
        myRecursionLimit = 1;
    return firstOperand;
}
