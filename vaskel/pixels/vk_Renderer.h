// From a scene to a film, on several threads.
#pragma once

#include "vaskel/base/vk_Stats.h"
#include "vaskel/file/vk_Film.h"
#include "vaskel/scene/vk_Scene.h"

#include <string>

// How much work goes into a picture: samples are taken where they help most until its
// error, as the file shows it and as far as they tell, is about as large as asked for, and that
// of no pixel many times as large. No pixel gets more samples than the scene allows, times a
// factor. Pixels that seem exact with the first few stop there. The fewer these are, the more
// pixels stop that missed a caustic, and nothing makes up for the light that they lose: those that
// met it go on until it counts no more than it should.
struct vk_Quality {
    const char *name;
    int first;          // samples of every pixel, unless its most are fewer; compared by halves
    float samples;      // factor for the scene's most samples
    float error;        // root mean square, of full scale
    float cost;         // of a pixel, about, at most (vk_Work), or what the first samples take
    bool showsProgress; // worth waiting for, so say how long
};
inline constexpr vk_Quality VK_QUALITIES[] = {
    {"draft", 2, .25f, .012f, 18500, false},
    {"default", 4, 1, .0046f, 60500, false},
    {"final", 8, 8, .0018f, 1100000, true},
};
static_assert(VK_QUALITIES[0].first >= 2 && VK_QUALITIES[1].first >= 2 &&
                  VK_QUALITIES[2].first >= 2,
              "without two halves nothing tells an error");
inline constexpr const vk_Quality &VK_DEFAULT_QUALITY = VK_QUALITIES[1];

struct vk_RenderSettings {
    int threads = 1;
    const vk_Quality *quality = &VK_DEFAULT_QUALITY;
    int samples = 0;           // for every pixel, converged or not; 0: up to the quality
    int bandPixels = 3 << 16;  // drawn together, about, which limits the memory that it takes
    vk_Stats *stats = nullptr; // where to add what it took

    // Called with 0 to 100, growing, from one thread at a time; null: nobody asks.
    void (*progress)(int percent) = nullptr;
};

// How many threads the setting VELDRIN_MAXTHREADS asks for; as many as there are
// processors when it is 0 or below.
int vk_threadCount();

// Draws the scene. The film depends on the scene, the quality and the samples
// only, not on the number of threads. False and a message when ray tracing failed; when
// memory runs out, operator new does what the program chose.
[[nodiscard]] bool vk_render(const vk_Scene &scene, const vk_RenderSettings &settings,
                             vk_Film &film, std::string &error);
