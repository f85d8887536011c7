#include "UT/UT_IStreamBuf.h"

#include "UT/UT_Character.h"
#include "UT/UT_Memory.h"
#include "UT/UT_ScratchBuffer.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace
{
// Tells, byte by byte, how far a text may still be a decimal number.
struct NumberForm {
    bool fits(char c)
    {
        const bool signFits = mySignFits;
        mySignFits = false;
        if (c == '+' || c == '-')
            return signFits;
        if (c == '.') {
            const bool pointFits = !mySawPoint && !mySawExponent;
            mySawPoint = mySawPoint || pointFits;
            return pointFits;
        }
        if (c == 'e' || c == 'E') {
            const bool exponentFits = !mySawExponent;
            mySawExponent = mySignFits = true;
            return exponentFits;
        }
        return UTisDigit(c);
    }

    bool isFloating() const { return mySawPoint || mySawExponent; }

private:
    bool mySignFits = true; // in front of everything, and behind an exponent letter
    bool mySawPoint = false;
    bool mySawExponent = false;
};

const char *findByte(const char *from, const char *end, int byte)
{
    const void *found = std::memchr(from, byte, static_cast<size_t>(end - from));
    return found ? static_cast<const char *>(found) : end;
}

} // namespace

// ---- Holders -------------------------------------------------------------------

void UT_IStreamBuf::release()
{
    if (--myRefCount == 0)
        delete this;
}

UT_IStreamBuf::~UT_IStreamBuf()
{
    std::free(myErrorText);
}

bool UT_IStreamBuf::close()
{
    return true;
}

// ---- Text ------------------------------------------------------------------------

bool UT_IStreamBuf::refill()
{
    if (myError)
        return false;
    // A source may leave the indices alone when it has nothing.
    myReadPos = myEnd = 0;
    myBuffer = fillBuffer(myReadPos, myEnd);
    if (!myBuffer)
        myReadPos = myEnd = 0;
    return myBuffer != nullptr;
}

// The heart of all text readers: one append for each run, not for each byte. `scan`
// gets the buffered bytes and gives the first one to stop at, or their end.
template <class Scan>
bool UT_IStreamBuf::takeUntil(UT_ScratchBuffer &out, Scan &&scan)
{
    while (hasNext()) {
        const char *from = myBuffer + myReadPos;
        const char *end = myBuffer + myEnd;
        const char *stop = scan(from, end);
        out.append(from, static_cast<int>(stop - from));
        myReadPos = static_cast<int>(stop - myBuffer);
        if (stop != end)
            return true;
    }
    return false;
}

// Fetches when needed: what is asked for may lie in the next chunk.
bool UT_IStreamBuf::nextIs(char c)
{
    return hasNext() && myBuffer[myReadPos] == c;
}

bool UT_IStreamBuf::getLine(UT_ScratchBuffer &line, int delimiter)
{
    line.clear();
    if (myError || !hasNext())
        return false;
    const bool ended = takeUntil(
        line, [=](const char *from, const char *end) { return findByte(from, end, delimiter); });
    if (!ended)
        return true;
    // Looked for in the line, since it may have come with the chunk before.
    const int last = line.length() - 1;
    if (delimiter == '\n' && last >= 0 && line.buffer()[last] == '\r' && !line.isLocked())
        line.truncate(last);
    ++myReadPos;
    return true;
}

bool UT_IStreamBuf::skipWhitespace()
{
    while (hasNext()) {
        const char *end = myBuffer + myEnd;
        const char *stop = std::find_if_not(myBuffer + myReadPos, end, UTisSpace);
        myReadPos = static_cast<int>(stop - myBuffer);
        if (stop != end)
            return true;
    }
    return false;
}

bool UT_IStreamBuf::skipPast(int delimiter)
{
    if (!hasNext())
        return false;
    do {
        const char *end = myBuffer + myEnd;
        const char *stop = findByte(myBuffer + myReadPos, end, delimiter);
        myReadPos = static_cast<int>(stop - myBuffer);
        if (stop != end) {
            ++myReadPos;
            return true;
        }
    } while (refill());
    return true;
}

