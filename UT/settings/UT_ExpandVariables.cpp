#include "UT/UT_ExpandVariables.h"

#include "UT/UT_Character.h"
#include "UT/UT_EnvControl.h"
#include "UT/UT_Environment.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "UT/settings/ut_Users.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace
{
// Frame numbers are short; a text must not ask for gigabytes in ten characters.
constexpr long MAX_WIDTH = 9999;
constexpr char NONE = '\0'; // as the previous character

const char *lookUpEnvironment(const char *name, void *)
{
    return UTgetenv(name);
}

// The width in a frame reference such as F4, -1 for any other name.
int frameWidth(const char *name)
{
    if (*name != 'F' || name[1] == '\0' || name[1 + std::strspn(name + 1, "0123456789")] != '\0')
        return -1;
    return static_cast<int>(std::min(std::strtol(name + 1, nullptr, 10), MAX_WIDTH));
}

void appendRepeated(UT_ScratchBuffer &out, char c, int count)
{
    for (; count > 0; count--)
        out.append(c);
}

// The sign of a number stays in front of the zeros but counts for the width.
void appendPadded(UT_ScratchBuffer &out, const char *value, int width)
{
    const int missing = width > 0 ? width - static_cast<int>(std::strlen(value)) : 0;
    const bool isSigned = (*value == '-' || *value == '+') && UTisDigit(value[1]);
    if (isSigned)
        out.append(*value++);
    appendRepeated(out, isSigned || UTisDigit(*value) ? '0' : ' ', missing);
    out.append(value);
}

// What step() has to look at.
constexpr char SIGNS[] = "\\$~`'";

bool isSign(char c)
{
    return std::strchr(SIGNS, c) != nullptr;
}

// One expansion: step() takes one construct off the input and moves on, so every
// character is looked at once. The previous character decides whether this one is
// escaped, and whether a '~' begins a word; after constructs that leave no trace of
// their own (a pair of backslashes, a closing quote) there is none.
//
// A "${" opens a frame, in which the text up to its '}' is expanded behind what the
// output holds already; when the frame ends, that part of the output is taken off
// again as the name to look up. Inside a frame every '{' has its '}', so only the
// outermost text can be unbalanced.
class ut_VariableExpander
{
public:
    ut_VariableExpander(UT_ScratchBuffer &out, const char *in) : myOut(out), myIn(in) {}

    int run();

    UT_VariableLookup myLookup = lookUpEnvironment;
    UT_CommandRunner myCommandRunner = nullptr;
    void *myData = nullptr;
    bool isDollarExpanded = true;
    bool isTildeExpanded = true;
    bool isExpandedInComments = true;

private:
    enum Comment { NO_COMMENT, LINE_COMMENT, BLOCK_COMMENT };
    struct Frame {
        int end;      // of its text in the input
        int outStart; // of its text in the output
    };

    int end() const { return myFrames.back().end; }
    bool isNested() const { return myFrames.size() > 1; }
    char peek() const { return myPos + 1 < end() ? myIn[myPos + 1] : '\0'; }

    void step();
    int plainRun() const;
    bool takeEscaped(char c);
    bool takeComment(char c);
    bool isTildeActive() const;
    void takeReference();
    void takePlainReference();
    void openBraces();
    void closeBraces();
    void takeHome();
    void takeCommand();
    void takeQuoted();
    void copy(int count);

    void advanceTo(int position);
    void substitute(const char *name, const char *modifiers);
    int closingBrace(int open);
    int closingQuote() const;

    UT_ScratchBuffer &myOut;
    const char *myIn;
    int myPos = 0;
    char myPrev = NONE;
    Comment myComment = NO_COMMENT;
    int myCount = 0;
    std::vector<Frame> myFrames;
    std::vector<int> myClosing; // for each '{' its '}' or 0; filled on first need
};

int ut_VariableExpander::run()
{
    myFrames.push_back({static_cast<int>(std::strlen(myIn)), 0});
    for (;;) {
        while (myPos < end())
            step();
        if (!isNested())
            return myCount;
        closeBraces();
    }
}

void ut_VariableExpander::step()
{
    const char c = myIn[myPos];
    if (takeEscaped(c) || takeComment(c))
        return;
    if (c == '$' && isDollarExpanded)
        takeReference();
    else if (c == '~' && isTildeActive())
        takeHome();
    else if (c == '`' && myCommandRunner != nullptr && !isNested())
        takeCommand();
    else if (c == '\'')
        takeQuoted();
    else
        copy(plainRun());
}

// How many characters from the current one on are copied, whatever comes before them.
int ut_VariableExpander::plainRun() const
{
    if (!isExpandedInComments && !isNested())
        return 1; // a comment's signs count
    // Not beyond the frame, or the tail behind many frames is looked at by each.
    const char *from = myIn + myPos + 1;
    return static_cast<int>(std::find_if(from, myIn + end(), isSign) - (myIn + myPos));
}

bool ut_VariableExpander::takeEscaped(char c)
{
    if (myPrev != '\\')
        return false;
    if (c == '\\') { // the first one is in the output already and stands for both
        myPos++;
        myPrev = NONE;
        return true;
    }
    if (std::strchr("`$~'", c) == nullptr)
        return false;
    // The character is ordinary, and the backslash in front of it goes.
    myOut.truncate(myOut.length() - 1);
    copy(1);
    return true;
}

// Both characters of a sign are taken together: "/*/" does not end where it begins.
bool ut_VariableExpander::takeComment(char c)
{
    if (isExpandedInComments || isNested())
        return false;
    if (myComment == NO_COMMENT) {
        if (c != '/' || (peek() != '/' && peek() != '*'))
            return false;
        myComment = peek() == '/' ? LINE_COMMENT : BLOCK_COMMENT;
        copy(2);
        return true;
    }
    const bool endsBlock = myComment == BLOCK_COMMENT && c == '*' && peek() == '/';
    if (endsBlock || (myComment == LINE_COMMENT && c == '\n'))
        myComment = NO_COMMENT;
    copy(endsBlock ? 2 : 1);
    return true;
}

bool ut_VariableExpander::isTildeActive() const
{
    return (isTildeExpanded || isNested()) && (myPrev == NONE || UTisSpace(myPrev));
}

void ut_VariableExpander::takeReference()
{
    if (peek() == '{')
        openBraces();
    else if (UTisNameCharacter(peek()))
        takePlainReference();
    else
        copy(1);
}

// Names, modifiers and user names need no look at the frame's end: it is a '}' or the
// end of the input, and neither can be a part of them.
void ut_VariableExpander::takePlainReference()
{
    int stop = myPos + 1;
    while (UTisNameCharacter(myIn[stop]))
        stop++;
    const UT_String name(myIn + myPos + 1, true, stop - myPos - 1);
    UT_String modifiers;
    if (myIn[stop] == ':' && UT_EnvControl::instance().getInt(ENV_VELDRIN8_COMPATIBILITY) == 0) {
        const int length = UT_String::modifierNameLength(myIn + stop);
        modifiers.assignCopy(myIn + stop, length);
        stop += length;
    }
    advanceTo(stop);
    substitute(name, modifiers);
}

void ut_VariableExpander::openBraces()
{
    const int closing = closingBrace(myPos + 1);
    if (closing == 0)
        return copy(end() - myPos);
    myFrames.push_back({closing, myOut.length()});
    myPos += 2;
    myPrev = NONE;
}

void ut_VariableExpander::closeBraces()
{
    const Frame frame = myFrames.back();
    myFrames.pop_back();
    // A copy: the value goes where the name was.
    const UT_String name(myOut.buffer() + frame.outStart, true);
    myOut.truncate(frame.outStart);
    advanceTo(frame.end + 1);
    substitute(name, nullptr);
}

void ut_VariableExpander::takeHome()
{
    const int start = myPos;
    int stop = start + 1;
    while (UTisAlphanumeric(myIn[stop]))
        stop++;
    UT_String home;
    const UT_String user(myIn + start + 1, true, stop - start - 1);
    if (!user.isNonEmpty())
        home = UT_EnvControl::instance().getString(ENV_HOME);
    else if (!ut_getUserHome(home, user))
        return copy(stop - start);
    myOut.append(home);
    myCount++;
    advanceTo(stop);
}

void ut_VariableExpander::takeCommand()
{
    const int closing = closingQuote();
    const UT_String command(myIn + myPos + 1, true, closing - myPos - 1);
    if (const char *output = myCommandRunner(command, myData)) {
        myOut.append(output);
        myCount++;
    }
    advanceTo(std::min(closing + 1, end()));
}

void ut_VariableExpander::takeQuoted()
{
    const int closing = closingQuote();
    myOut.append(myIn + myPos + 1, closing - myPos - 1);
    myPos = std::min(closing + 1, end());
    myPrev = NONE;
}

void ut_VariableExpander::copy(int count)
{
    myOut.append(myIn + myPos, count);
    advanceTo(myPos + count);
}

void ut_VariableExpander::advanceTo(int position)
{
    myPos = position;
    myPrev = myIn[position - 1];
}

void ut_VariableExpander::substitute(const char *name, const char *modifiers)
{
    const int width = frameWidth(name);
    const char *value = myLookup(width >= 0 ? "F" : name, myData);
    if (value == nullptr)
        return;
    myCount++;
    if (modifiers == nullptr || *modifiers == '\0')
        return appendPadded(myOut, value, width);
    UT_ScratchBuffer padded;
    appendPadded(padded, value, width);
    UT_String modified(padded.buffer());
    modified.applyModifiers(modifiers);
    myOut.append(modified);
}

// All pairs in one pass, so that deep nesting does not scan the same text again.
int ut_VariableExpander::closingBrace(int open)
{
    if (myClosing.empty()) {
        std::vector<size_t> opened;
        const size_t length = std::strlen(myIn);
        myClosing.resize(length);
        for (size_t i = 0; i < length; i++) {
            if (myIn[i] == '{') {
                opened.push_back(i);
            } else if (myIn[i] == '}' && !opened.empty()) {
                myClosing[opened.back()] = static_cast<int>(i);
                opened.pop_back();
            }
        }
    }
    return myClosing[static_cast<size_t>(open)];
}

// Where the quote at the current place is closed, or the end. A quote behind a
// backslash does not close.
int ut_VariableExpander::closingQuote() const
{
    int at = myPos + 1;
    while (at < end() && !(myIn[at] == myIn[myPos] && myIn[at - 1] != '\\'))
        at++;
    return at;
}
} // namespace

int UTexpandVariables(UT_ScratchBuffer &out, const char *in, UT_VariableLookup lookup,
                      UT_CommandRunner commandRunner, void *data, bool expandDollar,
                      bool expandTilde, bool expandInComments)
{
    out.clear();
    if (in == nullptr)
        return 0;
    if (std::strpbrk(in, SIGNS) == nullptr) {
        out.append(in);
        return 0;
    }
    ut_VariableExpander expander(out, in);
    if (lookup != nullptr)
        expander.myLookup = lookup;
    expander.myCommandRunner = commandRunner;
    expander.myData = data;
    expander.isDollarExpanded = expandDollar;
    expander.isTildeExpanded = expandTilde;
    expander.isExpandedInComments = expandInComments;
    return expander.run();
}

int UTexpandVariables(UT_ScratchBuffer &out, const char *in, UT_VariableLookup lookup, void *data,
                      bool expandTilde, bool expandInComments)
{
    return UTexpandVariables(out, in, lookup, nullptr, data, true, expandTilde, expandInComments);
}
