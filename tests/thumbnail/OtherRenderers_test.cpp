// The scenes that renderers other than our own get, as strict readers see them.
#include "tests/support/Cases.h"
#include "tests/support/MiReader.h"
#include "tests/support/PlainText.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/RecordingRenderer.h"
#include "tests/support/RibReader.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

namespace
{
// Each kind of shader has a palette here; an example may have lines for others or not.
const struct {
    const char *type, *rib, *mi;
} KINDS[] = {
    {"surface", "plastic \"Kd\" 0.8", "\"mib_reflect\" (\"input\" 0 0 0, \"reflect\" 1 1 1)"},
    {"displace", "\"bumpy\" \"float Km\" [.1]", "\"own_bumps\" (\"height\" .1)"},
    {"light", "\"pointlight\" 1", "\"mib_light_point\" (\"color\" 1 1 1)"},
    {"shadow", "\"spotlight\" 1", "\"mib_transparency\" (\"transp\" 1 1 1)"},
    {"fog", "\"depthcue\" \"maxdistance\" [9]", "\"mib_volume\" (\"max\" 9)"},
};
const char *const OWN_SHADER =
    "declare shader scalar \"own_bumps\" (scalar \"height\") end declare\n";

std::set<std::string> files(const char *folder)
{
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path());
    return names;
}

class OtherRenderers : public ::testing::Test
{
protected:
    OtherRenderers();

    // What the renderer reads for those palettes, a scene each.
    std::vector<std::string> scenes(const std::string &name, const std::string &options,
                                    const std::string &palettes) const;

    const ScratchDirectory scratch;
    RecordingRenderer renderer;
    std::string all; // palettes with lines for all
};

OtherRenderers::OtherRenderers()
{
    renderer.setScript("cd \"${0%/*}/..\" && cat >>scene && echo '# next' >>scene\n");
    scratch.write("home/veldrin9.0/shop/palette/site.mi", OWN_SHADER);
    for (const auto &kind : KINDS)
        all += " '" +
               scratch.write(std::string(kind.type) + ".palette",
                             "ShaderType " + std::string(kind.type) + "\nRIB '" + kind.rib +
                                 "'\nMI '" + kind.mi + "'\n") +
               "'";
    for (const std::string &example : files(SOURCE_DIR "/examples")) {
        const std::string text = fileContents(example);
        const bool hasRib = text.find("\nRIB ") != std::string::npos;
        EXPECT_EQ(hasRib, text.find("\nMI ") != std::string::npos) << example;
        if (hasRib)
            all += " '" + example + "'";
    }
}

std::vector<std::string> OtherRenderers::scenes(const std::string &name, const std::string &options,
                                                const std::string &palettes) const
{
    const size_t from = renderer.record("scene").size();
    const ProgramRun run =
        runLine("$RUN '" BIN_DIR "/thumbrender' -r " + name + ' ' + options + palettes,
                {"HOME=" + scratch.path("home"), "VDX=" SOURCE_DIR "/share",
                 "PATH=" + renderer.folder() + ":/usr/bin:/bin"},
                scratch.path());
    EXPECT_EQ("", run.err);
    std::vector<std::string> pieces;
    const std::string text = renderer.record("scene").substr(from), mark = "# next\n";
    for (size_t at = 0, end; (end = text.find(mark, at)) != std::string::npos;
         at = end + mark.size())
        pieces.push_back(text.substr(at, end - at));
    return pieces;
}

std::vector<std::string> everyOption()
{
    std::vector<std::string> options;
    for (const char *shape : {"sphere", "grid", "cylinder", "teapot"})
        for (const char *more : {"", "-b", "-s", "-bs"})
            options.push_back(std::string("-g ") + shape + ' ' + more);
    return options;
}

std::string together(const std::vector<std::string> &lines)
{
    std::string all;
    for (const std::string &line : lines)
        all += (all.empty() ? "" : "; ") + line;
    return all;
}
} // namespace

TEST_F(OtherRenderers, TakeEveryRibScene)
{
    for (const std::string &options : everyOption()) {
        const auto found = scenes("prman", options, all);
        EXPECT_EQ(found, scenes("entropy", options, all));
        EXPECT_EQ(found, scenes("rdc", options, all));
        EXPECT_GE(found.size(), 15u);
        for (size_t i = 0; i < found.size(); ++i)
            EXPECT_EQ("", together(readRib(found[i]).findings)) << options << ' ' << i;
    }
}

TEST_F(OtherRenderers, TakeEveryMiScene)
{
    for (const std::string &options : everyOption()) {
        const auto found = scenes("mi", options, all);
        EXPECT_GE(found.size(), 15u);
        for (size_t i = 0; i < found.size(); ++i)
            EXPECT_EQ("", together(readMi(found[i]).findings)) << options << ' ' << i;
    }
}
