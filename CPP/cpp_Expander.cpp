#include "CPP/cpp_Expander.h"

#include "CPP/CPP_File.h"
#include "CPP/CPP_Manager.h"
#include "CPP/cpp_Macro.h"
#include "CPP/cpp_Text.h"
#include "UT/UT_FormatTime.h"
#include "UT/UT_ScratchBuffer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>

namespace
{
const char TOO_DEEP[] = "Macro recursion limit reached";

constexpr size_t MAX_ARGUMENT = 8192; // characters, this one excluded

// A few short macros can stand for more text than any machine holds or scans,
// without ever nesting deep. No line needs as much as this: bytes to put in place
// of macros, where a macro in a replacement counts as some more.
constexpr size_t BUDGET = size_t{1} << 27;
constexpr size_t BUDGET_PER_CHARACTER = 64; // of the line,
constexpr int MAX_COUNTED = 1 << 23;        // up to this one
constexpr size_t NESTED_MACRO_COST = 64;

enum Class : unsigned char { PLAIN, SPACE, DIGIT, WORD, QUOTE, BACKSLASH };

constexpr std::array<Class, 256> makeClasses()
{
    std::array<Class, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        const char here = static_cast<char>(c);
        classes[c] = isNameStart(here)       ? WORD
                     : isSpace(here)         ? SPACE
                     : isDigit(here)         ? DIGIT
                     : c == '"' || c == '\'' ? QUOTE
                     : c == '\\'             ? BACKSLASH
                                             : PLAIN;
    }
    return classes;
}

constexpr std::array<Class, 256> CLASSES = makeClasses();

Class classOf(char c)
{
    return CLASSES[static_cast<unsigned char>(c)];
}

// Behind the quote that closes the run starting at `quote`; null when none does.
// Inside, a backslash keeps the next character from closing.
const char *skipQuoted(const char *quote, const char *end)
{
    for (const char *p = quote + 1; p < end; ++p) {
        if (*p == *quote)
            return p + 1;
        if (*p == '\\')
            ++p;
    }
    return nullptr;
}

void append(UT_ScratchBuffer &out, const char *from, const char *to)
{
    out.append(from, static_cast<int>(to - from));
}
} // namespace

bool cpp_Expander::fail(std::string message)
{
    myMessage = std::move(message);
    return false;
}

bool cpp_Expander::expand(CPP_File &file, const char *text, int length, int limit,
                          UT_ScratchBuffer &out)
{
    myFile = &file;
    myOut = &out;
    myLimit = static_cast<size_t>(limit > 0 ? limit : DEFAULT_LIMIT);
    myDepth = 0;
    myBudget = BUDGET + BUDGET_PER_CHARACTER * static_cast<size_t>(std::min(length, MAX_COUNTED));
    if (myLevels.empty())
        myLevels.emplace_back();
    myLevels[0] = {text, text, text + length, std::string()};
    for (;;) {
        if (!expandLevel())
            return false;
        if (level().next == level().end) {
            if (myDepth == 0)
                return true;
            --myDepth;
        }
    }
}

bool cpp_Expander::spend(size_t bytes)
{
    const size_t cost = bytes + (myDepth > 0 ? NESTED_MACRO_COST : 0);
    if (cost > myBudget)
        return fail(TOO_DEEP);
    myBudget -= cost;
    return true;
}

// Copies the current level up to its end, or to a macro that opens the next one.
bool cpp_Expander::expandLevel()
{
    const size_t depth = myDepth;
    while (depth == myDepth && level().next < level().end) {
        Level &here = level();
        const char *run = here.next;
        const char *p = run;
        while (p < here.end && classOf(*p) < WORD)
            ++p;
        append(*myOut, run, p);
        here.next = p;
        if (p == here.end)
            return true;
        switch (classOf(*p)) {
        case WORD:
            if (!expandWord())
                return false;
            break;
        case QUOTE:
            if (!copyQuoted())
                return false;
            break;
        default:
            copyBackslash();
        }
    }
    return true;
}

bool cpp_Expander::copyQuoted()
{
    Level &here = level();
    const char *quote = here.next;
    if (quote > here.start && quote[-1] == '\\') {
        append(*myOut, quote, ++here.next);
        return true;
    }
    const char *end = skipQuoted(quote, here.end);
    if (end == nullptr)
        return fail("Mismatched quotation marks");
    append(*myOut, quote, end);
    here.next = end;
    return true;
}

// A backslash goes when the next character is copied as it is. It stays in front
// of a word, and at the end.
void cpp_Expander::copyBackslash()
{
    Level &here = level();
    const char *next = here.next + 1;
    const bool stays = next == here.end || classOf(*next) == WORD;
    append(*myOut, stays ? here.next : next, stays ? next : next + 1);
    here.next = stays ? next : next + 1;
}

bool cpp_Expander::expandWord()
{
    Level &here = level();
    const char *start = here.next;
    const char *end = start + 1;
    while (end < here.end && isNameCharacter(*end))
        ++end;
    here.next = end;
    const std::string_view name(start, static_cast<size_t>(end - start));
    const cpp_Macro *macro = myManager.findMacro(start, name.size());
    if (macro != nullptr)
        return expandMacro(*macro, name);
    append(*myOut, start, end);
    return true;
}

