#include "CPP/cpp_SmallFiles.h"

#include "CPP/cpp_MacroTable.h"
#include "CPP/cpp_Runs.h"
#include "CPP/cpp_Text.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::string_view_literals;

namespace
{
bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

bool isEmptyLine(std::string_view line)
{
    return std::all_of(line.begin(), line.end(), UTisSpace);
}

// Whether a line may stand inside a guard: no conditional, nor what might be one
// under some option.
bool isPlainLine(std::string_view line)
{
    const size_t hash = line.find('#');
    if (hash == line.npos || !isEmptyLine(line.substr(0, hash)))
        return true;
    for (const char *word : {"#define ", "#undef ", "#include ", "#line ", "#pragma "})
        if (startsWith(line, word))
            return true;
    return false;
}

std::string_view takeLine(std::string_view &text)
{
    const size_t length = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return line;
}

// The guard's name; empty when there is none.
std::string guardOf(std::string_view text)
{
    constexpr std::string_view OPENING = "#ifndef ";
    // A block comment may be open in front of the file; a NUL is read as a blank.
    for (const std::string_view sign : {"\\"sv, "/*"sv, "*/"sv, "\0"sv})
        if (text.find(sign) != text.npos)
            return {};
    const std::string_view first = takeLine(text);
    std::string_view line = takeLine(text);
    while (!text.empty() && isPlainLine(line))
        line = takeLine(text);
    if (!startsWith(first, OPENING) || !startsWith(line, "#endif") || !isEmptyLine(text) ||
        (line.size() > 6 && !UTisSpace(line[6])))
        return {};
    std::string_view name = first.substr(OPENING.size());
    const auto *end = std::find_if_not(name.begin(), name.end(), UTisNameCharacter);
    const bool isWholeWord = end == name.end() || UTisSpace(*end);
    return isWholeWord ? std::string(name.begin(), end) : std::string();
}

bool readWhole(const char *path, std::string &text)
{
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const ssize_t count = read(descriptor, text.data(), text.size());
    close(descriptor);
    return count == static_cast<ssize_t>(text.size());
}
} // namespace

struct cpp_SmallFiles::File {
    std::string path;
    std::string text;
    std::string guard;
    int lines = 0;
};

cpp_SmallFiles::cpp_SmallFiles(const cpp_MacroTable &macros) : myMacros(macros) {}

cpp_SmallFiles::~cpp_SmallFiles() = default;

std::string_view cpp_SmallFiles::take(const char *path)
{
    const File *file = find(path);
    if (file == nullptr)
        return {};
    if (!heedsGuards || file->guard.empty() || !myMacros.holds(file->guard))
        return file->text;
    if (myEmptyLines.empty())
        myEmptyLines.assign(MAX_FILE, '\n');
    return std::string_view(myEmptyLines).substr(0, static_cast<size_t>(file->lines));
}

const cpp_SmallFiles::File *cpp_SmallFiles::find(std::string_view path)
{
    if (myLast != nullptr && myLast->path == path)
        return myLast;
    const auto found = myFiles.find(path);
    if (found != myFiles.end())
        return myLast = found->second.get();
    std::unique_ptr<File> file = read(path);
    if (file == nullptr)
        return nullptr;
    myTotal += file->text.size();
    myLast = file.get();
    myFiles.emplace(myLast->path, std::move(file));
    return myLast;
}

// Null when the file is none to keep. Only a regular file may be opened on trial: a
// pipe's writer would notice. A size of 0 may be that of a file which the system
// writes as it is read.
std::unique_ptr<cpp_SmallFiles::File> cpp_SmallFiles::read(std::string_view path) const
{
    auto file = std::make_unique<File>();
    file->path = path;
    struct stat info;
    if (stat(file->path.c_str(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size <= 0 ||
        info.st_size > int64_t{MAX_FILE})
        return nullptr;
    std::string &text = file->text;
    text.resize(static_cast<size_t>(info.st_size));
    if (myTotal + text.size() > MAX_TOTAL || !readWhole(file->path.c_str(), text))
        return nullptr;
    file->guard = guardOf(text);
    file->lines = countLines(text.data(), text.data() + text.size()) + (text.back() != '\n');
    return file;
}
