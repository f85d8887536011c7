// The line source that a manager uses unless a caller brings its own: a file, a
// lent FILE or a lent stream. A new one reads the process's standard input.
//
// A file that it opened itself is read in large blocks, or as a whole when it is
// small; of a lent source nothing beyond the line asked for is taken.
#pragma once

#include "CPP/CPP_Stream.h"

#include <memory>
#include <string>

class cpp_SmallFiles;

class cpp_DefStream : public CPP_Stream
{
public:
    // With `smallFiles`, which must outlive this, small files are read only once.
    explicit cpp_DefStream(cpp_SmallFiles *smallFiles = nullptr);
    ~cpp_DefStream() override;

    bool open(const char *path) override; // a folder does not open
    void setFile(FILE *fp) override;
    void setStream(UT_IStream *is) override;
    bool readLine(UT_ScratchBuffer &line) override;
    const char *peekBuffered(int &length) override;
    void skipBuffered(int length) override { myNext += length; }
    bool isOpen() const override;
    const char *readError() const override;

private:
    static constexpr size_t BLOCK_BYTES = 65536;

    void close();
    bool takeWhole(const char *path); // of a small file; false for others
    bool fillBlock();                 // when it is used up; false at its end or an error
    bool readFromBlock(UT_ScratchBuffer &line);
    bool readFromFile(UT_ScratchBuffer &line);

    cpp_SmallFiles *mySmallFiles;
    FILE *myFile = nullptr;         // lent; looked at first
    UT_IStream *myStream = nullptr; // lent

    // What it opened itself; without a descriptor all of it is in memory.
    bool isOwn = false;
    int myDescriptor = -1;
    const char *myNext = nullptr; // what was read of it and not yet asked for
    const char *myEnd = nullptr;
    int myReadError = 0; // errno of the file that it opened, or of the one lent
    std::unique_ptr<char[]> myBlock;
};
