#include "UT/files/ut_FileOps.h"

#include <cerrno>
#include <sys/types.h>

namespace
{

static_assert(sizeof(off_t) == sizeof(int64_t), "files of 2 GB and more, with 32 bits too");

const int WHENCES[] = {SEEK_SET, SEEK_CUR, SEEK_END};

} // namespace

int ut_FileOps::read(FILE *fp, void *dst, int n)
{
    return n > 0 ? static_cast<int>(std::fread(dst, 1, static_cast<size_t>(n), fp)) : 0;
}

int ut_FileOps::peek(FILE *fp)
{
    return std::ungetc(std::fgetc(fp), fp); // which does nothing with an EOF
}

int64_t ut_FileOps::tell(FILE *fp)
{
    return ftello(fp);
}

bool ut_FileOps::seek(FILE *fp, int64_t pos, int whence)
{
    // A file whose end was met may have grown, or is to be read again.
    if (std::feof(fp) && !std::ferror(fp))
        std::clearerr(fp);
    if (whence < 0 || whence > 2) {
        errno = EINVAL;
        return false;
    }
    return fseeko(fp, pos, WHENCES[whence]) >= 0;
}
