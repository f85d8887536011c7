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

#include "UT/UT_SymbolTable.h"

#include <string>

class CPP_Manager;

class cpp_SmallFiles
{
public:
    // The manager is asked whether guards are defined, and outlives this.
    explicit cpp_SmallFiles(const CPP_Manager &manager) : myManager(manager) {}
    ~cpp_SmallFiles();
    cpp_SmallFiles(const cpp_SmallFiles &) = delete;
    cpp_SmallFiles &operator=(const cpp_SmallFiles &) = delete;

    // The text of a file, or what it comes down to while its guard is defined. Null
    // when the file is too long to keep, is no regular file or cannot be read. The
    // text lives as long as this.
    const std::string *take(const char *path);

private:
    static constexpr int64_t MAX_FILE = 32768;
    static constexpr int64_t MAX_TOTAL = 4 << 20;

    struct File;

    File *keep(const char *path);

    const CPP_Manager &myManager;
    UT_SymbolTable myFiles; // values are File, deleted by us
    int64_t myTotal = 0;
};
