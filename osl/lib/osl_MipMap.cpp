#include "osl/lib/osl_MipMap.h"

#include <algorithm>

namespace
{
// Which texels of a line of `from` make texel `at` of a line of `to`, and how much
// of each: two or, as sizes are rounded down, parts of three.
struct Taps {
    int first;
    int count;
    float weight[3];
};

Taps tapsFor(int at, int from, int to)
{
    const float scale = static_cast<float>(from) / static_cast<float>(to);
    const float begin = static_cast<float>(at) * scale, end = begin + scale;
    Taps taps = {static_cast<int>(begin), 0, {}};
    for (int i = taps.first; i < from && taps.count < 3; ++i) {
        const float left = static_cast<float>(i);
        const float share = (std::min(end, left + 1) - std::max(begin, left)) / scale;
        if (share < 1e-4f)
            break;
        taps.weight[taps.count++] = share;
    }
    return taps;
}

float average(const osl_Picture &from, const Taps &x, const Taps &y, int channel)
{
    float sum = 0;
    for (int j = 0; j < y.count; ++j) {
        for (int i = 0; i < x.count; ++i) {
            const size_t texel = static_cast<size_t>((y.first + j) * from.width + x.first + i);
            const size_t at = texel * static_cast<size_t>(from.channels);
            sum += x.weight[i] * y.weight[j] * from.texels[at + static_cast<size_t>(channel)];
        }
    }
    return sum;
}

osl_Picture halved(const osl_Picture &from)
{
    osl_Picture to = {std::max(1, from.width / 2), std::max(1, from.height / 2), from.channels, {}};
    to.texels.reserve(static_cast<size_t>(to.width * to.height * to.channels));
    std::vector<Taps> columns;
    for (int x = 0; x < to.width; ++x)
        columns.push_back(tapsFor(x, from.width, to.width));
    for (int y = 0; y < to.height; ++y) {
        const Taps row = tapsFor(y, from.height, to.height);
        for (const Taps &column : columns) {
            for (int c = 0; c < to.channels; ++c)
                to.texels.push_back(static_cast<uint16_t>(
                    std::lrint(std::min(65535.0f, average(from, column, row, c)))));
        }
    }
    return to;
}
} // namespace

osl_MipMap::osl_MipMap(osl_Picture &&picture)
{
    myLevels.push_back(std::move(picture));
    while (myLevels.back().width > 1 || myLevels.back().height > 1)
        myLevels.push_back(halved(myLevels.back()));
}

size_t osl_MipMap::bytes() const
{
    size_t sum = 0;
    for (const osl_Picture &p : myLevels)
        sum += p.texels.size() * sizeof(uint16_t);
    return sum;
}
