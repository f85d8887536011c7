// Standard input, line by line, so that each line counts as soon as it is typed.
//
// A chunk is one line with a newline; a last line without one is given one, and
// a carriage return in front of it goes.
#pragma once

#include "UT/UT_IStreamBuf.h"
#include "UT/UT_ScratchBuffer.h"

class ut_StdinStreamBuf : public UT_IStreamBuf
{
public:
    // To read fewer than n bytes counts as an error.
    int read(void *dst, int n) override;
    int peekChar() override;
    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override;
    bool seek(int64_t pos, int whence) override;
    bool isEof() override;

private:
    UT_ScratchBuffer myLine;
};
