// What drawing a picture took: times, rays and samples.
#pragma once

#include <cstdint>
#include <string>

// Rays by what they are for. Every thread counts its own.
struct vk_RayCounts {
    std::uint64_t camera = 0;    // from the viewer
    std::uint64_t scattered = 0; // from a surface, along a path
    std::uint64_t shadow = 0;    // to a light

    std::uint64_t sum() const { return camera + scattered + shadow; }

    vk_RayCounts &operator+=(const vk_RayCounts &other)
    {
        camera += other.camera;
        scattered += other.scattered;
        shadow += other.shadow;
        return *this;
    }
};
// Not for statistics alone: what a pixel costs decides about its samples.
inline thread_local vk_RayCounts vk_myRays;

struct vk_Stats {
    // Seconds of wall time.
    double reading = 0;  // the scene
    double building = 0; // meshes and the tree over them
    double tracing = 0;
    double writing = 0; // encoding and storing

    vk_RayCounts rays;
    std::uint64_t pixels = 0;
    std::uint64_t samples = 0;   // over all pixels
    std::uint64_t badPixels = 0; // with a sample that was no number; it counts as black

    // A few lines for people.
    std::string text() const;
};

// Seconds since some fixed moment.
double vk_seconds();
