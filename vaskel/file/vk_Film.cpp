#include "vaskel/file/vk_Film.h"

namespace
{
// The curve is x^a / (x^(a d) b + c); b and c follow from where middle grey
// and white go. Middle grey is 50 % of the sRGB scale.
// A shoulder, so that highlights fade to white in place of being cut off there.
constexpr float CONTRAST = 1.18f; // a
constexpr float SHOULDER = 0.97f; // d
constexpr float GREY = 0.2140f;

struct Curve {
    float b, c;

    Curve()
    {
        const float white = std::pow(VK_WHITE, CONTRAST);
        const float whiteD = std::pow(VK_WHITE, CONTRAST * SHOULDER);
        const float grey = std::pow(GREY, CONTRAST);
        const float greyD = std::pow(GREY, CONTRAST * SHOULDER);
        const float span = (whiteD - greyD) * GREY;
        b = (white * GREY - grey) / span;
        c = (whiteD * grey - white * greyD * GREY) / span;
    }
};

// Of what a linear colour shows as, evenly along its square root, of which that is nearly a
// straight line.
struct Shown {
    static constexpr int STEPS = 256;
    float at[STEPS + 2]; // one more than a colour of VK_WHITE asks for

    Shown()
    {
        for (int i = 0; i < STEPS + 2; ++i) {
            const float root = static_cast<float>(i) / STEPS;
            at[i] = vk_toSrgb(vk_toneCurve(root * root * VK_WHITE));
        }
    }
};

std::uint8_t toByte(float unit)
{
    // What is no number is black: as a byte it would be anything.
    return unit > 0 ? static_cast<std::uint8_t>(std::min(unit, 1.0f) * 255 + 0.5f) : 0;
}
} // namespace

float vk_toneCurve(float linear)
{
    // Made by whoever comes first: C++ has others wait.
    static const Curve CURVE;

    const float x = std::clamp(linear, 0.0f, VK_WHITE);
    return std::pow(x, CONTRAST) / (std::pow(x, CONTRAST * SHOULDER) * CURVE.b + CURVE.c);
}

float vk_toSrgb(float linear)
{
    // Straight next to black, where the slope of a power alone has no bound.
    return linear <= 0.0031308f ? 12.92f * linear : 1.055f * std::pow(linear, 1 / 2.4f) - 0.055f;
}

void vk_develop(const vk_Colour &colour, std::uint8_t *bytes)
{
    // Each colour by itself: what is too bright turns white, as on film.
    bytes[0] = toByte(vk_toSrgb(vk_toneCurve(colour.x)));
    bytes[1] = toByte(vk_toSrgb(vk_toneCurve(colour.y)));
    bytes[2] = toByte(vk_toSrgb(vk_toneCurve(colour.z)));
}

float vk_shown(float linear)
{
    static const Shown SHOWN;

    // What is no number shows as black.
    const float root = linear > 0 ? std::sqrt(std::min(linear * (1 / VK_WHITE), 1.0f)) : 0;
    const float place = root * Shown::STEPS;
    const auto step = static_cast<int>(place);
    const float *const at = SHOWN.at + step;
    return at[0] + (place - static_cast<float>(step)) * (at[1] - at[0]);
}