bool cpp_Expander::expandMacro(const cpp_Macro &macro, std::string_view name)
{
    if (macro.myBuiltin != cpp_Macro::NONE)
        return copyBuiltin(macro);
    const bool takesArguments = macro.myNumArgs >= 0;
    // The name's text may go when the argument list takes further lines.
    const std::string ownName(takesArguments ? name : std::string_view());
    if (takesArguments && !takeArguments(macro.myNumArgs))
        return fail("Invalid arguments for macro \"" + ownName + "\"");
    if (myDepth + 1 >= myLimit)
        return fail(TOO_DEEP);
    if (macro.isPlain && macro.myNumArgs <= 0) {
        if (!spend(macro.myBody.size()))
            return false;
        myOut->append(macro.myBody.data(), static_cast<int>(macro.myBody.size()));
        return true;
    }
    if (myDepth + 1 == myLevels.size())
        myLevels.emplace_back();
    Level &next = myLevels[myDepth + 1];
    next.owned.clear();
    if (macro.myNumArgs > 0)
        fillIn(macro, next.owned);
    const std::string &text = macro.myNumArgs > 0 ? next.owned : macro.myBody;
    if (!spend(text.size()))
        return false;
    ++myDepth;
    next.start = next.next = text.data();
    next.end = text.data() + text.size();
    return true;
}

bool cpp_Expander::copyBuiltin(const cpp_Macro &macro)
{
    char text[512];
    switch (macro.myBuiltin) {
    case cpp_Macro::FILE_NAME:
        if (!spend(std::strlen(myFile->getName())))
            return false;
        myOut->append('"');
        myOut->append(myFile->getName());
        myOut->append('"');
        return true;
    case cpp_Macro::LINE_NUMBER:
        myOut->append(std::to_string(myFile->getLineNumber()).c_str());
        return true;
    case cpp_Macro::DATE:
        UTformatTime(text, "\"%b %e %Y\"", std::time(nullptr));
        break;
    default:
        UTformatTime(text, "\"%T\"", std::time(nullptr));
    }
    myOut->append(text);
    return true;
}

// ---- Argument lists --------------------------------------------------------

// The current level goes on with the file's next line.
bool cpp_Expander::readLine()
{
    UT_ScratchBuffer line;
    if (!myFile->readLogicalLine(line))
        return false;
    myManager.oweBlankLine();
    Level &here = level();
    here.owned.assign(line.buffer(), static_cast<size_t>(line.length()));
    here.start = here.next = here.owned.data();
    here.end = here.start + here.owned.size();
    return true;
}

bool cpp_Expander::skipSpace(bool acrossLines)
{
    for (;;) {
        Level &here = level();
        while (here.next < here.end && classOf(*here.next) == SPACE)
            ++here.next;
        if (here.next < here.end)
            return true;
        if (!acrossLines || !readLine())
            return false;
    }
}

bool cpp_Expander::takeArguments(int count)
{
    if (!skipSpace(false) || *level().next != '(')
        return false;
    ++level().next;
    myArguments.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        if (!takeArgument(myArguments[static_cast<size_t>(i)]))
            return false;
        const bool isLast = i + 1 == count;
        if (*level().next != (isLast ? ')' : ','))
            return false;
        if (!isLast)
            ++level().next;
    }
    if (!skipSpace(true) || *level().next != ')')
        return false;
    ++level().next;
    return true;
}

// Ends on the comma or parenthesis behind the argument.
bool cpp_Expander::takeArgument(std::string &argument)
{
    argument.clear();
    if (!skipSpace(true))
        return false;
    int parentheses = 0;
    for (;;) {
        Level &here = level();
        if (here.next == here.end) {
            if (!readLine())
                return false;
            continue;
        }
        const char c = *here.next;
        if (parentheses == 0 && (c == ',' || c == ')'))
            return !argument.empty();
        if (!takeCharacter(argument, parentheses) || argument.size() >= MAX_ARGUMENT)
            return false;
    }
}

bool cpp_Expander::takeCharacter(std::string &argument, int &parentheses)
{
    Level &here = level();
    const char *p = here.next;
    const bool isBehindBackslash = p > here.start && p[-1] == '\\';
    if (classOf(*p) == QUOTE && !isBehindBackslash) {
        const char *end = skipQuoted(p, here.end);
        if (end == nullptr)
            return false;
        argument.append(p, end);
        here.next = end;
        return true;
    }
    here.next = p + 1;
    if (*p == '\\') {
        // Gone; what follows is kept, and still counts if it divides the list.
        if (++p == here.end || std::strchr(",()", *p) != nullptr)
            return true;
        here.next = p + 1;
    }
    parentheses += *p == '(' ? 1 : *p == ')' ? -1 : 0;
    // A line's end inside an argument separates, but starts no line.
    argument += *p == '\n' ? ' ' : *p;
    return true;
}

// The body with its marks replaced by the arguments; not all of it when that is
// more than the budget.
void cpp_Expander::fillIn(const cpp_Macro &macro, std::string &replacement) const
{
    const std::string &body = macro.myBody;
    for (size_t i = 0; i < body.size() && replacement.size() <= myBudget;) {
        size_t digits = i + 1;
        size_t index = 0;
        while (body[i] == '#' && digits < body.size() && classOf(body[digits]) == DIGIT &&
               index < myArguments.size())
            index = index * 10 + static_cast<size_t>(body[digits++] - '0');
        const bool isMark = body[i] == '#' && digits > i + 1 && digits < body.size() &&
                            body[digits] == '#' && index < myArguments.size();
        if (!isMark) {
            replacement += body[i++];
            continue;
        }
        replacement += myArguments[index];
        i = digits + 1;
    }
}
