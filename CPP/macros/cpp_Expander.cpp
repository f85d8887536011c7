#include "CPP/macros/cpp_Expander.h"

#include "CPP/CPP_File.h"
#include "CPP/cpp_Classes.h"
#include "CPP/cpp_MacroTable.h"
#include "CPP/cpp_Runs.h"
#include "UT/UT_FormatTime.h"
#include "UT/UT_ScratchBuffer.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <string_view>

namespace
{
const char LIMIT_REACHED[] = "Macro recursion limit reached";
const char NO_END[] = "the list of arguments does not end";
const char TOO_MANY[] = "there are too many arguments";
const char TOO_LONG[] = "an argument has more than 8191 characters";
const char MISMATCHED[] = "Mismatched quotation marks";

constexpr size_t MAX_ARGUMENT = 8192; // characters, this one excluded

// A few short macros can stand for more text than any machine holds or scans,
// without ever nesting deep. No line needs as much as this: bytes to put in place
// of macros, where a macro in a replacement counts as some more.
constexpr size_t BUDGET = size_t{1} << 27;
constexpr size_t BUDGET_PER_CHARACTER = 64; // of the line,
constexpr int MAX_COUNTED = 1 << 23;        // up to this one
constexpr size_t NESTED_MACRO_COST = 64;
constexpr size_t LINE_NUMBER_COST = 16;
constexpr size_t TIME_COST = 1024; // asking the system takes long

constexpr size_t MAX_KEPT = 65536; // bytes of a level that is left

constexpr unsigned ENDS_TEXT = CPP_NAME_START | CPP_QUOTE | CPP_BACKSLASH;
constexpr unsigned ENDS_ARGUMENT_TEXT = CPP_LIST | CPP_QUOTE | CPP_BACKSLASH;

// As findOf(ENDS_TEXT, ...). Words stand close together, numbers go on for long.
const char *findTextEnd(const char *from, const char *end)
{
    constexpr int NEAR = 24;
    if (end - from <= NEAR)
        return findOf(ENDS_TEXT, from, end);
    const char *near = findOf(ENDS_TEXT, from, from + NEAR);
    return near < from + NEAR ? near : findOf(ENDS_TEXT, skipInert(near, end), end);
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

// What a character adds to the count of open parentheses.
int nesting(char c)
{
    return c == '(' ? 1 : c == ')' ? -1 : 0;
}

void append(UT_ScratchBuffer &out, const char *from, const char *to)
{
    out.append(from, static_cast<int>(to - from));
}
} // namespace

bool cpp_Expander::fail(std::string message)
{
    myMessage = std::move(message);
    myFaultDepth = myDepth;
    return false;
}

bool cpp_Expander::failList(const char *reason)
{
    myReason = reason;
    return false;
}

void cpp_Expander::notePlace(const char *place)
{
    myPlace = place;
    myPlaceLine = myFile->getLineNumber();
    myLinesToPlace = myLinesTaken;
}

// Nothing where the line is gone: others of the list came behind it.
void cpp_Expander::showPlace(Fault &fault) const
{
    const bool isInText = myLinesToPlace == 0;
    if (!isInText && myLinesToPlace != myLinesTaken)
        return;
    const char *start = isInText ? myText : myLevels[0]->start;
    const char *end = isInText ? myTextEnd : myLevels[0]->end;
    fault.source.assign(start, end);
    fault.column = static_cast<int>(myPlace - start) + 1;
    if (myFaultDepth > 0)
        fault.detail = " in what \"" + std::string(myPlace, findOther(CPP_NAME, myPlace, end)) +
                       "\" stands for";
}

cpp_Expander::Fault cpp_Expander::fault() const
{
    Fault fault;
    fault.line = myPlaceLine;
    fault.isQuote = myReason == nullptr && myMessage == MISMATCHED;
    showPlace(fault);
    if (myReason != nullptr)
        fault.detail += std::string(": ") + myReason;
    return fault;
}

bool cpp_Expander::expand(CPP_File &file, const char *text, int length, int limit,
                          UT_ScratchBuffer &out)
{
    myFile = &file;
    myOut = &out;
    myLinesTaken = 0;
    myText = text;
    myTextEnd = text + length;
    myReason = nullptr;
    myLimit = static_cast<size_t>(limit > 0 ? limit : DEFAULT_LIMIT);
    myBudget = BUDGET + BUDGET_PER_CHARACTER * static_cast<size_t>(std::min(length, MAX_COUNTED));
    // The outermost level is the caller's text; deeper ones are replacements.
    goToLevel(0);
    level().start = level().next = text;
    level().end = text + length;
    for (;;) {
        const bool good = expandLevel();
        while (!good && myDepth > 0)
            leaveLevel();
        if (!good)
            return false;
        if (level().next == level().end) {
            if (myDepth == 0)
                return true;
            leaveLevel();
        }
    }
}

bool cpp_Expander::isPlain(const char *text, int length) const
{
    const Level whole = {text, text, text + length, {}};
    const cpp_Macro *macro = nullptr;
    size_t nameLength = 0;
    return findWork(whole, macro, nameLength) == whole.end;
}

cpp_Expander::Level &cpp_Expander::levelAt(size_t depth)
{
    if (depth == myLevels.size())
        myLevels.push_back(std::make_unique<Level>());
    return *myLevels[depth];
}

void cpp_Expander::goToLevel(size_t depth)
{
    myDepth = depth;
    myLevel = &levelAt(depth);
}

void cpp_Expander::leaveLevel()
{
    // Kept memory makes the next macro cheap; a huge one must not hold it for ever.
    if (level().owned.capacity() > MAX_KEPT)
        std::string().swap(level().owned);
    goToLevel(myDepth - 1);
}

bool cpp_Expander::spend(size_t bytes)
{
    const size_t cost = bytes + (myDepth > 0 ? NESTED_MACRO_COST : 0);
    if (cost > myBudget)
        return fail(LIMIT_REACHED);
    myBudget -= cost;
    return true;
}

// Copies the current level up to its end, or to a macro that opens the next one.
bool cpp_Expander::expandLevel()
{
    Level &here = level();
    while (&here == myLevel && here.next < here.end) {
        size_t nameLength = 0;
        const cpp_Macro *macro = nullptr;
        const char *stop = findWork(here, macro, nameLength);
        append(*myOut, here.next, stop);
        if (myDepth == 0)
            notePlace(stop);
        here.next = stop + nameLength;
        if (macro != nullptr) {
            if (!expandMacro(*macro))
                return false;
        } else if (stop < here.end) {
            if (isOf(CPP_QUOTE, *stop))
                return fail(MISMATCHED);
            copyBackslash();
        }
    }
    return true;
}

// The next place where text is not copied as it is: at a macro, a backslash, or a
// quote that nothing closes.
const char *cpp_Expander::findWork(const Level &here, const cpp_Macro *&macro,
                                   size_t &nameLength) const
{
    const char *p = here.next;
    while ((p = findTextEnd(p, here.end)) < here.end && !isOf(CPP_BACKSLASH, *p)) {
        const char *end;
        if (isOf(CPP_NAME_START, *p)) {
            end = findOther(CPP_NAME, p, here.end);
            const auto length = static_cast<size_t>(end - p);
            macro = myMacros.find({p, length});
            if (macro != nullptr)
                nameLength = length;
        } else {
            const bool isBehindBackslash = p > here.start && p[-1] == '\\';
            end = isBehindBackslash ? p + 1 : skipQuoted(p, here.end);
        }
        if (macro != nullptr || end == nullptr)
            return p;
        p = end;
    }
    return p;
}

// A backslash goes when the next character is copied as it is. It stays in front
// of a word, and at the end.
void cpp_Expander::copyBackslash()
{
    Level &here = level();
    const char *next = here.next + 1;
    const bool stays = next == here.end || isOf(CPP_NAME_START, *next);
    append(*myOut, stays ? here.next : next, stays ? next : next + 1);
    here.next = stays ? next : next + 1;
}

bool cpp_Expander::expandMacro(const cpp_Macro &macro)
{
    if (macro.myBuiltin != cpp_Macro::NONE)
        return copyBuiltin(macro);
    if (macro.myNumArgs >= 0 && !takeArguments(macro.myNumArgs))
        return fail("Invalid arguments for macro \"" + std::string(macro.myName) + "\"");
    // A macro that stands for itself ends here: nothing else is done about it.
    if (myDepth + 1 >= myLimit)
        return fail(LIMIT_REACHED);
    const bool hasArguments = macro.myNumArgs > 0;
    const size_t size = hasArguments ? replacementSize(macro) : macro.myBody.size();
    if (!spend(size))
        return false;
    if (hasArguments) {
        std::string &replacement = levelAt(myDepth + 1).owned;
        fillIn(macro, size, replacement);
        openLevel(replacement);
    } else if (macro.isPlain) {
        append(*myOut, macro.myBody.data(), macro.myBody.data() + size);
    } else {
        openLevel(macro.myBody);
    }
    return true;
}

void cpp_Expander::openLevel(const std::string &text)
{
    goToLevel(myDepth + 1);
    Level &here = level();
    here.start = here.next = text.data();
    here.end = here.start + text.size();
}

size_t cpp_Expander::costOf(cpp_Macro::Builtin builtin) const
{
    switch (builtin) {
    case cpp_Macro::FILE_NAME:
        return std::strlen(myFile->getName());
    case cpp_Macro::LINE_NUMBER:
        return LINE_NUMBER_COST;
    default:
        return TIME_COST;
    }
}

bool cpp_Expander::copyBuiltin(const cpp_Macro &macro)
{
    if (!spend(costOf(macro.myBuiltin)))
        return false;
    char text[512];
    switch (macro.myBuiltin) {
    case cpp_Macro::FILE_NAME:
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
    ++myLinesTaken;
    for (; myOwned < myTaken; ++myOwned) // their text may lie in what is replaced here
        myArguments[myOwned].own();
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
        here.next = findOther(CPP_SPACE, here.next, here.end);
        if (here.next < here.end)
            return true;
        if (!acrossLines || !readLine())
            return false;
    }
}

bool cpp_Expander::takeArguments(int count)
{
    if (!skipSpace(false) || *level().next != '(')
        return failList("there is no list of arguments behind it on this line");
    ++level().next;
    // Kept from call to call for their memory, so only their texts are emptied.
    myArguments.resize(static_cast<size_t>(count));
    for (Argument &argument : myArguments)
        argument.text = {};
    myOwned = myTaken = 0;
    for (int i = 0; i < count; ++i) {
        if (!takeArgument(myArguments[static_cast<size_t>(i)]))
            return false;
        ++myTaken;
        const bool isLast = i + 1 == count;
        if (*level().next != (isLast ? ')' : ','))
            return failList(isLast ? TOO_MANY : "there are too few arguments");
        if (!isLast)
            ++level().next;
    }
    if (!skipSpace(true))
        return failList(NO_END);
    if (*level().next != ')')
        return failList(TOO_MANY);
    ++level().next;
    return true;
}

// Ends on the comma or parenthesis behind the argument.
bool cpp_Expander::takeArgument(Argument &argument)
{
    if (!skipSpace(true))
        return failList(NO_END);
    const char *begin = level().next;
    if (takeAsItStands()) {
        argument.text = {begin, static_cast<size_t>(level().next - begin)};
    } else {
        level().next = begin;
        if (!copyArgument(argument.copy))
            return false;
        argument.text = argument.copy;
    }
    if (argument.text.empty())
        return failList("an argument is empty");
    return argument.text.size() < MAX_ARGUMENT || failList(TOO_LONG);
}

// Passes an argument that lies within the line and has nothing that changes: most do.
bool cpp_Expander::takeAsItStands()
{
    Level &here = level();
    for (int parentheses = 0;; ++here.next) {
        here.next = findOf(ENDS_ARGUMENT_TEXT, here.next, here.end);
        if (here.next == here.end || isOf(CPP_BACKSLASH, *here.next) || *here.next == '\n')
            return false;
        if (isOf(CPP_QUOTE, *here.next)) {
            const char *end = skipQuoted(here.next, here.end);
            if (end == nullptr)
                return false;
            here.next = end - 1;
        } else if (parentheses == 0 && *here.next != '(') {
            return true;
        } else {
            parentheses += nesting(*here.next);
        }
    }
}

bool cpp_Expander::copyArgument(std::string &argument)
{
    argument.clear();
    int parentheses = 0;
    while (argument.size() < MAX_ARGUMENT) {
        Level &here = level();
        const char *run = here.next;
        here.next = findOf(ENDS_ARGUMENT_TEXT, run, here.end);
        if (here.next > run) {
            argument.append(run, static_cast<size_t>(here.next - run));
        } else if (run == here.end) {
            if (!readLine())
                return failList(NO_END);
        } else {
            if (parentheses == 0 && (*run == ',' || *run == ')'))
                return true;
            if (!takeCharacter(argument, parentheses))
                return failList("a quote in an argument does not end on its line");
        }
    }
    return failList(TOO_LONG);
}

bool cpp_Expander::takeCharacter(std::string &argument, int &parentheses)
{
    Level &here = level();
    const char *p = here.next;
    const bool isBehindBackslash = p > here.start && p[-1] == '\\';
    if (isOf(CPP_QUOTE, *p) && !isBehindBackslash) {
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
    parentheses += nesting(*p);
    // A line's end inside an argument separates, but starts no line.
    argument += *p == '\n' ? ' ' : *p;
    return true;
}

// ---- Replacements ----------------------------------------------------------

// Anything above the budget means too much: 32 bits might not hold the whole sum.
size_t cpp_Expander::replacementSize(const cpp_Macro &macro) const
{
    size_t size = 0;
    for (const cpp_Macro::Piece &piece : macro.myParameters->pieces) {
        if (size > myBudget)
            return size;
        size += piece.length;
        if (piece.argument != cpp_Macro::Piece::NO_ARGUMENT)
            size += myArguments[piece.argument].text.size();
    }
    return size;
}

// The body with its marks replaced by the arguments.
void cpp_Expander::fillIn(const cpp_Macro &macro, size_t size, std::string &replacement) const
{
    replacement.resize(size);
    char *to = replacement.data();
    for (const cpp_Macro::Piece &piece : macro.myParameters->pieces) {
        to = std::copy_n(macro.myBody.data() + piece.begin, piece.length, to);
        if (piece.argument == cpp_Macro::Piece::NO_ARGUMENT)
            continue;
        const std::string_view argument = myArguments[piece.argument].text;
        to = std::copy_n(argument.data(), argument.size(), to);
    }
}
