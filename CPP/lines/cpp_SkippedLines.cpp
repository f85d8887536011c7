#include "CPP/lines/cpp_SkippedLines.h"

#include "CPP/CPP_File.h"
#include "CPP/cpp_Classes.h"
#include "CPP/cpp_Runs.h"
#include "CPP/lines/cpp_LineEnd.h"
#include "CPP/macros/cpp_Condition.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

namespace
{
// So many lines are answered at once, or nearly so.
constexpr int MOST_LINES = 1 << 16;

const char *skipInLine(const char *from, const char *end)
{
    while (from < end && UTisSpace(*from) && *from != '\n')
        ++from;
    return from;
}

// Behind the directive's word, or at the front of other text; null for the stages' lines.
const char *readWord(const char *from, const char *end, cpp_SkippedLine &line)
{
    const char *text = skipInLine(from, end);
    if (text == end || *text != '#')
        return text < end ? text : nullptr;
    const char *word = skipInLine(text + 1, end);
    text = nameEnd(word, end);
    line.directive = findDirective({word, static_cast<size_t>(text - word)});
    return line.directive != nullptr && text < end && UTisSpace(*text) ? text : nullptr;
}

void readEnd(bool strips, const char *text, const char *end, cpp_SkippedLine &line)
{
    const cpp_LineEnd ending = findLineEnd(strips, text, end);
    if (!ending)
        return;
    line.end = ending.behind;
    line.isOneLine = !ending.isComment();
    line.condition = {text, static_cast<size_t>(ending.stop - text)};
}

// Where the whole lines of a block end, behind which a part of another may follow. A newline
// that is far from the end is not looked for: that would be done again at each line for the
// stages. None of the lines counts then.
const char *wholeLinesEnd(const char *block, const char *end)
{
    constexpr std::ptrdiff_t FAR = 4096;
    const auto room = static_cast<size_t>(std::min(FAR, end - block));
    const void *newline = room > 0 ? memrchr(end - room, '\n', room) : nullptr;
    return newline != nullptr ? static_cast<const char *>(newline) + 1 : block;
}

// The newline of an #elif whose condition is plain, null for other lines.
// REQUIRES: whole lines
const char *plainBranchEnd(const cpp_MacroTable &macros, const char *line, const char *end)
{
    constexpr std::string_view WORD = "elif";
    const char *sign = skipInLine(line, end);
    if (*sign != '#')
        return nullptr;
    const char *word = skipInLine(sign + 1, end);
    const auto room = static_cast<size_t>(end - word);
    const bool isBranch = room > WORD.size() && UTisSpace(word[WORD.size()]) &&
                          std::memcmp(word, WORD.data(), WORD.size()) == 0;
    return isBranch ? plainConditionEnd(macros, word + WORD.size(), end) : nullptr;
}

// Takes lines of one block of memory. They are counted late, in the file: nearly all do
// without a number, and calls for each would cost as much as the line.
class Skipper
{
public:
    Skipper(CPP_File &file, const cpp_MacroTable &macros, bool strips)
        : myFile(file), myMacros(macros), isStripping(strips)
    {
    }

    int skip()
    {
        int available;
        myNext = myCounted = myFile.peek(available);
        const char *const end = myNext != nullptr ? myNext + available : nullptr;
        myWholeEnd = wholeLinesEnd(myNext, end);
        // The next block may be long in coming.
        while (myNext < end && myLines < MOST_LINES && myFile.isSkipping() && takeLine(end)) {
        }
        count();
        return myLines;
    }

private:
    void pass(const char *behind, int lines)
    {
        myNext = behind;
        myLines += lines;
        myUncounted += lines;
    }

    void count()
    {
        if (myNext != nullptr)
            myFile.skip(static_cast<int>(myNext - myCounted), myUncounted);
        myCounted = myNext;
        myUncounted = 0;
    }

    // False for a line that is for the stages.
    bool takeLine(const char *end)
    {
        const char *behind = *myNext == '#' ? myNext : runEnd(cpp_RunKind::DROPPED, myNext, end);
        if (behind != myNext) {
            pass(behind, countLines(myNext, behind));
            return true;
        }
        if (takeLateBranches())
            return true;
        cpp_SkippedLine line;
        const char *text = readWord(myNext, end, line);
        if (text == nullptr)
            return false;
        readEnd(isStripping, text, end, line);
        int value = 0;
        if (line.end == nullptr || (line.is(CPP_ELIF) && !evaluate(line.condition, value)))
            return false;
        const int more = line.isOneLine ? 0 : countLines(myNext, line.end) - 1;
        pass(line.end, 1);
        if (line.directive != nullptr)
            apply(*line.directive, value);
        pass(line.end, more);
        return true;
    }

    // Those #elif behind the branch that was taken, of which some texts have long lists.
    bool takeLateBranches()
    {
        if (!myFile.isDecided())
            return false;
        const char *first = myNext;
        while (myNext < myWholeEnd && myLines < MOST_LINES) {
            const char *newline = plainBranchEnd(myMacros, myNext, myWholeEnd);
            if (newline == nullptr)
                break;
            pass(newline + 1, 1);
        }
        return myNext != first;
    }

    void apply(const cpp_DirectiveWord &directive, int value)
    {
        if (directive.effect == cpp_DirectiveWord::OPENS)
            count(); // it keeps the number of its line
        myFile.applySkipped(directive, value);
    }

    // Also in skipped text, where this branch may count. False when there is something to
    // tell about the condition, which the stages do.
    bool evaluate(std::string_view condition, int &value)
    {
        myCondition = condition; // ends in a NUL
        cpp_ConditionFault fault;
        value = evaluateCondition(myMacros, myCondition.c_str(), &fault);
        return value >= 0 && fault.oddMacro == nullptr;
    }

    CPP_File &myFile;
    const cpp_MacroTable &myMacros;
    bool isStripping;
    const char *myNext = nullptr;
    const char *myCounted = nullptr; // in the file, up to there
    const char *myWholeEnd = nullptr;
    int myLines = 0;
    int myUncounted = 0;
    std::string myCondition;
};
} // namespace

cpp_SkippedLine readSkippedLine(bool strips, const char *from, const char *end)
{
    cpp_SkippedLine line;
    if (const char *text = readWord(from, end, line))
        readEnd(strips, text, end, line);
    return line;
}

int skipLines(CPP_File &file, const cpp_MacroTable &macros, bool strips)
{
    return Skipper(file, macros, strips).skip();
}
