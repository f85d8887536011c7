// The folder where thumbmake remembers what was made of what, never among the palettes.
#pragma once

#include <string>

class tm_Cache
{
public:
    tm_Cache() = default;
    ~tm_Cache();
    tm_Cache(const tm_Cache &) = delete;
    tm_Cache &operator=(const tm_Cache &) = delete;

    // Makes the folder and waits until no other thumbmake works with it, which is told on
    // standard error. False with the reason in error().
    [[nodiscard]] bool open();

    const std::string &folder() const { return myFolder; }
    const std::string &error() const { return myError; }

private:
    bool lock();

    std::string myFolder;
    std::string myError;
    int myLock = -1;
};
