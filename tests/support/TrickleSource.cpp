#include "tests/support/TrickleSource.h"

int TrickleSource::read(void *dst, int n)
{
    const size_t got = myText.copy(static_cast<char *>(dst), static_cast<size_t>(n), myPosition);
    myPosition += got;
    return static_cast<int>(got);
}

int TrickleSource::peekChar()
{
    return isEof() ? -1 : static_cast<unsigned char>(myText[myPosition]);
}

const char *TrickleSource::fillBuffer(int &start, int &end)
{
    start = 0;
    end = read(myChunk, 1);
    return end > 0 ? myChunk : nullptr;
}
