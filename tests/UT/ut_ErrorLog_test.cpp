#include "UT/errors/ut_ErrorLog.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_Environment.h"
#include "UT/UT_ErrorManager.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/ScratchDirectory.h"

#include <cerrno>
#include <gmock/gmock.h>

static UT_Error error(int code, int severity = 4)
{
    return UT_Error("T", code, "", severity);
}

TEST(ErrorLog, RecordsOfItsLevelAreAppendedAndNotRepeatedAtOnce)
{
    ScratchDirectory scratch;
    const std::string file = scratch.write("log", "before\n");
    ut_ErrorLog log(file.c_str(), 3);
    for (const int code : {1, 1, 2, 1, 2, 3})
        log.add(error(code, code == 3 ? 2 : 3));
    const std::string stamp = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}: ";
    EXPECT_THAT(fileContents(file),
                testing::MatchesRegex("before\n" + stamp + "T: unknown error: 1\n" + stamp +
                                      "T: unknown error: 2\n"));
}

TEST(ErrorLog, WithoutAFileNothingHappens)
{
    ScratchDirectory scratch;
    ut_ErrorLog none(nullptr, 0), empty("", 0), folder(scratch.path().c_str(), 0);
    for (ut_ErrorLog *log : {&none, &empty, &folder}) {
        errno = ENOSPC;
        log->add(error(1));
        EXPECT_EQ(ENOSPC, errno);
    }
}

TEST(ErrorLog, ManagersLogUnderTheConfiguredName)
{
    if (!isFreshProcess({})) // a process has one log for good
        return;
    ScratchDirectory scratch;
    UTsetenv("LOGS", scratch.path().c_str());
    UT_EnvControl::instance().setString(ENV_VELDRIN_ERRORLOG_FILENAME, "$LOGS/log");
    UTaddError("T", 1);
    UTaddError(new UT_Error("T", 2, "", 5));
    UT_ErrorManager::getCurrent().addError(new UT_Error("T", 3, "", 5)); // only adds
    EXPECT_EQ(5, UTgetErrorSeverity());
    EXPECT_THAT(fileContents(scratch.path("log")),
                testing::MatchesRegex("[^\n]*error: 1\n[^\n]*error: 2\n"));
}
