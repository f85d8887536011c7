// A file that is there whole or not at all.
//
// What is written goes to a temporary file in the target's folder, named
// ".NAME.vaskel-XXXXXX", which takes the target's place when all of it is
// written. Until then an existing target stays as it was. The temporary file
// goes when commit() is not reached, and when one of the signals that end
// programs (SIGHUP, SIGINT, SIGTERM, SIGPIPE, SIGQUIT, SIGABRT, SIGXFSZ, SIGXCPU)
// comes; the process then ends by that signal. Only SIGKILL leaves it behind.
//
// One such file at a time; a process has one set of signals.
#pragma once

#include <cstddef>
#include <string>

class vk_SafeFile
{
public:
    vk_SafeFile() = default;
    ~vk_SafeFile();
    vk_SafeFile(const vk_SafeFile &) = delete;
    vk_SafeFile &operator=(const vk_SafeFile &) = delete;

    // Makes the temporary file. A symbolic link is followed: what it points to
    // is replaced. False when the target is there but no regular file, or the
    // folder is missing or not writable.
    [[nodiscard]] bool open(const std::string &target);

    // Writes the bytes and renames, without waiting for the device: a picture can be
    // drawn again. The target keeps its permissions, a new one gets those that the
    // umask leaves.
    [[nodiscard]] bool commit(const void *bytes, std::size_t count);

    // Removes the temporary file of the one that is open. Takes no memory, so that it
    // can be called when there is none.
    static void abandon();

    // After a failure: what went wrong, with the target's name.
    const std::string &error() const { return myError; }

private:
    bool fail(const char *what, int code);
    bool write(const char *bytes, std::size_t count);
    void discard();

    std::string myTarget;
    std::string myTemporary;
    std::string myError;
    int myFile = -1;
    unsigned myMode = 0;
};
