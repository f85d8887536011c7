#include "UT/streams/ut_StreamStreamBuf.h"

#include <cerrno>
#include <istream>

namespace
{

const std::ios_base::seekdir DIRECTIONS[] = {std::ios_base::beg, std::ios_base::cur,
                                             std::ios_base::end};

} // namespace

int ut_StreamStreamBuf::read(void *dst, int n)
{
    myStream.read(static_cast<char *>(dst), n);
    if (myStream.fail() && !myStream.eof())
        setError();
    return hasError() ? 0 : static_cast<int>(myStream.gcount());
}

int ut_StreamStreamBuf::peekChar()
{
    const int next = myStream.peek();
    if (!myStream.fail())
        return next;
    if (!myStream.eof())
        setError();
    return -1;
}

const char *ut_StreamStreamBuf::fillBuffer(int &start, int &end)
{
    start = 0;
    end = read(myBlock, BLOCK_BYTES);
    return end > 0 ? myBlock : nullptr;
}

// A stream that came to its end has failed too and would neither tell its
// position nor move.
void ut_StreamStreamBuf::forgetEnd()
{
    if (myStream.eof() && !myStream.bad())
        myStream.clear();
}

int64_t ut_StreamStreamBuf::tell()
{
    const std::ios_base::iostate state = myStream.rdstate();
    forgetEnd();
    const int64_t position = static_cast<std::streamoff>(myStream.tellg());
    myStream.clear(state); // asking for the position changes nothing
    return position;
}

bool ut_StreamStreamBuf::seek(int64_t pos, int whence)
{
    forgetEnd();
    if (whence < 0 || whence > 2) {
        errno = EINVAL;
        setError();
        return false;
    }
    const bool hadFailed = myStream.fail();
    myStream.seekg(static_cast<std::streamoff>(pos), DIRECTIONS[whence]);
    if (!myStream.fail())
        return true;
    setError();
    if (!hadFailed) // or the stream would refuse the next position, too
        myStream.clear(myStream.rdstate() & ~std::ios_base::failbit);
    return false;
}

bool ut_StreamStreamBuf::isEof()
{
    return myStream.eof();
}
