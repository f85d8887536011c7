#include "vaskel/scatter/vk_Sheen.h"

#include "vaskel/base/vk_Vec.h"
#include "vaskel/scatter/vk_AlbedoData.h"
#include "vaskel/scatter/vk_TableStep.h"

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
    // Smooth fibres seen from along the surface send on a little more than arrives.
    return std::min(1.0f,
                    vk_lookUp(VK_SHEEN_ALBEDO, (rough - VK_LEAST_SHEEN) / (1 - VK_LEAST_SHEEN),
                              std::sqrt(cosine)));
}
