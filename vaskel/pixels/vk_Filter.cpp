#include "vaskel/pixels/vk_Filter.h"

namespace
{
constexpr int NEAR_REACH = 2;           // pixels to each side, but where light wandered
constexpr float SURE = .9f;             // length of a mean of normals that shows no edge
constexpr float TURN = 100;             // how fast pixels that face elsewhere lose weight
constexpr float DEPTH = .05f;           // share of the distance that makes two pixels differ
constexpr float SPECULAR_TOLERANCE = 3; // how many errors apart two pixels may be
constexpr float IRRADIANCE_TOLERANCE = 6;
constexpr float FAR_TOLERANCE = 200; // where light wandered
constexpr float INVISIBLE = 1.5e-6f; // a third of a step of the file
constexpr float LEAST_ERROR = 1e-8f;

vk_Vec smaller(const vk_Vec &a, const vk_Vec &b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

// 1 for values that agree, falling to 0 for those that errors do not explain. A
// pixel that is further off than those around it believes its neighbours, and is
// believed less.
float weight(float difference, float tolerance, float own, float around, float otherOwn,
             float otherAround)
{
    const float error = std::max(own, around) + otherAround + LEAST_ERROR;
    const float beyond = std::max(0.0f, difference - error);
    const float left = std::max(0.0f, 1 - beyond / (tolerance * error));
    const float trust = (around + LEAST_ERROR) / (std::max(otherOwn * .25f, around) + LEAST_ERROR);
    return left * left * trust;
}
} // namespace

bool vk_Filter::helps(const vk_Pixel &pixel)
{
    const float sure = SURE * static_cast<float>(pixel.count);
    return vk_dot(pixel.sum.normal, pixel.sum.normal) > sure * sure;
}

vk_Filter::vk_Filter(int columns, int rows)
    : myColumns(columns), myRows(rows), myCells(static_cast<std::size_t>(columns * rows))
{
}

void vk_Filter::take(const vk_Pixel *row, int y)
{
    for (int x = 0; x < myColumns; ++x) {
        const vk_Pixel &pixel = row[x];
        Cell &now = cell(x, y);
        now.count = static_cast<float>(pixel.count);
        now.specular = pixel.specular();
        now.albedo = pixel.albedo();
        now.irradiance = pixel.irradiance();
        now.normal = vk_normalize(pixel.sum.normal);
        now.distance = pixel.sum.distance / now.count;
        now.visibility = vk_visibility(pixel.light());
        now.own = {pixel.errorSpecular, pixel.errorIrradiance};
        now.smooth = helps(pixel);
        const bool isBlurred = pixel.sum.blurred > 0;
        now.reach = isBlurred ? REACH : NEAR_REACH;
        now.tolerance = isBlurred ? FAR_TOLERANCE : IRRADIANCE_TOLERANCE;
    }
}

// One pixel's error is a poor estimate, the mean of three rows of three is a fair one.
void vk_Filter::compare(int y)
{
    for (int x = 0; x < myColumns; ++x) {
        float count = 0;
        Errors sum;
        for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
            for (int i = std::max(0, x - 1); i <= std::min(x + 1, myColumns - 1); ++i) {
                const Errors &own = cell(i, j).own;
                sum.specular += own.specular;
                sum.diffuse += own.diffuse;
                ++count;
            }
        cell(x, y).around = {sum.specular / count, sum.diffuse / count};
    }
}

// How far two pixels show the same surface.
float vk_Filter::featureWeight(const Cell &a, const Cell &b) const
{
    const float turn = 1 - TURN * (1 - vk_dot(a.normal, b.normal));
    const float step = std::abs(a.distance - b.distance) / (DEPTH * a.distance);
    return std::max(0.0f, turn) * std::max(0.0f, 1 - step);
}

vk_Colour vk_Filter::at(int x, int y) const
{
    const Cell &here = cell(x, y);
    const float error = here.around.specular + here.around.diffuse;
    if (!here.smooth || error < INVISIBLE)
        return here.specular + here.irradiance * here.albedo;
    vk_Colour specular, irradiance;
    float specularWeight = 0, irradianceWeight = 0;
    for (int j = std::max(0, y - here.reach); j <= std::min(y + here.reach, myRows - 1); ++j)
        for (int i = std::max(0, x - here.reach); i <= std::min(x + here.reach, myColumns - 1);
             ++i) {
            const Cell &there = cell(i, j);
            const float feature = there.smooth ? featureWeight(here, there) * there.count : 0;
            if (feature <= 0)
                continue;
            // By the brighter one: a pixel that is dark by chance must not stand out.
            const vk_Vec visibility = smaller(here.visibility, there.visibility);
            const vk_Colour shown = (there.irradiance - here.irradiance) * here.albedo;
            const float ofSpecular =
                feature * weight(vk_visible(there.specular - here.specular, visibility),
                                 SPECULAR_TOLERANCE, here.own.specular, here.around.specular,
                                 there.own.specular, there.around.specular);
            const float ofIrradiance =
                feature * weight(vk_visible(shown, visibility), here.tolerance, here.own.diffuse,
                                 here.around.diffuse, there.own.diffuse, there.around.diffuse);
            specular += there.specular * ofSpecular;
            irradiance += there.irradiance * ofIrradiance;
            specularWeight += ofSpecular;
            irradianceWeight += ofIrradiance;
        }
    return specular * (1 / specularWeight) + irradiance * here.albedo * (1 / irradianceWeight);
}
