// The source that has nothing.
#pragma once

#include "UT/UT_IStreamBuf.h"

class ut_NullStreamBuf : public UT_IStreamBuf
{
public:
    int read(void *, int) override { return 0; }
    int peekChar() override { return -1; }
    const char *fillBuffer(int &, int &) override { return nullptr; }
    int64_t tell() override { return -1; }
    bool seek(int64_t, int) override { return false; }
    bool isEof() override { return true; }
};
