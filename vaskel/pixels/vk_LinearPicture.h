// Linear light of rows of a picture, from means over squares to what is to be seen.
//
// Samples serve all pixels near them: each pixel is seen through a filter whose standard deviation
// is half a pixel, as wide as the Gaussian that PBRT has by default (8.8). It is the quadratic
// B-spline, whose parts in the squares that it covers come to 1 wherever a sample lies; in each
// square it is taken as a plane. So of a square no more need be known than its mean and its
// gradient.
#pragma once

#include "vaskel/pixels/vk_Pixel.h"

#include <vector>

class vk_LinearPicture
{
public:
    static constexpr int REACH = 1; // pixels to each side that blended() looks at

    // What a square as bright everywhere gives to those before and behind it, and keeps, along
    // both axes; and what it gives from one to the other, of its gradient.
    static constexpr float SIDE = 1.0f / 6, MIDDLE = 1 - 2 * SIDE;
    static constexpr float OF_GRADIENT = 1.0f / 24;

    // What blended() leaves of squared errors of samples that do not depend on each other: the
    // integral of the filter's square. A gradient of 1 has a variance of 1 / 12.
    static constexpr float OF_MEANS = MIDDLE * MIDDLE + 2 * SIDE * SIDE;
    static constexpr float REMAINS =
        OF_MEANS * (OF_MEANS + 2 * (2 * 12 * OF_GRADIENT * OF_GRADIENT));

    vk_LinearPicture(int columns, int rows);

    void set(int x, int y, const vk_Colour &mean, const vk_Gradient &gradient);

    // What is to be seen at a pixel.
    vk_Colour blended(int x, int y) const;

private:
    struct Square {
        vk_Colour mean;
        vk_Gradient gradient;
    };
    const Square &square(int x, int y) const
    {
        return mySquares[static_cast<std::size_t>(y * myColumns + x)];
    }
    Square blendedRow(int x, int y) const;

    int myColumns, myRows;
    std::vector<Square> mySquares;
};
