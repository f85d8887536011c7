// A source of lines: what an open input of the preprocessor is read through.
//
// A manager makes one for each file it opens (CPP_Manager::newStream). A class
// derived from this can feed it from elsewhere.
#pragma once

#include <cstdio>

class UT_IStream;
class UT_ScratchBuffer;

class CPP_Stream
{
public:
    virtual ~CPP_Stream();

    // Opens the file and closes what was open; false when it cannot be read.
    [[nodiscard]] virtual bool open(const char *path) = 0;

    // Read from here on from a source of the caller's, which stays the caller's
    // and must outlive this. No more is taken from it than the lines asked for.
    virtual void setFile(FILE *fp) = 0;
    virtual void setStream(UT_IStream *is) = 0;

    // Replaces the buffer's text by the next line without its "\n" or "\r\n".
    // False at the end of input, and for good after a read error.
    [[nodiscard]] virtual bool readLine(UT_ScratchBuffer &line) = 0;

    virtual bool isOpen() const = 0;

    // A condition that a derived class may raise; the manager only notes it.
    virtual bool isSpecial() const;

    // What comes next and is in memory already, for a reader who can take many lines
    // at a time; null when nothing is, or when lines have to be asked for one by one.
    // A source of its own may fetch more first. It holds until the next call.
    virtual const char *peekBuffered(int &length);
    virtual void skipBuffered(int length); // at most as much as peekBuffered() gave

    // Why reading ended before the end of input; null when it did not. The manager then
    // ends with a diagnostic: half of a text must not pass for the whole.
    virtual const char *readError() const;

protected:
    CPP_Stream() = default;
    CPP_Stream(const CPP_Stream &) = delete;
    CPP_Stream &operator=(const CPP_Stream &) = delete;
};
