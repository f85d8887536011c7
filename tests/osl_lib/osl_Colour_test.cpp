#include "osl/lib/osl_Colour.h"

#include <gtest/gtest.h>

namespace
{
void expectNear(const osl_Vec &wanted, const osl_Vec &found, float tolerance)
{
    EXPECT_NEAR(wanted.x, found.x, tolerance);
    EXPECT_NEAR(wanted.y, found.y, tolerance);
    EXPECT_NEAR(wanted.z, found.z, tolerance);
}
} // namespace

TEST(Colour, HasTheseCoordinatesInOtherSpaces)
{
    const struct {
        const char *space;
        osl_Vec there;
        osl_Colour rgb;
    } cases[] = {
        {"hsv", {0, 1, 1}, {1, 0, 0}},
        {"hsv", {0.75f, 0.5f, 0.8f}, {0.6f, 0.4f, 0.8f}},
        {"hsv", {0, 0, 0.3f}, {0.3f, 0.3f, 0.3f}},
        {"hsl", {1.0f / 3, 1, 0.5f}, {0, 1, 0}},
        {"hsl", {1.0f / 6, 0.5f, 0.75f}, {0.875f, 0.875f, 0.625f}},
        {"hsl", {0, 0, 0}, {0, 0, 0}},
        {"YIQ", {1, 0, 0}, {1, 1, 1}},
        {"XYZ", {0.4124f, 0.2125f, 0.0193f}, {1, 0, 0}},
        {"xyY", {0.3127f, 0.3291f, 1}, {1, 1, 1}},
        {"xyY", {0, 0, 0}, {0, 0, 0}},
        {"sRGB", {0.5f, 0.02f, 1}, {0.214041f, 0.00154799f, 1}},
        {"RGB", {0.1f, 0.2f, 0.3f}, {0.1f, 0.2f, 0.3f}},
        {"ACEScg", {0.18f, 0.18f, 0.18f}, {0.18f, 0.18f, 0.18f}},
        {"ACEScg", {0.5f, 0.2f, 0.1f}, {0.7200f, 0.1626f, 0.0777f}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.space);
        osl_Colour to = c.there, from = c.rgb;
        EXPECT_TRUE(osl_transformColour(c.space, "rgb", to));
        EXPECT_TRUE(osl_transformColour("rgb", c.space, from));
        expectNear(c.rgb, to, 2e-3f);
        expectNear(c.there, from, 2e-3f);
    }
}

TEST(Colour, ComesBackFromEverySpace)
{
    const osl_Colour colours[] = {
        {0.2f, 0.5f, 0.9f}, {0.9f, 0.1f, 0.3f}, {0.4f, 0.7f, 0.1f}, {3, 2, 1}, {0.5f, 0.5f, 0.2f}};
    for (const char *space :
         {"hsv", "hsl", "YIQ", "XYZ", "xyY", "sRGB", "NTSC", "AdobeRGB", "CIE"}) {
        for (const osl_Colour &c : colours) {
            if (std::string_view(space) == "hsl" && c.x > 1)
                continue; // more than white has no saturation
            SCOPED_TRACE(space);
            osl_Colour there = c;
            EXPECT_TRUE(osl_transformColour("rgb", space, there));
            EXPECT_TRUE(osl_transformColour(space, "rgb", there));
            expectNear(c, there, 0.01f);
        }
    }
}

TEST(Colour, StaysInAnUnknownSpace)
{
    osl_Colour c = {0.1f, 0.2f, 0.3f};
    EXPECT_FALSE(osl_transformColour("hsv", "spam", c));
    EXPECT_FALSE(osl_transformColour("spam", "rgb", c));
    EXPECT_FALSE(osl_transformColour("HSV", "rgb", c));
    expectNear({0.1f, 0.2f, 0.3f}, c, 0);
    EXPECT_TRUE(osl_isColourSpace("xyY") && osl_isColourSpace("SMPTE"));
    EXPECT_FALSE(osl_isColourSpace("xyz"));
}

TEST(Colour, OfWhiteHasLuminanceOne)
{
    for (const char *name : {"Rec709", "NTSC", "ACEScg", "CIE"})
        EXPECT_NEAR(1, osl_Primaries::find(name)->luminance({1, 1, 1}), 1e-5f) << name;
    EXPECT_NEAR(0.2126f, osl_Primaries::rec709().luminance({1, 0, 0}), 2e-4f);
    EXPECT_NEAR(0.0722f, osl_Primaries::rec709().luminance({0, 0, 1}), 2e-4f);
}

TEST(Colour, OfABlackBodyGoesFromRedToBlue)
{
    const osl_Primaries &p = osl_Primaries::rec709();
    const osl_Colour cold = p.blackbody(1500), sun = p.blackbody(6500), hot = p.blackbody(15000);
    EXPECT_GT(cold.x, 4 * cold.y);
    EXPECT_EQ(0, cold.z);
    EXPECT_NEAR(1, sun.x / sun.y, 0.1f);
    EXPECT_NEAR(1, sun.z / sun.y, 0.1f);
    EXPECT_GT(hot.z, hot.x);
    EXPECT_GT(hot.y, sun.y);
    // Visible light is 37 % of the 20.1 MW/m^2 that 5500 K radiate, seen through y-bar.
    EXPECT_NEAR(7.1e6f, p.luminance(p.blackbody(5500)), 1.5e6f);
    expectNear({1e-6f, 0, 0}, p.blackbody(799), 0);
    expectNear({1e-6f, 0, 0}, p.blackbody(-1), 0);
}

TEST(Colour, OfAWavelengthIsThatOfTheRainbow)
{
    const osl_Primaries &p = osl_Primaries::rec709();
    EXPECT_GT(p.wavelength(460).z, 5 * p.wavelength(460).x);
    EXPECT_GT(p.wavelength(530).y, 0.4f);
    EXPECT_EQ(0, p.wavelength(530).x);
    EXPECT_GT(p.wavelength(620).x, 0.8f);
    for (const float outside : {-1.0f, 379.0f, 780.0f, 1e30f, -1e30f})
        expectNear({}, p.wavelength(outside), 0);
}