bool UT_IStreamBuf::getWord(UT_ScratchBuffer &word)
{
    word.clear();
    if (!skipWhitespace())
        return false;
    takeUntil(word,
              [](const char *from, const char *end) { return std::find_if(from, end, UTisSpace); });
    return true;
}

bool UT_IStreamBuf::getString(UT_ScratchBuffer &text)
{
    text.clear();
    if (!skipWhitespace())
        return false;
    // Only a quote that begins the text is special; \" begins a word with a quote.
    const char first = myBuffer[myReadPos++];
    const bool isQuoted = first == '"';
    if (!isQuoted && !(first == '\\' && nextIs('"')))
        text.append(first);

    const auto endsRun = [=](char c) { return c == '\\' || (isQuoted ? c == '"' : UTisSpace(c)); };
    const auto scan = [=](const char *from, const char *end) {
        return std::find_if(from, end, endsRun);
    };
    while (takeUntil(text, scan)) {
        if (myBuffer[myReadPos] != '\\') {
            myReadPos += isQuoted; // a closing quote is consumed, white space is not
            return true;
        }
        ++myReadPos;
        if (nextIs('"') || nextIs('\\'))
            text.append(myBuffer[myReadPos++]);
        else
            text.append('\\');
    }
    return true;
}

bool UT_IStreamBuf::getNumberToken(UT_ScratchBuffer &token, bool &isFloating)
{
    token.clear();
    isFloating = false;
    if (!skipWhitespace())
        return false;
    const char first = myBuffer[myReadPos];
    if (!UTisDigit(first) && first != '.' && first != '+' && first != '-')
        return getWord(token);
    // The form lives outside the scan: a number may go on in the next chunk.
    NumberForm form;
    takeUntil(token, [&form](const char *from, const char *end) {
        return std::find_if_not(from, end, [&form](char c) { return form.fits(c); });
    });
    isFloating = form.isFloating();
    return true;
}

// ---- Bytes -------------------------------------------------------------------------

int UT_IStreamBuf::getChar()
{
    return hasNext() ? static_cast<signed char>(myBuffer[myReadPos++]) : -1;
}

int UT_IStreamBuf::peekBufferedChar()
{
    return buffered() > 0 ? static_cast<signed char>(myBuffer[myReadPos]) : peekChar();
}

int UT_IStreamBuf::peekByte()
{
    return buffered() > 0 ? static_cast<unsigned char>(myBuffer[myReadPos]) : peekChar();
}

int UT_IStreamBuf::unread(int n)
{
    // What lies in front of the read index is still the chunk's.
    const int back = std::clamp(n, 0, myReadPos);
    myReadPos -= back;
    return back;
}

// Past the chunk there is no use in another one: the caller's memory takes the bytes.
int UT_IStreamBuf::bread(void *dst, int n)
{
    char *out = static_cast<char *>(dst);
    const int fromChunk = std::clamp(n, 0, buffered());
    if (fromChunk > 0)
        std::memcpy(out, myBuffer + myReadPos, static_cast<size_t>(fromChunk));
    myReadPos += fromChunk;
    return fromChunk < n ? fromChunk + read(out + fromChunk, n - fromChunk) : fromChunk;
}

const char *UT_IStreamBuf::takeRun(int64_t most, int &length)
{
    if (!hasNext())
        return nullptr;
    const char *run = myBuffer + myReadPos;
    length = static_cast<int>(std::min<int64_t>(most, buffered()));
    myReadPos += length;
    return run;
}

// ---- Position and errors --------------------------------------------------------------

int64_t UT_IStreamBuf::tellg()
{
    return tell() - buffered();
}

bool UT_IStreamBuf::seekg(int64_t pos, int whence)
{
    myBuffer = nullptr;
    myReadPos = myEnd = 0;
    std::free(myErrorText);
    myErrorText = nullptr;
    myErrno = 0;
    myError = false;
    return seek(pos, whence);
}

bool UT_IStreamBuf::isAtEnd()
{
    return buffered() == 0 && isEof();
}

void UT_IStreamBuf::setError(const char *text)
{
    if (myError)
        return;
    myError = true;
    myErrno = errno;
    std::free(myErrorText);
    myErrorText = UTduplicate(text);
}

const char *UT_IStreamBuf::getErrorText() const
{
    return myErrorText ? myErrorText : std::strerror(myErrno);
}
