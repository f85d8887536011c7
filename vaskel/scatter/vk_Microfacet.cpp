#include "vaskel/scatter/vk_Microfacet.h"

#include "vaskel/scatter/vk_AlbedoData.h"
#include "vaskel/scatter/vk_TableStep.h"

namespace
{
// The table goes by the square root of the width, which is a roughness again: by the width
// itself all that looks smooth would share one step.
float brushedAlbedo(float wide, float ratio, float along, float cosine)
{
    const vk_TableStep down(std::sqrt(wide), VK_BRUSHED_ROUGHS);
    const vk_TableStep narrower((ratio - VK_BRUSHED_LEAST) / (1 - VK_BRUSHED_LEAST),
                                VK_BRUSHED_RATIOS);
    const auto of = [&](std::size_t i, std::size_t j) {
        return vk_lookUp(VK_BRUSHED_ALBEDO[i][j], along, cosine);
    };
    const auto row = [&](std::size_t i) {
        return narrower.between(of(i, narrower.low), of(i, narrower.low + 1));
    };
    return down.between(row(down.low), row(down.low + 1));
}
} // namespace

float vk_facetAlbedo(float cosine, float rough)
{
    return vk_lookUp(VK_FACET_ALBEDO, rough, cosine);
}

float vk_facetMean(float rough)
{
    const vk_TableStep step(rough, VK_ALBEDO_ROUGHS);
    return step.between(VK_FACET_MEAN[step.low], VK_FACET_MEAN[step.low + 1]);
}

// Even steps of the logarithm from 1/4 to 4: seen from inside an index is 1 / eta, as far from 1
// as it is from outside.
float vk_glassAlbedo(float cosine, float rough, float eta)
{
    const vk_TableStep step(.5f + .25f * std::log2(eta), VK_GLASS_ETAS);
    return step.between(vk_lookUp(VK_GLASS_ALBEDO[step.low], rough, cosine),
                        vk_lookUp(VK_GLASS_ALBEDO[step.low + 1], rough, cosine));
}

// By the roughness of the wider direction, how much narrower the other is, and how wide the
// facets are along the way of the light.
float vk_Facets::albedo(const vk_Vec &out) const
{
    const float wide = std::max(myX, myY), ratio = std::min(myX, myY) / wide;
    const float flat2 = out.x * out.x + out.y * out.y;
    // Facets that are alike in all directions have a finer table. Straight from above there is no
    // direction along the surface; all widths of the table agree there, so the first will do.
    if (ratio == 1 || flat2 <= 0)
        return ratio == 1 ? vk_facetAlbedo(out.z, rough()) : brushedAlbedo(wide, ratio, 0, out.z);
    const float x = myX * out.x, y = myY * out.y;
    const float along = std::sqrt((x * x + y * y) / flat2) / wide;
    return brushedAlbedo(wide, ratio, (along - ratio) / (1 - ratio), out.z);
}

float vk_fresnel(float cosine, float eta)
{
    const float within2 = 1 - (1 - cosine * cosine) / (eta * eta);
    if (within2 <= 0)
        return 1; // total reflection
    const float within = std::sqrt(within2);
    // For light that swings across the plane of both ways, and along it; without polarisation it is
    // half of each.
    const float across = (cosine - eta * within) / (cosine + eta * within);
    const float along = (eta * cosine - within) / (eta * cosine + within);
    // At grazing angles both are 1 but for rounding.
    return std::min(1.0f, .5f * (across * across + along * along));
}

vk_Vec vk_refract(const vk_Vec &out, const vk_Vec &facet, float eta)
{
    const float cosine = vk_dot(out, facet);
    const float within2 = 1 - (1 - cosine * cosine) / (eta * eta);
    if (within2 <= 0)
        return {};
    return vk_normalize(facet * (cosine / eta - std::sqrt(within2)) - out * (1 / eta));
}

vk_Vec vk_Facets::sample(const vk_Vec &out, const vk_Square &at) const
{
    // Stretch to where both widths are 1, project the visible half disc, go back.
    const vk_Vec stretched = vk_normalize({myX * out.x, myY * out.y, out.z});
    const float level2 = stretched.x * stretched.x + stretched.y * stretched.y;
    // Seen straight on, any tangent will do: the projected disc is round.
    const float shrink = level2 > 1e-12f ? 1 / std::sqrt(level2) : 0;
    const vk_Vec t1 =
        shrink > 0 ? vk_Vec{-stretched.y * shrink, stretched.x * shrink, 0} : vk_Vec{1, 0, 0};
    const vk_Vec t2 = vk_cross(stretched, t1);
    vk_Vec disc = vk_toDisc(at);
    const float s = .5f * (1 + stretched.z);
    // The half that is turned away shows as much narrower as it is seen aslant.
    disc.y = (1 - s) * std::sqrt(std::max(0.0f, 1 - disc.x * disc.x)) + s * disc.y;
    const float up = std::sqrt(std::max(0.0f, 1 - disc.x * disc.x - disc.y * disc.y));
    const vk_Vec h = t1 * disc.x + t2 * disc.y + stretched * up;
    // No facet of a height field faces down; rounding might make one.
    return vk_normalize({myX * h.x, myY * h.y, std::max(0.0f, h.z)});
}
