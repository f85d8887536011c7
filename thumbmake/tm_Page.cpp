#include "thumbmake/tm_Page.h"

#include "UT/UT_SafeFile.h"
#include "thumbmake/page/tm_PageParts.h"
#include "thumbmake/tm_PageData.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include <sys/stat.h>

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
        return errno == ENOENT;
    if (!S_ISREG(there.st_mode))
        return false;
    std::string beginning(strlen(tm_PAGE_MARK), '\0');
    std::ifstream(file, std::ios::binary)
        .read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
    return beginning == tm_PAGE_MARK;
}

bool replace(const std::string &target, const std::string &text)
{
    UT_SafeFile file(target, UT_SafeFile::REPLACE_LINKS);
    std::FILE *const out = file.open();
    if (out == nullptr)
        return false;
    fwrite(text.data(), 1, text.size(), out);
    return file.commit();
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
    return replace(target, text) || fail(error, target, strerror(errno));
}
