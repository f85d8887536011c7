#include "vaskel/pixels/vk_LinearPicture.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr float SIDE = vk_LinearPicture::SIDE, MIDDLE = vk_LinearPicture::MIDDLE;
constexpr float OF_GRADIENT = vk_LinearPicture::OF_GRADIENT;

vk_Colour ofMeans(const vk_Colour &before, const vk_Colour &middle, const vk_Colour &after)
{
    return middle * MIDDLE + (before + after) * SIDE;
}

// A square that rises gives more to the one behind it, and as much less to the one before.
vk_Colour ofGradients(const vk_Colour &before, const vk_Colour &after)
{
    return (before - after) * OF_GRADIENT;
}

// However its light lies, a square takes none from those beside it: a bright point at its far side
// would put a dark ring around itself.
void limit(float &x, float &y, float mean)
{
    constexpr float STEEPEST = SIDE / OF_GRADIENT;

    const float most = STEEPEST * std::max(mean, 0.0f), rises = std::abs(x) + std::abs(y);
    if (rises <= most)
        return;
    x *= most / rises;
    y *= most / rises;
}

vk_Gradient limited(vk_Gradient gradient, const vk_Colour &mean)
{
    limit(gradient.x.x, gradient.y.x, mean.x);
    limit(gradient.x.y, gradient.y.y, mean.y);
    limit(gradient.x.z, gradient.y.z, mean.z);
    return gradient;
}
} // namespace

vk_LinearPicture::vk_LinearPicture(int columns, int rows)
    : myColumns(columns), myRows(rows), mySquares(static_cast<std::size_t>(columns * rows))
{
}

void vk_LinearPicture::set(int x, int y, const vk_Colour &mean, const vk_Gradient &gradient)
{
    mySquares[static_cast<std::size_t>(y * myColumns + x)] = {mean, limited(gradient, mean)};
}

// Along a row first, and then across rows. Beyond its border a picture is as in a mirror, so that
// light there is not lost.
vk_LinearPicture::Square vk_LinearPicture::blendedRow(int x, int y) const
{
    const Square &here = square(x, y);
    const Square mirrored = {here.mean, {-here.gradient.x, here.gradient.y}};
    const Square &left = x > 0 ? square(x - 1, y) : mirrored;
    const Square &right = x + 1 < myColumns ? square(x + 1, y) : mirrored;
    return {ofMeans(left.mean, here.mean, right.mean) +
                ofGradients(left.gradient.x, right.gradient.x),
            {{}, ofMeans(left.gradient.y, here.gradient.y, right.gradient.y)}};
}

vk_Colour vk_LinearPicture::blended(int x, int y) const
{
    const Square here = blendedRow(x, y);
    const Square mirrored = {here.mean, {{}, -here.gradient.y}};
    const Square above = y > 0 ? blendedRow(x, y - 1) : mirrored;
    const Square below = y + 1 < myRows ? blendedRow(x, y + 1) : mirrored;
    return ofMeans(above.mean, here.mean, below.mean) +
           ofGradients(above.gradient.y, below.gradient.y);
}
