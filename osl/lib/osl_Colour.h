// Colours: other ways to write them, and the colours of light.
//
// RGB is linear with the primaries and the white of Rec. 709 (ITU-R BT.709,
// D65), unless another set of primaries is told.
#pragma once

#include "osl/lib/osl_Vec.h"

#include <string_view>

using osl_Colour = osl_Vec;

// A red, a green and a blue light and the white they make, by CIE xy
// chromaticities; with both matrices worked out.
class osl_Primaries
{
public:
    // "Rec709", "sRGB", "NTSC", "EBU", "PAL", "SECAM", "SMPTE", "HDTV", "CIE",
    // "AdobeRGB", "ACES2065-1" or "ACEScg"; null for any other name.
    static const osl_Primaries *find(std::string_view name);
    static const osl_Primaries &rec709();

    osl_Vec toXYZ(const osl_Colour &rgb) const;
    osl_Colour fromXYZ(const osl_Vec &xyz) const;

    // The Y of a colour whose white has Y = 1.
    float luminance(const osl_Colour &rgb) const;

    // Of a black body, in W/m^2, without negative components. Below 800 K there is
    // next to no light: (1e-6, 0, 0).
    osl_Colour blackbody(float kelvin) const;

    // Of monochromatic light, scaled to at most about 1; black outside 380 to 780 nm.
    osl_Colour wavelength(float nanometres) const;

    osl_Primaries(const char *name, const float (&xy)[8]); // red, green, blue, white

private:
    const char *myName;
    float myToXYZ[3][3]; // xyz = rgb * M
    float myFromXYZ[3][3];
};

// transformc: `from` and `to` are "rgb", "RGB", "linear", "hsv", "hsl", "YIQ", "XYZ", "xyY",
// "sRGB" (with its transfer curve) or the name of primaries (linear; their white is ours).
// False, and the colour unchanged, when one is unknown.
[[nodiscard]] bool osl_transformColour(std::string_view from, std::string_view to, osl_Colour &c);

bool osl_isColourSpace(std::string_view name);

// The transfer curve of sRGB (IEC 61966-2-1), one component; negative ones go on as a line.
float osl_linearFromSRGB(float x);
float osl_sRGBFromLinear(float x);
