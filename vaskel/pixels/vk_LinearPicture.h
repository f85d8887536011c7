// Linear light of rows of a picture, each pixel a mean over its square.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <vector>

class vk_LinearPicture
{
public:
    static constexpr int REACH = 1; // pixels to each side that blended() looks at

    vk_LinearPicture(int columns, int rows);

    vk_Colour &at(int x, int y) { return myLights[static_cast<std::size_t>(y * myColumns + x)]; }

    // What is to be seen at a pixel: its square and those around it, with weights that
    // together with the square come to a Gaussian with a standard deviation of half a
    // pixel. Samples serve all pixels near them in this way, and edges look smooth.
    vk_Colour blended(int x, int y) const;

private:
    vk_Colour blendedRow(int x, int y) const;

    int myColumns, myRows;
    std::vector<vk_Colour> myLights;
};
