#include "UT/UT_IZStream.h"

UT_IZStream::UT_IZStream(UT_IStream &src)
    : UT_IStream(UT_IStreamBuf::makeZLib(src.getSource()), src.isBinary())
{
}

UT_IZStream::~UT_IZStream() = default;
