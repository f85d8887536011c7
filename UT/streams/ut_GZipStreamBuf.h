// A source that decompresses gzip data (RFC 1952).
//
//     | 31 139 | 8 | flags | 6 bytes | extra | name 0 | comment 0 | crc | deflate ...
//
// The four fields in front of the data are there when their flag is. The trailer
// behind them, a checksum and the length, is not looked at, and a second member
// is not read.
#pragma once

#include "UT/streams/ut_ZLibStreamBuf.h"

class ut_GZipStreamBuf : public ut_ZLibStreamBuf
{
public:
    using ut_ZLibStreamBuf::ut_ZLibStreamBuf;

    // False for a header that is no gzip header.
    bool init() override;
    bool rewind() override;

private:
    bool readBytes(unsigned char *bytes, int n);
    bool readHeader();
    bool skipBytes(int n);
    bool skipText();

    int64_t myDataStart = 0; // behind the header
};
