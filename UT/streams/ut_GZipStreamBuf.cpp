#include "UT/streams/ut_GZipStreamBuf.h"

#include <algorithm>

namespace
{

// RFC 1952, section 2.3.1; the text flag, 1, changes nothing here.
enum Flags {
    HEADER_CRC = 2,
    EXTRA_FIELD = 4,
    FILE_NAME = 8,
    COMMENT = 16,
    RESERVED = 32 // and all above
};

} // namespace

bool ut_GZipStreamBuf::init()
{
    if (!readHeader())
        return false;
    myDataStart = getSource().tellg();
    start(-MAX_WBITS); // bare deflate data, without zlib's own header
    return true;
}

// The start of the compressed data is the header's; zlib wants what follows it.
bool ut_GZipStreamBuf::rewind()
{
    return ut_ZLibStreamBuf::rewind() && getSource().seekg(myDataStart, 0);
}

bool ut_GZipStreamBuf::readHeader()
{
    unsigned char magic[2], method[2], length[2];
    if (!readBytes(magic, 2) || magic[0] != 31 || magic[1] != 139)
        return false;
    if (!readBytes(method, 2) || method[0] != Z_DEFLATED || method[1] >= RESERVED)
        return false;
    const int flags = method[1];
    if (!skipBytes(6)) // time, extra flags, operating system
        return false;
    if ((flags & EXTRA_FIELD) && !(readBytes(length, 2) && skipBytes(length[0] | length[1] << 8)))
        return false;
    if ((flags & FILE_NAME) && !skipText())
        return false;
    if ((flags & COMMENT) && !skipText())
        return false;
    return !(flags & HEADER_CRC) || skipBytes(2);
}

bool ut_GZipStreamBuf::readBytes(unsigned char *bytes, int n)
{
    return getSource().bread(bytes, n) == n;
}

bool ut_GZipStreamBuf::skipBytes(int n)
{
    unsigned char dropped[256];
    while (n > 0) {
        const int piece = std::min<int>(n, sizeof dropped);
        if (!readBytes(dropped, piece))
            return false;
        n -= piece;
    }
    return true;
}

bool ut_GZipStreamBuf::skipText()
{
    unsigned char c;
    do {
        if (!readBytes(&c, 1))
            return false;
    } while (c != 0);
    return true;
}
