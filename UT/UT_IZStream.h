// An input stream over the decompressed form of another stream's zlib data.
//
// It starts where the other stream stands, shares its source and takes over its
// form; nobody else may read from that source meanwhile. See ut_ZLibStreamBuf.h
// for positions and errors.
//
// A run of thumbrender does not come here: this is for other users of the library.
#pragma once

#include "UT/UT_IStream.h"

class UT_IZStream : public UT_IStream
{
public:
    explicit UT_IZStream(UT_IStream &src);
    ~UT_IZStream() override;
};
