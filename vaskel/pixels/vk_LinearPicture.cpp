#include "vaskel/pixels/vk_LinearPicture.h"

#include <algorithm>

namespace
{
constexpr float SIDE = vk_LinearPicture::SIDE, MIDDLE = vk_LinearPicture::MIDDLE;

// Three weights that come to 1 stand for a Gaussian: both axes have the same, so that it is round.
vk_Colour blend(const vk_Colour &before, const vk_Colour &middle, const vk_Colour &after)
{
    return middle * MIDDLE + (before + after) * SIDE;
}
} // namespace

vk_LinearPicture::vk_LinearPicture(int columns, int rows)
    : myColumns(columns), myRows(rows), myLights(static_cast<std::size_t>(columns * rows))
{
}

// A picture goes on beyond its border as it ends there.
vk_Colour vk_LinearPicture::blendedRow(int x, int y) const
{
    const vk_Colour *row = &myLights[static_cast<std::size_t>(y * myColumns)];
    return blend(row[std::max(0, x - 1)], row[x], row[std::min(x + 1, myColumns - 1)]);
}

vk_Colour vk_LinearPicture::blended(int x, int y) const
{
    return blend(blendedRow(x, std::max(0, y - 1)), blendedRow(x, y),
                 blendedRow(x, std::min(y + 1, myRows - 1)));
}
