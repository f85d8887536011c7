// Points of a unit square where a picture over it has most: piecewise constant, after Pharr,
// Jakob and Humphreys, "Physically Based Rendering", 4th edition, A.5.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <vector>

class vk_Distribution
{
public:
    vk_Distribution() = default;

    // Cells by rows, each as likely as its weight says; all alike when all weigh nothing.
    // REQUIRES: weights of 0 or above, finite, as many as columns * rows.
    vk_Distribution(int columns, int rows, const std::vector<float> &weights);

    // A point, with the density pdf() there; points that are spread well stay so.
    vk_Square sample(const vk_Square &at) const;

    // Per area of the square; its mean is 1.
    float pdf(int column, int row) const
    {
        return myPdf[static_cast<std::size_t>(row * myColumns + column)];
    }

private:
    int myColumns = 0, myRows = 0;
    std::vector<float> myPdf;    // of cells
    std::vector<float> myAcross; // cumulated along each row, from 0 to 1
    std::vector<float> myUp;     // cumulated over the rows
};
