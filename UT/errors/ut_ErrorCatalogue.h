// The message catalogues: a text file for each table of messages.
//
// A table's file is "error/<table>" on the main search path, or the table itself
// when that is an explicit path ("/x", "./x", "../x"). It is read on first use and
// kept. Its lines:
//
//     # a comment
//     12 Cannot open %s        code, one character, message
//     12 \nIs it mounted?      more of the same message
//
// \n, \t and \\ stand for newline, tab and backslash; any other backslash for
// itself. Lines that do not begin with a digit are ignored, and so are codes above
// MAX_CODE, which a slip of the finger must not turn into gigabytes.
#pragma once

#include "UT/UT_RefArray.h"
#include "UT/UT_String.h"

class UT_IStream;

class ut_ErrorCatalogue
{
public:
    static constexpr int MAX_CODE = 999999;

    // The message, perhaps empty, which stays ours; null when there is no such file
    // or the code is beyond the table's greatest.
    static const char *find(const char *table, int code);

private:
    static const ut_ErrorCatalogue *load(const char *table);

    void read(UT_IStream &is);
    void addLine(const char *line);

    UT_RefArray<UT_String> myMessages; // by code
};
