// A file that is there whole or not at all.
//
// What is written goes into a file without a name in the target's folder (Linux's O_TMPFILE),
// which takes the target's place when all is well (POSIX rename) and is gone when it is not,
// however the process ends. Where the file system has no such files it has a name beside the
// target, and whoever dies by a signal may leave it. Behind a symbolic link the
// file it leads to is replaced. What is no regular file (a pipe, anything in /dev or /proc)
// is written as it is.
#pragma once

#include <cstdio>
#include <string>

class UT_SafeFile
{
public:
    explicit UT_SafeFile(const std::string &target) : myTarget(target) {}
    ~UT_SafeFile(); // without commit() the target stays as it was
    UT_SafeFile(const UT_SafeFile &) = delete;
    UT_SafeFile &operator=(const UT_SafeFile &) = delete;

    // The stream to write to, which stays ours; null, and errno, when there is none.
    [[nodiscard]] FILE *open();

    // Closes and renames. False, and errno, when not all was written: the target then
    // stays as it was. REQUIRES: open() has given a stream
    [[nodiscard]] bool commit();

    // The file beside the target while there is one with a name, else empty. For a signal's
    // handler, which may remove it.
    const std::string &temporary() const { return myTemporary; }

private:
    int openBeside();
    bool nameFile(int file);
    void removeTemporary();

    std::string myTarget;
    std::string myTemporary;
    FILE *myStream = nullptr;
    bool isReplacing = false; // and not writing to a pipe or device as it is
};
