#include "UT/streams/ut_MemoryStreamBuf.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

ut_MemoryStreamBuf::ut_MemoryStreamBuf(const char *data, int size)
    : myData(data), mySize(data ? std::max(size, 0) : 0)
{
}

int ut_MemoryStreamBuf::read(void *dst, int n)
{
    const int got = std::clamp(n, 0, mySize - myPosition);
    if (got > 0)
        std::memcpy(dst, myData + myPosition, static_cast<size_t>(got));
    myPosition += got;
    return got;
}

int ut_MemoryStreamBuf::peekChar()
{
    return isEof() ? -1 : static_cast<unsigned char>(myData[myPosition]);
}

const char *ut_MemoryStreamBuf::fillBuffer(int &start, int &end)
{
    if (isEof())
        return nullptr;
    // The chunk is the whole block, so that what was read can be taken back.
    start = myPosition;
    end = myPosition = mySize;
    return myData;
}

int64_t ut_MemoryStreamBuf::tell()
{
    return myPosition;
}

bool ut_MemoryStreamBuf::seek(int64_t pos, int whence)
{
    // Compared by differences: origin + pos could overflow.
    const int origins[] = {0, myPosition, mySize};
    const bool isKnown = whence >= 0 && whence <= 2;
    const int64_t origin = isKnown ? origins[whence] : 0;
    if (!isKnown || pos < -origin || pos > mySize - origin) {
        errno = EINVAL;
        setError();
        return false;
    }
    myPosition = static_cast<int>(origin + pos);
    return true;
}

bool ut_MemoryStreamBuf::isEof()
{
    return myPosition == mySize;
}
