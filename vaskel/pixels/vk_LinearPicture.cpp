#include "vaskel/pixels/vk_LinearPicture.h"

#include <algorithm>

namespace
{
// A square has a variance of 1/12, and this weight to either side one of 2/12.
constexpr float SIDE = 1.0f / 12;

vk_Colour blend(const vk_Colour &before, const vk_Colour &middle, const vk_Colour &after)
{
    return middle * (1 - 2 * SIDE) + (before + after) * SIDE;
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
