// A source that decompresses another source: the zlib format of RFC 1950.
//
// Positions count decompressed bytes. Moving forward decompresses and drops;
// moving back starts over from the beginning of the compressed data. There is no
// moving from the end. Data that end too soon are the end of the input; corrupt
// data are an error with zlib's text.
#pragma once

#include "UT/UT_IStreamBuf.h"

#include <zlib.h>

class ut_ZLibStreamBuf : public UT_IStreamBuf
{
public:
    // Reads from the input's current position on, and takes a reference to it.
    explicit ut_ZLibStreamBuf(UT_IStreamBuf &source);

    int read(void *dst, int n) override;
    int peekChar() override;

    ~ut_ZLibStreamBuf() override;

    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override;
    bool seek(int64_t pos, int whence) override;
    bool isEof() override;

    // Readies a new source; one that was refused fails at its first read.
    virtual bool init();

    // Back to the first decompressed byte.
    [[nodiscard]] virtual bool rewind();

protected:
    UT_IStreamBuf &getSource() const { return mySource; }

    // Readies zlib for a window of so many bits; negative: without its header.
    void start(int windowBits);

private:
    static constexpr int BLOCK_BYTES = 4096;

    int inflateInto(char *dst, int n);
    bool fetchInput();

    UT_IStreamBuf &mySource; // one reference is ours
    z_stream myZStream = {};
    int64_t myStartPos; // of the compressed data in their source
    int64_t myPosition = 0;
    int myPeekChar = -1; // taken from the data, but not delivered yet
    char myInBlock[BLOCK_BYTES];
    char myOutBlock[BLOCK_BYTES];
    bool myAtEnd = false;
    bool myIsStarted = false; // zlib took no objection
};
