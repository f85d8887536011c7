#include "thumbnail/PaletteReader.h"

#include "tests/thumbnail/ThumbrenderTest.h"

using namespace std::string_literals;

using Palette = ThumbrenderTest;

namespace
{

const std::string MISSING = "Missing critical thumbnail data in palette x.palette\n";
const std::string NUL(1, '\0');

} // namespace

TEST_F(Palette, HeadGivesTheShaderOrAMessage)
{
    const std::string type = "ShaderType surface\n";
    withTemplate("#ifdef SURF_SHADER\nsurf SURF_SHADER\n#endif\n"
                 "#ifdef FOG_SHADER\nfog FOG_SHADER\n#endif\n");
    const struct {
        const char *what;
        std::string head;
        std::string scene;
        std::string err;
    } cases[] = {
        {"smallest", type + "VVaskel v\n", "surf v\n", ""},
        {"no last newline", type + "VVaskel v", "surf v\n", ""},
        {"CRLF", "ShaderType surface\r\nVVaskel \"v a\"\r\n", "surf v a\n", ""},
        {"quotes", type + "VVaskel 'v \"a b\"'\n", "surf v \"a b\"\n", ""},
        {"indented", " \t ShaderType surface\n\v VVaskel v \n", "surf v\n", ""},
        {"last one wins", "ShaderType fog\nVVaskel a\nVVaskel b\n" + type, "surf b\n", ""},
        {"other lines", "\n # x\n#VVaskel a\nvvaskel b\nIcon c\n" + type + "VVaskel d\n",
         "surf d\n", ""},
        {"key line of three words", type + "VVaskel v\nShaderType fog x\nVVaskel\n", "surf v\n",
         ""},
        {"NUL ends a line", type + "VVaskel v" + NUL + "w x\n", "surf v\n", ""},
        {"percent", type + "VVaskel %s%n\n", "surf %s%n\n", ""},
        {"behind ShopData", "VVaskel v\n  ShopData x\n" + type, "", MISSING},
        {"comment", "#" + type + "VVaskel v\n", "", MISSING},
        {"empty value", type + "VVaskel v\nVVaskel \"\"\n", "", MISSING},
        {"nothing but NULs", std::string(10000, '\0'), "", MISSING},
        {"unknown type", "ShaderType Surface\nVVaskel v\n", "", "Unknown shader type Surface\n"},
        {"extra block",
         type +
             "BeginIfdExtra x\n# comment\n\n  ShopData\n  EndIfdExtra\nVVaskel e\n"
             "EndIfdExtraX\nVVaskel v\nBeginIfdExtra\n100%\n" +
             "a" + NUL + "b\nEndIfdExtra\nShopData\n",
         "# comment\n\n  ShopData\n  EndIfdExtra\nVVaskel e\n100%\na\n\nsurf v\n", ""},
        {"extra block that never ends", type + "VVaskel v\nBeginIfdExtra\nlight\n",
         "light\n\nsurf v\n", ""},
    };
    std::string scenes;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        withPalette("x.palette", c.head);
        const ProgramRun run = thumbrender({"x.palette"});
        EXPECT_EQ(0, run.status);
        EXPECT_EQ(c.err, run.err);
        scenes += c.scene;
        EXPECT_EQ(scenes, renderer.scene());
        EXPECT_EQ(c.head, fileContents(path("runs/x.palette")));
    }
}

TEST_F(Palette, ExtraTextGoesToOurOwnRendererOnly)
{
    withPalette("x.palette", "ShaderType fog\nRIB r\nBeginIfdExtra\nlight\nEndIfdExtra\n");
    withTemplate("FOG_SHADER\n");
    thumbrender({"x.palette"});
    EXPECT_EQ("r\n", renderer.scene());
}

TEST_F(Palette, NothingCarriesOverToTheNextFile)
{
    withTemplate("OUTPUT_PICTURE\n");
    withPalette("a.palette", "ShaderType fog\nVVaskel v\nBeginIfdExtra\nlight\nEndIfdExtra\n");
    withPalette("b.palette", "VVaskel v\n");
    withPalette("c.palette", "ShaderType fog\n");
    withPalette("d.palette", "ShaderType fog\nVVaskel v\n");
    const ProgramRun run = thumbrender({"a.palette", "b.palette", "c.palette", "d.palette"});
    EXPECT_EQ("light\n\n\"a.jpg\"\n\"d.jpg\"\n", renderer.scene());
    EXPECT_EQ("Missing critical thumbnail data in palette b.palette\n"
              "Missing critical thumbnail data in palette c.palette\n",
              run.err);
}

TEST_F(Palette, PictureNameFollowsTheFileName)
{
    withTemplate("OUTPUT_PICTURE\n");
    const struct {
        const char *file, *renderer, *picture;
    } cases[] = {
        {"x.palette", "v", "x.jpg"},
        {".palette", "v", ".jpg"},
        {"x.palette.txt", "v", "x.palette.txt.jpg"},
        {"a 'b' %s $HOME ~.palette", "v", "a 'b' %s $HOME ~.jpg"},
        {"-q.palette", "v", "-q.jpg"},
        {"a//b.palette", "v", "a//b.jpg"},
        {"a\\b.palette", "v", "a\\b.jpg"},
        {"a\\b.palette", "prman", nullptr},
        {"a\"b.palette", "v", nullptr},
        {"a\nb.palette", "v", nullptr},
    };
    scratch.makeDirectory("runs/a");
    std::string scenes;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        withPalette(c.file, "ShaderType surface\nVVaskel v\nRIB r\n");
        const ProgramRun run = thumbrender({"-r", c.renderer, "--", c.file});
        if (c.picture != nullptr)
            scenes += "\""s + c.picture + "\"\n";
        EXPECT_EQ(c.picture == nullptr, run.err.find("Unable to write picture 'a") == 0);
        EXPECT_EQ(scenes, renderer.scene());
    }
}

TEST_F(Palette, LineOfFiftyMegabytes)
{
    withTemplate("SURF_SHADER\n");
    const std::string junk = std::string(25 << 20, 'x') + std::string(25 << 20, ' ');
    withPalette("x.palette", junk + "\nShaderType surface\nVVaskel v\n#" + junk);
    EXPECT_EQ("", thumbrender({"x.palette"}).err);
    EXPECT_EQ("v\n", renderer.scene());
}
