#include "vaskel/pixels/vk_ErrorMap.h"

#include "vaskel/file/vk_Film.h"

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
        myCount[index(x, y)] = static_cast<float>(row[x].count);
        myOwn[index(x, y)] = vk_shownError(filter.error(x, y), filter.at(x, y));
        myKind[index(x, y)] = filter.isSmooth(x, y) ? SMOOTH : EDGE;
    }
    // Along the row first and then across rows: eighteen terms in place of eighty-one. Of both
    // kinds, as a pixel of either may ask above and below.
    for (int x = 0; x < myColumns; ++x) {
        Sum sums[KINDS];
        for (int i = std::max(0, x - REACH); i <= std::min(x + REACH, myColumns - 1); ++i)
            sums[myKind[index(i, y)]].add({myOwn[index(i, y)], myCount[index(i, y)], 1});
        for (int kind = 0; kind < KINDS; ++kind)
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
        const float share = 1 / static_cast<float>(sum.pixels);
        // With more samples than those around, it would have less of their error.
        const float left = std::min(1.0f, sum.samples * share / myCount[index(x, y)]);
        mySpread[index(x, y)] = .5f * (myOwn[index(x, y)] + sum.error * share * left);
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
