// Linear light of rows of a picture, from means over squares to what is to be seen.
//
// Samples serve all pixels near them, by a filter whose standard deviation is half a pixel, as that
// of the Gaussian which Pharr, Jakob and Humphreys, "Physically Based Rendering", 4th edition,
// 2023, have by default (8.8). It is the quadratic B-spline: what a sample gives to all pixels
// together is 1, wherever it lies. Within each square that it covers it is taken as a plane, so
// that of the light in a square no more need be known than its mean and its gradient.
#pragma once

#include "vaskel/pixels/vk_Pixel.h"

#include <vector>

class vk_LinearPicture
{
public:
    static constexpr int REACH = 1; // pixels to each side that blended() looks at

    // Along each axis, what a square gives of its mean to those before and behind it, and what it
    // keeps; and what of its gradient the one behind gets more, and the one before less.
    static constexpr float SIDE = 1.0f / 6, MIDDLE = 1 - 2 * SIDE;
    static constexpr float OF_GRADIENT = 1.0f / 24;

    // What blended() leaves of squared errors of samples that do not depend on each other: the
    // integral of the square of these planes. A gradient's error is 12 times that of the mean.
    static constexpr float OF_MEANS = MIDDLE * MIDDLE + 2 * SIDE * SIDE;
    static constexpr float OF_GRADIENTS = 12 * 2 * OF_GRADIENT * OF_GRADIENT;
    static constexpr float REMAINS = OF_MEANS * (OF_MEANS + 2 * OF_GRADIENTS);

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
