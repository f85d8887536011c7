// A file that is there whole or not at all.
//
// What is written goes into a file without a name in the target's folder (Linux's O_TMPFILE),
// which takes the target's place when all is well (POSIX rename) and is gone when it is not,
// however the process ends. Where the file system has no such files it has a name beside the
// target that nobody can guess, and whoever dies by a signal may leave it.
//
// The file gets the permissions of a new one, or the read, write and execute bits of a
// regular file of the same owner that it replaces; never more than those. Lists of access
// (ACLs) do not go on: of a file with one the group gets what everybody has.
#pragma once

#include <cstdio>
#include <string>

class UT_SafeFile
{
public:
    enum Links {
        // As commands do that are told a file: the file behind a link is replaced, or made
        // where the link leads. What is no regular file (a pipe, a device) or names a stream
        // that is open (/dev/stdout, /proc/self/fd/3) is written as it is.
        FOLLOW_LINKS,
        // Where others may have laid a link: it is replaced itself, its target is not
        // touched. Whatever else is no regular file stays, and that is an error.
        REPLACE_LINKS
    };
    explicit UT_SafeFile(const std::string &target, Links links = FOLLOW_LINKS)
        : myTarget(target), myLinks(links)
    {
    }
    ~UT_SafeFile(); // without commit() the target stays as it was
    UT_SafeFile(const UT_SafeFile &) = delete;
    UT_SafeFile &operator=(const UT_SafeFile &) = delete;

    // Whether open() and commit() are likely to succeed, so that nobody works in vain.
    // Changes nothing. REQUIRES: REPLACE_LINKS
    [[nodiscard]] bool isWritable();

    // The stream to write to, which stays ours; null when there is none.
    [[nodiscard]] FILE *open();

    // Closes and renames, without waiting for the device. False when not all was written:
    // the target then stays as it was. REQUIRES: open() has given a stream
    [[nodiscard]] bool commit();

    // After a failure, which errno tells as well: what went wrong, without the target's name.
    const std::string &error() const { return myError; }

    // The file beside the target while there is one with a name, else empty. For a signal's
    // handler, which may remove it.
    const std::string &temporary() const { return myTemporary; }

private:
    bool fail(const char *what);
    FILE *openNew();
    int openBeside();
    bool nameFile(int file);
    bool finish();
    void removeTemporary();

    std::string myTarget;
    Links myLinks;
    std::string myTemporary;
    std::string myError;
    FILE *myStream = nullptr;
    bool isReplacing = false; // and not writing to a pipe or device as it is
};
