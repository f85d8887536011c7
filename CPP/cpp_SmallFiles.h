// The texts of short files, each read once: include files come again and again.
//
// A guard is an #ifndef around all of a file's text, so that a file whose guard is
// defined has nothing but empty lines to give. Only plain guards are recognised: "#"
// and the word at the start of their lines, no other conditional, sign of a block
// comment, backslash or NUL inside.
//
// What changes in a file after it was read is not seen. All texts together stay
// within a fixed size; when that is used up, no more are kept.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

class CPP_Manager;

class cpp_SmallFiles
{
public:
    // The manager is asked whether guards are defined, and outlives this.
    explicit cpp_SmallFiles(const CPP_Manager &manager);
    ~cpp_SmallFiles();
    cpp_SmallFiles(const cpp_SmallFiles &) = delete;
    cpp_SmallFiles &operator=(const cpp_SmallFiles &) = delete;

    // The text of a file, or what it comes down to while its guard is defined. Without
    // data() when the file is too long to keep, is no regular file or cannot be read.
    // The text lives as long as this.
    std::string_view take(const char *path);

private:
    static constexpr size_t MAX_FILE = 32768;
    static constexpr size_t MAX_TOTAL = 4 << 20;

    struct File;

    const File *find(std::string_view path);
    std::unique_ptr<File> read(std::string_view path) const;

    const CPP_Manager &myManager;
    std::unordered_map<std::string_view, std::unique_ptr<File>> myFiles; // by their paths
    const File *myLast = nullptr; // which is often asked for again
    std::string myEmptyLines;     // as many as a file can have, once one needs some
    size_t myTotal = 0;
};
