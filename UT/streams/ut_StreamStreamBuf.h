// A source over a standard library stream that somebody else owns.
#pragma once

#include "UT/UT_IStreamBuf.h"

class ut_StreamStreamBuf : public UT_IStreamBuf
{
public:
    explicit ut_StreamStreamBuf(std::istream &is) : myStream(is) {}

    // The stream's failure counts as an error unless it only came to its end.
    int read(void *dst, int n) override;
    int peekChar() override;
    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override;
    bool seek(int64_t pos, int whence) override;
    bool isEof() override;

private:
    static constexpr int BLOCK_BYTES = 4096;

    void forgetEnd();

    char myBlock[BLOCK_BYTES];
    std::istream &myStream;
};
