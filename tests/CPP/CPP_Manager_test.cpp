// Lines in, lines out: gathering, markers, include files and the input stack.
#include "tests/support/Random.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/preprocessed.h"

#include "CPP/CPP_Stream.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

TEST(Lines, ContinuedLinesAreJoinedAndAnsweredByEmptyOnes)
{
    const struct {
        const char *what, *in, *out;
    } cases[] = {
        {"one continuation", "a \\\nb\nc\n", "a b\n\nc\n"},
        {"two continuations", "a\\\nb\\\nc\nd\n", "abc\n\n\nd\n"},
        {"continued by nothing", "a\\\n\nb\n", "a\n\nb\n"},
        {"two backslashes", "a\\\\\nb\n", "a\\b\n"},
        {"two backslashes after a continuation", "a\\\nb\\\\\nc\n", "ab\\\nc\n"},
        {"backslash at the end of the file", "a\\", "a\n"},
        {"only a backslash", "\\", "\n"},
        {"no newline at the end", "a\nb", "a\nb\n"},
        {"carriage returns", "a\r\nb\rc\n", "a\nb c\n"},
        {"a directive over three lines", "#define \\\nA \\\n1\nA\n", "\n\n\n1\n"},
        {"indentation stays", "  a\n\t\n", "  a\n\n"},
        {"empty file", "", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.out, preprocessed("-P", c.in));
    }
    EXPECT_EQ("a b\n", preprocessed("-P", std::string("a\0b\n", 4)));
}

TEST(Lines, AnyNumberMayBeContinuedOrLeftOpen)
{
    std::string continued;
    std::string conditions;
    for (int i = 0; i < 100000; ++i) {
        continued += "a\\\n";
        conditions += "#if 1\n";
    }
    EXPECT_EQ(std::string(100000, 'a') + "b\n" + std::string(100000, '\n') + "100002\n",
              preprocessed("-P", continued + "b\n__LINE__\n"));
    EXPECT_EQ(std::string(100000, '\n') + "# error cpp error: \"in\":100000 Missing #endif",
              preprocessed("-P", conditions));
}

TEST(Lines, LongOnesMixWithShortAndContinuedOnes)
{
    const std::string numbers(1100000, '7');
    const std::string text = numbers + "\nshort\n" + numbers + "\n";
    EXPECT_EQ(text + numbers + " 4 \n\n" + numbers + "\n",
              preprocessed("-P", text + numbers + " \\\n__LINE__ \n" + numbers + "\n"));
}

TEST(Lines, NumbersFollowThePhysicalLines)
{
    EXPECT_EQ("1 \n\n3\n", preprocessed("-P", "__LINE__ \\\n\n__LINE__\n"));
    EXPECT_EQ("x 1 x\n\n\n4\n", preprocessed("-P", "x __LINE__ x\\\n\\\n\n__LINE__\n"));
}

// A folder with files that include each other.
class Includes : public testing::Test
{
protected:
    std::string output(const std::string &options, const std::string &main)
    {
        CPP_Manager manager;
        parseOptions(manager, options);
        if (!manager.openFile(myFolder.write("main.in", main).c_str(), false))
            return "cannot open";
        std::string all = allLines(manager);
        const std::string prefix = myFolder.path() + "/";
        for (size_t at; (at = all.find(prefix)) != std::string::npos;)
            all.erase(at, prefix.size());
        return all;
    }

    ScratchDirectory myFolder;
};

TEST_F(Includes, AreBracketedByMarkers)
{
    myFolder.write("a.h", "in a\n");
    myFolder.write("empty.h", "");
    EXPECT_EQ("# 1 \"main.in\"\n1\n\n# 1 \"a.h\"\nin a\n# 3 \"main.in\"\n3\n",
              output("", "1\n#include \"a.h\"\n3\n"));
    EXPECT_EQ("\nin a\n3\n", output("-P", "#include \"a.h\"\n3\n"));
    EXPECT_EQ("# 1 \"main.in\"\n\n# 1 \"empty.h\"\n# 2 \"main.in\"\n\n# 1 \"a.h\"\nin a\n",
              output("", "#include \"empty.h\"\n#include \"a.h\"\n"));
}

