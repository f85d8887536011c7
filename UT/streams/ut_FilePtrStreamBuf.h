// A source over a file of its own, opened by name.
#pragma once

#include "UT/streams/ut_FileStreamBuf.h"

class ut_FilePtrStreamBuf : public ut_FileStreamBuf
{
public:
    // A file that cannot be opened leaves the source without one. Programs that are
    // started while it is open do not inherit it.
    explicit ut_FilePtrStreamBuf(const char *path);

    bool close() override;

    ~ut_FilePtrStreamBuf() override;
};
