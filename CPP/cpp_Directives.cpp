// Stage "direct": the lines that start with '#'.
#include "CPP/CPP_Manager.h"

#include "CPP/cpp_Condition.h"
#include "CPP/cpp_Text.h"
#include "UT/UT_Environment.h"
#include "UT/UT_ExpandVariables.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace
{
constexpr size_t MAX_WORD = 31;

// Each open include file holds a descriptor, and a file that includes itself
// twice would never end.
constexpr unsigned MAX_INCLUDE_DEPTH = 200;

// The first word of `text`, cut at `most` characters.
std::string_view firstWord(const char *text, size_t most)
{
    size_t length = 0;
    while (length < most && text[length] != '\0' && !UTisSpace(text[length]))
        ++length;
    return {text, length};
}

const char *lookUpIncludeName(const char *name, void *)
{
    return std::strcmp(name, "__VVERSION__") == 0 ? CPP_Manager::VERSION : UTgetenv(name);
}
} // namespace

struct CPP_Manager::DirectiveRow {
    enum Where {
        EVERYWHERE,  // also in skipped text
        IN_TEXT,     // ignored in skipped text
        PASS_THROUGH // the same, and unknown where '#' starts comments
    };

    std::string_view word;
    Where where;
    void (CPP_Manager::*apply)(const Directive &);
};

const CPP_Manager::DirectiveRow CPP_Manager::DIRECTIVES[] = {
    {"ifdef", DirectiveRow::EVERYWHERE, &CPP_Manager::doIfdef},
    {"ifndef", DirectiveRow::EVERYWHERE, &CPP_Manager::doIfndef},
    {"else", DirectiveRow::EVERYWHERE, &CPP_Manager::doElse},
    {"endif", DirectiveRow::EVERYWHERE, &CPP_Manager::doEndif},
    {"if", DirectiveRow::EVERYWHERE, &CPP_Manager::doIf},
    {"elif", DirectiveRow::EVERYWHERE, &CPP_Manager::doElif},
    {"define", DirectiveRow::IN_TEXT, &CPP_Manager::doDefine},
    {"undef", DirectiveRow::IN_TEXT, &CPP_Manager::doUndef},
    {"include", DirectiveRow::IN_TEXT, &CPP_Manager::doInclude},
    {"sinclude", DirectiveRow::IN_TEXT, &CPP_Manager::doSilentInclude},
    {"line", DirectiveRow::IN_TEXT, &CPP_Manager::doLine},
    {"pragma", DirectiveRow::PASS_THROUGH, &CPP_Manager::doPassThrough},
    {"ident", DirectiveRow::PASS_THROUGH, &CPP_Manager::doPassThrough},
};

// `text` is what follows the '#'.
void CPP_Manager::processDirective(const char *text, UT_String &result)
{
    result = "\n";
    const bool hashComments = hasFlag(HASH_COMMENTS);
    if (hashComments && UTisSpace(*text))
        return;
    text = skipSpace(text);
    const std::string_view word = firstWord(text, MAX_WORD);
    const char *argument = skipSpace(text + word.size());
    myPlace = text;

    CPP_File &file = *currentFile();
    const bool isSkipping = file.isSkipping();
    for (const DirectiveRow &row : DIRECTIVES) {
        if (word != row.word)
            continue;
        const bool applies = row.where == DirectiveRow::EVERYWHERE ||
                             (!isSkipping && (row.where == DirectiveRow::IN_TEXT || !hashComments));
        if (applies) {
            // The file stays until the directive is done, whatever is pushed or popped.
            file.addReference();
            (this->*row.apply)({file, text, argument, result});
            file.release();
            myPlace = nullptr;
            return;
        }
    }
    const bool isKept = hasFlag(KEEP_MACROS);
    if (!hashComments && !isKept)
        warnWord(std::string(word), text);
    if (!isSkipping && isKept)
        result.sprintf("#%s", text);
    else if (!isSkipping && !hashComments)
        diagnose(result, ERROR, "Undefined directive \"%s\"\n", std::string(word).c_str());
}

bool CPP_Manager::namesMacro(const char *text) const
{
    const std::string_view name = firstWord(text, CPP_MOST_TESTED);
    return myMacros.holds(name);
}