TEST_F(Includes, AreFoundBesideTheFileThenOnThePath)
{
    myFolder.write("sub/a.h", "a beside\n");
    myFolder.write("sub/b.h", "#include \"a.h\"\n");
    myFolder.write("path/a.h", "a on the path\n");
    const std::string onPath = "-P -I " + myFolder.path("path");
    myFolder.write("sub/c.h", "#include \"./a.h\"\n");
    for (const char *name : {"b", "c"})
        EXPECT_EQ("\n\na beside\n",
                  output(onPath, "#include \"sub/" + std::string(name) + ".h\"\n"));
    EXPECT_EQ("\na on the path\n", output(onPath, "#include \"a.h\"\n"));
    myFolder.write("a.h", "a next to main\n");
    EXPECT_EQ("\na next to main\n", output(onPath, "#include \"a.h\"\n"));
    EXPECT_EQ("\na on the path\n", output(onPath, "#include <a.h>\n"));
    EXPECT_EQ("\na beside\n", output("-P", "#include \"" + myFolder.path("sub/a.h") + "\"\n"));
}

TEST_F(Includes, NamesMayHoldVariables)
{
    myFolder.write("9.0.653.h", "version\n");
    EXPECT_EQ("\nversion\n", output("-P", "#include \"${__VVERSION__}.h\"\n"));
}

TEST_F(Includes, ThatFailAreReportedOrNot)
{
    EXPECT_EQ("# error cpp error: \"main.in\":1 Unable to include \"no.h\"\nb\n",
              output("-P", "#include \"no.h\"\nb\n"));
    EXPECT_EQ("\nb\n", output("-P", "#sinclude \"no.h\"\nb\n"));
    EXPECT_EQ("# error cpp error: \"main.in\":1 Unable to include .\nb\n",
              output("-P", "#include .\nb\n"));
}

TEST_F(Includes, ThatNeverEndAreStopped)
{
    myFolder.write("self.h", "#include \"self.h\"\n#include \"self.h\"\n");
    rlimit limits;
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &limits));
    for (const rlim_t descriptors : {limits.rlim_cur, rlim_t{60}}) {
        const rlimit fewer = {descriptors, limits.rlim_max};
        ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &fewer));
        const std::string out = output("-P", "#include \"self.h\"\nnever\n");
        ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &limits));
        EXPECT_NE(std::string::npos, out.find("Include nesting limit reached"));
        EXPECT_EQ(std::string::npos, out.find("never"));
    }
}

TEST_F(Includes, MissingEndifIsReportedForTheFileThatLacksIt)
{
    myFolder.write("open.h", "#if 1\nin\n");
    EXPECT_EQ("# 1 \"main.in\"\n\n# 1 \"open.h\"\n\nin\n"
              "# error cpp error: \"open.h\":2 Missing #endif# 2 \"main.in\"\nout\n",
              output("", "#include \"open.h\"\nout\n"));
}

// A stream's lines come one by one, whatever they hold.
TEST_F(Includes, FilesInPiecesAreStreamsInLines)
{
    myFolder.write("g.h", "#ifndef G\n#define G 1\n2\n#endif\n");
    Random random;
    SCOPED_TRACE(random.seed());
    for (int i = 0; i < 500; ++i) {
        const std::string text = random.text(
            {
                "1 2\n",
                "3 \\\n",
                " \n",
                "\n",
                "4\r\n",
                "x G\n",
                "/*",
                "*/",
                "// 5\n",
                "'6\n",
                "#if 0\n",
                "#else\n",
                "#endif\n",
                "#include \"g.h\"\n",
                "#undef G\n",
            },
            30);
        const std::string path = myFolder.write("main.in", text);
        for (const char *options : {"", "-P", "-P -h", "-P -C"}) {
            CPP_Manager byLines;
            CPP_Manager byPieces;
            parseOptions(byLines, options);
            parseOptions(byPieces, options);
            UT_IStream in(text.data(), static_cast<int>(text.size()), false);
            ASSERT_TRUE(byLines.openStream(&in, path.c_str()) &&
                        byPieces.openFile(path.c_str(), false));
            ASSERT_EQ(allLines(byLines), allPieces(byPieces)) << options << '\n' << text;
        }
    }
}

