#include "UT/UT_Error.h"

#include "UT/UT_PathSearch.h"
#include "tests/support/ScratchDirectory.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace
{

const char BLANKS[] = "             ";

std::string messageOf(const char *type, int code, const char *text, int severity = 4,
                      int previous = 0, bool withPrefix = false)
{
    UT_String out;
    UT_Error(type, code, text, severity).getErrorMessage(out, previous, withPrefix);
    return out.toStdString();
}

} // namespace

TEST(Error, SystemErrorsReadAsTheSystemHasThem)
{
    const std::string noFile = std::strerror(2);
    EXPECT_EQ(noFile + " (x)", messageOf("System", 2, "x"));
    EXPECT_EQ(noFile + " (%s)", messageOf("System", 2, "%s", 4, 4, true)) << "never a prefix";
    EXPECT_EQ(noFile, messageOf("System", 2, nullptr));
}

TEST(Error, CataloguesGiveMessagesByCode)
{
    ScratchDirectory scratch;
    const std::string table = scratch.write("table", "# comment\n"
                                                     "12 Cannot open %s\n"
                                                     "  3\tindented \\t\\\\n\\q\\\n"
                                                     "7 one\n7 , two\\n\n7 three \t\r\f\n"
                                                     "no code\n-4 minus\n"
                                                     "9\n"
                                                     "1000000 too great\n99999999999999 far\n"
                                                     "20 %d%% %-5.2s| %s %n\n"
                                                     "21 %.s%9");
    const struct {
        const char *what;
        int code;
        std::string message;
    } cases[] = {
        {"text", 12, "Cannot open a.pic"},
        {"escapes", 3, "indented \t\\n\\q\\"},
        {"several lines", 7, "one, two\nthree \t"},
        {"code alone", 9, ""},
        {"between codes", 4, ""},
        {"conversions that the one text does not serve", 20, "%d% a.   | %s %n"},
        {"unfinished conversion", 21, "%9"},
        {"beyond", 22, table + ": unknown error: 22"},
        {"negative", -1, table + ": unknown error: -1"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.message, messageOf(table.c_str(), c.code, "a.pic"));
    }
    EXPECT_EQ(table + "x: unknown error: 12", messageOf((table + "x").c_str(), 12, ""));
}

TEST(Error, PrefixesTellTheSeverityOnceAndIndentWhatFollows)
{
    ScratchDirectory scratch;
    const std::string table =
        scratch.write("table", "1 Cannot open %s\n2 one\\n\\ntwo\\n\n3\n4 at %s\n");
    const std::string cut = std::string("\n") + BLANKS;
    const struct {
        const char *what;
        int code, severity, previous;
        std::string message;
    } cases[] = {
        {"message", 1, 1, 0, "Cannot open a\nb"},
        {"note", 1, 2, 1, "Cannot open a\nb"},
        {"warning", 1, 3, 4, "Warning:     Cannot open a\nb"},
        {"error", 1, 4, 0, "Error:       Cannot open a\nb"},
        {"fatal", 1, 5, 4, "Fatal error: Cannot open a\nb"},
        {"the same again", 1, 4, 4, std::string(BLANKS) + "Cannot open a\nb"},
        {"lines", 2, 3, 0, "Warning:     one" + cut + cut + "two"},
        {"empty", 3, 4, 4, ""},
        {"unknown severity", 1, 99, 0, "Cannot open a\nb"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.message,
                  messageOf(table.c_str(), c.code, "a\nb", c.severity, c.previous, true));
    }
}

TEST(Error, TablesAreFoundOnTheMainSearchPath)
{
    ScratchDirectory scratch;
    scratch.write("error/Things", "5 Found %s\n");
    UT_PathSearch::getInstance(UT_VELDRIN_PATH).addDirectory(scratch.path().c_str());
    EXPECT_EQ("Found it", messageOf("Things", 5, "it"));
    EXPECT_EQ("Nothings: unknown error: 5", messageOf("Nothings", 5, "it"));
}

TEST(Error, TheLibrarysOwnTableHasTheMessagesItUses)
{
    EXPECT_EQ("Unable to save: x", messageOf(SOURCE_DIR "/share/veldrin/error/Common", 4, "x"));
}
