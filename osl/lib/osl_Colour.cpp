#include "osl/lib/osl_Colour.h"

#include "osl/lib/osl_Matrix.h"

#include <algorithm>
#include <iterator>

namespace
{
// The CIE 1931 colour matching functions for 2 degrees, every 5 nm from 380 to 780.
constexpr int MATCHING_FIRST = 380, MATCHING_STEP = 5;
constexpr float MATCHING[][3] = {
    {0.0014f, 0.0000f, 0.0065f}, {0.0022f, 0.0001f, 0.0105f}, {0.0042f, 0.0001f, 0.0201f},
    {0.0076f, 0.0002f, 0.0362f}, {0.0143f, 0.0004f, 0.0679f}, {0.0232f, 0.0006f, 0.1102f},
    {0.0435f, 0.0012f, 0.2074f}, {0.0776f, 0.0022f, 0.3713f}, {0.1344f, 0.0040f, 0.6456f},
    {0.2148f, 0.0073f, 1.0391f}, {0.2839f, 0.0116f, 1.3856f}, {0.3285f, 0.0168f, 1.6230f},
    {0.3483f, 0.0230f, 1.7471f}, {0.3481f, 0.0298f, 1.7826f}, {0.3362f, 0.0380f, 1.7721f},
    {0.3187f, 0.0480f, 1.7441f}, {0.2908f, 0.0600f, 1.6692f}, {0.2511f, 0.0739f, 1.5281f},
    {0.1954f, 0.0910f, 1.2876f}, {0.1421f, 0.1126f, 1.0419f}, {0.0956f, 0.1390f, 0.8130f},
    {0.0580f, 0.1693f, 0.6162f}, {0.0320f, 0.2080f, 0.4652f}, {0.0147f, 0.2586f, 0.3533f},
    {0.0049f, 0.3230f, 0.2720f}, {0.0024f, 0.4073f, 0.2123f}, {0.0093f, 0.5030f, 0.1582f},
    {0.0291f, 0.6082f, 0.1117f}, {0.0633f, 0.7100f, 0.0782f}, {0.1096f, 0.7932f, 0.0573f},
    {0.1655f, 0.8620f, 0.0422f}, {0.2257f, 0.9149f, 0.0298f}, {0.2904f, 0.9540f, 0.0203f},
    {0.3597f, 0.9803f, 0.0134f}, {0.4334f, 0.9950f, 0.0087f}, {0.5121f, 1.0000f, 0.0057f},
    {0.5945f, 0.9950f, 0.0039f}, {0.6784f, 0.9786f, 0.0027f}, {0.7621f, 0.9520f, 0.0021f},
    {0.8425f, 0.9154f, 0.0018f}, {0.9163f, 0.8700f, 0.0017f}, {0.9786f, 0.8163f, 0.0014f},
    {1.0263f, 0.7570f, 0.0011f}, {1.0567f, 0.6949f, 0.0010f}, {1.0622f, 0.6310f, 0.0008f},
    {1.0456f, 0.5668f, 0.0006f}, {1.0026f, 0.5030f, 0.0003f}, {0.9384f, 0.4412f, 0.0002f},
    {0.8544f, 0.3810f, 0.0002f}, {0.7514f, 0.3210f, 0.0001f}, {0.6424f, 0.2650f, 0.0000f},
    {0.5419f, 0.2170f, 0.0000f}, {0.4479f, 0.1750f, 0.0000f}, {0.3608f, 0.1382f, 0.0000f},
    {0.2835f, 0.1070f, 0.0000f}, {0.2187f, 0.0816f, 0.0000f}, {0.1649f, 0.0610f, 0.0000f},
    {0.1212f, 0.0446f, 0.0000f}, {0.0874f, 0.0320f, 0.0000f}, {0.0636f, 0.0232f, 0.0000f},
    {0.0468f, 0.0170f, 0.0000f}, {0.0329f, 0.0119f, 0.0000f}, {0.0227f, 0.0082f, 0.0000f},
    {0.0158f, 0.0057f, 0.0000f}, {0.0114f, 0.0041f, 0.0000f}, {0.0081f, 0.0029f, 0.0000f},
    {0.0058f, 0.0021f, 0.0000f}, {0.0041f, 0.0015f, 0.0000f}, {0.0029f, 0.0010f, 0.0000f},
    {0.0020f, 0.0007f, 0.0000f}, {0.0014f, 0.0005f, 0.0000f}, {0.0010f, 0.0004f, 0.0000f},
    {0.0007f, 0.0002f, 0.0000f}, {0.0005f, 0.0002f, 0.0000f}, {0.0003f, 0.0001f, 0.0000f},
    {0.0002f, 0.0001f, 0.0000f}, {0.0002f, 0.0001f, 0.0000f}, {0.0001f, 0.0000f, 0.0000f},
    {0.0001f, 0.0000f, 0.0000f}, {0.0001f, 0.0000f, 0.0000f}, {0.0000f, 0.0000f, 0.0000f},
};
constexpr int MATCHINGS = static_cast<int>(std::size(MATCHING));

osl_Vec matching(int i)
{
    return {MATCHING[i][0], MATCHING[i][1], MATCHING[i][2]};
}

// Planck's law: W/m^2 of a surface, per metre of wavelength.
double emittance(double kelvin, double metres)
{
    constexpr double C1 = 3.74183e-16; // 2 pi h c^2
    constexpr double C2 = 1.4388e-2;   // h c / k
    const double square = metres * metres;
    return C1 / (square * square * metres * (std::exp(C2 / (metres * kelvin)) - 1));
}

osl_Colour withoutNegative(const osl_Colour &c)
{
    return {std::max(0.0f, c.x), std::max(0.0f, c.y), std::max(0.0f, c.z)};
}

osl_Vec times(const osl_Vec &v, const float (&m)[3][3])
{
    return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0],
            v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
            v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]};
}

