#include "UT/streams/ut_StdinStreamBuf.h"

#include "UT/files/ut_FileOps.h"

int ut_StdinStreamBuf::read(void *dst, int n)
{
    const int got = ut_FileOps::read(stdin, dst, n);
    if (got < n)
        setError();
    return got;
}

int ut_StdinStreamBuf::peekChar()
{
    return ut_FileOps::peek(stdin);
}

const char *ut_StdinStreamBuf::fillBuffer(int &start, int &end)
{
    // A line at a time: at a terminal a user waits for the answer to each.
    const bool any = myLine.getLine(stdin);
    if (std::ferror(stdin) != 0)
        setError();
    if (!any)
        return nullptr;
    myLine.append('\n');
    start = 0;
    end = myLine.length();
    return myLine.buffer();
}

int64_t ut_StdinStreamBuf::tell()
{
    return ut_FileOps::tell(stdin);
}

bool ut_StdinStreamBuf::seek(int64_t pos, int whence)
{
    const bool moved = ut_FileOps::seek(stdin, pos, whence);
    if (!moved)
        setError();
    return moved;
}

bool ut_StdinStreamBuf::isEof()
{
    return std::feof(stdin) != 0;
}