void CPP_Manager::doIfdef(const Directive &directive)
{
    directive.file.pushCondition(namesMacro(directive.argument) ? CPP_File::TAKING
                                                                : CPP_File::NOT_YET);
}

void CPP_Manager::doIfndef(const Directive &directive)
{
    directive.file.pushCondition(namesMacro(directive.argument) ? CPP_File::NOT_YET
                                                                : CPP_File::TAKING);
}

int CPP_Manager::conditionValue(const char *text)
{
    cpp_ConditionFault fault;
    const int value = evaluateCondition(myMacros, text, &fault);
    warnCondition(fault);
    return value;
}

void CPP_Manager::doIf(const Directive &directive)
{
    const int value = directive.file.isSkipping() ? static_cast<int>(CPP_File::DONE)
                                                  : conditionValue(directive.argument);
    if (value < 0)
        diagnose(directive.result, ERROR, "#if syntax error");
    else
        directive.file.pushCondition(value); // 0, 1 and 2 are the states' numbers
}

void CPP_Manager::doElif(const Directive &directive)
{
    const int value = conditionValue(directive.argument);
    if (value < 0)
        diagnose(directive.result, ERROR, "#elif syntax error");
    else
        directive.file.elifCondition(value);
}

void CPP_Manager::doElse(const Directive &directive)
{
    directive.file.elseCondition();
}

void CPP_Manager::doEndif(const Directive &directive)
{
    directive.file.popCondition();
}

void CPP_Manager::doDefine(const Directive &directive)
{
    myPlace = directive.argument;
    defineMacro(directive.argument, directive.result, false);
    if (hasFlag(KEEP_MACROS))
        doPassThrough(directive);
    else
        warnDefinition(directive.argument);
}

void CPP_Manager::doUndef(const Directive &directive)
{
    undefineMacro(directive.argument, directive.result);
    if (hasFlag(KEEP_MACROS))
        doPassThrough(directive);
}

// False, and `name` for the message, when the file cannot be opened.
bool CPP_Manager::include(const Directive &directive, UT_String &name)
{
    if (hasFlag(EXPAND_INCLUDE_NAMES)) {
        UT_ScratchBuffer expanded;
        UTexpandVariables(expanded, directive.argument, lookUpIncludeName, nullptr, true, true);
        expanded.copyToString(name);
    } else {
        name.assignCopy(directive.argument);
    }
    bool isAngled;
    const UT_String wanted = bareName(name, isAngled);
    const bool isTooDeep = myFiles.entries() >= MAX_INCLUDE_DEPTH;
    if (!isTooDeep && findAndPush(wanted, isAngled))
        return true;
    if (!isTooDeep && errno != EMFILE) // the user may allow fewer descriptors
        return false;
    diagnose(directive.result, ERROR, "Include nesting limit reached");
    stop();
    return true;
}

void CPP_Manager::doInclude(const Directive &directive)
{
    UT_String name;
    if (include(directive, name))
        return;
    name.changeSuffix("\n", "");
    myPlace = directive.argument;
    diagnose(directive.result, ERROR, "Unable to include %s", name.text());
}

void CPP_Manager::doSilentInclude(const Directive &directive)
{
    UT_String name;
    include(directive, name);
}

void CPP_Manager::doLine(const Directive &directive)
{
    CPP_File &file = directive.file;
    // An open quote goes on to the line's end, but not over it.
    const size_t length = std::strcspn(directive.argument, "\n");
    UT_String argument(directive.argument, true, static_cast<int>(length));
    char *words[3];
    const int count = argument.splitWordsInto(words, 3);
    if (count > 0)
        file.setLineNumber(UT_String(words[0]).toInt());
    if (count > 1)
        file.setName(words[1]);
    if (hasFlag(LINE_MARKERS)) {
        UT_ScratchBuffer marker;
        makeMarker(marker, file.getLineNumber(), file.getName());
        marker.copyToString(directive.result);
    }
}

void CPP_Manager::doPassThrough(const Directive &directive)
{
    char real[PATH_MAX];
    const bool isOnce = honoursOnce && firstWord(directive.line, MAX_WORD) == "pragma" &&
                        firstWord(directive.argument, MAX_WORD) == "once";
    if (!isOnce)
        directive.result.sprintf("#%s", directive.line);
    else if (realpath(directive.file.getName(), real) != nullptr)
        myOnceFiles.addSymbol(real, nullptr);
}
