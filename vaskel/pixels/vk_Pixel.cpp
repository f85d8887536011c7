#include "vaskel/pixels/vk_Pixel.h"

void vk_Pixel::add(const vk_View &view)
{
    ++count;
    if (!vk_isFinite(view.light())) {
        bad = true;
        return;
    }
    sum.specular += view.specular;
    sum.diffuse += view.diffuse;
    sum.albedo += view.albedo;
    sum.normal += view.normal;
    sum.distance += view.distance;
    sum.blurred += view.blurred;
}

vk_Colour vk_Pixel::irradiance() const
{
    const auto part = [](float light, float albedo) { return albedo > 0 ? light / albedo : 0; };
    return {part(sum.diffuse.x, sum.albedo.x), part(sum.diffuse.y, sum.albedo.y),
            part(sum.diffuse.z, sum.albedo.z)};
}

void vk_Pixel::estimate()
{
    if (count == estimatedCount)
        return;
    const vk_Vec visibility = vk_visibility(light());
    const vk_View before = estimated;
    // The error that is left: for half of the samples as large as what they moved.
    const float share = estimatedCount > 0 ? static_cast<float>(estimatedCount) /
                                                 static_cast<float>(count - estimatedCount)
                                           : 1;
    estimatedCount = count;
    estimated.specular = specular();
    estimated.diffuse = irradiance();
    estimated.albedo = albedo();
    errorSpecular = share * vk_visible(estimated.specular - before.specular, visibility);
    errorIrradiance =
        share * vk_visible((estimated.diffuse - before.diffuse) * estimated.albedo, visibility);
    errorAlbedo =
        share * vk_visible((estimated.albedo - before.albedo) * estimated.diffuse, visibility);
}
