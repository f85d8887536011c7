#include "vaskel/vk_Pixel.h"

void vk_Pixel::add(const vk_View &view)
{
    ++count;
    if (!vk_isFinite(view.light())) {
        bad = true;
        return;
    }
    sum.sharp += view.sharp;
    sum.even += view.even;
    sum.albedo += view.albedo;
    sum.normal += view.normal;
    sum.distance += view.distance;
    sum.blurred += view.blurred;
}

vk_Colour vk_Pixel::arriving() const
{
    const auto part = [](float light, float albedo) { return albedo > 0 ? light / albedo : 0; };
    return {part(sum.even.x, sum.albedo.x), part(sum.even.y, sum.albedo.y),
            part(sum.even.z, sum.albedo.z)};
}

void vk_Pixel::judge()
{
    const vk_Vec visibility = vk_visibility(light());
    const vk_View before = half;
    // For half of the samples 1.
    const float share =
        halfCount > 0 ? static_cast<float>(halfCount) / static_cast<float>(count - halfCount) : 1;
    halfCount = count;
    half.sharp = sharp();
    half.even = arriving();
    half.albedo = albedo();
    errorSharp = share * vk_visible(half.sharp - before.sharp, visibility);
    errorEven = share * vk_visible((half.even - before.even) * half.albedo, visibility);
    errorTexture = share * vk_visible((half.albedo - before.albedo) * half.even, visibility);
}
