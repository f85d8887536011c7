// Well spread points for one pixel.
//
// Each use of random numbers along a path takes the next pair of coordinates of
// the first two dimensions of Sobol's sequence, shuffled and scrambled anew for
// every pixel and every pair: Burley, "Practical Hash-based Owen Scrambling",
// JCGT 9(4), 2020. Any first 2^n samples of a pair are a (0,2)-net, so errors
// fall nearly as 1/samples where the picture is smooth. The points depend on
// pixel, sample and pair only, never on the thread.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <cstdint>

class vk_Sampler
{
public:
    // The seed is the pixel's, the index counts its samples from 0.
    vk_Sampler(std::uint32_t seed, std::uint32_t index);

    // Which of the pixel's samples this is; of twice as many where they split.
    std::uint32_t index() const;

    // The next pair and the next single number, each in [0, 1).
    vk_Square square();
    float number();
    // Leaves out one of either, for which nobody has use.
    void skip() { ++myPair; }

    // Goes on with other pairs than a copy of this sampler does, for a path that parts.
    void fork(std::uint32_t branch);

    // Goes on as one of two samples in place of this one, half 0 or 1: sample i becomes 2 i and
    // 2 i + 1. Where all samples of a pixel part there, they are as well spread as twice as many.
    void split(std::uint32_t half) { myReversed = myReversed >> 1 | half << 31; }

private:
    struct Pair {
        std::uint32_t seed;  // what its coordinates are scrambled with
        std::uint32_t index; // as it is shuffled for this pair
    };
    Pair next();

    std::uint32_t mySeed;
    std::uint32_t myReversed; // the index, from its lowest bit to its highest
    std::uint32_t myPair = 0;
};

// A well mixed number from any number.
std::uint32_t vk_hash(std::uint32_t x);
