#include "tests/support/Cases.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/ScratchDirectory.h"
#include "vaskel/base/vk_Sampler.h"
#include "vaskel/osl/vk_OslSurface.h"
#include "vaskel/pixels/vk_Renderer.h"
#include "vaskel/scene/vk_SceneReader.h"

#include "UT/UT_PathSearch.h"

#include <gmock/gmock.h>

#include <sstream>
#include <unistd.h>

namespace
{
// Reads lines as a whole scene with a ball; the messages, a line each.
std::string readScene(const std::string &lines, vk_Scene &scene,
                      const std::string &picture = "p.png")
{
    std::string text = "picture " + picture + "\nsize 24 24\ncamera\n" + lines + "\nsphere\nend\n";
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    vk_SceneReader reader("s", scene);
    const bool isGood = reader.read(file);
    std::fclose(file);
    std::string all;
    for (const std::string &message : reader.messages())
        all += message + '\n';
    EXPECT_EQ(isGood, all.empty());
    return all;
}

// "SOURCE @ WORDS" as lines of a scene whose shapes have that shader.
std::string sceneWith(const std::string &row, const std::string &statement = "surface")
{
    const std::size_t at = row.find(" @");
    return "source x.osl\n" + row.substr(0, at) + "\nendsource\n" + statement + " x.osl " +
           (at == std::string::npos ? "" : row.substr(at + 2));
}

std::string colourText(const vk_Colour &c)
{
    std::ostringstream out;
    out.precision(3);
    out << c.x;
    if (!(c == vk_grey(c.x)))
        out << ' ' << c.y << ' ' << c.z;
    return out.str();
}

// The parts of a material that are there.
std::string materialText(const vk_Material &m)
{
    std::string text;
    const auto add = [&](const char *name, const vk_Colour &value) {
        if (!(value == vk_Colour{}))
            text += (text.empty() ? "" : ", ") + std::string(name) + " " + colourText(value);
    };
    add("diffuse", m.diffuse);
    add("specular", m.specular);
    add("edge", m.edge);
    add("sheen", m.sheen);
    add("clear", m.clear);
    if (vk_largest(m.edge + m.clear) > 0)
        add("rough", vk_grey(m.rough));
    add("brushed", vk_grey(m.brushed));
    if (m.isClear())
        add("ior", vk_grey(m.ior));
    add("scatter", m.scatter);
    add("emission", m.emission);
    add("passes by", m.passesBy);
    if (m.presence < 1)
        text += ", presence " + colourText(vk_grey(m.presence));
    add("tilt", m.tilt);
    return text;
}

// A point that faces the viewer at (.25 .5 0), with u and v along x and y.
vk_SurfacePoint facingPoint()
{
    vk_SurfacePoint point;
    point.position = point.place = {.25f, .5f, 0};
    point.u = .25f;
    point.v = .5f;
    point.dPdu = {1, 0, 0};
    point.dPdv = {0, 1, 0};
    point.footprint = .01f;
    return point;
}

std::string materialFor(const char *row)
{
    vk_Scene scene;
    const std::string wrong = readScene(sceneWith(row), scene);
    return wrong.empty() ? materialText(scene.shapes[0].surface->shade(facingPoint())) : wrong;
}
} // namespace

TEST(Osl, TakesParametersAndMakesMaterialsByTheTable)
{
    const auto parameters = [](const char *words) {
        const std::string source =
            "shader x(int i = 2 [[ int min = 0, int max = 9 ]], float f = 1.5, string s = \"no\","
            " color c = 0, point p = 0, float two[2] = {0, 0}, float any[] = {0}, matrix m = 1,"
            " output color all = 0)"
            " { all = color(i + f + (s == \"a b\"), c[1] + p[2] + m[3][2],"
            " two[0] + two[1] + any[0] * arraylength(any)) * .01; } @";
        return materialFor((source + words).c_str());
    };
    expectTable(TEST_DATA "/data/osl", {{"parameters", parameters}, {"materials", materialFor}});
}

