#include "CPP/files/cpp_DefStream.h"

#include "CPP/files/cpp_SmallFiles.h"
#include "UT/UT_IStream.h"
#include "UT/UT_ScratchBuffer.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

cpp_DefStream::cpp_DefStream(cpp_SmallFiles *smallFiles) : mySmallFiles(smallFiles), myFile(stdin)
{
}

cpp_DefStream::~cpp_DefStream()
{
    close();
}

void cpp_DefStream::close()
{
    if (myDescriptor >= 0)
        ::close(myDescriptor);
    myDescriptor = -1;
    isOwn = false;
    myFile = nullptr;
    myStream = nullptr;
    myNext = myEnd = nullptr;
    myReadError = 0;
}

bool cpp_DefStream::open(const char *path)
{
    close();
    // Small ones come from memory; what is read in blocks never has to be there whole.
    if (!takeWhole(path)) {
        myDescriptor = ::open(path, O_RDONLY | O_CLOEXEC);
        struct stat info;
        // A folder opens too, but is none of the files that a search looks for.
        if (myDescriptor < 0 || fstat(myDescriptor, &info) != 0 || S_ISDIR(info.st_mode)) {
            close();
            return false;
        }
        if (myBlock == nullptr)
            myBlock.reset(new char[BLOCK_BYTES]);
    }
    isOwn = true;
    return true;
}

bool cpp_DefStream::takeWhole(const char *path)
{
    if (mySmallFiles == nullptr)
        return false;
    const std::string_view text = mySmallFiles->take(path);
    myNext = text.data();
    myEnd = myNext + text.size();
    return myNext != nullptr;
}

void cpp_DefStream::setFile(FILE *fp)
{
    close();
    myFile = fp;
}

void cpp_DefStream::setStream(UT_IStream *is)
{
    close();
    myStream = is;
}

bool cpp_DefStream::readLine(UT_ScratchBuffer &line)
{
    if (isOwn)
        return readFromBlock(line);
    if (myFile != nullptr)
        return readFromFile(line);
    return myStream != nullptr && myStream->getLine(line, '\n');
}

bool cpp_DefStream::readFromFile(UT_ScratchBuffer &line)
{
    if (myReadError != 0)
        return false;
    // The C library tells that reading failed, errno at best why.
    errno = 0;
    const bool any = line.getLine(myFile);
    if (std::ferror(myFile) != 0)
        myReadError = errno != 0 ? errno : EIO; // of an earlier reader
    return any && myReadError == 0;
}

const char *cpp_DefStream::readError() const
{
    if (myReadError != 0)
        return std::strerror(myReadError);
    const bool isBad = myStream != nullptr && myStream->hasError();
    return isBad ? myStream->getSource().getErrorText() : nullptr;
}

bool cpp_DefStream::fillBlock()
{
    if (myNext != myEnd)
        return true;
    if (myReadError != 0)
        return false;
    ssize_t count = 0;
    // A signal whose handler returns is no end of input.
    do
        count = myDescriptor >= 0 ? read(myDescriptor, myBlock.get(), BLOCK_BYTES) : 0;
    while (count < 0 && errno == EINTR);
    if (count < 0)
        myReadError = errno;
    if (count <= 0)
        return false;
    myNext = myBlock.get();
    myEnd = myNext + count;
    return true;
}

const char *cpp_DefStream::peekBuffered(int &length)
{
    if (!isOwn || !fillBlock())
        return nullptr;
    length = static_cast<int>(myEnd - myNext);
    return myNext;
}

bool cpp_DefStream::readFromBlock(UT_ScratchBuffer &line)
{
    line.clear();
    for (bool any = false;; any = true) {
        if (!fillBlock())
            return any && myReadError == 0;
        const auto room = static_cast<size_t>(myEnd - myNext);
        const auto *newline = static_cast<const char *>(std::memchr(myNext, '\n', room));
        const char *end = newline != nullptr ? newline : myEnd;
        line.append(myNext, static_cast<int>(end - myNext));
        myNext = newline != nullptr ? newline + 1 : end;
        // A line may go on in the next block, and so may its "\r\n".
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
    return isOwn || myFile != nullptr || myStream != nullptr;
}
