// What sources of bytes there are: the one place that knows them all.
#include "UT/UT_IStreamBuf.h"

#include "UT/streams/ut_FilePtrStreamBuf.h"
#include "UT/streams/ut_FileStreamBuf.h"
#include "UT/streams/ut_GZipStreamBuf.h"
#include "UT/streams/ut_MemoryStreamBuf.h"
#include "UT/streams/ut_NullStreamBuf.h"
#include "UT/streams/ut_RangeStreamBuf.h"
#include "UT/streams/ut_StdinStreamBuf.h"
#include "UT/streams/ut_StreamStreamBuf.h"
#include "UT/streams/ut_ZLibStreamBuf.h"

#include <iostream>
#include <unistd.h>

static bool stdinLineMode = false;

UT_IStreamBuf *UT_IStreamBuf::openFile(const char *path)
{
    return new ut_FilePtrStreamBuf(path);
}

UT_IStreamBuf *UT_IStreamBuf::wrapFile(FILE *fp)
{
    return fp == stdin ? sharedStdin() : new ut_FileStreamBuf(fp);
}

UT_IStreamBuf *UT_IStreamBuf::wrapStream(std::istream &is)
{
    return &is == &std::cin ? sharedStdin() : new ut_StreamStreamBuf(is);
}

UT_IStreamBuf *UT_IStreamBuf::wrapMemory(const char *data, int size)
{
    return new ut_MemoryStreamBuf(data, size);
}

UT_IStreamBuf *UT_IStreamBuf::makeRange(UT_IStreamBuf &inner, int64_t start, int64_t length)
{
    return new ut_RangeStreamBuf(inner, start, length);
}

UT_IStreamBuf *UT_IStreamBuf::makeEmpty()
{
    return new ut_NullStreamBuf;
}

// Whether init() liked the data is left to the first read, where a reader looks for
// errors anyway.
UT_IStreamBuf *UT_IStreamBuf::makeZLib(UT_IStreamBuf &inner)
{
    auto *source = new ut_ZLibStreamBuf(inner);
    source->init();
    return source;
}

UT_IStreamBuf *UT_IStreamBuf::makeGZip(UT_IStreamBuf &inner)
{
    auto *source = new ut_GZipStreamBuf(inner);
    source->init();
    return source;
}

void UT_IStreamBuf::setStdinLineMode(bool lineByLine)
{
    stdinLineMode = lineByLine;
}

UT_IStreamBuf *UT_IStreamBuf::sharedStdin()
{
    static UT_IStreamBuf *shared = nullptr;
    if (!shared) {
        // A person at a terminal expects an answer to each line.
        if (stdinLineMode || isatty(fileno(stdin)))
            shared = new ut_StdinStreamBuf;
        else
            shared = new ut_FileStreamBuf(stdin);
        shared->addReference(); // ours, which keeps it to the end of the process
    }
    shared->addReference();
    return shared;
}
