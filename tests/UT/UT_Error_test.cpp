#include "UT/UT_Error.h"

#include "UT/UT_PathSearch.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

TEST(Error, ReadsAsItsTableHasItBehindItsSeverity)
{
    const std::string noFile = std::strerror(2), path = TEST_DATA "/data/error/Table";
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).addDirectory(TEST_DATA "/data");
    const struct {
        std::string table;
        int code, severity, previous;
        std::string plain, prefixed;
    } cases[] = {
        {"System", 2, 4, 0, noFile + " (a%s)", noFile + " (a%s)"},
        {"Table", 12, 1, 0, "Cannot open a%s", "Cannot open a%s"},
        {path, 12, 2, 1, "Cannot open a%s", "Cannot open a%s"},
        {path, 12, 3, 4, "Cannot open a%s", "Warning:     Cannot open a%s"},
        {path, 12, 4, 0, "Cannot open a%s", "Error:       Cannot open a%s"},
        {path, 12, 5, 4, "Cannot open a%s", "Fatal error: Cannot open a%s"},
        {path, 12, 4, 4, "Cannot open a%s", "             Cannot open a%s"},
        {path, 12, 1, 1, "Cannot open a%s", "             Cannot open a%s"},
        {path, 12, 99, 0, "Cannot open a%s", "Cannot open a%s"},
        {path, 3, 1, 0, "indented \t\\n\\q\\", "indented \t\\n\\q\\"},
        {path, 7, 1, 0, "one, two\nthree \t", "one, two\n             three \t"},
        {path, 31, 1, 0, "one\n\na%s\n", "one\n             \n             a%s"},
        {path, 9, 4, 4, "", ""},
        {path, 4, 4, 0, "", ""},
        {path, 20, 1, 0, "%d% a%   | %s %n", "%d% a%   | %s %n"}, // one text for one "%s"
        {path, 21, 1, 0, "%9", "%9"},
        {path, 32, 4, 0, path + ": unknown error: 32", path + ": unknown error: 32"},
        {"Table", -1, 4, 0, "Table: unknown error: -1", "Table: unknown error: -1"},
        {"No", 12, 4, 0, "No: unknown error: 12", "No: unknown error: 12"},
        {SOURCE_DIR "/share/veldrin/error/Common", 4, 1, 0, "Unable to save: a%s",
         "Unable to save: a%s"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.table << " " << c.code << ", severity " << c.severity);
        UT_String plain, prefixed;
        const UT_Error error(c.table.c_str(), c.code, "a%s", c.severity);
        error.getErrorMessage(plain, c.previous, false);
        error.getErrorMessage(prefixed, c.previous, true);
        EXPECT_EQ(c.plain, plain.toStdString());
        EXPECT_EQ(c.prefixed, prefixed.toStdString());
    }
}
