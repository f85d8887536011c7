#include "vaskel/trace/vk_NextEvent.h"

namespace
{
vk_MisWeights balanced(const vk_MisPdfs &pdfs)
{
    const float sample = pdfs.light / (pdfs.light + pdfs.bsdf);
    return {sample, 1 - sample};
}

// Rays share a light among each other when the lobe is narrower than the light, and would
// hardly ever hit one that is much smaller than the lobe; between them is a soft step.
vk_MisWeights bySize(const vk_MisPdfs &pdfs)
{
    const float ray = pdfs.peak > 0 ? vk_smoothStep(2, 5, pdfs.peak / pdfs.light) : 0;
    return {1 - ray, ray};
}

vk_MisWeights bySample(const vk_MisPdfs &)
{
    return {1, 0};
}

vk_MisWeights byGlass(const vk_MisPdfs &)
{
    return {0, 0};
}

using Heuristic = vk_MisWeights (*)(const vk_MisPdfs &);
constexpr Heuristic HEURISTICS[][2] = {
    // straight  refracted
    {balanced, balanced}, // nothing
    {balanced, bySize},   // smooth glass
    {balanced, byGlass},  // rough glass
    {bySample, bySample}, // other shapes
};
} // namespace

vk_MisWeights vk_misWeights(vk_Between between, vk_Onwards onwards, const vk_MisPdfs &pdfs)
{
    if (pdfs.bsdf <= 0)
        return {1, 0};
    return HEURISTICS[between][onwards](pdfs);
}
