// Who counts a light that a path may find in two ways.
//
// At a vertex light samples are taken (next-event estimation), and then the path goes on
// along a ray that the BSDF drew, which may meet the same light. Each way gets a weight;
// the weights come to 1. In the open they are the power heuristic's (Veach and Guibas,
// "Optimally Combining Sampling Techniques", SIGGRAPH 1995): squared pdf over the sum of squared
// pdfs. Pdf over the sum of pdfs would leave a matte floor's rays a few per cent of a lamp that
// they hardly ever meet, which was most of that floor's noise.
// Glass lets samples pass straight through, as its shadows do, while a ray may be
// refracted by it; that is what the table below is about.
#pragma once

#include "vaskel/base/vk_Vec.h"

// What lies between a vertex and a place on a light.
enum vk_Between { VK_NOTHING, VK_SMOOTH_GLASS, VK_ROUGH_GLASS, VK_OTHER_SHAPES };

// How the ray goes on at glass: one that was scattered widely looks straight through.
enum vk_Onwards { VK_STRAIGHT, VK_REFRACTED };

struct vk_MisWeights {
    float sample, ray;
};

// What the weights depend on, for one direction and one light.
struct vk_MisPdfs {
    float light;    // of the samples: of one, times how many there are on average
    float bsdf = 0; // of the ray; 0: none goes on
    float peak = 0; // the highest of the BSDF; 0 where none is known
};

// The table. A row comes to 1, but that of rough glass where the ray is refracted: there
// light is sampled anew where it leaves. A ray that looks straight through asks as if nothing
// were between, so the first three rows of its column are the same.
//
//   between        ray looks straight through     ray is refracted
//   nothing        power heuristic                power heuristic
//   smooth glass   power heuristic                by the light's size
//   rough glass    power heuristic                that glass, where the ray leaves it
//   other shapes   the sample                     the sample
vk_MisWeights vk_misWeights(vk_Between between, vk_Onwards onwards, const vk_MisPdfs &pdfs);

// Whether a BSDF that draws a direction with this pdf scatters it like a mirror rather than
// like a matte surface, whose pdf is 1 / pi at most, and twice that where it draws two (vk_Bsdf.h):
// more than either. Such rays are refracted by glass.
constexpr bool vk_isSpecular(float pdf)
{
    return pdf >= 1;
}

// What a ray may still count of the lights. Set where it was scattered, changed where it
// crosses glass or passes by what is there in part.
struct vk_NextEvent {
    int samples = 0;            // taken at the vertex; 0: none, so that the ray counts all
    float bsdfPdf = 0;          // of the ray; 0: it counts no light, as the camera's
    float peakPdf = 0;          // of the BSDF (see vk_MisPdfs)
    float distance = 0;         // from the vertex to where the ray begins now
    vk_Colour left = {1, 1, 1}; // share of a light that counts where it is met
    bool glassDims = false;     // glass that it crosses will dim lights as its shadow does; not so
                                // for the camera's rays and those that begin inside glass
    bool shadowIsCounted = false; // what shadows leave of a light was counted in front of glass
    bool isRefracted = false;     // is no longer straight

    vk_Onwards onwards() const { return isRefracted ? VK_REFRACTED : VK_STRAIGHT; }
};
