// Linear light of rows of a picture, each pixel a mean over its square.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <vector>

class vk_LinearPicture
{
public:
    static constexpr int REACH = 1; // pixels to each side that blended() looks at

    // A square has a variance of 1/12, and this weight to either side one of 2/12.
    static constexpr float SIDE = 1.0f / 12, MIDDLE = 1 - 2 * SIDE;

    // What blended() leaves of errors of pixels that do not depend on each other.
    static constexpr float REMAINS =
        (MIDDLE * MIDDLE + 2 * SIDE * SIDE) * (MIDDLE * MIDDLE + 2 * SIDE * SIDE);

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
