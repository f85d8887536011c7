// Lines in, lines out: gathering, comments, directives, macros, options, markers and
// include files.
#include "CPP/CPP_Stream.h"
#include "CPP/files/cpp_DefStream.h"
#include "tests/support/Cases.h"
#include "tests/support/Random.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/preprocessed.h"

#include <filesystem>

TEST(Preprocessor, FollowsItsTables)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(TEST_DATA "/data/files");
    // A section's name holds the options.
    for (const auto &table : std::filesystem::directory_iterator(TEST_DATA "/data/tables"))
        expectTable(table.path(), [](const std::string &options, const char *in) {
            testing::internal::CaptureStderr();
            const std::string out = preprocessed(options, in);
            return out + testing::internal::GetCapturedStderr();
        });
    EXPECT_EQ("a b\n", preprocessed("-P", std::string("a\0b\n", 4))); // no row holds a NUL
    std::filesystem::current_path(before);
}

// What a manager gives and says, in pieces from a file or line by line from a stream.
static std::string given(const std::string &options, const std::string &path,
                         const std::string *text)
{
    CPP_Manager manager;
    parseOptions(manager, options);
    const std::string nothing;
    std::string messages;
    manager.setListener([&](const CPP_Message &message) {
        messages += std::to_string(message.line) + ':' + std::to_string(message.column) + ' ' +
                    message.text + '|' + message.source + '\n';
    });
    UT_IStream in = streamOver(text != nullptr ? *text : nothing);
    const bool isOpen = text != nullptr ? manager.openStream(&in, path.c_str())
                                        : manager.openFile(path.c_str(), false);
    return isOpen ? (text != nullptr ? allLines(manager) : allPieces(manager)) + messages : "";
}

static void expectSameInPieces(const ScratchDirectory &folder,
                               const std::vector<std::string> &pieces)
{
    Random random;
    SCOPED_TRACE(random.seed());
    for (int i = 0; i < 200; ++i) {
        const std::string text = random.text(pieces, 30), path = folder.write("main.in", text);
        for (const char *options : {"", "-P", "-P -h", "-P -C", "-P -c"})
            ASSERT_EQ(given(options, path, &text), given(options, path, nullptr)) << options << '\n'
                                                                                  << text;
    }
}

// A stream's lines come one by one, whatever they hold.
TEST(Preprocessor, FilesInPiecesAreStreamsInLines)
{
    const ScratchDirectory folder;
    folder.write("g.h", "#ifndef G\n#define G 1\n2\n#endif\n");
    expectSameInPieces(folder, {"1 2\n",
                                "3 \\\n",
                                " \n",
                                "\n",
                                "4\r\n",
                                "x G\n",
                                "/*",
                                "/*/\n",
                                "*/",
                                " */\t\r\n",
                                "#define A 1",
                                "#define\tB  'A' ",
                                "#define A",
                                "A B\n",
                                "// 5\n",
                                "#define C 5 // 6 \\\n",
                                "'6\n",
                                "#if 0\n",
                                "#else\n",
                                "#endif\n",
                                "#include \"g.h\"\n",
                                "#undef G\n"});
}

// Lines that skipped text has, and some that end it.
static const std::vector<std::string> SKIPPED = {"#if 0\n",
                                                 "\f#endif\n",
                                                 "\r#else\n",
                                                 "#\v elif 1\n",
                                                 "#if A /* b\n*/\n",
                                                 "\t# ifdef A // b\n",
                                                 "#ifndef A\n",
                                                 "#elif A\n",
                                                 "#elif A",
                                                 "#elif A // 1\n",
                                                 "#elif(A)\n",
                                                 "#elif (\n",
                                                 "#elif defined(A) && 1 > 0\n",
                                                 "#elif A == '/'\n",
                                                 "#elif defined(A)|| 0x10 == 16\\\n",
                                                 "#elif E\n",
                                                 "#else\n",
                                                 "#else/**/\n",
                                                 " #endif /* c */\n",
                                                 "#endif\n",
                                                 "#endif\\\n",
                                                 "#endif\r\n",
                                                 "#define A 2\n",
                                                 "#define E\n",
                                                 "#define O x\n",
                                                 "#elif O\n",
                                                 "#undef A\n",
                                                 "#elseif\n",
                                                 "#if(0)\n",
                                                 "a / b # c\n",
                                                 "a // \" c\n",
                                                 "\"/*\" /* c\n",
                                                 "*/ #endif\n",
                                                 "b */\n",
                                                 "#include <a/b>\n",
                                                 "#pragma\n",
                                                 "#line 7\n",
                                                 "text\n"};

