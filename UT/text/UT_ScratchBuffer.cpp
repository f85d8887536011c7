#include "UT/UT_ScratchBuffer.h"

#include "UT/UT_Memory.h"
#include "UT/UT_String.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

UT_ScratchBuffer::UT_ScratchBuffer()
    : myBuffer(myInline), myAllocSize(INLINE_BYTES), myLength(0), myLockCount(0)
{
    myInline[0] = '\0';
}

UT_ScratchBuffer::~UT_ScratchBuffer()
{
    if (myBuffer != myInline)
        std::free(myBuffer);
}

void UT_ScratchBuffer::reserve(int n)
{
    if (n <= myAllocSize)
        return;
    const size_t bytes = static_cast<size_t>(n);
    if (myBuffer != myInline) {
        myBuffer = static_cast<char *>(UTreallocate(myBuffer, bytes));
    } else {
        myBuffer = static_cast<char *>(UTallocate(bytes));
        std::memcpy(myBuffer, myInline, INLINE_BYTES);
    }
    myAllocSize = n;
}

void UT_ScratchBuffer::growFor(int extra)
{
    const int64_t needed = int64_t{myLength} + extra + 1;
    if (needed <= myAllocSize)
        return;
    int64_t capacity = myAllocSize;
    while (capacity < needed)
        capacity *= 2;
    // Lengths are ints.
    if (capacity > INT_MAX)
        capacity = INT_MAX;
    if (capacity < needed) // more text than an int counts: ends the process
        std::free(UTallocate(static_cast<size_t>(-1)));
    reserve(static_cast<int>(capacity));
}

void UT_ScratchBuffer::append(const char *text)
{
    if (text == nullptr)
        return;
    const size_t length = std::strlen(text);
    append(text, length < INT_MAX ? static_cast<int>(length) : INT_MAX);
}

void UT_ScratchBuffer::append(const char *text, int length)
{
    if (isLocked() || length <= 0)
        return;
    growFor(length);
    std::memcpy(myBuffer + myLength, text, static_cast<size_t>(length));
    myLength += length;
    myBuffer[myLength] = '\0';
}

void UT_ScratchBuffer::append(char c)
{
    append(&c, 1);
}

void UT_ScratchBuffer::clear()
{
    if (!isLocked())
        truncate(0);
}

void UT_ScratchBuffer::truncate(int length)
{
    myLength = length;
    myBuffer[myLength] = '\0';
}

char *UT_ScratchBuffer::lock(int offset, int extra)
{
    ++myLockCount;
    reserve(offset + extra);
    return myBuffer + offset;
}

void UT_ScratchBuffer::release(bool recomputeLength)
{
    --myLockCount;
    // Who wrote by a pointer could not tell us how far.
    if (!isLocked() && recomputeLength)
        myLength = static_cast<int>(std::strlen(myBuffer));
}

void UT_ScratchBuffer::sprintf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    // Into what is there first; most texts fit, and the call tells how long one is.
    int length = std::vsnprintf(myBuffer, static_cast<size_t>(myAllocSize), format, args);
    va_end(args);
    if (length >= myAllocSize) {
        myLength = 0;
        growFor(length);
        length = std::vsnprintf(myBuffer, static_cast<size_t>(myAllocSize), format, again);
    }
    va_end(again);
    truncate(length > 0 ? length : 0);
}

void UT_ScratchBuffer::appendSprintf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    char *text = nullptr;
    const int length = UTprint(text, format, args);
    va_end(args);
    if (length < 0)
        return;
    append(text, length);
    std::free(text);
}

bool UT_ScratchBuffer::getLine(FILE *fp)
{
    truncate(0);
    int c;
    // One byte at a time and no further: the file is somebody else's, who reads on.
    while ((c = getc_unlocked(fp)) != EOF && c != '\n') {
        growFor(1);
        myBuffer[myLength++] = static_cast<char>(c);
    }
    if (c == EOF && myLength == 0)
        return false;
    const bool hasReturn = myLength > 0 && myBuffer[myLength - 1] == '\r';
    truncate(hasReturn ? myLength - 1 : myLength);
    return true;
}

void UT_ScratchBuffer::stripComment(char c)
{
    char quote = '\0';
    for (int i = 0; i < myLength; ++i) {
        const char here = myBuffer[i];
        if (i > 0 && myBuffer[i - 1] == '\\')
            continue;
        if (quote != '\0') {
            if (here == quote)
                quote = '\0';
        } else if (here == c) {
            truncate(i);
        } else if (here == '"' || here == '\'') {
            quote = here;
        }
    }
}

void UT_ScratchBuffer::swap(UT_ScratchBuffer &other)
{
    // Texts inside the objects have to be moved, others change hands.
    const bool isInline = myBuffer == myInline;
    const bool isOtherInline = other.myBuffer == other.myInline;
    // With the NULs behind the texts; the rest is nobody's.
    const int used = std::max(isInline ? myLength + 1 : 0, isOtherInline ? other.myLength + 1 : 0);
    std::swap_ranges(myInline, myInline + used, other.myInline);
    std::swap(myBuffer, other.myBuffer);
    std::swap(myAllocSize, other.myAllocSize);
    std::swap(myLength, other.myLength);
    if (isOtherInline)
        myBuffer = myInline;
    if (isInline)
        other.myBuffer = other.myInline;
}

void UT_ScratchBuffer::copyToString(UT_String &out) const
{
    out.assignCopy(myBuffer);
}
