// Takes noise out of finished pixels without touching what is there to be seen, and tells
// how much of it is left.
//
// A pixel's layers become planes through those of its neighbours (vk_PlaneFit.h) that face the same
// way, are as far away, and differ by no more than the errors of both explain. The evenly
// scattered layer is divided by the surface's colour first, so that texture stays as it is, and
// gets more neighbours than the other one, as it has fewer edges.
// Two pixels are compared by themselves and by the means of those around each, as patches are:
// weights that hang on the noise of the pixel alone would keep it.
// After Rousselle, Manzi and Zwicker, "Robust Denoising using Feature and Color
// Information", 2013.
//
// What is left of the error of a pixel is that of its neighbours, propagated through the planes.
#pragma once

#include "vaskel/base/vk_Lanes.h"
#include "vaskel/pixels/vk_Pixel.h"
#include "vaskel/pixels/vk_PlaneFit.h"

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
    // Filters all pixels of a row. Once for all, so it looks further than estimate() does.
    void filter(int y);

    // The light of a pixel, and about its squared error on the scale of vk_visible(), as they
    // came out of the last of the two.
    vk_Colour at(int x, int y) const { return myLight.at(index(x, y)); }
    float error(int x, int y) const { return myError[index(x, y)]; }

    // How that light rises within a pixel: as its own samples tell, as far as the light is theirs;
    // for the rest evenly from one neighbour to the next, if they are as far away, but for texture,
    // which again is the pixel's own. After filter() of this row and those beside it.
    vk_Gradient gradient(const vk_Pixel &pixel, int x, int y) const;

    // Whether a pixel shows one surface, so that neighbours can help, or an edge.
    bool isSmooth(int x, int y) const { return mySmooth[index(x, y)] > 0; }

private:
    // Numbers of all pixels, row by row. Rows have room to both sides, so that those
    // around any four pixels can be read as four.
    using Plane = std::vector<float>;
    struct VecPlane {
        Plane x, y, z;

        void resize(std::size_t size);
        void set(std::size_t i, const vk_Vec &v);
        vk_Vec at(std::size_t i) const { return {x[i], y[i], z[i]}; }
        vk_VecLanes lanes(std::size_t i) const
        {
            return {vk_load(&x[i]), vk_load(&y[i]), vk_load(&z[i])};
        }
        void store(std::size_t i, const vk_VecLanes &lanes);
    };
    struct Layer {
        VecPlane mean, around; // of a pixel, and of it with its neighbours
        Plane own, error;      // errors of one pixel: its own estimate, also as a mean,
        Plane ofAround;        // and of those means
    };

    // Which neighbours a layer takes in: how many pixels to each side, how fast those that face
    // elsewhere lose weight, and how many errors apart two pixels and the means around them may be.
    struct Window {
        int reach;
        float turn, ofPixels, ofMeans;
    };
    struct Windows {
        Window specular, irradiance;
    };
    static const Windows ESTIMATED, FILTERED;
    static const Window BLURRED;
    struct Tolerances {
        vk_Lanes turn, ofPixels, ofMeans;
    };
    struct Smoothed {
        vk_VecLanes light, irradiance;
        vk_Lanes error, own;
    };

    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y * myStride + REACH + x);
    }
    vk_VecLanes lightOf(std::size_t at) const
    {
        return mySpecular.mean.lanes(at) + myIrradiance.mean.lanes(at) * myAlbedo.lanes(at);
    }
    void compare(Layer &layer, int x, int y) const;
    vk_Lanes featureWeight(std::size_t here, std::size_t there, const vk_Lanes &turn) const;
    static vk_Lanes layerWeight(const Layer &layer, std::size_t here, std::size_t there,
                                const vk_VecLanes &visibility, const Tolerances &tolerances);
    vk_PlaneFit::Value layerAround(const Layer &layer, const vk_VecLanes &shows,
                                   const Window &window, const Window &blurredWindow, int x,
                                   int y) const;
    Smoothed smoothed(const Windows &windows, int x, int y) const;
    vk_Gradient differences(const VecPlane &plane, int x, int y) const;
    void filterFour(const Windows &windows, int x, int y);

    int myColumns, myRows, myStride;
    Layer mySpecular, myIrradiance;
    VecPlane myAlbedo, myNormal, myVisibility;
    Plane myTexture; // error that comes from the albedo, which stays as it is
    Plane myDistance;
    Plane mySmooth;  // 1: shows one surface, so that neighbours can help; 0: an edge
    Plane myCount;   // samples, 0 at an edge
    Plane myBlurred; // 1: the diffuse layer has no edges
    std::vector<char> myConverged;

    VecPlane myLight, myLitBy; // what comes out, and the irradiance in it,
    Plane myError;             // how far off the light is, squared,
    Plane myOwnShare;          // and how much of it the pixel's own samples tell
};
