// A source over a C file that somebody else owns.
//
// Without a file (null) the source has an error from the start, and every
// operation gives what the end of the input gives.
#pragma once

#include "UT/UT_IStreamBuf.h"

class ut_FileStreamBuf : public UT_IStreamBuf
{
public:
    explicit ut_FileStreamBuf(FILE *fp);

    // To read nothing at all counts as an error.
    int read(void *dst, int n) override;
    int peekChar() override;
    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override;
    bool seek(int64_t pos, int whence) override;
    bool isEof() override;

protected:
    static constexpr int BLOCK_BYTES = 4096;

    char myBlock[BLOCK_BYTES];
    FILE *myFile;
};
