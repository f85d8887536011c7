// Pixels that are drawn together, and what they are drawn with.
#pragma once

#include "vaskel/pixels/vk_Pixel.h"
#include "vaskel/pixels/vk_Renderer.h"

#include <vector>

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

    // A pixel's path for its sample of that number, and the place within the pixel that it goes
    // through; and what is left of the view that it gave on the film: no more than shows as white.
    vk_Path path(int x, int y, int sample, vk_View &view, vk_Square &place) const;
    void expose(vk_View &view) const;
    const vk_PathTracer &tracer() const { return myTracer; }

    // Writes a finished pixel to the film.
    void develop(const vk_Colour &light, int x, int y) const;

    int firstSamples() const { return myFirstSamples; } // of every pixel
    int mostSamples() const { return myMostSamples; }
    bool filters() const { return myFilters; }

private:
    const vk_Scene &myScene;
    vk_PathTracer myTracer;
    vk_Lens myLens;
    vk_Film &myFilm;
    float myGain;
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

// A square of pixels. Tiles know nothing of each other, so their order does not matter.
class vk_Tile
{
public:
    static constexpr int SIDE = 16;          // pixels
    static constexpr std::size_t WAVE = 256; // paths that begin together, at most

    // Keeps references to both; left and top are in the band.
    vk_Tile(const vk_Canvas &canvas, vk_Band &band, int left, int top);

    // Draws the first samples of all pixels, and later as many again as they have of those
    // that have not converged. Errors are then estimated.
    void draw();

    int pixels() const { return myColumns * myRows; }
    std::uint64_t samples() const;
    std::uint64_t badPixels() const;

private:
    template <class Function>
    void each(Function function) const;
    template <class Function>
    void drawUpTo(Function count);

    const vk_Canvas &myCanvas;
    vk_Band &myBand;
    int myLeft, myTop, myColumns, myRows;
};
