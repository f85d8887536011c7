#include "UT/ut_FileOps.h"

#include <cerrno>
#include <sys/types.h>

namespace
{

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
    const off_t offset = static_cast<off_t>(pos); // may have 32 bits only
    if (whence < 0 || whence > 2 || offset != pos) {
        errno = EINVAL;
        return false;
    }
    return fseeko(fp, offset, WHENCES[whence]) >= 0;
}