const osl_Primaries *primaries(size_t &count)
{
    static const osl_Primaries TABLE[] = {
        {"Rec709", {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3291f}},
        {"sRGB", {0.64f, 0.33f, 0.30f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3291f}},
        {"NTSC", {0.67f, 0.33f, 0.21f, 0.71f, 0.14f, 0.08f, 0.3101f, 0.3162f}},
        {"EBU", {0.64f, 0.33f, 0.29f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3291f}},
        {"PAL", {0.64f, 0.33f, 0.29f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3291f}},
        {"SECAM", {0.64f, 0.33f, 0.29f, 0.60f, 0.15f, 0.06f, 0.3127f, 0.3291f}},
        {"SMPTE", {0.630f, 0.340f, 0.310f, 0.595f, 0.155f, 0.070f, 0.3127f, 0.3291f}},
        {"HDTV", {0.670f, 0.330f, 0.210f, 0.710f, 0.150f, 0.060f, 0.3127f, 0.3291f}},
        {"CIE", {0.7355f, 0.2658f, 0.2743f, 0.7174f, 0.1669f, 0.0085f, 1.0f / 3, 1.0f / 3}},
        {"AdobeRGB", {0.64f, 0.33f, 0.21f, 0.71f, 0.15f, 0.06f, 0.3127f, 0.3291f}},
        {"ACES2065-1", {0.7347f, 0.2653f, 0.0f, 1.0f, 0.0001f, -0.077f, 0.32168f, 0.33767f}},
        {"ACEScg", {0.713f, 0.293f, 0.165f, 0.83f, 0.128f, 0.044f, 0.32168f, 0.33767f}},
    };
    count = std::size(TABLE);
    return TABLE;
}

// ---- spaces ----

// Hue 0 to 1 from red over green and blue, chroma over value, largest component.
osl_Vec hsvFromRGB(const osl_Colour &c)
{
    const float value = std::max({c.x, c.y, c.z});
    const float chroma = value - std::min({c.x, c.y, c.z});
    const float saturation = value > 0 ? chroma / value : 0;
    if (saturation <= 0)
        return {0, saturation, value};
    float hue = 0;
    if (c.x >= value)
        hue = (c.y - c.z) / chroma;
    else if (c.y >= value)
        hue = 2 + (c.z - c.x) / chroma;
    else
        hue = 4 + (c.x - c.y) / chroma;
    hue /= 6;
    return {hue < 0 ? hue + 1 : hue, saturation, value};
}

osl_Colour rgbFromHSV(const osl_Vec &hsv)
{
    const float v = hsv.z, s = hsv.y;
    if (s < 0.0001f)
        return {v, v, v};
    const float h = 6 * (hsv.x - std::floor(hsv.x));
    const float f = h - std::floor(h);
    const float p = v * (1 - s), q = v * (1 - s * f), t = v * (1 - s * (1 - f));
    const osl_Colour sectors[] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
    return sectors[std::clamp(osl_toInt(h), 0, 5)];
}

osl_Vec hslFromRGB(const osl_Colour &c)
{
    const osl_Vec hsv = hsvFromRGB(c);
    const float high = hsv.z, low = std::min({c.x, c.y, c.z});
    const float lightness = (high + low) / 2;
    const float span = lightness <= 0.5f ? high + low : 2 - high - low;
    return {hsv.x, osl_div(high - low, span), lightness};
}

