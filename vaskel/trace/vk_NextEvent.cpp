#include "vaskel/trace/vk_NextEvent.h"

namespace
{
// Squares of the parts of a sum, as those of pdfs may overflow.
vk_MisWeights byPower(const vk_MisPdfs &pdfs)
{
    const float sample = pdfs.light / (pdfs.light + pdfs.bsdf), ray = 1 - sample;
    const float weight = sample * sample / (sample * sample + ray * ray);
    return {weight, 1 - weight};
}

// Rays share a light among each other when the lobe is narrower than the light, and would
// hardly ever hit one that is much smaller than the lobe; between them is a soft step.
vk_MisWeights bySize(const vk_MisPdfs &pdfs)
{
    const float ray = pdfs.peak > 0 ? vk_smoothStep(2, 5, pdfs.peak / pdfs.light) : 0;
    return {1 - ray, ray};
}

// No ray comes through other shapes: what their shadows let pass only a sample can count.
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
    {byPower, byPower},   // nothing
    {byPower, bySize},    // smooth glass
    {byPower, byGlass},   // rough glass
    {bySample, bySample}, // other shapes
};
} // namespace

vk_MisWeights vk_misWeights(vk_Between between, vk_Onwards onwards, const vk_MisPdfs &pdfs)
{
    if (pdfs.bsdf <= 0)
        return {1, 0};
    return HEURISTICS[between][onwards](pdfs);
}
