#include "UT/streams/ut_FilePtrStreamBuf.h"

ut_FilePtrStreamBuf::ut_FilePtrStreamBuf(const char *path)
    // "e": programs started while it is open do not inherit it.
    : ut_FileStreamBuf(std::fopen(path ? path : "", "rbe"))
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
