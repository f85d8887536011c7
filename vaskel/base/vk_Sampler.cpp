#include "vaskel/base/vk_Sampler.h"

namespace
{
// Reverses the bits of each byte. A sum, as the parts share no bits: one instruction adds and
// shifts.
template <class Word>
Word reverseBytes(Word x)
{
    constexpr Word ALL = ~Word{0};
    constexpr Word ONES = ALL / 3, TWOS = ALL / 5, FOURS = ALL / 17; // 0x55..., 0x33..., 0x0f...
    x = ((x >> 1) & ONES) + 2 * (x & ONES);
    x = ((x >> 2) & TWOS) + 4 * (x & TWOS);
    return ((x >> 4) & FOURS) + 16 * (x & FOURS);
}

std::uint32_t reverseBits(std::uint32_t x)
{
    return __builtin_bswap32(reverseBytes(x));
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

vk_Sampler::vk_Sampler(std::uint32_t seed, std::uint32_t index)
    : mySeed(seed), myReversed(reverseBits(index))
{
}

std::uint32_t vk_Sampler::index() const
{
    return reverseBits(myReversed);
}

vk_Sampler::Pair vk_Sampler::next()
{
    const std::uint32_t seed = vk_hash(mySeed + 0x9e3779b9u * ++myPair);
    return {seed, reverseBits(scrambleReversed(myReversed, seed))};
}

// The first dimension is the index with its bits reversed, so reversing before scrambling
// cancels out.
float vk_Sampler::number()
{
    const Pair pair = next();
    return unit(reverseBits(scrambleReversed(pair.index, pair.seed * 0x9e3779b1u)));
}

// Both numbers are reversed at once, as one of 64 bits.
vk_Square vk_Sampler::square()
{
    const Pair pair = next();
    const std::uint64_t first = scrambleReversed(pair.index, pair.seed * 0x9e3779b1u);
    const std::uint64_t second =
        scrambleReversed(secondReversed(pair.index), pair.seed * 0x85ebca6bu);
    const std::uint64_t both = __builtin_bswap64(reverseBytes(second << 32 | first));
    return {unit(static_cast<std::uint32_t>(both >> 32)), unit(static_cast<std::uint32_t>(both))};
}

// All samples of a pixel fork alike, so that their points stay well spread.
void vk_Sampler::fork(std::uint32_t branch)
{
    mySeed = vk_hash(mySeed ^ (0x85ebca6bu * (branch + 1)));
}
