// Takes noise out of finished pixels without touching what is there to be seen, and tells
// how much of it is left.
//
// A pixel's layers become means over its neighbours: those that face the same way,
// are as far away, and differ by no more than the errors of both explain. The evenly
// scattered layer is divided by the surface's colour first, so that texture stays as it is.
// Two pixels are compared by themselves and by the means of those around each, as patches are:
// weights that hang on the noise of the pixel alone would keep it.
// After Rousselle, Manzi and Zwicker, "Robust Denoising using Feature and Color
// Information", 2013.
//
// What is left of the error of a pixel is propagated through its own means: with weights w
// and errors v of the neighbours it is sum(w^2 v) / sum(w)^2.
#pragma once

#include "vaskel/pixels/vk_Pixel.h"

#include <vector>

class vk_Filter
{
public:
    static constexpr int REACH = 7; // pixels to each side that it looks at, at most

    vk_Filter(int columns, int rows);

    // Each for one row, in any order and on any thread, but for all rows before the next:
    // takes in pixels, compares their errors with those of other rows, and tells how far off
    // those are that have not converged; may be done again when these got more samples.
    void take(const vk_Pixel *row, int y);
    void compare(int y);
    void estimate(int y);
    // Filters all pixels of a row.
    void filter(int y);

    // The light of a pixel, and about its squared error on the scale of the file, as they
    // came out of the last of the two.
    const vk_Colour &at(int x, int y) const { return cell(x, y).light; }
    float error(int x, int y) const { return cell(x, y).error; }

private:
    struct Errors {
        float specular = 0, diffuse = 0;

        float sum() const { return specular + diffuse; }
    };
    struct Cell {
        vk_Pixel::Layers layers;
        vk_Vec normal, visibility;
        vk_Colour specularAround, irradianceAround; // means over neighbours,
        Errors own, around;                         // errors of one pixel, also as a mean,
        Errors ofMeans;                             // and of those means
        float texture = 0; // error that comes from the albedo, which stays as it is
        float distance = 0, count = 0;
        int reach = 0;
        bool blurred = false; // the diffuse layer has no edges
        bool converged = false;
        bool smooth = false; // shows one surface, not an edge: neighbours can help

        vk_Colour light; // what comes out,
        float error = 0; // and how far off that is, squared
    };
    struct Sum;
    Cell &cell(int x, int y) { return myCells[static_cast<std::size_t>(y * myColumns + x)]; }
    const Cell &cell(int x, int y) const
    {
        return myCells[static_cast<std::size_t>(y * myColumns + x)];
    }
    static float featureWeight(const Cell &a, const Cell &b);
    static float specularWeight(const Cell &a, const Cell &b);
    static float irradianceWeight(const Cell &a, const Cell &b);
    void filter(Cell &here, int x, int y) const;

    int myColumns, myRows;
    std::vector<Cell> myCells;
};
