#include "thumbmake/tm_Page.h"

#include "thumbmake/page/tm_PageParts.h"
#include "thumbmake/tm_PageData.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool fail(std::string &error, const std::string &file, const char *reason)
{
    error = file + ": " + reason;
    return false;
}

// Whether the file may be replaced: it is not there, or it is a page like this one.
bool isOursOrAbsent(const std::string &file)
{
    struct stat there = {};
    if (lstat(file.c_str(), &there) != 0)
        return true;
    if (!S_ISREG(there.st_mode))
        return false;
    std::string beginning(strlen(tm_PAGE_MARK), '\0');
    std::ifstream(file, std::ios::binary)
        .read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    return beginning == tm_PAGE_MARK;
}

// Closes the file in any case; errno tells a failure.
bool fill(int file, const std::string &text)
{
    std::FILE *out = fdopen(file, "wb");
    if (out == nullptr) {
        close(file);
        return false;
    }
    fwrite(text.data(), 1, text.size(), out);
    const bool good = fflush(out) == 0 && ferror(out) == 0;
    const int code = errno;
    const bool closed = fclose(out) == 0;
    if (!good)
        errno = code;
    return good && closed;
}

// Writes beside the target and renames. The name has the process's number: what is left
// there by a killed one of the same number may go.
bool replace(const std::string &target, const std::string &text, std::string &error)
{
    const std::string beside = target + "." + std::to_string(getpid()) + "~";
    unlink(beside.c_str());
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0)
        return fail(error, target, strerror(errno));
    if (fill(file, text) && std::rename(beside.c_str(), target.c_str()) == 0)
        return true;
    const int code = errno;
    unlink(beside.c_str());
    return fail(error, target, strerror(code));
}

} // namespace

bool tm_writePage(const std::string &folder, const std::vector<tm_PageEntry> &entries,
                  std::string &error)
{
    const std::string target = folder + "/index.html";
    if (!isOursOrAbsent(target))
        return fail(error, target, "not replaced: it is no page of thumbmake's");
    const std::string text =
        std::string(tm_PAGE_MARK) + tm_PAGE_HEAD + tm_pageData(folder, entries) + tm_PAGE_TAIL;
    return replace(target, text, error);
}
