#include "tests/support/Cases.h"
#include "tests/thumbnail/ThumbrenderTest.h"

#include <algorithm>

using Palette = ThumbrenderTest;

TEST_F(Palette, HeadsAndNamesFollowTheirTable)
{
    const auto head = [this](const char *in) {
        std::string text = in;
        std::replace(text.begin(), text.end(), '\1', '\0');
        const std::string file = withPalette("x.palette", text);
        const std::string all = told({"x.palette"});
        EXPECT_EQ(text, fileContents(file));
        return all;
    };
    const auto named = [this](const char *choice) {
        return [this, choice](const char *in) {
            withPalette(in, "ShaderType surface\nVVaskel v\nRIB r\n");
            return told({"-r", choice, "--", in}, {"VELDRIN_RI_SHADERPATH="});
        };
    };
    expectTable(TEST_DATA "/data/heads",
                {{"head", head}, {"name", named("v")}, {"name for prman", named("prman")}});
}

TEST_F(Palette, LineOfFiftyMegabytes)
{
    const std::string junk = std::string(25 << 20, 'x') + std::string(25 << 20, ' ');
    withPalette("x.palette", junk + "\nShaderType surface\nVVaskel v\n#" + junk);
    EXPECT_EQ("0 |vaskel\n|'OUTPUT_PICTURE' \"x.jpg\"\n'SURF_SHADER' v\n", told({"x.palette"}));
}
