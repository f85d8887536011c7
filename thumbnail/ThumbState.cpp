#include "thumbnail/ThumbState.h"

#include "UT/UT_Process.h"
#include "UT/UT_ScratchBuffer.h"

#include <cstdio>
#include <string_view>

const char *theProgramName = nullptr;
int theQuietFlag = 0;
const char *theRendererName = nullptr;
const UT_String thePaletteSuffix(".palette");
const UT_String thePictureSuffix(".jpg");

// The callers' formats are literals, but only they can see that.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void reportError(const char *format, const char *arg)
{
    if (theQuietFlag != 0)
        return;
    UT_ScratchBuffer message;
    message.sprintf(format, arg);
    // A diagnostic brings its own line end.
    const std::string_view text(message.buffer(), static_cast<size_t>(message.length()));
    UTmakePrintable(message.buffer(), text.find_last_not_of('\n') + 1);
    message.append('\n');
    fwrite(message.buffer(), 1, static_cast<size_t>(message.length()), stderr);
}
#pragma GCC diagnostic pop
