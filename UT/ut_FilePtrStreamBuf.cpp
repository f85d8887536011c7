#include "UT/ut_FilePtrStreamBuf.h"

ut_FilePtrStreamBuf::ut_FilePtrStreamBuf(const char *path)
    : ut_FileStreamBuf(std::fopen(path ? path : "", "rb"))
{
}

bool ut_FilePtrStreamBuf::close()
{
    if (!myFile)
        return true;
    const bool closed = std::fclose(myFile) == 0;
    myFile = nullptr;
    if (!closed)
        setError();
    return closed;
}

ut_FilePtrStreamBuf::~ut_FilePtrStreamBuf()
{
    ut_FilePtrStreamBuf::close();
}