TEST(Preprocessor, SkippedLinesInPiecesAreStreamsInLines)
{
    expectSameInPieces(ScratchDirectory(), SKIPPED);
}

// Reads each file anew, whatever its guard.
struct ForgetfulManager : CPP_Manager {
    CPP_Stream *newStream() override { return new cpp_DefStream; }
};

TEST(Preprocessor, GuardedFilesAreReadAnewWithTheSameResult)
{
    const ScratchDirectory folder;
    Random random;
    SCOPED_TRACE(random.seed());
    const std::string path =
        folder.write("main.in", "#include \"g.h\"\n#include \"g.h\" /*\n*/ x\n#include \"g.h\"\n");
    for (int i = 0; i < 200; ++i) {
        const std::string text = random.oneOf({"", "/* c\n */\n", "\n// c\n", "x\n", "/*"}) +
                                 "#ifndef G\n" + random.oneOf({"#define G\n", "\n"}) +
                                 random.text(SKIPPED, 4) + "#endif" +
                                 random.oneOf({"\n", " // G\n", "", "\n ", "\n/* c */\n", "\nx\n"});
        folder.write("g.h", text);
        for (const char *options : {"", "-P", "-P -h", "-P -C", "-P -c"}) {
            CPP_Manager manager;
            ForgetfulManager forgetful;
            parseOptions(manager, options);
            parseOptions(forgetful, options);
            ASSERT_TRUE(manager.openFile(path.c_str(), false) &&
                        forgetful.openFile(path.c_str(), false));
            ASSERT_EQ(allPieces(forgetful), allPieces(manager)) << options << '\n' << text;
        }
    }
}

TEST(Includes, AreSearchedAlongTheChosenPathWithItsCaret)
{
    const ScratchDirectory folder;
    const ScopedVariable path("VELDRIN_ZEL_PATH", folder.path("^").c_str());
    UT_PathSearch::rebuildAll();
    folder.write("Fog/a.h", "fog\n");
    folder.write("other/a.h", "other\n");
    folder.write("other/b.h", "other b\n");
    const auto found = [](CPP_Manager &&manager, const char *name) {
        parseOptions(manager, "-P");
        return manager.openFile(name, true) ? allLines(manager) : manager.getCurrentFileName();
    };
    const int fog = UT_VELDRIN_ZEL_PATH_FOG;
    EXPECT_EQ("fog\n", found(CPP_Manager(fog, "other"), "a.h")) << "another comes behind";
    EXPECT_EQ("other b\n", found(CPP_Manager(fog, "other"), "b.h")) << "and is searched";
    for (const char *name : {"", "./b.h"})
        EXPECT_EQ("<unknown>", found(CPP_Manager(fog, "other"), name));
    CPP_Manager listed;
    listed.addIncludePathList((folder.path("one") + ";" + folder.path("other")).c_str());
    EXPECT_EQ("other b\n", found(std::move(listed), "b.h"));
}

// Lines that a program makes, whatever it is told to open.
struct CountingManager : CPP_Manager {
    struct Stream : CPP_Stream {
        bool open(const char *) override { return false; }
        void setFile(FILE *) override {}
        void setStream(UT_IStream *) override {}
        bool readLine(UT_ScratchBuffer &line) override
        {
            line.sprintf("line %d", ++count);
            return count <= 3;
        }
        bool isOpen() const override { return true; }

        int count = 0;
    };
    CPP_Stream *newStream() override { return new Stream; }
};

TEST(Streams, ACallersOwnSourceFeedsTheManager)
{
    CountingManager manager;
    ASSERT_TRUE(manager.openFile("made/up.in", false));
    EXPECT_EQ("# 1 \"made/up.in\"\nline 1\nline 2\nline 3\n", allLines(manager));
}

// A condition, and then no more can be read.
struct BreakingManager : CountingManager {
    struct Stream : CountingManager::Stream {
        bool readLine(UT_ScratchBuffer &line) override
        {
            line.sprintf("#if 1");
            return ++count == 1;
        }
        const char *readError() const override { return count > 1 ? "broken" : nullptr; }
    };
    CPP_Stream *newStream() override { return new Stream; }
};

TEST(Streams, AReadErrorIsAllThatIsToldOfTheirEnd)
{
    BreakingManager manager;
    std::string message;
    manager.setListener([&message](const CPP_Message &told) { message += told.text + '|'; });
    ASSERT_TRUE(manager.openFile("in", false));
    EXPECT_EQ("# 1 \"in\"\n\n# error cpp error: \"in\":1 Unable to read: broken",
              allLines(manager));
    EXPECT_EQ("Unable to read: broken|", message);
}
