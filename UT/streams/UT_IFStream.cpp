#include "UT/UT_IFStream.h"

UT_IFStream::UT_IFStream() : UT_IStream(UT_IStreamBuf::makeEmpty(), true) {}

UT_IFStream::UT_IFStream(const char *path, bool binary) : UT_IFStream()
{
    install(UT_IStreamBuf::openFile(path), path, binary);
}

UT_IFStream::~UT_IFStream() = default;

bool UT_IFStream::open(const char *path, bool binary)
{
    if (!close())
        return false;
    install(UT_IStreamBuf::openFile(path), path, binary);
    return !hasError();
}