TEST_F(Includes, GuardedFilesGiveEmptyLinesWhileTheirGuardIsDefined)
{
    const struct {
        const char *text;
        const char *first;
        const char *again;
    } cases[] = {
        {"#ifndef A\n#define A\n1\n#endif", "\n\n1\n\n", "\n\n\n\n"},
        {"#ifndef A\n#define A\n1\n#endif\n2\n", "\n\n1\n\n2\n", "\n\n\n\n2\n"},
        {"#ifndef A\n#define A\n#else\n1\n#endif\n", "\n\n\n\n\n", "\n\n\n1\n\n"},
        {"#ifndef A\n#define A\n#if 1\n#endif\n1\n#endif\n", "\n\n\n\n1\n\n", "\n\n\n\n\n\n"},
        {"1\n#ifndef A\n#define A\n#endif\n", "1\n\n\n\n", "1\n\n\n\n"},
        {"#ifndef A\n#define A /*\n#endif\n*/\n1\n#endif\n", "\n\n\n\n1\n\n", "\n\n\n\n\n\n"},
        {"#ifndef A\n#define A\n1\n#endifx\n", "\n\n1\n", nullptr},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.text);
        myFolder.write("a.h", row.text);
        const std::string include = "#include \"a.h\"\n";
        const std::string first = std::string("\n") + row.first;
        const std::string out = output("-P", include + include + "#undef A\n" + include);
        if (row.again != nullptr) {
            EXPECT_EQ(first + "\n" + row.again + "\n" + first, out);
        } else {
            EXPECT_NE(std::string::npos, out.find("Undefined directive \"endifx\""));
        }
    }
    // The comment hides the #ifndef.
    myFolder.write("a.h", "#ifndef A\n// */ 1\n#endif\n");
    EXPECT_EQ("\n\n\n\n\n\n      1\n\n",
              output("-P -DA", "#include \"a.h\"\n#include \"a.h\" /*\n"));
    myFolder.write("a.h", std::string("#ifndef A\n\0#else\n1\n#endif\n", 26));
    EXPECT_EQ("\n\n\n1\n\n\n\n\n1\n\n", output("-P -DA", "#include \"a.h\"\n#include \"a.h\"\n"));
}

TEST_F(Includes, OldStyleNeedsNoHash)
{
    myFolder.write("a.h", "in a\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ("\nin a\nb\n", output("-P -H", "include a.h trailing\nb\n"));
    EXPECT_EQ("CPP Warning:  old style include detected " + myFolder.path("main.in") + ":1\n",
              testing::internal::GetCapturedStderr());
    EXPECT_EQ("include a.h\n", output("-P", "include a.h\n"));
}

TEST_F(Includes, AreSearchedAlongTheChosenPathWithItsCaret)
{
    const std::string pattern = myFolder.path("^");
    const ScopedVariable path("VELDRIN_ZEL_PATH", pattern.c_str());
    UT_PathSearch::rebuildAll();
    myFolder.write("Fog/a.h", "fog\n");
    myFolder.write("other/a.h", "other\n");
    myFolder.write("other/b.h", "other b\n");
    const struct {
        const char *what, *caret, *name, *out;
    } cases[] = {
        {"the path's own", nullptr, "a.h", "fog\n"},
        {"another comes behind", "other", "a.h", "fog\n"},
        {"and is searched", "other", "b.h", "other b\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        CPP_Manager manager(UT_VELDRIN_ZEL_PATH_FOG, c.caret);
        parseOptions(manager, "-P");
        ASSERT_TRUE(manager.openFile(c.name, true));
        EXPECT_EQ(c.out, allLines(manager));
    }
}

TEST_F(Includes, PathListsGiveTheirExistingFolders)
{
    myFolder.write("two/b.h", "in b\n");
    CPP_Manager manager;
    parseOptions(manager, "-P");
    manager.addIncludePathList((myFolder.path("one") + ";" + myFolder.path("two")).c_str());
    ASSERT_TRUE(manager.openFile("b.h", true));
    EXPECT_EQ("in b\n", allLines(manager));
    EXPECT_FALSE(manager.openFile("", true));
    EXPECT_FALSE(manager.openFile("./b.h", true));
    EXPECT_STREQ("<unknown>", manager.getCurrentFileName());
}

namespace
{
// Lines that a program makes, whatever it is told to open.
class CountingStream : public CPP_Stream
{
public:
    bool open(const char *) override { return false; }
    void setFile(FILE *) override {}
    void setStream(UT_IStream *) override {}
    bool readLine(UT_ScratchBuffer &line) override
    {
        line.sprintf("line %d", ++myCount);
        return myCount <= 3;
    }
    bool isOpen() const override { return true; }

private:
    int myCount = 0;
};

class CountingManager : public CPP_Manager
{
public:
    CPP_Stream *newStream() override { return new CountingStream; }
};
} // namespace

TEST(Streams, ACallersOwnSourceFeedsTheManager)
{
    CountingManager manager;
    ASSERT_TRUE(manager.openFile("made/up.in", false));
    EXPECT_EQ("# 1 \"made/up.in\"\nline 1\nline 2\nline 3\n", allLines(manager));
}
