#include "vaskel/pixels/vk_ErrorMap.h"

#include "vaskel/file/vk_Film.h"

namespace
{
// What a pixel is told of those around it; all of it would deal rays out regardless of edges of
// light and shadow. bench/filter.py tries other numbers.
constexpr float SPREAD = .5f;
} // namespace

vk_ErrorMap::vk_ErrorMap(int columns, int rows) : myColumns(columns), myRows(rows)
{
    const auto size = static_cast<std::size_t>(columns * rows);
    myOwn.resize(size);
    myCount.resize(size);
    mySpread.resize(size);
    myKind.resize(size);
    for (std::vector<Sum> &sums : myAcross)
        sums.resize(size);
}

void vk_ErrorMap::take(const vk_Filter &filter, const vk_Pixel *row, int y)
{
    for (int x = 0; x < myColumns; ++x) {
        if (row[x].converged)
            continue; // as it was
        myCount[index(x, y)] = row[x].count;
        myOwn[index(x, y)] = vk_shownError(filter.error(x, y), filter.at(x, y));
        myKind[index(x, y)] = filter.isSmooth(x, y) ? SMOOTH : EDGE;
    }
    // Along the row first and then across rows, and from one pixel to the next only what comes in
    // and what goes out. Of both kinds, as a pixel of either may ask above and below.
    Sum sums[KINDS];
    for (int x = -REACH; x < myColumns; ++x) {
        if (x + REACH < myColumns)
            sums[myKind[index(x + REACH, y)]].add(own(x + REACH, y));
        if (x > REACH)
            sums[myKind[index(x - REACH - 1, y)]].add(own(x - REACH - 1, y), -1);
        for (int kind = 0; x >= 0 && kind < KINDS; ++kind)
            myAcross[kind][index(x, y)] = sums[kind];
    }
}

void vk_ErrorMap::spread(int y)
{
    for (int x = 0; x < myColumns; ++x) {
        const std::vector<Sum> &across = myAcross[myKind[index(x, y)]];
        Sum sum;
        for (int j = std::max(0, y - REACH); j <= std::min(y + REACH, myRows - 1); ++j)
            sum.add(across[index(x, j)]);
        // With more samples than those around, it would have less of their error.
        const double count = sum.pixels, mean = sum.error / count;
        const double left = std::min(1.0, sum.samples / (count * myCount[index(x, y)]));
        mySpread[index(x, y)] =
            (1 - SPREAD) * myOwn[index(x, y)] + SPREAD * static_cast<float>(mean * left);
    }
}

// Half the way between what is shown of light that is an error too dark and too bright: where the
// curve bends within the error, its slope alone says little.
float vk_shownError(float error, const vk_Colour &light)
{
    const vk_Vec visibility = vk_visibility(light);
    const auto of = [&](float level, float visible) {
        // As vk_visible() counts it, if all colours are as far off.
        const float off = std::sqrt(error / visible);
        const float half = .5f * (vk_shown(level + off) - vk_shown(level - off));
        return half * half;
    };
    return (of(light.x, visibility.x) + of(light.y, visibility.y) + of(light.z, visibility.z)) *
           (1.0f / 3);
}