osl_Colour rgbFromHSL(const osl_Vec &hsl)
{
    const float s = hsl.y, l = hsl.z;
    const float v = l <= 0.5f ? l * (1 + s) : l * (1 - s) + s;
    if (v <= 0)
        return {};
    return rgbFromHSV({hsl.x, 2 * (v - l) / v, v});
}

// The matrices of NTSC as they are usually printed; they are not quite each other's inverse.
osl_Vec yiqFromRGB(const osl_Colour &c)
{
    constexpr float M[3][3] = {
        {0.299f, 0.596f, 0.212f}, {0.587f, -0.275f, -0.523f}, {0.114f, -0.321f, 0.311f}};
    return times(c, M);
}
osl_Colour rgbFromYIQ(const osl_Vec &yiq)
{
    constexpr float M[3][3] = {
        {1, 1, 1}, {0.9557f, -0.2716f, -1.1082f}, {0.6199f, -0.6469f, 1.7051f}};
    return times(yiq, M);
}

osl_Vec xyYFromXYZ(const osl_Vec &v)
{
    const float sum = v.x + v.y + v.z;
    return {osl_div(v.x, sum), osl_div(v.y, sum), v.y};
}
osl_Vec xyzFromXYY(const osl_Vec &v)
{
    const float scale = osl_div(v.z, v.y);
    return {v.x * scale, v.z, (1 - v.x - v.y) * scale};
}

osl_Colour same(const osl_Colour &c)
{
    return c;
}
osl_Vec xyzFromRGB(const osl_Colour &c)
{
    return osl_Primaries::rec709().toXYZ(c);
}
osl_Colour rgbFromXYZ(const osl_Vec &v)
{
    return osl_Primaries::rec709().fromXYZ(v);
}
osl_Vec xyYFromRGB(const osl_Colour &c)
{
    return xyYFromXYZ(xyzFromRGB(c));
}
osl_Colour rgbFromXYY(const osl_Vec &v)
{
    return rgbFromXYZ(xyzFromXYY(v));
}
osl_Colour encodedFromRGB(const osl_Colour &c)
{
    return {osl_sRGBFromLinear(c.x), osl_sRGBFromLinear(c.y), osl_sRGBFromLinear(c.z)};
}
osl_Colour rgbFromEncoded(const osl_Colour &c)
{
    return {osl_linearFromSRGB(c.x), osl_linearFromSRGB(c.y), osl_linearFromSRGB(c.z)};
}

// What looks under one white as `xyz` does under another (Bradford's adaptation, Lam 1985).
osl_Vec adapted(const osl_Vec &xyz, const osl_Vec &from, const osl_Vec &to)
{
    constexpr float CONES[3][3] = {
        {0.8951f, -0.7502f, 0.0389f}, {0.2664f, 1.7135f, -0.0685f}, {-0.1614f, 0.0367f, 1.0296f}};
    constexpr float BACK[3][3] = {{0.9869929f, 0.4323053f, -0.0085287f},
                                  {-0.1470543f, 0.5183603f, 0.0400428f},
                                  {0.1599627f, 0.0492912f, 0.9684867f}};
    const osl_Vec f = times(from, CONES), t = times(to, CONES);
    return times(times(xyz, CONES) * osl_Vec{t.x / f.x, t.y / f.y, t.z / f.z}, BACK);
}

// White is white in every set of primaries.
osl_Colour between(const osl_Primaries &from, const osl_Primaries &to, const osl_Colour &c)
{
    const osl_Colour white = {1, 1, 1};
    return to.fromXYZ(adapted(from.toXYZ(c), from.toXYZ(white), to.toXYZ(white)));
}

struct Space {
    const char *name;
    osl_Colour (*toRGB)(const osl_Vec &);
    osl_Vec (*fromRGB)(const osl_Colour &);
};
constexpr Space SPACES[] = {
    {"rgb", same, same},
    {"RGB", same, same},
    {"linear", same, same},
    {"hsv", rgbFromHSV, hsvFromRGB},
    {"hsl", rgbFromHSL, hslFromRGB},
    {"YIQ", rgbFromYIQ, yiqFromRGB},
    {"XYZ", rgbFromXYZ, xyzFromRGB},
    {"xyY", rgbFromXYY, xyYFromRGB},
    {"sRGB", rgbFromEncoded, encodedFromRGB},
};

const Space *findSpace(std::string_view name)
{
    const auto *found = std::find_if(std::begin(SPACES), std::end(SPACES),
                                     [&](const Space &s) { return name == s.name; });
    return found != std::end(SPACES) ? found : nullptr;
}

