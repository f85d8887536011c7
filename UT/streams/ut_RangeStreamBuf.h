// A range of another source's bytes, as a source of its own.
//
// Positions count from the range's start. The range and its inner source move
// together: a chunk of the range is a part of the inner source's chunk, so
// nobody else may read from the inner source while the range is in use.
#pragma once

#include "UT/UT_IStreamBuf.h"

class ut_RangeStreamBuf : public UT_IStreamBuf
{
public:
    // Takes a reference to the inner source and moves it to `start`; when it
    // cannot be moved, the range is empty.
    ut_RangeStreamBuf(UT_IStreamBuf &inner, int64_t start, int64_t length);

    int read(void *dst, int n) override;
    int peekChar() override;

    ~ut_RangeStreamBuf() override;

    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override;

    // Behind the range's end lies the end of its input; in front of its start
    // is an error, and the range is empty then.
    bool seek(int64_t pos, int whence) override;
    bool isEof() override;

private:
    bool fail(int reason); // records the errno; false

    UT_IStreamBuf &myInner;
    int64_t myStart;
    int64_t myEndPos;
    int64_t myRemaining;
};
