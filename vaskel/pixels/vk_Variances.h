// How samples are best dealt out to the pixels of a picture.
//
// n samples of a pixel leave a squared error of spread / n, where spread is what one
// sample would leave. A further sample takes most off the error of the whole picture
// where spread / n^2 is largest; so a pixel is done when its error divided by n is below
// a limit that is the same for all.
#pragma once

#include <cstdint>

class vk_Variances
{
public:
    // One more pixel; its spread is a squared error of full scale.
    void add(float variance);
    vk_Variances &operator+=(const vk_Variances &o);

    // The limit with which the pixels' mean squared error comes to a target, or their
    // samples to so many on the mean, whichever takes fewer; when each gets `least`
    // samples, twice as many and so on up to `most`.
    float limit(float target, float meanSamples, int least, int most) const;

private:
    static constexpr int STEPS = 4; // to a factor of 2
    static constexpr int LOWEST = -40 * STEPS, HIGHEST = 8 * STEPS;

    // Means over the pixels.
    struct Forecast {
        double error = 0, samples = 0;
    };
    Forecast forecast(float limit, int least, int most) const;

    std::int64_t myCounts[HIGHEST - LOWEST + 1] = {}; // of spreads about 2^(i / STEPS)
    std::int64_t myPixels = 0;
};
