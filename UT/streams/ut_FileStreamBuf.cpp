#include "UT/streams/ut_FileStreamBuf.h"

#include "UT/files/ut_FileOps.h"

ut_FileStreamBuf::ut_FileStreamBuf(FILE *fp) : myFile(fp)
{
    if (!myFile)
        setError(); // errno is still that of the fopen that failed
}

int ut_FileStreamBuf::read(void *dst, int n)
{
    if (!myFile)
        return 0;
    const int got = ut_FileOps::read(myFile, dst, n);
    if (got == 0)
        setError();
    return got;
}

int ut_FileStreamBuf::peekChar()
{
    return myFile ? ut_FileOps::peek(myFile) : -1;
}

const char *ut_FileStreamBuf::fillBuffer(int &start, int &end)
{
    if (!myFile)
        return nullptr;
    start = 0;
    end = ut_FileOps::read(myFile, myBlock, BLOCK_BYTES);
    if (end == 0 && std::ferror(myFile))
        setError(); // a directory, say: it opens, but does not read
    return end > 0 ? myBlock : nullptr;
}

int64_t ut_FileStreamBuf::tell()
{
    return myFile ? ut_FileOps::tell(myFile) : -1;
}

bool ut_FileStreamBuf::seek(int64_t pos, int whence)
{
    if (!myFile)
        return false;
    const bool moved = ut_FileOps::seek(myFile, pos, whence);
    if (!moved)
        setError();
    return moved;
}

bool ut_FileStreamBuf::isEof()
{
    return !myFile || std::feof(myFile) != 0;
}
