// Pixels that are drawn together, and what they are drawn with.
#pragma once

#include "vaskel/pixels/vk_Pixel.h"
#include "vaskel/pixels/vk_Renderer.h"
#include "vaskel/pixels/vk_Variances.h"

// Rays through a picture's points.
class vk_Lens
{
public:
    explicit vk_Lens(const vk_Scene &scene);

    const vk_Vec &from() const { return myFrom; }

    // Unit, through a point in pixels from the picture's upper left corner.
    vk_Vec direction(float x, float y) const
    {
        return vk_normalize(myForward + myRight * (x - myWidth / 2) + myDown * (y - myHeight / 2));
    }

private:
    vk_Vec myFrom, myForward, myRight, myDown;
    float myWidth, myHeight;
};

// What all tiles share: where samples come from and where pixels go.
class vk_Canvas
{
public:
    // Keeps references to all but the settings.
    vk_Canvas(const vk_Scene &scene, const vk_World &world, const vk_RenderSettings &settings,
              vk_Film &film);

    // A pixel's path for its sample of that number, and what is left of the view that it
    // gave on the film: no more than shows as white.
    vk_Path path(int x, int y, int sample, vk_View &view) const;
    void expose(vk_View &view) const;
    const vk_PathTracer &tracer() const { return myTracer; }

    // Writes a finished pixel to the film.
    void develop(const vk_Colour &light, int x, int y) const;

    int firstSamples() const { return myFirstSamples; }
    int leastSamples() const { return std::min(2 * myFirstSamples, myMostSamples); }
    int mostSamples() const { return myMostSamples; }
    float target() const { return myTarget; } // squared error that is aimed at
    bool filters() const { return myFilters; }

private:
    const vk_Scene &myScene;
    vk_PathTracer myTracer;
    vk_Lens myLens;
    vk_Film &myFilm;
    float myGain;
    float myTarget;
    bool myFilters;
    int myMostSamples, myFirstSamples;
};

// Rows of the picture that are drawn and filtered together, and some above and below
// that the filter looks at.
struct vk_Band {
    int top = 0, columns = 0, rows = 0; // of the picture, with those above and below
    std::vector<vk_Pixel> pixels;       // row by row

    vk_Pixel &at(int x, int y) { return pixels[static_cast<std::size_t>(y * columns + x)]; }
};

// A square of pixels. start() draws the least samples of all, and fewer where hardly
// any error is left; go() doubles those of the pixels that have not converged yet, pass by
// pass. A sample is best spent where it takes most off the squared error of the
// picture: a pixel has converged when its own, divided by its samples, is below a limit that
// all pixels of the band share. One pixel's error is a poor estimate; the mean over its
// neighbours in the tile is a fair one. Tiles know nothing of each other, so their order
// does not matter.
class vk_Tile
{
public:
    static constexpr int SIDE = 16;          // pixels
    static constexpr std::size_t WAVE = 256; // paths that begin together, at most

    // Keeps references to both; left and top are in the band.
    vk_Tile(const vk_Canvas &canvas, vk_Band &band, int left, int top);
    void start();
    void go(float limit);

    // After start().
    vk_Variances variances();

    std::uint64_t samples() const;
    std::uint64_t badPixels() const;
    int pixels() const { return myColumns * myRows; }

private:
    // Errors that the filter leaves, of the diffuse layer and of all else.
    struct Remaining {
        float rest = 0, diffuse = 0;
    };
    template <class Function>
    void each(Function function) const;
    bool pass(int count);
    bool sample(int count);
    void estimate();
    void settle(float limit);
    Remaining remainingAround(const vk_Pixel &pixel, int x, int y) const;

    const vk_Canvas &myCanvas;
    vk_Band &myBand;
    float myErrors[SIDE][SIDE] = {}; // squared, means over neighbours
    int myLeft, myTop, myColumns, myRows;
};
