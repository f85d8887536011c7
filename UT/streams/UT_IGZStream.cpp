#include "UT/UT_IGZStream.h"

UT_IGZStream::UT_IGZStream(UT_IStream &src)
    : UT_IStream(UT_IStreamBuf::makeGZip(src.getSource()), src.isBinary())
{
}

UT_IGZStream::~UT_IGZStream() = default;
