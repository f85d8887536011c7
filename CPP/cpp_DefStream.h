// The line source that a manager uses unless a caller brings its own: a file, a
// lent FILE or a lent stream. A new one reads the process's standard input.
//
// A file that it opened itself is read in large blocks; of a lent source nothing
// beyond the line asked for is taken.
#pragma once

#include "CPP/CPP_Stream.h"

#include <memory>

class cpp_DefStream : public CPP_Stream
{
public:
    cpp_DefStream();
    ~cpp_DefStream() override;

    bool open(const char *path) override; // a folder does not open
    void setFile(FILE *fp) override;
    void setStream(UT_IStream *is) override;
    bool readLine(UT_ScratchBuffer &line) override;
    bool isOpen() const override;

private:
    static constexpr size_t BLOCK_BYTES = 65536;

    void closeOwned();
    bool readFromBlock(UT_ScratchBuffer &line);

    FILE *myFile;         // looked at first
    UT_IStream *myStream; // not owned
    bool ownsFile;

    // What was read of an owned file and not yet asked for.
    std::unique_ptr<char[]> myBlock;
    const char *myNext;
    const char *myEnd;
};
