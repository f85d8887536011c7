// An input stream over the decompressed form of another stream's gzip data.
//
// As UT_IZStream; a header that is no gzip header shows at the first read.
//
// A run of thumbrender does not come here: this is for other users of the library.
#pragma once

#include "UT/UT_IStream.h"

class UT_IGZStream : public UT_IStream
{
public:
    explicit UT_IGZStream(UT_IStream &src);
    ~UT_IGZStream() override;
};
