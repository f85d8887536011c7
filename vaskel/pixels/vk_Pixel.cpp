#include "vaskel/pixels/vk_Pixel.h"

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
    const vk_View before = judged;
    // The error that is left: for half of the samples as large as what they moved.
    const float share =
        judgedCount > 0 ? static_cast<float>(judgedCount) / static_cast<float>(count - judgedCount)
                        : 1;
    judgedCount = count;
    judged.sharp = sharp();
    judged.even = arriving();
    judged.albedo = albedo();
    errorSharp = share * vk_visible(judged.sharp - before.sharp, visibility);
    errorEven = share * vk_visible((judged.even - before.even) * judged.albedo, visibility);
    errorTexture = share * vk_visible((judged.albedo - before.albedo) * judged.even, visibility);
}
