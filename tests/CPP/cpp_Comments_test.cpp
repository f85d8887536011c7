#include "CPP/cpp_Comments.h"
#include "UT/UT_ScratchBuffer.h"
#include "tests/support/PlainComments.h"
#include "tests/support/PlainText.h"
#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>

TEST(Comments, GoAndLeaveTheRestInItsPlace)
{
    const struct {
        const char *what, *options, *in, *out;
    } cases[] = {
        {"over three lines", "-P", "a/* b\nc\nd */e\n", "a  \n\n    e\n"},
        {"two on a line", "-P", "a/*b*/c/*d*/e\n", "a     c     e\n"},
        {"to the end of the line", "-P", "a // b\nc\n", "a \nc\n"},
        {"slash star slash is still open", "-P", "a/*/b\n*/c\n", "a  \n  c\n"},
        {"signs in quotes", "-P", "\"//\" '/*'//x\n", "\"//\" '/*'\n"},
        {"an escaped quote inside quotes", "-P", "\"\\\"//\"//x\n", "\"\\\"//\"\n"},
        {"kept by -C", "-P -C", "a // b /* c */\n", "a // b /* c */\n"},
        {"text with -c", "-P -c", "a // b\n", "a // b\n"},
        {"before a directive", "-P", "/* x */ #define A 1\nA\n", "\n1\n"},
        {"hash comment", "-P -h", "a # b\n# c\n  # d\n#define A 1\nA\n", "a \n\n\n1\n"},
        {"hash first, in a block comment", "-P -h", "/*\n# */ a # b\n", "\n     a # b\n"},
        {"hash in quotes", "-P -h", "a '#' b\n", "a '#' b\n"},
        {"hash and a blank", "-P -h", "# define A 1\nA\n", "\nA\n"},
        {"hash not in front", "-P -h -C", "  #define A 1\nA\n", "\nA\n"},
        {"no hash comments with -C", "-P -h -C", "a # b\n  # c\n", "a # b\n\n"},
        {"hash comments alone with -c", "-P -h -c", "a // b # c\n", "a // b "},
        {"unknown directives with -h", "-P -h", "#foo\n#pragma x\nb\n", "\n\nb\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.out, preprocessed(c.options, c.in));
    }
    // Unclosed, a quote hides nothing; the line then fails for its own reason.
    EXPECT_EQ("# error cpp error: \"in\":1 Mismatched quotation marks",
              preprocessed("-P", "\"a // b\n"));
}

TEST(Comments, AreFoundAmongQuotesThatNothingCloses)
{
    // Each of these was searched to the end of the line once.
    std::string line;
    for (int i = 0; i < 200000; ++i)
        line += "\\\"\\'";
    const std::string out = preprocessed("-P", line + "//x\n");
    EXPECT_EQ(std::string::npos, out.find('x'));
}

TEST(Comments, AreStrippedAsByThePlainTwin)
{
    UT_ScratchBuffer fast;
    int failures = 0;
    const auto compare = [&](const std::string &line, bool bySlash, bool byHash, bool isOpen) {
        bool endsOpen = isOpen;
        const std::string plain = plainStripComments(line, bySlash, byHash, endsOpen);
        fast.clear();
        fast.append(line.c_str());
        const bool fastEndsOpen = stripComments(fast, bySlash, byHash, isOpen);
        if (plain == fast.buffer() && endsOpen == fastEndsOpen)
            return;
        ADD_FAILURE() << line << " slash " << bySlash << " hash " << byHash << " open " << isOpen
                      << ":\n"
                      << fast.buffer() << "should be\n"
                      << plain;
        ++failures;
    };
    forEachString("a/*\"'\\# ", 6, [&](const std::string &text) {
        for (unsigned mode = 0; mode < 6 && failures < 10; ++mode)
            compare(text + "\n", mode < 4, mode % 2 != 0, mode >= 2 && mode < 5);
    });
    compare("a/*", true, false, false); // a line that two backslashes ended
}
