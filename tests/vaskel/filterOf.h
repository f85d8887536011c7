// Squares of pixels, and the filter behind them.
#pragma once

#include "vaskel/pixels/vk_Filter.h"

constexpr int SIDE = 24;
constexpr vk_Square MIDDLE = {.5f, .5f}; // of a pixel

// A pixel of a matte surface that got two samples, or both of them several times.
inline vk_Pixel pixelOf(float first, float second, int times = 1)
{
    vk_Pixel pixel;
    for (int i = 0; i < 2 * times; ++i) {
        vk_View view;
        view.diffuse = vk_grey(i % 2 == 0 ? first : second);
        view.albedo = vk_grey(1);
        view.normal = {0, 0, 1};
        view.distance = 5;
        pixel.add(view, MIDDLE);
        pixel.estimate();
    }
    return pixel;
}

template <class Function>
std::vector<vk_Pixel> pixelsOf(const Function &pixelAt)
{
    std::vector<vk_Pixel> pixels;
    for (int i = 0; i < SIDE * SIDE; ++i)
        pixels.push_back(pixelAt(i % SIDE, i / SIDE));
    return pixels;
}

// A filter that has done its work on pixels, or has only told what it would leave of their errors.
template <class Function>
vk_Filter filterOf(const Function &pixelAt, bool onlyEstimates = false)
{
    const std::vector<vk_Pixel> pixels = pixelsOf(pixelAt);
    vk_Filter filter(SIDE, SIDE);
    for (int y = 0; y < SIDE; ++y)
        filter.take(&pixels[static_cast<std::size_t>(y * SIDE)], y);
    for (int y = 0; y < SIDE; ++y)
        filter.compare(y);
    for (int y = 0; y < SIDE; ++y)
        onlyEstimates ? filter.estimate(y) : filter.filter(y);
    return filter;
}
