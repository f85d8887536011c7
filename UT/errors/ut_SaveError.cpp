// What becomes of a failed write.
#include "UT/UT_EnvControl.h"
#include "UT/UT_ErrorManager.h"
#include "UT/UT_ScratchBuffer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace
{

// With these, what was written is not where it should be.
const int LOSSES[] = {EIO, EMFILE, ENOSPC, EROFS, ENOSTR, ENOSR, ETIMEDOUT};

const char *orEmpty(const char *text)
{
    return text ? text : "";
}

void postSaveError(const char *operation, const char *reason, const char *path)
{
    UT_ScratchBuffer text;
    text.append(operation);
    if (*reason != '\0')
        text.appendSprintf(" <%s> ", reason);
    text.append(path);
    UTaddCommonError(UT_COMMON_SAVE_FAILED, text.buffer());
}

} // namespace

bool UTcheckSaveError(const char *operation, const char *path)
{
    const int code = errno;
    const UT_String reason(std::strerror(code), true); // strerror's own text may change
    if (code != 0 && UT_EnvControl::instance().getInt(ENV_VELDRIN_VERBOSE_ERROR) != 0) {
        std::fprintf(stderr, "Veldrin Save error detected:errno %d (%s) path(%s) operation(%s)\n\r",
                     code, reason.text(), orEmpty(path), orEmpty(operation));
    }
    if (std::find(std::begin(LOSSES), std::end(LOSSES), code) == std::end(LOSSES))
        return true;
    postSaveError(orEmpty(operation), reason, orEmpty(path));
    return false;
}