bool toRGB(std::string_view from, osl_Colour &c)
{
    if (const Space *space = findSpace(from)) {
        c = space->toRGB(c);
        return true;
    }
    const osl_Primaries *own = osl_Primaries::find(from);
    if (own != nullptr)
        c = between(*own, osl_Primaries::rec709(), c);
    return own != nullptr;
}

bool fromRGB(std::string_view to, osl_Colour &c)
{
    if (const Space *space = findSpace(to)) {
        c = space->fromRGB(c);
        return true;
    }
    const osl_Primaries *own = osl_Primaries::find(to);
    if (own != nullptr)
        c = between(osl_Primaries::rec709(), *own, c);
    return own != nullptr;
}
} // namespace

// Each light is scaled so that all three together make the white with Y = 1.
osl_Primaries::osl_Primaries(const char *name, const float (&xy)[8]) : myName(name)
{
    osl_Matrix lights = osl_Matrix::diagonal(1);
    for (int i = 0; i < 3; ++i) {
        lights.m[i][0] = xy[2 * i];
        lights.m[i][1] = xy[2 * i + 1];
        lights.m[i][2] = 1 - xy[2 * i] - xy[2 * i + 1];
    }
    const osl_Vec white = {xy[6] / xy[7], 1, (1 - xy[6] - xy[7]) / xy[7]};
    const osl_Vec amounts = osl_transformVector(osl_inverse(lights), white);
    const float amount[] = {amounts.x, amounts.y, amounts.z};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            lights.m[i][j] *= amount[i];
    }
    const osl_Matrix back = osl_inverse(lights);
    for (int i = 0; i < 3; ++i) {
        std::copy_n(lights.m[i], 3, myToXYZ[i]);
        std::copy_n(back.m[i], 3, myFromXYZ[i]);
    }
}

const osl_Primaries *osl_Primaries::find(std::string_view name)
{
    size_t count = 0;
    const osl_Primaries *first = primaries(count);
    const auto *found = std::find_if(first, first + count,
                                     [&](const osl_Primaries &p) { return name == p.myName; });
    return found != first + count ? found : nullptr;
}

const osl_Primaries &osl_Primaries::rec709()
{
    size_t count = 0;
    return *primaries(count);
}

osl_Vec osl_Primaries::toXYZ(const osl_Colour &rgb) const
{
    return times(rgb, myToXYZ);
}

osl_Colour osl_Primaries::fromXYZ(const osl_Vec &xyz) const
{
    return times(xyz, myFromXYZ);
}

float osl_Primaries::luminance(const osl_Colour &rgb) const
{
    return toXYZ(rgb).y;
}

osl_Colour osl_Primaries::blackbody(float kelvin) const
{
    constexpr float DRAPER_POINT = 800; // from where on things glow visibly
    if (!(kelvin >= DRAPER_POINT))
        return {1e-6f, 0, 0};
    constexpr double STEP = MATCHING_STEP * 1e-9;
    osl_Vec xyz;
    for (int i = 0; i < MATCHINGS; ++i) {
        const double at = (MATCHING_FIRST + MATCHING_STEP * i) * 1e-9;
        xyz = xyz + matching(i) * static_cast<float>(emittance(kelvin, at) * STEP);
    }
    return withoutNegative(fromXYZ(xyz));
}

osl_Colour osl_Primaries::wavelength(float nanometres) const
{
    constexpr float BRIGHTEST = 2.52f; // the largest component of all
    const float at = (nanometres - MATCHING_FIRST) / MATCHING_STEP;
    const int i = osl_toInt(at);
    if (!(at >= 0) || i >= MATCHINGS - 1)
        return {};
    const float t = at - static_cast<float>(i);
    const osl_Vec xyz = matching(i) * (1 - t) + matching(i + 1) * t;
    return withoutNegative(fromXYZ(xyz) * (1 / BRIGHTEST));
}

bool osl_transformColour(std::string_view from, std::string_view to, osl_Colour &c)
{
    osl_Colour changed = c;
    if (!toRGB(from, changed) || !fromRGB(to, changed))
        return false;
    c = from == to ? c : changed;
    return true;
}

bool osl_isColourSpace(std::string_view name)
{
    return findSpace(name) != nullptr || osl_Primaries::find(name) != nullptr;
}

float osl_linearFromSRGB(float x)
{
    return x <= 0.04045f ? x / 12.92f : std::pow((x + 0.055f) / 1.055f, 2.4f);
}

float osl_sRGBFromLinear(float x)
{
    return x <= 0.0031308f ? x * 12.92f : 1.055f * std::pow(x, 1 / 2.4f) - 0.055f;
}
