#include "UT/UT_IStream.h"

#include "UT/UT_Memory.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "UT/text/ut_NumberText.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

UT_IStream::UT_IStream(FILE *fp, bool binary) : UT_IStream(UT_IStreamBuf::wrapFile(fp), binary) {}

UT_IStream::UT_IStream(std::istream &is, bool binary)
    : UT_IStream(UT_IStreamBuf::wrapStream(is), binary)
{
}

UT_IStream::UT_IStream(const char *data, int size, bool binary)
    : UT_IStream(UT_IStreamBuf::wrapMemory(data, size), binary)
{
}

UT_IStream::UT_IStream(const UT_ScratchBuffer &text, bool binary)
    : UT_IStream(text.buffer(), text.length(), binary)
{
}

UT_IStream::UT_IStream(UT_IStreamBuf *src, bool binary) : mySource(src), myBinary(binary) {}

UT_IStream::~UT_IStream()
{
    std::free(myLabel);
    mySource->release();
}

void UT_IStream::install(UT_IStreamBuf *src, const char *label, bool binary)
{
    mySource->release();
    mySource = src;
    char *copy = UTduplicate(label); // before the old label, which it may be, goes
    std::free(myLabel);
    myLabel = copy;
    myBinary = binary;
    myError = src->hasError();
}

// Whatever the stream's own error: open() has to get past it.
bool UT_IStream::close()
{
    const bool closed = mySource->close();
    if (!closed && mySource->hasError())
        myError = true;
    return closed;
}

bool UT_IStream::conclude(bool succeeded)
{
    if (!succeeded && mySource->hasError())
        myError = true;
    return succeeded;
}

// ---- Text --------------------------------------------------------------------

bool UT_IStream::getLine(UT_ScratchBuffer &line, int delimiter)
{
    return !myError && conclude(mySource->getLine(line, delimiter));
}

bool UT_IStream::skipWhitespace()
{
    return !myError && conclude(mySource->skipWhitespace());
}

bool UT_IStream::skipPast(int delimiter)
{
    return !myError && conclude(mySource->skipPast(delimiter));
}

bool UT_IStream::getWord(UT_ScratchBuffer &word)
{
    return !myError && conclude(mySource->getWord(word));
}

bool UT_IStream::getString(UT_ScratchBuffer &text)
{
    return !myError && conclude(mySource->getString(text));
}

int UT_IStream::getNonCommentLine(UT_ScratchBuffer &line, int commentChar, bool stripInline)
{
    // Neither looks at the stream's error nor sets it: the source has the last word.
    const char comment = static_cast<char>(commentChar);
    int lines = 0;
    do {
        if (!mySource->skipWhitespace() || !mySource->getLine(line, '\n'))
            return lines;
        if (line.buffer()[0] == comment)
            line.clear();
        ++lines;
    } while (line.length() == 0);
    if (stripInline)
        line.stripComment(comment);
    return lines;
}

// ---- Values ------------------------------------------------------------------

int UT_IStream::bread(void *dst, int n)
{
    if (myError)
        return 0;
    const int got = mySource->bread(dst, n);
    conclude(got >= n);
    return got;
}

// Reads straight into the values and turns each one round in its place.
int UT_IStream::breadValues(void *dst, int count, int width)
{
    const int values = bread(dst, std::clamp(count, 0, INT32_MAX / width) * width) / width;
    char *bytes = static_cast<char *>(dst);
    if (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__)
        for (int i = 0; i < values; ++i)
            std::reverse(bytes + i * width, bytes + (i + 1) * width);
    return values;
}

template <class T>
int UT_IStream::readValues(T *dst, int count)
{
    if (myBinary)
        return bread(dst, count);
    UT_ScratchBuffer token;
    bool isFloating;
    int values = 0;
    while (values < count && !myError && conclude(mySource->getNumberToken(token, isFloating)))
        UTnumberFromText(token.buffer(), isFloating, dst[values++]);
    return values;
}

// The types that the header offers.
template int UT_IStream::readValues(int16_t *, int);
template int UT_IStream::readValues(uint16_t *, int);
template int UT_IStream::readValues(int32_t *, int);
template int UT_IStream::readValues(uint32_t *, int);
template int UT_IStream::readValues(int64_t *, int);
template int UT_IStream::readValues(uint64_t *, int);
template int UT_IStream::readValues(float *, int);
template int UT_IStream::readValues(double *, int);

// ---- Strings -----------------------------------------------------------------

bool UT_IStream::readString(UT_String &s, bool binary)
{
    if (myError)
        return false;
    const bool before = myBinary;
    myBinary = binary;
    const bool loaded = s.load(*this);
    myBinary = before;
    return loaded;
}

bool UT_IStream::readPrefix(int bytes, uint64_t &value)
{
    unsigned char raw[sizeof value];
    if (bread(raw, bytes) != bytes)
        return false;
    value = 0;
    for (int i = 0; i < bytes; ++i)
        value = value << 8 | raw[i];
    return true;
}

bool UT_IStream::readBinaryString(UT_String &s, int minBits)
{
    const struct {
        int bits;
        uint64_t escape; // in place of a length: the next form follows
    } forms[] = {{8, UINT8_MAX}, {16, UINT16_MAX}, {32, UINT32_MAX}, {64, UINT64_MAX}};

    // The last form has no escape: all ones there is a negative length, which the
    // check behind the loop refuses with all others that no string can have.
    uint64_t length = UINT64_MAX;
    for (const auto &form : forms) {
        if (minBits > form.bits && form.bits < 64)
            continue;
        if (!readPrefix(form.bits / 8, length))
            return false;
        if (length != form.escape)
            break;
    }
    return length < INT32_MAX && readCharacters(s, static_cast<int>(length));
}

// In pieces that grow with what has come: a wrong length then costs no more
// memory than the input has bytes.
bool UT_IStream::readCharacters(UT_String &s, int length)
{
    constexpr int firstPiece = 65536;
    char *text = nullptr;
    int have = 0;
    do {
        const int piece = std::min(length - have, std::max(have, firstPiece));
        text = static_cast<char *>(UTreallocate(text, static_cast<size_t>(have + piece) + 1));
        if (bread(text + have, piece) != piece) {
            std::free(text);
            return false;
        }
        have += piece;
    } while (have < length);
    text[length] = '\0';
    s.adopt(text);
    return true;
}

// ---- Position and state --------------------------------------------------------

bool UT_IStream::seekg(int64_t pos, int whence)
{
    const bool moved = mySource->seekg(pos, whence);
    myError = !moved;
    return moved;
}

void UT_IStream::pushBinary(bool binary)
{
    myBinaryStack.append(myBinary);
    myBinary = binary;
}

void UT_IStream::popBinary()
{
    if (myBinaryStack.entries() == 0)
        return;
    const unsigned last = myBinaryStack.entries() - 1;
    myBinary = myBinaryStack(last) != 0;
    myBinaryStack.removeIndex(last);
}

UT_IStream *UT_IStream::newRangeStream(int64_t start, int64_t length) const
{
    return new UT_IStream(UT_IStreamBuf::makeRange(*mySource, start, length), myBinary);
}

UT_IStream *UT_IStream::newZLibStream() const
{
    return new UT_IStream(UT_IStreamBuf::makeZLib(*mySource), myBinary);
}

UT_IStream *UT_IStream::newGZipStream() const
{
    return new UT_IStream(UT_IStreamBuf::makeGZip(*mySource), myBinary);
}
