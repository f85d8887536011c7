// What the manager tells its listener: the messages beside the output's diagnostics, and
// the warnings that the output has no words for.
#include "CPP/CPP_Manager.h"

#include "CPP/CPP_Stream.h"
#include "CPP/cpp_Condition.h"
#include "CPP/cpp_Expander.h"
#include "CPP/cpp_Text.h"

#include <cstring>
#include <iterator>

const CPP_WarningRow CPP_WARNINGS[] = {
    {"redefined", "a macro gets another definition"},
    {"unclosed-comment", "a /* takes the rest of a file"},
    {"spaced-paste", "## has blanks around it, and is text then"},
    {"variadic", "... and __VA_ARGS__ are names like others"},
    {"missing-blank", "#if(X) and #include<X> are no directives"},
    {"macro-value", "a macro in #if that is no decimal number"},
    {"option-name", "an option takes another one for its name"},
};
static_assert(std::size(CPP_WARNINGS) == CPP_NUM_WARNINGS, "each warning has a name");

namespace
{
const char QUOTE_HINT[] = "an apostrophe opens a quote; where # starts comments, as in RIB, use -h";
const char COMMENT_HINT[] = "in a text that has /* for other things, such as a pattern of file "
                            "names, -c keeps it";

std::string withoutNewline(const char *text)
{
    return std::string(text, std::strcspn(text, "\n"));
}

// Directives that others read without the blank.
bool lacksBlank(const std::string &word, std::string &meant)
{
    for (const char *known : {"ifdef", "ifndef", "if", "elif", "include"}) {
        meant = known;
        const bool begins = word.compare(0, meant.size(), meant) == 0;
        if (begins && word.size() > meant.size() && std::strchr("(<\"!", word[meant.size()]))
            return true;
    }
    return false;
}
} // namespace

CPP_Message CPP_optionNameMessage(const std::string &option, const std::string &name)
{
    CPP_Message message;
    message.isError = false;
    message.name = CPP_WARNINGS[CPP_OPTION_NAME].name;
    message.file = "command line";
    message.text = option + " takes '" + name + "' for a name";
    return message;
}

void CPP_Manager::setListener(CPP_Listener listener)
{
    myListener = std::move(listener);
}

// At a place in myLine, which may be null, or else in the current file.
CPP_Message CPP_Manager::messageAt(const char *place, const std::string &text) const
{
    CPP_Message message;
    message.text = text;
    message.file = getCurrentFileName();
    message.line = currentFile() != nullptr ? currentFile()->getLineNumber() : 0;
    const char *line = myLine.buffer();
    if (place != nullptr && place >= line && place <= line + myLine.length()) {
        message.column = static_cast<int>(place - line) + 1;
        message.source = withoutNewline(line);
    }
    return message;
}

void CPP_Manager::warn(CPP_Warning warning, CPP_Message message) const
{
    message.isError = false;
    message.name = CPP_WARNINGS[warning].name;
    myListener(message);
}

void CPP_Manager::reportDirective(Severity severity, const char *message)
{
    if (!myListener)
        return;
    std::string text = withoutNewline(message);
    text.erase(text.find_last_not_of(" \t") + 1); // what stood behind a name
    CPP_Message report = messageAt(myPlace, text + myDetail);
    report.hint = myHint;
    myDetail = myHint = "";
    if (severity == WARNING)
        warn(CPP_REDEFINED, std::move(report));
    else
        myListener(report);
}

void CPP_Manager::reportExpansion() const
{
    if (!myListener)
        return;
    const cpp_Expander::Fault fault = myExpander->fault();
    CPP_Message message = messageAt(nullptr, myExpander->message() + fault.detail);
    message.line = fault.line;
    message.column = fault.column;
    message.source = withoutNewline(fault.source.c_str());
    message.hint = fault.isQuote ? QUOTE_HINT : "";
    myListener(message);
}

// At the end of a file: `text` is the output's diagnostic, empty when all is well.
void CPP_Manager::reportEnd(const CPP_File &file, const std::string &text)
{
    if (!myListener)
        return;
    if (hasFlag(IN_BLOCK_COMMENT) && myComment.file == &file) {
        CPP_Message message = messageAt(nullptr, "comment never ends; the text behind it is lost");
        message.line = myComment.line;
        message.column = myComment.column;
        message.hint = COMMENT_HINT;
        warn(CPP_UNCLOSED_COMMENT, std::move(message));
        myComment = {};
    }
    if (text.empty())
        return;
    CPP_Message message = messageAt(nullptr, text);
    if (file.hasOpenCondition() && file.getStream()->readError() == nullptr) {
        message.text += " for the condition that begins here";
        message.line = file.openConditionLine();
    }
    myListener(message);
}

// Where a block comment began that goes on behind myLine, which is cut behind its sign.
void CPP_Manager::noteComment()
{
    int end = myLine.length();
    while (end > 0 && myLine.buffer()[end - 1] == '\n')
        --end;
    myComment = {currentFile(), currentFile()->getLineNumber(), end > 1 ? end - 1 : 1};
}

void CPP_Manager::warnDefinition(const char *definition)
{
    if (!myListener)
        return;
    const char *name = skipSpace(definition);
    const char *parameters = name;
    while (UTisNameCharacter(*parameters))
        ++parameters;
    if (*parameters != '(')
        return;
    const char *variadic = std::strstr(parameters, "...");
    if (variadic == nullptr)
        variadic = std::strstr(parameters, "__VA_ARGS__");
    if (variadic != nullptr)
        warn(CPP_VARIADIC,
             messageAt(variadic, "a macro takes as many arguments as it has parameters"));
    const char *paste = std::strstr(parameters, "##");
    if (paste != nullptr && (UTisSpace(paste[-1]) || UTisSpace(paste[2])))
        warn(CPP_SPACED_PASTE, messageAt(paste, "## joins words only without blanks around it"));
}

void CPP_Manager::warnWord(const std::string &word, const char *place)
{
    std::string meant;
    if (!myListener || !lacksBlank(word, meant))
        return;
    if (currentFile()->isSkipping())
        warn(CPP_MISSING_BLANK,
             messageAt(place, "#" + meant + " needs a blank behind it; this is no directive"));
    else
        myHint = "a blank is missing behind #" + meant;
}

void CPP_Manager::warnCondition(const cpp_ConditionFault &fault)
{
    if (!myListener)
        return;
    if (fault.error != nullptr) {
        myPlace = fault.place;
        myDetail = std::string(": ") + fault.error;
    } else if (fault.oddMacro != nullptr) {
        warn(CPP_MACRO_VALUE,
             messageAt(fault.oddMacro, "this macro is no decimal number; its first digits count, "
                                       "or 0"));
    }
}
