// A source over a block of memory that somebody else owns.
#pragma once

#include "UT/UT_IStreamBuf.h"

class ut_MemoryStreamBuf : public UT_IStreamBuf
{
public:
    // A null block is an empty one.
    ut_MemoryStreamBuf(const char *data, int size);

    int read(void *dst, int n) override;
    int peekChar() override;

    // All the rest at once, without a copy.
    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override;
    bool seek(int64_t pos, int whence) override;
    bool isEof() override;

private:
    const char *myData;
    int mySize;
    int myPosition = 0;
};
