#include "vaskel/base/vk_Sampler.h"

namespace
{
std::uint32_t reverseBits(std::uint32_t x)
{
    x = ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
    x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
    x = ((x >> 4) & 0x0f0f0f0fu) | ((x & 0x0f0f0f0fu) << 4);
    return __builtin_bswap32(x);
}

// Scrambles the bits of a reversed number from the lowest up, each by those
// below it: Laine and Karras, "Stratified Sampling for Stochastic
// Transparency", 2011, with the constants of Burley.
std::uint32_t scrambleReversed(std::uint32_t x, std::uint32_t seed)
{
    x += seed;
    x ^= x * 0x6c50b47cu;
    x ^= x * 0xb82f1e52u;
    x ^= x * 0xc7afe638u;
    x ^= x * 0x8d22f6e6u;
    return x;
}

std::uint32_t scramble(std::uint32_t x, std::uint32_t seed)
{
    return reverseBits(scrambleReversed(reverseBits(x), seed));
}

// The second dimension of Sobol's sequence, with its bits reversed: its
// generating matrix is Pascal's triangle modulo 2, applied by xor-shifts.
std::uint32_t secondReversed(std::uint32_t index)
{
    index ^= (index & 0xaaaaaaaau) >> 1;
    index ^= (index & 0xccccccccu) >> 2;
    index ^= (index & 0xf0f0f0f0u) >> 4;
    index ^= (index & 0xff00ff00u) >> 8;
    index ^= (index & 0xffff0000u) >> 16;
    return index;
}

// The top 24 bits: what a float holds below 1.
float unit(std::uint32_t x)
{
    return static_cast<float>(x >> 8) * 0x1p-24f;
}
} // namespace

std::uint32_t vk_hash(std::uint32_t x)
{
    x ^= x >> 16;
    x *= 0x21f0aaadu;
    x ^= x >> 15;
    x *= 0x735a2d97u;
    return x ^ (x >> 15);
}

vk_Square vk_Sampler::square()
{
    const std::uint32_t seed = vk_hash(mySeed + 0x9e3779b9u * ++myPair);
    const std::uint32_t index = scramble(myIndex, seed);
    // The first dimension is the index with its bits reversed, so reversing
    // before scrambling cancels out.
    const std::uint32_t first = scrambleReversed(index, seed * 0x9e3779b1u);
    const std::uint32_t second = scrambleReversed(secondReversed(index), seed * 0x85ebca6bu);
    return {unit(reverseBits(first)), unit(reverseBits(second))};
}

// All samples of a pixel fork alike, so that their points stay well spread.
void vk_Sampler::fork(std::uint32_t branch)
{
    mySeed = vk_hash(mySeed ^ (0x85ebca6bu * (branch + 1)));
}
