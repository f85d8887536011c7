// The texts of short files, each read once: include files come again and again.
//
// A guard is an #ifndef around all of a file but comments, so that a file whose guard is
// defined has nothing but empty lines to give. Only plain ones are recognised: no #elif and
// no #else of their own, no backslash, nothing that would be told though it is skipped.
//
// What changes in a file after it was read is not seen. All texts together stay
// within a fixed size; when that is used up, no more are kept.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

class cpp_MacroTable;

class cpp_SmallFiles
{
public:
    // The macros, which tell whether guards are defined, outlive this.
    explicit cpp_SmallFiles(const cpp_MacroTable &macros);
    ~cpp_SmallFiles();
    cpp_SmallFiles(const cpp_SmallFiles &) = delete;
    cpp_SmallFiles &operator=(const cpp_SmallFiles &) = delete;

    // The text of a file, or what it comes down to while its guard is defined. Without
    // data() when the file is too long to keep, is no regular file or cannot be read.
    // The text lives as long as this.
    std::string_view take(const char *path);

    // Whether guards count (they do at first): they must not where skipped text can have an
    // effect, and where comments are other ones than those of slashes.
    void heedGuards(bool on) { heedsGuards = on; }

private:
    static constexpr size_t MAX_FILE = 256 << 10;
    static constexpr size_t MAX_TOTAL = 8 << 20;

    struct File;

    const File *find(std::string_view path);
    std::unique_ptr<File> read(std::string_view path) const;

    const cpp_MacroTable &myMacros;
    std::unordered_map<std::string_view, std::unique_ptr<File>> myFiles; // by their paths
    bool heedsGuards = true;
    const File *myLast = nullptr; // which is often asked for again
    std::string myEmptyLines;     // as many as a file can have, once one needs some
    size_t myTotal = 0;
};
