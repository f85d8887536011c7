// How rays are best dealt out to the pixels of a picture.
//
// Twice the samples leave half of a pixel's squared error. A further ray takes most off
// the error of the whole picture where error / rays is largest, with the rays that the pixel
// took so far; so a pixel has converged when that quotient is below a limit that is the
// same for all.
#pragma once

#include <cstdint>

class vk_Allocation
{
public:
    // One more pixel: its squared error, and the rays that it took. One that is fixed gets
    // no more of them.
    void add(float error, float rays, bool isFixed);

    // The limit with which the pixels' mean squared error comes to a target, or the rays to
    // so many a pixel, whichever takes fewer, when samples of each double until it has
    // converged.
    float limit(float target, float raysOfPixel) const;

    // Rays of all pixels so far, and with a limit.
    double rays() const;
    double rays(float limit) const;

private:
    static constexpr int STEPS = 4; // to a factor of 2
    static constexpr int LOWEST = -60 * STEPS, HIGHEST = 8 * STEPS;

    struct Share {
        double error = 0, rays = 0;
    };
    static int stepOf(float quotient);
    Share forecast(int limit) const;

    Share myShares[HIGHEST - LOWEST + 1]; // of quotients from 2^(step / STEPS)
    Share myFixed;
    std::int64_t myPixels = 0;
};