// A point's answer must not depend on which others are asked about.
TEST(Osl, ShadesPointsTogetherAsEachAlone)
{
    vk_Scene scene;
    ASSERT_EQ("",
              readScene(sceneWith("surface x(output float h = 0, output float o = 1)"
                                  " { h = noise(P * 9); color c ="
                                  " noise(P * 5); if (u > .5) c *= Dx(P)[0] * 90; o = P[1] > .3;"
                                  " Ci = c * diffuse(N) + u * transparent(); }"
                                  " @show h as bump show o as opacity"),
                        scene));
    std::vector<vk_SurfacePoint> points(37, facingPoint());
    vk_Sampler sampler(1, 1);
    for (vk_SurfacePoint &point : points) {
        point.u = sampler.number();
        point.place = point.position = {point.u, sampler.number(), sampler.number()};
    }
    std::vector<vk_Material> together(points.size());
    scene.shapes[0].surface->shade(points.data(), together.data(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        EXPECT_EQ(materialText(scene.shapes[0].surface->shade(points[i])),
                  materialText(together[i]))
            << i;
}

// Of a mixture each point is one part, and so many are that its mean is the mixture.
TEST(Osl, MixesGlassByChance)
{
    vk_Scene scene;
    ASSERT_EQ(
        "", readScene(sceneWith("surface x() { Ci = .3 * diffuse(N) + .7 * refraction(N, 1.5); }"),
                      scene));
    vk_Colour diffuse, clear;
    constexpr int COUNT = 2000;
    for (int i = 0; i < COUNT; ++i) {
        vk_SurfacePoint point = facingPoint();
        point.position.x = static_cast<float>(i) / COUNT;
        const vk_Material material = scene.shapes[0].surface->shade(point);
        diffuse += material.diffuse * (1.0f / COUNT);
        clear += material.clear * (1.0f / COUNT);
    }
    EXPECT_NEAR(.3f, diffuse.x, .04f);
    EXPECT_NEAR(.7f, clear.x, .04f);
}

TEST(Osl, ReadsOnlyFilesBesideThePaletteAndBelowTheShaderPath)
{
    const ScratchDirectory scratch;
    const std::string good = "shader x(output color c = .5) {}\n";
    scratch.write("home/in.osl", good);
    scratch.write("home/sub/in.osl", "#include \"near.h\"\n" + good);
    scratch.write("home/sub/near.h", "\n");
    scratch.write("home/far.osl", "#include \"../away/far.h\"\n" + good);
    scratch.write("home/text.osl", "#include \"notes.txt\"\n" + good);
    scratch.write("home/notes.txt", "secret\n");
    scratch.write("home/up.osl", "#include \"shared.h\"\n" + good);
    scratch.write("away/far.h", "\n");
    scratch.write("away/out.osl", good);
    scratch.write("site/shared.osl", good);
    scratch.write("site/shared.h", "\n");
    scratch.makeDirectory("home/folder.osl");
    ASSERT_EQ(0,
              symlink(scratch.path("away/out.osl").c_str(), scratch.path("home/link.osl").c_str()));
    ASSERT_EQ(0, symlink("in.osl", scratch.path("home/alias.osl").c_str()));
    ASSERT_EQ(0, symlink("/dev/zero", scratch.path("home/zero.osl").c_str()));
    const ScopedVariable path("VELDRIN_ZEL_PATH", (".;" + scratch.path("site")).c_str());
    UT_PathSearch::rebuildAll();

    const struct {
        std::string name;
        const char *why; // "": it may be read
    } cases[] = {
        {"in.osl", ""},
        {"alias.osl", ""},
        {"sub/in.osl", ""},
        {"../home/in.osl", ""},
        {"shared.osl", ""},
        {"up.osl", ""},
        {scratch.path("site/shared.osl"), ""},
        {"link.osl", "lies neither beside"},
        {"../away/out.osl", "lies neither beside"},
        {scratch.path("away/out.osl"), "lies neither beside"},
        {"zero.osl", "lies neither beside"},
        {"folder.osl", "no regular file"},
        {"none.osl", "found neither beside"},
        {"far.osl", "Unable to include"},
        {"text.osl", "Unable to include"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vk_Scene scene;
        const std::string said =
            readScene("surface '" + c.name + "'", scene, scratch.path("home/p.png"));
        if (*c.why == '\0')
            EXPECT_EQ("", said);
        else
            EXPECT_THAT(said, testing::HasSubstr(c.why));
    }
    vk_Scene scene;
    EXPECT_EQ("", readScene("surface sub/in.osl", scene, scratch.path("home/p.png")));
    EXPECT_THAT(scene.osl->opened(), testing::ElementsAre(scratch.path("home/sub/in.osl"),
                                                          scratch.path("home/sub/near.h")));
}

// How far points of a ball move: outwards, and to the right.
TEST(Osl, DisplacesAlongTheNormalOrToWhereTheShaderSays)
{
    const auto moves = [](const char *row) {
        vk_Scene scene;
        const std::string wrong = readScene(sceneWith(row, "displace"), scene);
        if (!wrong.empty())
            return wrong;
        const vk_SurfacePoint point = facingPoint();
        std::vector<vk_SurfacePoint> points(20, point);
        std::vector<vk_Vec> moved(points.size());
        scene.shapes[0].displace->move(points.data(), moved.data(), points.size());
        EXPECT_EQ(moved[0], moved[19]);
        const vk_Vec by = moved[0] - point.position;
        EXPECT_NEAR(by.z, scene.shapes[0].displace->displace(point), 1e-6);
        return colourText(by);
    };
    expectTable(TEST_DATA "/data/osl_displace", {{"moves", moves}});
}

TEST(Osl, FogsAreWhatClosuresOrOutputsSay)
{
    const auto medium = [](const char *row) {
        vk_Scene scene;
        const std::string wrong = readScene(sceneWith(row, "fog"), scene);
        if (!wrong.empty())
            return wrong;
        const vk_Medium fog = scene.fog->medium();
        std::ostringstream out;
        out.precision(3);
        out << fog.extinction << ", albedo " << colourText(fog.albedo) << ", forward "
            << fog.forward << ", radius " << fog.radius << ", height " << fog.height;
        return out.str();
    };
    expectTable(TEST_DATA "/data/osl_fogs", {{"media", medium}});
}

// A shader's emission multiplies that of v_area at each place, and where there is more of it
// more samples are taken.
TEST(Osl, LightsShineAsTheirShadersDo)
{
    const std::string plain = "light v_area from 0 3 0 to 0 0 0 width 2 height 2 intensity .5";
    vk_Scene scene, reference;
    ASSERT_EQ("", readScene(plain, reference));
    ASSERT_EQ("", readScene(sceneWith("surface x(float f = 1) { Ci = color(f * u, 1, v > .5) *"
                                      " emission(); } @f 2 from 0 3 0 to 0 0 0 width 2 height 2"
                                      " intensity .5",
                                      "light"),
                            scene));
    const vk_Vec from = {.3f, 0, .2f};
    vk_Colour sum, plainSum;
    for (std::uint32_t i = 0; i < 256; ++i) {
        const vk_Square at = vk_Sampler(1, i).square();
        const vk_LightSample was = reference.lights[0]->sample(from, at);
        const vk_LightSample met = scene.lights[0]->hit(from, was.direction);
        EXPECT_NEAR(was.radiance.x * 2 * at.u, met.radiance.x, .04f * was.radiance.x);
        EXPECT_FLOAT_EQ(was.radiance.y, met.radiance.y);
        if (std::abs(at.v - .5f) > .02f) {
            EXPECT_FLOAT_EQ(at.v > .5f ? was.radiance.z : 0, met.radiance.z);
            const float share = (2 * at.u + 1 + (at.v > .5f ? 1.0f : 0)) / 2.5f;
            EXPECT_NEAR(was.density * share, met.density, .03f * was.density);
        }
        const vk_LightSample is = scene.lights[0]->sample(from, at);
        const vk_LightSample hit = scene.lights[0]->hit(from, is.direction);
        EXPECT_NEAR(is.density, hit.density, .04f * is.density);
        EXPECT_NEAR(is.radiance.x, hit.radiance.x, .04f * was.radiance.x);
        sum += is.radiance * (1 / is.density);
        plainSum += met.radiance * (1 / was.density);
    }
    EXPECT_NEAR(plainSum.x, sum.x, .01f * sum.x);
    EXPECT_NEAR(plainSum.z, sum.z, .02f * sum.z);
    EXPECT_EQ(reference.lights[0]->middle(from).direction, scene.lights[0]->middle(from).direction);
    vk_Scene wrong, pointless;
    EXPECT_EQ("s:7: error: x.osl has no parameter 'size'; expected f, from, to, color, intensity,"
              " width, height; nearest is 'f'\n",
              readScene(sceneWith("surface x(float f = 1) {} @size 3", "light"), wrong));
    EXPECT_EQ("s:7: error: x.osl expected 'from' and 'to' to be apart\n",
              readScene(sceneWith("surface x() {} @from 0 3 0 to 0 3 0", "light"), pointless));
}

// What shaders say comes once, and no picture comes of one that never ends.
TEST(Osl, SaysThingsOnceAndStopsLoopsWithoutEnd)
{
    const struct {
        const char *row, *said;
        bool isStopped;
    } cases[] = {
        {"surface x() { printf(\"u\\n\"); warning(\"w\"); Ci = diffuse(N); }",
         "p.png: shader: u\np.png: warning: Shader warning [x]: w\n", false},
        {"surface x() { for (int i = 0; 1; ++i) u += i; Ci = diffuse(N); }",
         "p.png: error: Shader [x] takes too long: a loop without end?\n", true},
        {"surface x() { fprintf(\"/tmp/x\", \"a\"); Ci = texture(\"../p.png\", u, v) * diffuse(N); "
         "}",
         "writes to no file", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.row);
        vk_Scene scene;
        ASSERT_EQ("", readScene(sceneWith(c.row), scene));
        vk_Film film;
        std::string error;
        testing::internal::CaptureStderr();
        EXPECT_TRUE(vk_render(scene, vk_RenderSettings(), film, error)) << error;
        EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(c.said));
        EXPECT_EQ(c.isStopped, scene.osl->isStopped());
    }
}

TEST(Osl, ASourceInTheSceneCountsInPlaceOfAFile)
{
    std::string half; // of what may be, and a little more
    for (int i = 0; i < 2100; ++i)
        half += std::string(999, ' ') + "\n";
    const struct {
        const char *what;
        std::string lines;
        const char *said;
    } cases[] = {
        {"any lines",
         "source a.osl\n/* 'x\nend\n*/\n#define C .5\nshader a(output color c = C {}\n"
         " endsource // done\nsurface a.osl",
         "s:11: error: a.osl:5: Syntax error: syntax error\n"},
        {"later use", "surface a.osl\nsource a.osl\nshader a(output float c = 1) {}\nendsource",
         ""},
        {"no end", "source a.osl\nshader a() {}",
         "s:7: error: expected the statement 'endsource' behind the source of 'a.osl', found the"
         " end of the text\n"},
        {"no beginning", "endsource",
         "s:4: error: expected a statement 'source NAME.osl' before endsource\n"},
        {"no name", "source a.h",
         "s:4: error: source expected a name that ends in .osl, found"
         " 'a.h'\n"},
        {"default", "default source a.osl", "s:4: error: default expected a statement behind it\n"},
        {"an error for each use", "source a.osl\nshader a(\nendsource\nsurface a.osl\nfloor a.osl",
         "s:7: error: a.osl:1: Syntax error: syntax error\n"
         "s:8: error: a.osl:1: Syntax error: syntax error\n"},
        {"two",
         "source a.osl\nshader a(output float c = 1) {}\nendsource\n"
         "source b.osl\nshader b(\nendsource\nsurface a.osl\nsurface opdef:/Shop/b.osl",
         "s:11: error: b.osl:1: Syntax error: syntax error\n"},
        {"half of what may be", "source a.osl\n" + half + "endsource", ""},
        {"more than may be together",
         "source a.osl\n" + half + "endsource\nsource b.osl\n" + half + "endsource",
         "s:4207: error: expected sources of at most 4 MB together\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vk_Scene scene;
        EXPECT_EQ(c.said, readScene(c.lines, scene));
    }
}
