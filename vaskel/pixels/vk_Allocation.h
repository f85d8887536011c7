// How work is best dealt out to the pixels of a picture.
//
// Twice the samples leave half of a pixel's squared error. Further work takes most off
// the error of the whole picture where error / cost is largest, with what the pixel cost
// so far; so a pixel has converged when that quotient is below a limit that is the
// same for all.
#pragma once

#include <cstdint>

class vk_Allocation
{
public:
    // One more pixel: its squared error, and what it cost (vk_Work). One that is fixed gets
    // no more samples.
    void add(float error, float cost, bool isFixed);

    // The limit with which the pixels' mean squared error comes to a target, or costs to
    // so much a pixel, whichever takes less, when samples of each double until it has
    // converged.
    float limit(float target, float costOfPixel) const;

    // Costs of all pixels so far, and with a limit.
    double cost() const;
    double cost(float limit) const;

private:
    static constexpr int STEPS = 4; // to a factor of 2
    static constexpr int LOWEST = -60 * STEPS, HIGHEST = 8 * STEPS;

    struct Share {
        double error = 0, cost = 0;
    };
    static int stepOf(float quotient);
    Share forecast(int limit) const;

    Share myShares[HIGHEST - LOWEST + 1]; // of quotients from 2^(step / STEPS)
    Share myFixed;
    std::int64_t myPixels = 0;
};
