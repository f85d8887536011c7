#include "UT/streams/ut_ZLibStreamBuf.h"

#include <algorithm>

ut_ZLibStreamBuf::ut_ZLibStreamBuf(UT_IStreamBuf &source)
    : mySource(source), myStartPos(source.tellg())
{
    mySource.addReference();
}

ut_ZLibStreamBuf::~ut_ZLibStreamBuf()
{
    inflateEnd(&myZStream);
    mySource.release();
}

bool ut_ZLibStreamBuf::init()
{
    start(MAX_WBITS);
    return true; // a refusal shows at the first read
}

void ut_ZLibStreamBuf::start(int windowBits)
{
    myIsStarted = inflateInit2(&myZStream, windowBits) == Z_OK;
}

bool ut_ZLibStreamBuf::rewind()
{
    if (!mySource.seekg(myStartPos, 0) || inflateReset(&myZStream) != Z_OK)
        return false;
    myZStream.avail_in = 0;
    myPosition = 0;
    myAtEnd = false;
    myPeekChar = -1;
    return true;
}

bool ut_ZLibStreamBuf::fetchInput()
{
    if (myZStream.avail_in > 0)
        return true;
    // The input's end is no error here: data may be cut, and what came is delivered.
    const int got = mySource.bread(myInBlock, BLOCK_BYTES);
    myZStream.next_in = reinterpret_cast<Bytef *>(myInBlock);
    myZStream.avail_in = static_cast<uInt>(got);
    return got > 0;
}

int ut_ZLibStreamBuf::inflateInto(char *dst, int n)
{
    myZStream.next_out = reinterpret_cast<Bytef *>(dst);
    myZStream.avail_out = static_cast<uInt>(n);
    // Before any input is asked for: a refused header may have used all of it up.
    if (!myIsStarted)
        setError(zError(Z_STREAM_ERROR));
    while (myIsStarted && myZStream.avail_out > 0 && !myAtEnd && fetchInput()) {
        const int result = inflate(&myZStream, Z_NO_FLUSH);
        if (result == Z_STREAM_END) {
            myAtEnd = true;
        } else if (result != Z_OK) {
            setError(zError(result));
            break;
        }
    }
    return n - static_cast<int>(myZStream.avail_out);
}

int ut_ZLibStreamBuf::read(void *dst, int n)
{
    if (n <= 0)
        return 0;
    char *out = static_cast<char *>(dst);
    int delivered = 0;
    if (myPeekChar >= 0) {
        out[delivered++] = static_cast<char>(myPeekChar);
        myPeekChar = -1;
    }
    delivered += inflateInto(out + delivered, n - delivered);
    myPosition += delivered;
    return delivered;
}

int ut_ZLibStreamBuf::peekChar()
{
    unsigned char next;
    // Decompressed data cannot be put back, so the byte waits for the next read.
    if (myPeekChar < 0 && read(&next, 1) == 1) {
        --myPosition;
        myPeekChar = next;
    }
    return myPeekChar;
}

const char *ut_ZLibStreamBuf::fillBuffer(int &start, int &end)
{
    start = 0;
    end = read(myOutBlock, BLOCK_BYTES);
    return end > 0 ? myOutBlock : nullptr;
}

int64_t ut_ZLibStreamBuf::tell()
{
    return myPosition;
}

bool ut_ZLibStreamBuf::seek(int64_t pos, int whence)
{
    int64_t target = pos;
    if (whence == 1 && __builtin_add_overflow(myPosition, pos, &target))
        return false;
    if (whence != 0 && whence != 1)
        return false;
    if (target < myPosition && !rewind())
        return false;
    char dropped[1024];
    while (myPosition < target) {
        const int piece = static_cast<int>(std::min<int64_t>(target - myPosition, sizeof dropped));
        if (read(dropped, piece) < piece)
            return false;
    }
    return myPosition == target;
}

bool ut_ZLibStreamBuf::isEof()
{
    return myAtEnd;
}
