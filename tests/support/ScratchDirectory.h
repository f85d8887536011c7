// A fresh folder that a test may fill; it and its contents go when the object does.
#pragma once

#include <string>

class ScratchDirectory
{
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    // Absolute path of the folder, and of a name in it.
    const std::string &path() const { return myPath; }
    std::string path(const std::string &name) const { return myPath + "/" + name; }

    // Writes a file (missing folders on the way are made) and gives its path.
    std::string write(const std::string &name, const std::string &contents) const;

    // Makes a folder, with the missing ones above it, and gives its path.
    std::string makeDirectory(const std::string &name) const;

private:
    std::string myPath;
};

// All bytes of a file; "" when it cannot be read.
std::string fileContents(const std::string &path);
