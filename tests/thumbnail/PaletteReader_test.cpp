#include "tests/support/Cases.h"
#include "tests/thumbnail/ThumbrenderTest.h"

#include <algorithm>

using Palette = ThumbrenderTest;

TEST_F(Palette, HeadsAndNamesFollowTheirTable)
{
    const auto head = [this](const char *in) {
        std::string text = in;
        std::replace(text.begin(), text.end(), '\1', '\0');
        const std::string file = scratch.write("runs/x.palette", text);
        const std::string all = told("x.palette");
        EXPECT_EQ(text, fileContents(file));
        return all;
    };
    const auto named = [this](const std::string &choice) {
        return [this, choice](const char *in) {
            scratch.write(std::string("runs/") + in, "ShaderType surface\nVVaskel v\nRIB r\n");
            return told("-r " + choice + " -- \"$NAME\"",
                        {"VELDRIN_RI_SHADERPATH=", std::string("NAME=") + in});
        };
    };
    expectTable(TEST_DATA "/data/heads",
                {{"head", head}, {"name", named("v")}, {"name for prman", named("prman")}});
}
