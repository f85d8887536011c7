// An input stream over a file that is opened by name.
//
// The file is read as it is: compressed data come out compressed. The file is
// closed by close(), by the next open() and at the stream's end.
#pragma once

#include "UT/UT_IStream.h"

class UT_IFStream : public UT_IStream
{
public:
    // Without a file: at its end from the start.
    UT_IFStream();

    // Opens a file; when that fails, hasError() is true.
    UT_IFStream(const char *path, bool binary);

    ~UT_IFStream() override;

    // Closes what was open, and opens another file. False when either fails: a
    // file that does not close stays, one that does not open leaves the stream
    // with an error.
    [[nodiscard]] bool open(const char *path, bool binary);
};
