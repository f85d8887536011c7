#include "CPP/cpp_DefStream.h"

#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"

#include <cstring>
#include <sys/stat.h>

namespace
{
bool isFolder(FILE *fp)
{
    struct stat info;
    return fstat(fileno(fp), &info) == 0 && S_ISDIR(info.st_mode);
}
} // namespace

cpp_DefStream::cpp_DefStream()
    : myFile(stdin), myStream(nullptr), ownsFile(false), myNext(nullptr), myEnd(nullptr)
{
}

cpp_DefStream::~cpp_DefStream()
{
    closeOwned();
}

void cpp_DefStream::closeOwned()
{
    if (ownsFile)
        std::fclose(myFile);
    myFile = nullptr;
    myStream = nullptr;
    ownsFile = false;
    myNext = myEnd = nullptr;
}

bool cpp_DefStream::open(const char *path)
{
    closeOwned();
    myFile = std::fopen(path, "rbe");
    ownsFile = myFile != nullptr;
    if (!ownsFile)
        return false;
    if (isFolder(myFile)) {
        closeOwned();
        return false;
    }
    std::setvbuf(myFile, nullptr, _IONBF, 0); // the block below is the only copy
    if (myBlock == nullptr)
        myBlock.reset(new char[BLOCK_BYTES]);
    return true;
}

void cpp_DefStream::setFile(FILE *fp)
{
    closeOwned();
    myFile = fp;
}

void cpp_DefStream::setStream(UT_IStream *is)
{
    closeOwned();
    myStream = is;
}

bool cpp_DefStream::readLine(UT_ScratchBuffer &line)
{
    if (ownsFile)
        return readFromBlock(line);
    if (myFile != nullptr)
        return line.getLine(myFile);
    return myStream != nullptr && myStream->getLine(line, '\n');
}

bool cpp_DefStream::readFromBlock(UT_ScratchBuffer &line)
{
    line.clear();
    for (bool any = false;; any = true) {
        if (myNext == myEnd) {
            const size_t count = std::fread(myBlock.get(), 1, BLOCK_BYTES, myFile);
            if (count == 0)
                return any;
            myNext = myBlock.get();
            myEnd = myNext + count;
        }
        const auto room = static_cast<size_t>(myEnd - myNext);
        const auto *newline = static_cast<const char *>(std::memchr(myNext, '\n', room));
        const char *end = newline != nullptr ? newline : myEnd;
        line.append(myNext, static_cast<int>(end - myNext));
        myNext = newline != nullptr ? newline + 1 : end;
        if (newline == nullptr)
            continue;
        const int length = line.length();
        if (length > 0 && line.buffer()[length - 1] == '\r')
            line.truncate(length - 1);
        return true;
    }
}

bool cpp_DefStream::isOpen() const
{
    return myFile != nullptr || myStream != nullptr;
}
