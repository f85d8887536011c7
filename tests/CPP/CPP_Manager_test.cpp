// Lines in, lines out: gathering, comments, directives, macros, options, markers and
// include files.
#include "CPP/CPP_Stream.h"
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

// A stream's lines come one by one, whatever they hold.
TEST(Preprocessor, FilesInPiecesAreStreamsInLines)
{
    const ScratchDirectory folder;
    folder.write("g.h", "#ifndef G\n#define G 1\n2\n#endif\n");
    const std::vector<std::string> pieces = {"1 2\n",
                                             "3 \\\n",
                                             " \n",
                                             "\n",
                                             "4\r\n",
                                             "x G\n",
                                             "/*",
                                             "*/",
                                             " */\t\r\n",
                                             "#define A 1",
                                             "#define\tB  'A' ",
                                             "#define A",
                                             "A B\n",
                                             "// 5\n",
                                             "'6\n",
                                             "#if 0\n",
                                             "#else\n",
                                             "#endif\n",
                                             "#include \"g.h\"\n",
                                             "#undef G\n"};
    Random random;
    SCOPED_TRACE(random.seed());
    for (int i = 0; i < 1000; ++i) {
        const std::string text = random.text(pieces, 30), path = folder.write("main.in", text);
        for (const char *options : {"", "-P", "-P -h", "-P -C"}) {
            CPP_Manager byLines, byPieces;
            parseOptions(byLines, options);
            parseOptions(byPieces, options);
            UT_IStream in = streamOver(text);
            ASSERT_TRUE(byLines.openStream(&in, path.c_str()) &&
                        byPieces.openFile(path.c_str(), false));
            ASSERT_EQ(allLines(byLines), allPieces(byPieces)) << options << '\n' << text;
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
