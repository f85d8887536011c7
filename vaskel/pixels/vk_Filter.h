// Takes noise out of finished pixels without touching what is there to be seen.
//
// A pixel's layers become means over its neighbours: those that face the same way,
// are as far away, and differ by no more than the errors of both explain. The evenly
// scattered layer is divided by the surface's colour first, so that texture stays as it is.
// After Rousselle, Manzi and Zwicker, "Robust Denoising using Feature and Color
// Information", 2013.
#pragma once

#include "vaskel/pixels/vk_Pixel.h"

#include <vector>

class vk_Filter
{
public:
    static constexpr int REACH = 7; // pixels to each side that it looks at, at most

    vk_Filter(int columns, int rows);

    // Each for one row, in any order and on any thread: first all rows of pixels
    // are taken, then errors are compared with those of other rows, then at() serves.
    void take(const vk_Pixel *row, int y);
    void compare(int y);
    vk_Colour at(int x, int y) const;

    // Whether neighbours can help a pixel: it shows one surface, not an edge.
    static bool helps(const vk_Pixel &pixel);

private:
    struct Errors {
        float specular = 0, diffuse = 0;
    };
    struct Cell {
        vk_Colour specular, irradiance, albedo;
        vk_Vec normal, visibility;
        Errors own, around;
        float distance = 0, count = 0, tolerance = 0; // of the diffuse layer
        int reach = 0;
        bool smooth = false;
    };
    Cell &cell(int x, int y) { return myCells[static_cast<std::size_t>(y * myColumns + x)]; }
    const Cell &cell(int x, int y) const
    {
        return myCells[static_cast<std::size_t>(y * myColumns + x)];
    }
    float featureWeight(const Cell &a, const Cell &b) const;

    int myColumns, myRows;
    std::vector<Cell> myCells;
};
