#include "vaskel/vk_Renderer.h"

#include "tests/support/Cases.h"
#include "tests/support/ScopedVariable.h"
#include "vaskel/vk_SceneReader.h"
#include "vaskel/vk_Tracer.h"

namespace
{
constexpr char STUDIO[] = "picture p.png\ncamera\nfloor v_checker\n"
                          "lightplace from -5 5.5 2.6 to 0 1 0\n"
                          "light v_area intensity .8 width 2.5 height 2.5\n"
                          "lightplace from 4.5 2.5 6 to 0 1 0\n"
                          "light v_area intensity .07 width 4 height 4\n"
                          "lightplace from 4 5 -4 to 0 1 0\n"
                          "light v_area intensity .35 width 3 height 2\n";

void readScene(const std::string &lines, vk_Scene &scene)
{
    std::string text = STUDIO + lines + "\n";
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    vk_SceneReader reader("s", scene);
    EXPECT_TRUE(reader.read(file)) << reader.messages()[0];
    std::fclose(file);
}

vk_Film draw(const std::string &lines, int threads = 2)
{
    vk_Scene scene;
    vk_Film film;
    std::string error;
    readScene(lines, scene);
    vk_RenderSettings settings;
    settings.threads = threads;
    EXPECT_TRUE(vk_render(scene, settings, film, error)) << error;
    return film;
}

// Mean of the green bytes in a part of a film, in shares of its size.
double meanOf(const vk_Film &film, double left, double top, double right, double bottom)
{
    double sum = 0, count = 0;
    for (int y = static_cast<int>(top * film.height); y < bottom * film.height; ++y)
        for (int x = static_cast<int>(left * film.width); x < right * film.width; ++x, ++count)
            sum += film.bytes[static_cast<std::size_t>(3 * (y * film.width + x) + 1)];
    return sum / count;
}

// "finite", or what becomes of a ray.
std::string lightOf(const std::string &lines, std::uint32_t rays)
{
    vk_Scene scene;
    readScene(lines, scene);
    const vk_World world(scene);
    const vk_Tracer tracer(scene, world);
    const vk_Vec view = vk_normalize(scene.camera.at - scene.camera.from);
    for (std::uint32_t i = 0; i < rays; ++i) {
        vk_Sampler sampler(1, i);
        const vk_Vec way = vk_Frame(view).toWorld(vk_toCap(sampler.square(), .1f));
        const vk_Colour light = tracer.view(scene.camera.from, way, sampler).light();
        if (!vk_isFinite(light) || light.x < 0 || light.y < 0 || light.z < 0)
            return "ray " + std::to_string(i);
    }
    return world.error().empty() ? "finite" : world.error();
}

template <class Function>
void expectFiniteAtEnds(const vk_ShaderTable<Function> &table)
{
    for (const auto &row : table)
        for (const vk_Param &param : row.params)
            for (const float end : {param.least, param.most}) {
                const std::string number = vk_numberText(end);
                const std::string three = number + " " + number + " " + number;
                const std::string line = std::string(table.type) + " " + row.name + " " +
                                         param.name + " " +
                                         (param.kind == VK_NUMBER ? number : three);
                EXPECT_EQ("finite", lightOf(line + "\nsphere", 64)) << line;
            }
    if (table.more != nullptr)
        expectFiniteAtEnds(*table.more);
}
} // namespace

TEST(Renderer, ThreadsDoNotChangeAByte)
{
    const std::string scene = "size 50 43\nsamples 16\nfog v_fog density .05\ndisplace v_bumps\n"
                              "surface v_plastic diff 1 0 0\nteapot\n"
                              "surface v_glass\ntranslate 1 0 1\nsphere\n";
    const vk_Film one = draw(scene, 1);
    EXPECT_EQ(one.bytes, draw(scene, 2).bytes);
    EXPECT_EQ(one.bytes, draw(scene, 5).bytes);
}

TEST(Renderer, MatteHalfShowsAsMiddleGrey)
{
    const vk_Film film = draw("size 64 64\nsurface v_matte diff .5\nsphere\n");
    EXPECT_NEAR(128, meanOf(film, .3, .3, .7, .7), 20);
    EXPECT_GT(meanOf(film, .3, .3, .4, .5), meanOf(film, .6, .5, .7, .7) + 20); // lit from the left
}

TEST(Renderer, ConstantsBackdropAndExposureShowWhatTheyDo)
{
    const std::string ball = "size 48 48\nsamples 16\nsphere\n";
    EXPECT_EQ(255, draw("surface v_constant color 100\n" + ball).bytes[3 * (24 * 48 + 24)]);
    EXPECT_NEAR(128, draw("background off\n" + ball).bytes[0], 1);
    EXPECT_GT(meanOf(draw("exposure 1\n" + ball), 0, 0, 1, 1), meanOf(draw(ball), 0, 0, 1, 1) + 20);
}

TEST(Renderer, OddScenesGiveFiniteLight)
{
    expectTable(TEST_DATA "/data/odd_scenes",
                {{"light", [](const char *in) { return lightOf(in, 512); }}});
}

TEST(Renderer, ParametersAtTheirEndsGiveFiniteLight)
{
    expectFiniteAtEnds(VK_SURFACE_SHADERS);
    expectFiniteAtEnds(VK_LIGHT_SHADERS);
    expectFiniteAtEnds(VK_SHADOW_SHADERS);
    expectFiniteAtEnds(VK_FOG_SHADERS);
    expectFiniteAtEnds(VK_ENVIRONMENT_SHADERS);
}

TEST(Renderer, ThreadCountFollowsTheSetting)
{
    ScopedVariable setting("VELDRIN_MAXTHREADS", nullptr);
    const int detected = vk_threadCount();
    EXPECT_GE(detected, 1);
    for (const auto &[value, count] : {std::pair("7", 7), {"0", detected}, {"-1", detected}}) {
        setting.set(value);
        EXPECT_EQ(count, vk_threadCount()) << value;
    }
}

TEST(Film, CurveKeepsMiddleGreyAndRisesToWhite)
{
    EXPECT_NEAR(.214, vk_toneCurve(.214f), 1e-3);
    EXPECT_NEAR(.5, vk_toSrgb(.214f), 1e-3);
    EXPECT_EQ(0, vk_toneCurve(0));
    EXPECT_NEAR(1, vk_toneCurve(VK_WHITE), 1e-4);
    EXPECT_EQ(vk_toneCurve(VK_WHITE), vk_toneCurve(1e30f));
    for (float x = 0; x < VK_WHITE; x += .01f)
        EXPECT_LT(vk_toneCurve(x), vk_toneCurve(x + .01f)) << x;
}
