#include "CPP/files/cpp_SmallFiles.h"

#include "CPP/cpp_Classes.h"
#include "CPP/cpp_MacroTable.h"
#include "CPP/cpp_Runs.h"
#include "CPP/cpp_Text.h"
#include "CPP/lines/cpp_LineEnd.h"
#include "CPP/lines/cpp_SkippedLines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// Behind white space and comments with lines of their own.
const char *skipNothing(const char *from, const char *end)
{
    for (;;) {
        from = findOther(CPP_SPACE, from, end);
        const char *behind = from < end && *from == '/' ? skipComment(from, end) : nullptr;
        if (behind == nullptr)
            return from;
        from = behind;
    }
}

// The guard that begins at `from`, which goes behind its line; empty when none does.
std::string takeGuard(const char *&from, const char *end)
{
    const cpp_SkippedLine line = readSkippedLine(true, from, end);
    if (line.end == nullptr || !line.is(CPP_IFNDEF))
        return {};
    const std::string_view condition = line.condition;
    const char *name = findOther(CPP_SPACE, condition.begin(), condition.end());
    const char *behind = nameEnd(name, condition.end());
    const bool isWholeWord = behind == condition.end() || UTisSpace(*behind);
    from = line.end;
    const bool isTested =
        isWholeWord && static_cast<size_t>(behind - name) <= CPP_MOST_TESTED; // else it is cut
    return isTested ? std::string(name, behind) : std::string();
}

// Behind the line that closes the guard; null when its text has another branch, or anything
// that a stage would act on though it is skipped.
const char *skipGuarded(const char *from, const char *end)
{
    for (int depth = 1; depth > 0;) {
        from = runEnd(cpp_RunKind::DROPPED, from, end);
        const cpp_SkippedLine line = readSkippedLine(true, from, end);
        const bool isBranch = line.is(CPP_ELSE) && depth == 1;
        if (line.end == nullptr || isBranch || line.is(CPP_ELIF))
            return nullptr;
        if (line.directive != nullptr)
            depth += (line.directive->effect == cpp_DirectiveWord::OPENS) -
                     (line.directive->effect == cpp_DirectiveWord::CLOSES);
        from = line.end;
    }
    return from;
}

// The guard's name; empty when there is none.
std::string guardOf(const std::string &text)
{
    const char *const end = text.data() + text.size();
    const char *at = skipNothing(text.data(), end);
    std::string name = takeGuard(at, end);
    if (name.empty())
        return name;
    at = skipGuarded(at, end);
    return at != nullptr && skipNothing(at, end) == end ? name : std::string();
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
    // As many empty lines as the file has: what follows it keeps its numbers.
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
