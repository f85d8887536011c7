#include "UT/errors/ut_ErrorLog.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_Error.h"
#include "UT/UT_FormatTime.h"
#include "UT/UT_ScratchBuffer.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr time_t REPEAT_SECONDS = 2;

// A time in a symbol's value: the seconds that fit tell moments apart well enough.
void *toValue(time_t when)
{
    return reinterpret_cast<void *>(static_cast<uintptr_t>(when));
}

bool isWithin(time_t seconds, void *value, time_t now)
{
    const uintptr_t passed = static_cast<uintptr_t>(now) - reinterpret_cast<uintptr_t>(value);
    return passed <= static_cast<uintptr_t>(seconds);
}

UT_String settingExpanded()
{
    UT_String name(UT_String::ALWAYS_DEEP,
                   UT_EnvControl::instance().getString(ENV_VELDRIN_ERRORLOG_FILENAME));
    name.substituteVariables();
    return name;
}

} // namespace

ut_ErrorLog &ut_ErrorLog::instance()
{
    static auto *log = new ut_ErrorLog( // to the end of the process
        settingExpanded(), UT_EnvControl::instance().getInt(ENV_VELDRIN_ERRORLOG_LEVEL));
    return *log;
}

ut_ErrorLog::ut_ErrorLog(const char *fileName, int level)
    : myFileName(UT_String::ALWAYS_DEEP, fileName), myLevel(level)
{
}

void ut_ErrorLog::add(const UT_Error &error)
{
    if (!myFileName.isNonEmpty() || error.getSeverity() < myLevel)
        return;
    const std::lock_guard<std::mutex> guard(myLock);
    const int callersErrno = errno; // an error being reported must not lose its cause
    const int file = open(myFileName, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file >= 0) {
        UT_String message;
        error.getErrorMessage(message, UT_SEVERITY_NONE, true);
        const time_t now = std::time(nullptr);
        if (!isRepeated(message, now))
            append(file, message, now);
        close(file);
    }
    errno = callersErrno;
}

bool ut_ErrorLog::isRepeated(const char *message, time_t now)
{
    // Nothing in the table can be recent then, and it must not grow for ever.
    if (!isWithin(REPEAT_SECONDS, toValue(myLastWrite), now)) {
        myRecent.clearTable();
        return false;
    }
    void *written = nullptr;
    return myRecent.findSymbol(message, &written) && isWithin(REPEAT_SECONDS, written, now);
}

void ut_ErrorLog::append(int file, const char *message, time_t now)
{
    char stamp[512];
    UTformatTime(stamp, "%Y-%m-%d %T: ", now);
    UT_ScratchBuffer line;
    line.append(stamp);
    line.append(message);
    line.append('\n');
    if (write(file, line.buffer(), static_cast<size_t>(line.length())) < 0)
        return;
    myLastWrite = now;
    myRecent.addSymbol(message, toValue(now));
}
