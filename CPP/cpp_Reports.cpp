#include "CPP/cpp_Reports.h"

#include "CPP/CPP_File.h"
#include "CPP/CPP_Stream.h"
#include "CPP/cpp_Text.h"
#include "CPP/lines/cpp_DirectiveWords.h"
#include "CPP/macros/cpp_Condition.h"
#include "CPP/macros/cpp_Expander.h"

#include <cstring>
#include <iterator>
#include <utility>

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

// The directive that a word begins with, where others read it without the blank; else empty.
std::string meantBy(std::string_view word)
{
    std::string_view meant;
    for (const cpp_DirectiveWord &known : CPP_DIRECTIVE_WORDS) {
        const size_t length = known.text.size();
        const bool touches = known.mayTouch && word.size() > length &&
                             word.substr(0, length) == known.text &&
                             std::strchr("(<\"!", word[length]) != nullptr;
        if (touches)
            meant = known.text;
    }
    return std::string(meant);
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

CPP_Listener cpp_Reports::exchangeListener(CPP_Listener listener)
{
    return std::exchange(myListener, std::move(listener));
}

// At a place in the line, or else in the file.
CPP_Message cpp_Reports::messageAt(const CPP_File *file, const char *place,
                                   const std::string &text) const
{
    CPP_Message message;
    message.text = text;
    message.file = file != nullptr ? file->getName() : CPP_NO_FILE;
    message.line = file != nullptr ? file->getLineNumber() : 0;
    const char *line = myLine.buffer();
    if (place != nullptr && place >= line && place <= line + myLine.length()) {
        message.column = static_cast<int>(place - line) + 1;
        message.source = withoutNewline(line);
    }
    return message;
}

void cpp_Reports::warn(CPP_Warning warning, CPP_Message message) const
{
    message.isError = false;
    message.name = CPP_WARNINGS[warning].name;
    myListener(message);
}

void cpp_Reports::diagnostic(const CPP_File *file, cpp_Severity severity, const char *message)
{
    if (!myListener)
        return;
    std::string text = withoutNewline(message);
    text.erase(text.find_last_not_of(" \t") + 1); // what stood behind a name
    CPP_Message report = messageAt(file, myPlace, text + myDetail);
    report.hint = myHint;
    myDetail = myHint = "";
    if (severity == CPP_WARNING)
        warn(CPP_REDEFINED, std::move(report));
    else
        myListener(report);
}

void cpp_Reports::failedExpansion(const CPP_File &file, const cpp_Expander &expander) const
{
    if (!myListener)
        return;
    const cpp_Expander::Fault fault = expander.fault();
    CPP_Message message = messageAt(&file, nullptr, expander.message() + fault.detail);
    message.line = fault.line;
    message.column = fault.column;
    message.source = withoutNewline(fault.source.c_str());
    message.hint = fault.isQuote ? QUOTE_HINT : "";
    myListener(message);
}

void cpp_Reports::openComment(const CPP_File &file)
{
    // It is cut behind the sign, whose second character is the last one there.
    int end = myLine.length();
    while (end > 0 && myLine.buffer()[end - 1] == '\n')
        --end;
    myComment = {&file, file.getLineNumber(), end > 1 ? end - 1 : 1};
}

void cpp_Reports::end(const CPP_File &file, bool isInComment, const std::string &text)
{
    if (!myListener)
        return;
    // A comment that another file has opened may still end in that one.
    if (isInComment && myComment.file == &file) {
        CPP_Message message =
            messageAt(&file, nullptr, "comment never ends; the text behind it is lost");
        message.line = myComment.line;
        message.column = myComment.column;
        message.hint = COMMENT_HINT;
        warn(CPP_UNCLOSED_COMMENT, std::move(message));
        myComment = {};
    }
    if (text.empty())
        return;
    CPP_Message message = messageAt(&file, nullptr, text);
    // What could not be read may have closed it.
    if (file.hasOpenCondition() && file.getStream()->readError() == nullptr) {
        message.text += " for the condition that begins here";
        message.line = file.openConditionLine();
    }
    myListener(message);
}

void cpp_Reports::definition(const CPP_File &file, const char *definition) const
{
    if (!myListener)
        return;
    const char *name = skipSpace(definition);
    const char *parameters = name;
    while (UTisNameCharacter(*parameters))
        ++parameters;
    // In a body without parameters both are plain text, there and elsewhere.
    if (*parameters != '(')
        return;
    const char *variadic = std::strstr(parameters, "...");
    if (variadic == nullptr)
        variadic = std::strstr(parameters, "__VA_ARGS__");
    if (variadic != nullptr)
        warn(CPP_VARIADIC, messageAt(&file, variadic,
                                     "... and __VA_ARGS__ mean nothing here: a macro takes as many "
                                     "arguments as it has parameters"));
    const char *paste = std::strstr(parameters, "##");
    if (paste != nullptr && (UTisSpace(paste[-1]) || UTisSpace(paste[2])))
        warn(CPP_SPACED_PASTE,
             messageAt(&file, paste, "## joins words only without blanks around it"));
}

void cpp_Reports::unknownWord(const CPP_File &file, std::string_view word, const char *place)
{
    const std::string meant = myListener ? meantBy(word) : "";
    if (meant.empty())
        return;
    // In text the word has its own diagnostic; skipped, nothing else would tell.
    if (file.isSkipping())
        warn(CPP_MISSING_BLANK,
             messageAt(&file, place,
                       "#" + meant + " needs a blank behind it; this is no directive"));
    else
        myHint = "a blank is missing behind #" + meant;
}

void cpp_Reports::condition(const CPP_File &file, const cpp_ConditionFault &fault)
{
    if (!myListener)
        return;
    if (fault.error != nullptr) {
        myPlace = fault.place;
        myDetail = std::string(": ") + fault.error;
    } else if (fault.oddMacro != nullptr) {
        warn(CPP_MACRO_VALUE, messageAt(&file, fault.oddMacro,
                                        "this macro is no decimal number; its first digits "
                                        "count, or 0"));
    }
}
