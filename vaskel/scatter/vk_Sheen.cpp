#include "vaskel/scatter/vk_Sheen.h"

#include "vaskel/base/vk_Vec.h"

namespace
{
// vk_sheen() integrated over the hemisphere, by roughness from 0.2 and by the
// square root of the cosine from 0, both in even steps.
// By the root, since nearly all of it changes at grazing angles: even steps of the cosine would
// leave these one interval.
constexpr int ROUGHS = 5;
constexpr int COSINES = 6;
constexpr float ALBEDO[ROUGHS][COSINES] = {
    {1.000f, 0.832f, 0.564f, 0.324f, 0.139f, 0.024f},
    {0.799f, 0.683f, 0.509f, 0.343f, 0.195f, 0.069f},
    {0.713f, 0.620f, 0.481f, 0.346f, 0.221f, 0.103f},
    {0.666f, 0.585f, 0.464f, 0.346f, 0.236f, 0.128f},
    {0.636f, 0.562f, 0.452f, 0.346f, 0.245f, 0.145f},
};

float blend(const float *row, float at)
{
    const int i = std::min(static_cast<int>(at), COSINES - 2);
    const float t = at - static_cast<float>(i);
    return row[i] + (row[i + 1] - row[i]) * t;
}
} // namespace

float vk_sheen(float cosIn, float cosOut, float cosHalf, float rough)
{
    // The power of a sine whose integral over the hemisphere, weighted by the cosine, is 1. The
    // exponent is halved, as the sine comes as its square.
    const float inverse = 1 / std::max(rough, VK_LEAST_SHEEN);
    const float sin2 = std::max(0.0f, 1 - cosHalf * cosHalf);
    const float fibres = (2 + inverse) * std::pow(sin2, inverse / 2) / (2 * VK_PI);
    // In place of masking over 4 cosIn cosOut: it is 0 only where both cosines are.
    return fibres / (4 * (cosIn + cosOut - cosIn * cosOut));
}

float vk_sheenAlbedo(float cosine, float rough)
{
    const float across = std::sqrt(std::clamp(cosine, 0.0f, 1.0f)) * (COSINES - 1);
    const float down = (std::clamp(rough, VK_LEAST_SHEEN, 1.0f) - VK_LEAST_SHEEN) /
                       (1 - VK_LEAST_SHEEN) * (ROUGHS - 1);
    const int i = std::min(static_cast<int>(down), ROUGHS - 2);
    const float t = down - static_cast<float>(i);
    return blend(ALBEDO[i], across) * (1 - t) + blend(ALBEDO[i + 1], across) * t;
}
