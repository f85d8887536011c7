// The program on small libraries, from outside.
#include "tests/support/Cases.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"
#include "thumbmake/tm_Text.h"

#include <gtest/gtest.h>

#ifdef HAS_VASKEL
namespace
{
// A library of two good palettes and one that is none, in a folder with a blank.
struct Library : ScratchDirectory {
    Library()
    {
        const std::string good = "ShaderType surface\nVVaskel v_matte\n";
        write("my lib/a.palette", good);
        write("my lib/deep/b.palette", good);
        write("my lib/bad.palette", "ShaderType surface\nVVaskel v_mate\n");
        makeDirectory("empty");
    }

    // What lines of bash do there.
    std::string told(const std::string &lines) const
    {
        const ProgramRun run = runLine(
            "set -o pipefail; exec 2>&1\nmake() { thumbmake -q --size 8 --quality draft "
            "\"$@\"; }\nlook() { thumbmake -n --size 8 --quality draft \"$@\"; }\n"
            "slow() { mkdir bin; printf '#!/bin/sh\\nscene=$(cat)\\ncase $scene in *deep*) touch "
            "runs; exec sleep 99;; esac\\necho \"$scene\" | \"%s/vaskel\"\\n' \"${PATH%%:*}\" "
            ">bin/vaskel; "
            "chmod +x bin/vaskel; set -m; PATH=$PWD/bin:$PATH thumbmake --size 8 --quality draft "
            "-j1 my* >said 2>&1 & until [ -e runs ] || ! kill -0 $!; do sleep .01; done; }\n"
            "stop() { kill -$1 -- -$!; set +m; wait $! 2>wait; tail -n 1 said; rm -r bin my*/bad*; "
            "}\n" +
                lines,
            {"PATH=" BIN_DIR ":/usr/bin:/bin", "HOME=" + path("home"), "VDX=" SOURCE_DIR "/share"},
            path());
        return std::to_string(run.status) + '|' + run.out + run.err;
    }
};
} // namespace

TEST(Thumbmake, RunsFollowTheirTable)
{
    expectTable(TEST_DATA "/data/runs",
                {{"bash", [](const char *in) { return Library().told(in); }}});
}

#endif

TEST(Text, QuotesKeepNamesWhole)
{
    const std::string name = "a b'c\"d$x:y|z#\\";
    EXPECT_EQ("'a b'\\''c\"d$x:y|z#\\'", tm_quoteForShell(name));
    EXPECT_EQ("a$ b'c\"d$$x$:y${bar}z#\\", tm_ninjaPath(name));
    EXPECT_EQ("'a b'\"'\"'c\"d$x:y|z#\\'", tm_quoteForVaskel(name));
}

TEST(Text, NumbersAreGroupedByThousands)
{
    const std::pair<long, const char *> cases[] = {
        {0, "0"}, {999, "999"}, {1000, "1,000"}, {9700, "9,700"}, {1234567, "1,234,567"}};
    for (const auto &[number, text] : cases)
        EXPECT_EQ(text, tm_grouped(number));
}
