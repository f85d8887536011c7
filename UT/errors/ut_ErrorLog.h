// The error log: a file to which every error of some weight is appended.
//
//     2026-04-05 17:30:00: Error:       Cannot open a.pic
//
// A message that was written at most two seconds ago is not repeated. A line goes
// out in one write on a file opened for appending (POSIX O_APPEND), so lines of
// several processes do not mix. A file that does not open is skipped in silence.
#pragma once

#include "UT/UT_String.h"
#include "UT/UT_SymbolTable.h"

#include <ctime>
#include <mutex>

class UT_Error;

class ut_ErrorLog
{
public:
    // The process's log, made on first use: VELDRIN_ERRORLOG_FILENAME, in which
    // variables are expanded, and VELDRIN_ERRORLOG_LEVEL.
    static ut_ErrorLog &instance();

    // Records below `level` are not logged, and none are without a file name.
    ut_ErrorLog(const char *fileName, int level);

    // Threads may call this at the same time.
    void add(const UT_Error &error);

private:
    bool isRepeated(const char *message, time_t now);
    void append(int file, const char *message, time_t now);

    UT_String myFileName;
    int myLevel;
    UT_SymbolTable myRecent; // message -> when it was last written
    time_t myLastWrite = 0;
    std::mutex myLock;
};
