// How far off the pixels of a picture are, as the file shows it and apart from luck.
//
// Pixels that have converged get no more samples. Were that left to what their own samples
// tell, those that missed a caustic would stop, for all seems well, and those that found it would
// go on until it counts no more than it should: light is lost. So half of what a pixel is told is
// the mean error of the pixels around it that are of its kind, in which its own luck counts little,
// over how many times as many samples as these it has, if it has more. Those that show an edge are
// of one kind, all others of another.
#pragma once

#include "vaskel/pixels/vk_Filter.h"

class vk_ErrorMap
{
public:
    static constexpr int REACH = 4; // pixels to each side that a mean is taken of

    vk_ErrorMap(int columns, int rows);

    // Each for one row, in any order and on any thread, but for all rows before the next: takes
    // in what the filter leaves of these pixels' errors, and spreads it; may be done again when
    // those that have not converged got more samples; the others keep what they had.
    void take(const vk_Filter &filter, const vk_Pixel *row, int y);
    void spread(int y);

    // The squared error, of full scale.
    float at(int x, int y) const { return mySpread[index(x, y)]; }

private:
    enum Kind : std::uint8_t { EDGE, SMOOTH, KINDS };

    struct Sum {
        double error = 0; // so exact that what is taken out of a sum leaves next to nothing
        int samples = 0, pixels = 0;

        void add(const Sum &other, int times = 1)
        {
            error += times * other.error;
            samples += times * other.samples;
            pixels += times * other.pixels;
        }
    };

    std::size_t index(int x, int y) const { return static_cast<std::size_t>(y * myColumns + x); }
    Sum own(int x, int y) const
    {
        return {static_cast<double>(myOwn[index(x, y)]), myCount[index(x, y)], 1};
    }

    int myColumns, myRows;
    std::vector<float> myOwn, mySpread;
    std::vector<int> myCount;
    std::vector<Kind> myKind;
    std::vector<Sum> myAcross[KINDS]; // along the row to both sides
};

// What a squared error, on the scale of vk_visible(), is on that of the file where there is so
// much light. That scale knows nothing of film: on its shoulder, errors hardly show.
float vk_shownError(float error, const vk_Colour &light);
