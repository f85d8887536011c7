#include "vaskel/vk_Renderer.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_Environment.h"
#include "vaskel/vk_SceneReader.h"
#include "vaskel/vk_Tracer.h"

#include <gtest/gtest.h>

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

void expectFinite(const std::string &lines, std::uint32_t rays)
{
    vk_Scene scene;
    readScene(lines, scene);
    const vk_World world(scene);
    const vk_Tracer tracer(scene, world);
    ASSERT_EQ("", world.error());
    const vk_Vec view = vk_normalize(scene.camera.at - scene.camera.from);
    for (std::uint32_t i = 0; i < rays; ++i) {
        vk_Sampler sampler(1, i);
        const vk_Vec way = vk_Frame(view).toWorld(vk_toCap(sampler.square(), .1f));
        const vk_Colour light = tracer.view(scene.camera.from, way, sampler).light();
        ASSERT_TRUE(vk_isFinite(light) && light.x >= 0 && light.y >= 0 && light.z >= 0);
    }
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
                SCOPED_TRACE(line);
                expectFinite(line + "\nsphere", 64);
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

TEST(Renderer, ShadersShowWhatTheyDo)
{
    const std::string ball = "size 48 48\nsamples 16\n";
    const vk_Film usual = draw(ball + "sphere\n");
    // Right behind the ball lies its shadow.
    const vk_Film bright = draw(ball + "shadow v_noshadow\nsphere\n");
    EXPECT_GT(meanOf(bright, .75, .75, .95, .85), meanOf(usual, .75, .75, .95, .85) + 5);
    EXPECT_EQ(255, draw(ball + "surface v_constant color 100\nsphere\n").bytes[3 * (24 * 48 + 24)]);
    EXPECT_NEAR(128, draw(ball + "background off\nsphere\n").bytes[0], 1);
    EXPECT_GT(meanOf(draw(ball + "exposure 1\nsphere\n"), 0, 0, 1, 1),
              meanOf(usual, 0, 0, 1, 1) + 20);
    EXPECT_NE(usual.bytes, draw(ball + "fog v_fog\nsphere\n").bytes);
    EXPECT_NE(usual.bytes, draw(ball + "displace v_bumps\nsphere\n").bytes);
}

TEST(Renderer, OddScenesGiveFiniteLight)
{
    const char *const scenes[] = {
        "camera from 0 1 0 at 0 1 5\nsphere",
        "camera from 0 0 5 at 0 0 0\nsphere",
        "camera from 0 -3 5 at 0 1 0\nsphere",
        "surface v_plastic rough 0 ior 1\nsphere",
        "surface v_metal rough 0\nsphere\ntranslate 0 0 1\nsphere",
        "lightplace from 0 1 0 to 0 1 .01\nlight v_area\nlight v_point\nlight v_spot\nsphere",
        "light v_point color 1000 intensity 1000 radius 0\nsphere",
        "light v_area intensity 0\nlight v_area intensity 0\nlight v_area intensity 0\nsphere",
        "displace v_bumps height .5 size .05\nsphere radius .01",
        "displace v_bricks height -.5 mortar 0\nsphere radius .001\nteapot width .01",
        "fog v_fog density 100 radius 1000\nsphere",
        "fog v_fog radius 0\nsphere",
        "scale 5000\nsphere",
        "floor v_checker size .001",
        "floor v_carpaint size .001",
        "camera from 6e5 7e5 8e5 at 0 0 0",
        "surface v_glass\ncamera from 0 1 .5 at 0 1 5\nsphere",
        "surface v_glass ior 1\ngrid\nsurface v_frosted rough 0\ntranslate 0 0 1\nsphere",
        "surface v_wax\nscale 1 .001 1\nsphere",
        "fog v_groundfog height .01\ncamera from 0 -5 0 at 0 0 0 up 0 0 1\nsphere",
    };
    for (const char *lines : scenes) {
        SCOPED_TRACE(lines);
        expectFinite(lines, 512);
    }
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
    static constexpr char NAME[] = "VELDRIN_MAXTHREADS";
    const auto counted = [](const char *value) {
        UTsetenv(NAME, value);
        UT_EnvControl::instance().updateVariable(NAME);
        return vk_threadCount();
    };
    EXPECT_EQ(1, counted("1"));
    EXPECT_EQ(7, counted("7"));
    EXPECT_EQ(100, counted("101"));
    const int detected = counted("0");
    EXPECT_GE(detected, 1);
    EXPECT_EQ(detected, counted("-1"));
    UTunsetenv(NAME);
    UT_EnvControl::instance().updateVariable(NAME);
    EXPECT_EQ(detected, vk_threadCount());
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
