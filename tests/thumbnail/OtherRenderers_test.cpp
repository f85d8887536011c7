// The scenes that renderers other than our own get, as strict readers see them.
#include "tests/support/Cases.h"
#include "tests/support/MiReader.h"
#include "tests/support/PlainText.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/RecordingRenderer.h"
#include "tests/support/RibReader.h"
#include "tests/support/preprocessed.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>

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
const double DEGREE = std::acos(-1.0) / 180;

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
                             "ShaderType " + std::string(kind.type) + "\nVVaskel v\nRIB '" +
                                 kind.rib + "'\nMI '" + kind.mi + "'\n") +
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
    std::filesystem::remove(renderer.folder() + "/../scene");
    const ProgramRun run =
        runLine("$RUN '" BIN_DIR "/thumbrender' -r " + name + ' ' + options + palettes,
                {"HOME=" + scratch.path("home"), "VDX=" SOURCE_DIR "/share",
                 "PATH=" + renderer.folder() + ":/usr/bin:/bin"},
                scratch.path());
    EXPECT_EQ("", run.err);
    std::vector<std::string> pieces;
    const std::string text = renderer.record("scene"), mark = "# next\n";
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
        EXPECT_TRUE(found == scenes("entropy", options, all)) << options;
        EXPECT_TRUE(found == scenes("rdc", options, all)) << options;
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

// Where vaskel's camera, whose line this is, sees a point.
static ScenePixel seenByVaskel(const std::string &scene, const ScenePoint &point)
{
    double eyeY, eyeZ, atY, atZ, fov;
    const size_t line = scene.find("camera from ");
    EXPECT_EQ(5, sscanf(scene.c_str() + line, "camera from 0 %lf %lf at 0 %lf %lf fov %lf", &eyeY,
                        &eyeZ, &atY, &atZ, &fov));
    const double pitch = std::atan2(eyeY - atY, eyeZ - atZ) / DEGREE;
    const SceneMatrix camera =
        sceneTranslation(0, -eyeY, -eyeZ) * sceneRotation(pitch, {1, 0, 0}) * sceneScale(1, 1, -1);
    return scenePixel(point * camera, std::tan(fov / 2 * DEGREE), 256);
}

TEST_F(OtherRenderers, SeeWhatVaskelSees)
{
    for (const char *type : {"surface", "light"}) {
        for (const char *shape : {"sphere", "grid", "cylinder", "teapot"}) {
            const std::string options = std::string("-g ") + shape;
            const std::string palette = ' ' + scratch.path(type) + ".palette";
            const RibScene rib = readRib(scenes("prman", options, palette).at(0));
            const MiScene mi = readMi(scenes("mi", options, palette).at(0));
            const std::string ours = scenes("vaskel", options, palette).at(0);
            for (const ScenePoint &point : scenePoints({-1, 0, 0, 1, 2, 0, .3, 1, .8, 2, 0, -4})) {
                const ScenePixel wanted = seenByVaskel(ours, point);
                const ScenePixel pixels[] = {
                    scenePixel(point * rib.camera, std::tan(rib.fieldOfView / 2 * DEGREE), 256),
                    scenePixel(point * mi.camera * sceneScale(1, 1, -1), mi.tangent, 256)};
                for (const ScenePixel &pixel : pixels) {
                    EXPECT_NEAR(wanted.x, pixel.x, .5) << type << options;
                    EXPECT_NEAR(wanted.y, pixel.y, .5) << type << options;
                }
            }
        }
    }
}

TEST_F(OtherRenderers, TakeWhatASiteHas)
{
    const std::string fog = " '" + scratch.path("fog.palette") + "'",
                      surface = " '" + scratch.path("surface.palette") + "'";
    scratch.write("home/veldrin9.0/shop/palette/site.rib",
                  "#define RIB_DISPLAY \"jpeg\"\n"
                  "#define RIB_SPOTLIGHT \"beam\"\n"
                  "#define RIB_SHADOWED \"string map\" [\"rays\"]\n"
                  "#define RIB_CASTERS Attribute \"own\" \"float rays\" 1\n");
    const auto expectInScene = [](const std::string &scene, const char *text, bool isThere) {
        EXPECT_EQ(isThere, scene.find(text) != std::string::npos) << text;
    };
    const std::string beam = scenes("rdc", "", fog).at(0),
                      studio = scenes("rdc", "", surface).at(0),
                      none = scenes("rdc", "-s", surface).at(0);
    expectInScene(studio, "surface.jpg\" \"jpeg\" \"rgb\"\n", true);
    expectInScene(studio, "LightSource \"beam\" 1 \"string map\" [\"rays\"]", true);
    expectInScene(beam, "LightSource \"beam\" 1 \"string map\" [\"rays\"]", true);
    expectInScene(studio, "Attribute \"own\" \"float rays\" 1\n", true);
    for (const char *text : {"\"beam\"", "\"string map\"", "\"own\""})
        expectInScene(none, text, false);
}

// Numbers of levels.inc against what they are derived from in shadeball.inc.
TEST(OtherRenderersLevels, AreThoseOfTheStudio)
{
    const struct {
        std::string light, aim, shown;
    } cases[] = {
        {"KEY", "STUDIO_AIM", "SURF"},   {"FILL", "STUDIO_AIM", "SURF"},
        {"RIM", "STUDIO_AIM", "SURF"},   {"BEAM", "STUDIO_BEAM_AIM", "FOG"},
        {"LAMP", "STUDIO_AIM", "LIGHT"},
    };
    for (const auto &c : cases) {
        const std::string name = " STUDIO_" + c.light, start = name + "_START";
        const std::string text = preprocessed(
            "-P -D" + c.shown + "_SHADER -I'" SOURCE_DIR "/share/veldrin/shop/palette'",
            "#include \"shadeball.inc\"\n#include \"levels.inc\"\n" + name + ' ' + c.aim + name +
                "_LEVEL" + start + "_LEVEL" + start + name + "_STOP" + name + "_POWER\n");
        std::istringstream in(text);
        const std::vector<double> n{std::istream_iterator<double>(in), {}};
        ASSERT_LE(10u, n.size()) << text;
        const double distance = std::hypot(n[0] - n[3], n[1] - n[4], n[2] - n[5]), level = n[6];
        EXPECT_NEAR(level, n[7] * (n[9] - distance) / (n[9] - n[8]), .01 * level) << c.light;
        EXPECT_NEAR(.6 * distance, n[8], .01) << c.light;
        EXPECT_NEAR(2 * distance, n[9], .01) << c.light;
        if (n.size() > 10) {
            EXPECT_NEAR(level * distance * distance, n[10], .01) << c.light;
        }
    }
}

TEST(StrictReaders, TellWhatIsWrong)
{
    expectTable(
        TEST_DATA "/data/scenes",
        {{"rib",
          [](const char *in) {
              return together(readRib("Display \"x\" \"file\" \"rgb\" Translate 0 0 5 "
                                      "WorldBegin " +
                                      std::string(in) + " WorldEnd\n")
                                  .findings);
          }},
         {"mi", [](const char *in) {
              return together(
                  readMi("link \"base.so\" $include <base.mi> options \"q\" end options "
                         "camera \"c\" output \"jpg\" \"x\" focal 1 aperture 1 resolution 9 9 "
                         "end camera instance \"v\" \"c\" end instance "
                         "instgroup \"s\" \"v\" end instgroup "
                         "material \"m\" \"mib_reflect\" () end material " +
                         std::string(in) + " render \"s\" \"v\" \"q\"\n")
                      .findings);
          }}});
}
