// thumbrender as it is installed: beside a vaskel, with templates in share/.
#include "tests/thumbnail/ThumbrenderTest.h"

#include <filesystem>

namespace fs = std::filesystem;

class Installed : public ThumbrenderTest
{
protected:
    Installed()
    {
        scratch.write("moved/share/veldrin/shop/palette/shadeball.ifd", "installed template\n");
        withVaskel("moved/bin", "installed vaskel");
        fs::copy_file(BIN_DIR "/thumbrender", path("moved/bin/thumbrender"));
        withVaskel("site", "site's vaskel");
    }

    void withVaskel(const std::string &folder, const std::string &name) const
    {
        const std::string script = "#!/bin/sh\necho \"" + name + "\"\nexec /bin/cat\n";
        fs::permissions(scratch.write(folder + "/vaskel", script), fs::perms::owner_all);
    }

    // What the renderer says and reads, and all messages.
    std::string drawn(const std::string &program, const Texts &environment) const
    {
        const ProgramRun run =
            runLine("$RUN '" + path(program) + "' vr.palette", environment, path("runs"));
        return run.out + run.err;
    }
};

TEST_F(Installed, NeedsNoVariableAndHeedsEachThatIsSet)
{
    const std::string home = "HOME=" + path("home");
    const struct {
        const char *what;
        Texts environment;
        std::string drawn;
    } cases[] = {
        {"nothing set", {home}, "installed vaskel\ninstalled template\n"},
        {"a PATH without vaskel",
         {home, "PATH=/usr/bin:/bin"},
         "installed vaskel\ninstalled template\n"},
        {"a PATH with vaskel",
         {home, "PATH=/bin:" + path("site")},
         "site's vaskel\ninstalled template\n"},
        {"a place of the package", {home, "VDX=" + path("share")}, "installed vaskel\nother\n"},
        {"one that is not there",
         {home, "VDX=/nowhere"},
         "Unable to find render script shop/palette/shadeball.ifd\n"},
        {"a search path",
         {home, "VELDRIN_PATH=" + path("share/veldrin")},
         "installed vaskel\nother\n"},
        {"the rest of a search path",
         {home, "VELDRIN_PATH=/nowhere;&"},
         "installed vaskel\ninstalled template\n"},
    };
    withTemplate("other\n");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.drawn, drawn("moved/bin/thumbrender", c.environment));
    }
}

TEST_F(Installed, IsFoundThroughALinkAndWhereverItIsMovedTo)
{
    const Texts environment = {"HOME=" + path("home")};
    fs::create_symlink(path("moved/bin/thumbrender"), path("link"));
    EXPECT_EQ("installed vaskel\ninstalled template\n", drawn("link", environment));
    fs::rename(path("moved"), path("moved again"));
    EXPECT_EQ("installed vaskel\ninstalled template\n",
              drawn("moved again/bin/thumbrender", environment));
}

TEST_F(Installed, ACopiedTemplateFindsWhatItIncludes)
{
    fs::copy(SOURCE_DIR "/share", path("share"),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    const std::string folder = "veldrin/shop/palette/shadeball.";
    for (const char *name : {"vaskel", "prman", "mi"}) {
        SCOPED_TRACE(name);
        const std::string arguments = std::string("-r") + name + " vrm.palette";
        fs::remove_all(path("home"));
        const std::string installed = told(arguments);
        EXPECT_THAT(installed, testing::Not(testing::HasSubstr("error")));
        for (const char *suffix : {"ifd", "rib", "mi"})
            scratch.write("home/veldrin9.0/shop/palette/shadeball." + std::string(suffix),
                          "#pragma own\n" + fileContents(path("share/" + folder + suffix)));
        EXPECT_EQ("0 #pragma own\n\n" + installed.substr(2), told(arguments));
    }
}
