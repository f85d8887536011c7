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
    std::vector<char> chunk;
    for (bool isCut = isEof(); !isCut; isCut = isEof() || (myCuts >> (myPosition - 1) % 64 & 1))
        chunk.push_back(myText[myPosition++]);
    chunk.shrink_to_fit();
    myChunk.swap(chunk);
    start = 0;
    end = static_cast<int>(myChunk.size());
    return end > 0 ? myChunk.data() : nullptr;
}
