// What drawing a picture took: times, rays and samples.
#pragma once

#include <cstdint>
#include <string>

// Rays by what they are for, what takes longer than most, and steps of shaders' programs
// (OSL_Context.h). Every thread counts its own.
struct vk_Work {
    std::uint64_t camera = 0;    // from the viewer
    std::uint64_t scattered = 0; // from a surface, along a path
    std::uint64_t shadow = 0;    // to a light
    std::uint64_t rough = 0;     // vertices on rough glass, of paths
    std::uint64_t steps = 0;

    // About the time that it all took, on any processor: so many steps. A ray brings with it what
    // is done where it arrives. bench/costs.py fits these numbers again.
    std::uint64_t cost = 0;
    static constexpr unsigned CAMERA_RAY = 160, SCATTERED_RAY = 1050, SHADOW_RAY = 540,
                              ROUGH_GLASS = 320;

    void countCameraRay() { count(camera, 1, CAMERA_RAY); }
    void countScatteredRay() { count(scattered, 1, SCATTERED_RAY); }
    void countShadowRays(std::uint64_t rays) { count(shadow, rays, SHADOW_RAY); }
    void countRoughGlass() { count(rough, 1, ROUGH_GLASS); }
    void countSteps(std::uint64_t more) { count(steps, more, 1); }

    vk_Work &operator+=(const vk_Work &other)
    {
        camera += other.camera;
        scattered += other.scattered;
        shadow += other.shadow;
        rough += other.rough;
        steps += other.steps;
        cost += other.cost;
        return *this;
    }

private:
    void count(std::uint64_t &which, std::uint64_t times, unsigned each)
    {
        which += times;
        cost += times * each;
    }
};
// Not for statistics alone: what a pixel costs decides about its samples.
inline thread_local vk_Work vk_myWork;

struct vk_Stats {
    // Seconds of wall time.
    double reading = 0;  // the scene
    double building = 0; // meshes and the tree over them
    double tracing = 0;
    double writing = 0; // encoding and storing

    vk_Work work;
    std::uint64_t corners = 0; // of meshes
    std::uint64_t pixels = 0;
    std::uint64_t samples = 0;   // over all pixels
    std::uint64_t badPixels = 0; // with a sample that was no number; it counts as black

    // A few lines for people.
    std::string text() const;
};

// Seconds since some fixed moment.
double vk_seconds();
