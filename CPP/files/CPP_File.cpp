#include "CPP/CPP_File.h"

#include "CPP/CPP_Stream.h"
#include "CPP/cpp_Text.h"
#include "CPP/lines/cpp_DirectiveWords.h"

#include <cstdint>
#include <cstring>

namespace
{
// The one at the end, which continues the line.
bool takeBackslash(UT_ScratchBuffer &line)
{
    const int length = line.length();
    if (length == 0 || line.buffer()[length - 1] != '\\')
        return false;
    line.truncate(length - 1);
    return true;
}

bool endsInBackslash(const UT_ScratchBuffer &line)
{
    return line.length() > 0 && line.buffer()[line.length() - 1] == '\\';
}

// Everything behind this is text that ends at its NUL.
void replaceNuls(UT_ScratchBuffer &line)
{
    replaceAll(line.buffer(), line.length(), '\0', ' ');
}
} // namespace

CPP_File::CPP_File(CPP_Stream *stream) : myStream(stream) {}

CPP_File::~CPP_File() = default;

void CPP_File::release()
{
    if (--myRefCount < 1)
        delete this;
}

void CPP_File::setPath(const char *path)
{
    setName(path);
    myPath.assignCopy(path);
    // Null and "" differ: the first is the working folder, the second the root.
    const char *slash = std::strrchr(path, '/');
    if (slash != nullptr)
        myDirectory.assignCopy(path, static_cast<int>(slash - path));
    else
        myDirectory.clear();
}

void CPP_File::countLines(int lines)
{
    // #line may have put it anywhere, so it wraps.
    myLineNumber =
        static_cast<int>(static_cast<uint32_t>(myLineNumber) + static_cast<uint32_t>(lines));
}

const char *CPP_File::takeRun(cpp_RunKind kind, int &length, int &lines)
{
    const char *text = peek(length);
    if (text == nullptr)
        return nullptr;
    length = static_cast<int>(runEnd(kind, text, text + length) - text);
    if (length == 0)
        return nullptr;
    lines = ::countLines(text, text + length);
    skip(length, lines);
    return text;
}

// While empty lines are owed they come first, and lines that follow must not overtake them.
const char *CPP_File::peek(int &length)
{
    return myStream == nullptr || myOwedNewlines > 0 ? nullptr : myStream->peekBuffered(length);
}

void CPP_File::skip(int length, int lines)
{
    mySpecialFlag = mySpecialFlag || myStream->isSpecial();
    myStream->skipBuffered(length);
    countLines(lines);
}

bool CPP_File::readLogicalLine(UT_ScratchBuffer &line)
{
    if (myStream == nullptr)
        return false;
    if (myOwedNewlines > 0) {
        --myOwedNewlines;
        line.clear();
        line.append('\n');
    } else if (!joinLines(line)) {
        return false;
    }
    countLines(1);
    return true;
}

// Alone in here a line's text is whole: comments, directives and macros are looked for behind
// the joining, so a backslash inside any of them continues it.
bool CPP_File::joinLines(UT_ScratchBuffer &line)
{
    if (!myStream->readLine(line))
        return false;
    mySpecialFlag = mySpecialFlag || myStream->isSpecial();
    if (takeBackslash(line) && !takeContinuations(line)) {
        replaceNuls(line);
        return true;
    }
    line.append('\n');
    replaceNuls(line);
    return true;
}

// False when the line ends in two backslashes, of which one is gone.
bool CPP_File::takeContinuations(UT_ScratchBuffer &line)
{
    UT_ScratchBuffer next;
    do {
        if (endsInBackslash(line))
            return false;
        // At the end of the file nothing continues the line.
        if (!myStream->readLine(next))
            break;
        mySpecialFlag = mySpecialFlag || myStream->isSpecial();
        ++myOwedNewlines;
        line.append(next.buffer(), next.length());
    } while (takeBackslash(line));
    return true;
}

bool CPP_File::isSkipping() const
{
    return hasOpenCondition() && myConditions(myConditions.entries() - 1) != TAKING;
}

bool CPP_File::isDecided() const
{
    return hasOpenCondition() && myConditions(myConditions.entries() - 1) >= DONE;
}

int CPP_File::openConditionLine() const
{
    return myConditionLines(myConditionLines.entries() - 1);
}

void CPP_File::pushCondition(int state)
{
    myConditions.append(isSkipping() ? static_cast<int>(DONE) : state);
    myConditionLines.append(myLineNumber);
}

void CPP_File::elifCondition(int value)
{
    if (!hasOpenCondition())
        return;
    int &top = topCondition();
    if (value == 1 && top <= TAKING)
        ++top; // not yet taken is taken now, taken is done
    else if (value == 2 || (value == 0 && top != NOT_YET))
        top = DONE;
}

void CPP_File::elseCondition()
{
    // A second #else skips again, however often it comes.
    if (hasOpenCondition())
        ++topCondition();
}

void CPP_File::popCondition()
{
    if (!hasOpenCondition())
        return;
    myConditions.removeIndex(myConditions.entries() - 1);
    myConditionLines.removeIndex(myConditionLines.entries() - 1);
}

void CPP_File::applySkipped(const cpp_DirectiveWord &directive, int value)
{
    switch (directive.effect) {
    case cpp_DirectiveWord::OPENS:
        pushCondition(DONE);
        break;
    case cpp_DirectiveWord::BRANCHES:
        directive.number == CPP_ELIF ? elifCondition(value) : elseCondition();
        break;
    case cpp_DirectiveWord::CLOSES:
        popCondition();
        break;
    case cpp_DirectiveWord::NONE:
        break;
    }
}
