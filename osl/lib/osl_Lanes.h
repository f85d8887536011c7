// Eight numbers that are worked on at once, by the compiler's vector extensions.
//
// Sources that include this file are compiled once for each processor they serve;
// everything is local to the source, so that no code for one gets into the other.
// Comparisons give lanes of integers, -1 for true and 0 for false, as `?:` takes them.
#pragma once

#include <cstdint>
#include <cstring>

#define OSL_INLINE [[gnu::always_inline]] inline

namespace
{

#ifdef __AVX2__
constexpr int LANES = 8;
#else
constexpr int LANES = 4;
#endif
typedef float Floats __attribute__((vector_size(4 * LANES)));
typedef int32_t Ints __attribute__((vector_size(4 * LANES)));
typedef uint32_t Words __attribute__((vector_size(4 * LANES)));

template <class To, class From>
OSL_INLINE To sameBits(const From &from)
{
    static_assert(sizeof(To) == sizeof(From));
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

OSL_INLINE Floats allFloats(float x)
{
    return Floats{} + x;
}
OSL_INLINE Floats toFloats(const Ints &x)
{
    return __builtin_convertvector(x, Floats);
}
OSL_INLINE Words toWords(const Ints &x)
{
    return sameBits<Words>(x);
}

// `count` floats, the other lanes 0. Sizes that the compiler knows make one move.
OSL_INLINE Floats loadLanes(const float *from, int count)
{
    Floats to = {};
    if (count >= LANES)
        std::memcpy(&to, from, sizeof to);
    else
        std::memcpy(&to, from, sizeof(float) * static_cast<size_t>(count));
    return to;
}
OSL_INLINE void storeLanes(float *to, const Floats &from, int count)
{
    if (count >= LANES)
        std::memcpy(to, &from, sizeof from);
    else
        std::memcpy(to, &from, sizeof(float) * static_cast<size_t>(count));
}

OSL_INLINE Floats minLanes(const Floats &a, const Floats &b)
{
    return a < b ? a : b;
}
OSL_INLINE Floats maxLanes(const Floats &a, const Floats &b)
{
    return a > b ? a : b;
}

// The largest whole number up to x, limited to what an integer holds; NaN is the least.
OSL_INLINE Ints floorLanes(const Floats &x)
{
    const Floats inside =
        minLanes(maxLanes(x, allFloats(-2147483520.0f)), allFloats(2147483520.0f));
    const Ints towardsZero = __builtin_convertvector(inside, Ints);
    return towardsZero + (toFloats(towardsZero) > inside);
}

// x / 2^32, rounded once.
OSL_INLINE Floats fractionOf(const Words &x)
{
    const Floats high = toFloats(sameBits<Ints>(x >> 16));
    const Floats low = toFloats(sameBits<Ints>(x & 0xffffu));
    return (high * 65536.0f + low) * (1.0f / 4294967296.0f);
}

} // namespace
