// The C library's file operations in the form that the sources need.
#pragma once

#include <cstdint>
#include <cstdio>

namespace ut_FileOps
{

int read(FILE *fp, void *dst, int n);
int peek(FILE *fp); // -1 at the end
int64_t tell(FILE *fp);

// Whence 0, 1 and 2 as in UT_IStreamBuf::seek; any other fails with EINVAL.
[[nodiscard]] bool seek(FILE *fp, int64_t pos, int whence);

} // namespace ut_FileOps
