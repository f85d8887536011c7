#include "vaskel/trace/vk_Shadows.h"

#include "tests/vaskel/readScene.h"

namespace
{
// What is left of light that goes along z, from 5 in front of the origin, so far.
vk_Colour passed(const std::string &lines, float distance)
{
    vk_Scene scene;
    readScene("picture p.png\ncamera\n" + lines, scene);
    const vk_World world(scene);
    vk_ShadowRay ray;
    ray.way = {{0, 1, 5}, {0, 0, -1}, distance};
    vk_Shadows(scene, world).cast(&ray, 1);
    return ray.passes;
}

void expectNear(const vk_Colour &expected, const vk_Colour &is)
{
    EXPECT_LT(vk_length(expected - is), .01f) << is.x << ' ' << is.y << ' ' << is.z;
}
} // namespace

TEST(Shadows, TintTellsByTheWayInsideOfGlass)
{
    const std::string glass = "surface v_glass ior 1.01 tint .5 .9 1\nsphere radius ";
    expectNear({.25f, .81f, 1}, passed(glass + "1", 10));
    expectNear({.5f, .9f, 1}, passed("translate 0 .5 0\n" + glass + ".5", 10));
    // Two balls; and a light in the middle of one.
    expectNear({.125f, .729f, 1}, passed(glass + "1\ntranslate 0 .5 -2\n" + glass + ".5", 10));
    expectNear({1, 1, 1}, passed(glass + "1", 5));
}

// Of four balls; light that would have to pass more is not worth looking for.
TEST(Shadows, EightSurfacesOfGlassLetLightPass)
{
    std::string balls = "surface v_glass ior 1.01 tint 1\n";
    for (int i = 0; i < 4; ++i)
        balls += "sphere radius .1\ntranslate 0 0 -1\n";
    const auto at = [](const std::string &lines) { return "translate 0 .9 3\n" + lines; };
    expectNear({1, 1, 1}, passed(at(balls), 10));
    expectNear({}, passed(at(balls + "sphere radius .1\n"), 10));
}

// A sheet of a colour that is there by half: the other half passes by.
TEST(Shadows, ThinSurfacesStainTheirShareOfTheLight)
{
    const std::string sheet = "source t.osl\nshader t(output color c = color(.8, .4, 0)) {}\n"
                              "endsource\nsurface t.osl show .5 as opacity\ngrid wave 0\n";
    expectNear({.5f, .5f, .5f}, passed(sheet, 10));
    expectNear({.9f, .7f, .5f}, passed("shadow v_filtershadow amount 1\n" + sheet, 10));
    expectNear({.7f, .6f, .5f}, passed("shadow v_filtershadow amount .5\n" + sheet, 10));
}

TEST(Shadows, WhatStandsBehindALightCastsNone)
{
    const std::string wall = "surface v_matte\ntranslate 0 0 -3\ngrid wave 0\nidentity\n";
    const std::string glass = "surface v_glass ior 1.01 tint 1\nsphere\n";
    for (const std::string &lines : {wall, wall + glass}) {
        expectNear({1, 1, 1}, passed(lines, 7.5f));
        expectNear({}, passed(lines, 8.5f));
    }
}
