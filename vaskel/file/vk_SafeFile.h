// A picture's file, which is there whole or not at all.
//
// While the picture is drawn its folder stays as it is. write() puts the bytes into a
// file beside the target, named ".NAME.vaskel-XXXXXX", which then takes the target's
// place (POSIX rename). Signals wait meanwhile, so only SIGKILL can leave that file,
// within the moment that writing takes; a full disk or a limit removes it.
//
// A symbolic link is replaced itself, its target is not touched. Whatever else is no
// regular file stays, and that is an error.
#pragma once

#include <cstddef>
#include <string>

class vk_SafeFile
{
public:
    explicit vk_SafeFile(const std::string &target);

    // Whether write() is likely to succeed, so that nobody draws in vain: the folder can
    // be written and what is there can be replaced. Changes nothing.
    [[nodiscard]] bool isWritable();

    // Writes and renames, without waiting for the device: a picture can be drawn again.
    // The file gets the permissions of a new one, or the read, write and execute bits of
    // a regular file of the same owner that it replaces; never more than those.
    [[nodiscard]] bool write(const void *bytes, std::size_t count);

    // After a failure: what went wrong, without the target's name.
    const std::string &error() const { return myError; }

private:
    bool fail(const char *what, int code);
    bool writeAll(const char *bytes, std::size_t count);
    bool fill(const char *bytes, std::size_t count);

    std::string myTarget;
    std::string myError;
    int myFile = -1;
};
