// The arithmetic of osl_BatchMath, for the sources that compile it for one kind of
// processor each. Polynomials are those of Moshier's Cephes library (single precision).
#pragma once

#include "osl/lib/osl_BatchMath.h"
#include "osl/lib/osl_Lanes.h"

#include <cmath>
#include <immintrin.h>

namespace
{

constexpr float LN2_HIGH = 0.693359375f, LN2_LOW = -2.12194440e-4f; // their sum is ln 2
constexpr float LOG2_E = 1.44269504f;

template <size_t N>
OSL_INLINE Floats polynomial(const Floats &x, const float (&coefficients)[N])
{
    Floats sum = allFloats(coefficients[0]);
    for (size_t i = 1; i < N; ++i)
        sum = sum * x + coefficients[i];
    return sum;
}

OSL_INLINE Floats absolute(const Floats &x)
{
    return sameBits<Floats>(sameBits<Words>(x) & 0x7fffffffu);
}

OSL_INLINE Floats clampLanes(const Floats &x, float low, float high)
{
    return minLanes(maxLanes(x, allFloats(low)), allFloats(high));
}

OSL_INLINE Floats rootOf(const Floats &x)
{
#ifdef __AVX2__
    return _mm256_sqrt_ps(x);
#else
    return _mm_sqrt_ps(x);
#endif
}

// ---- sine and cosine ----

struct SinCos {
    Floats sine, cosine;
};

// Beyond this the reduction below gives way, lane by lane, to the C library's.
constexpr float LARGEST_ANGLE = 8192;

OSL_INLINE SinCos sinCosOf(const Floats &x)
{
    constexpr float SINE[] = {-1.9515295891e-4f, 8.3321608736e-3f, -1.6666654611e-1f};
    constexpr float COSINE[] = {2.443315711809948e-5f, -1.388731625493765e-3f,
                                4.166664568298827e-2f};
    const Ints quarter = floorLanes(x * 0.636619772f + 0.5f);
    const Floats q = toFloats(quarter);
    const Floats r = ((x - q * 1.5703125f) - q * 4.837512969970703e-4f) - q * 7.549789954891e-8f;
    const Floats r2 = r * r;
    const Floats s = r + r * r2 * polynomial(r2, SINE);
    const Floats c = 1 - 0.5f * r2 + r2 * r2 * polynomial(r2, COSINE);
    const Ints isOdd = (quarter & 1) != 0;
    const Words sineSign = toWords(quarter & 2) << 30;
    const Words cosineSign = toWords((quarter + 1) & 2) << 30;
    return {sameBits<Floats>(sameBits<Words>(isOdd ? c : s) ^ sineSign),
            sameBits<Floats>(sameBits<Words>(isOdd ? s : c) ^ cosineSign)};
}

// Puts in `exact` of the lanes whose angle is too large for us.
template <class Exact>
OSL_INLINE Floats withLargeAngles(const Floats &x, Floats result, const Exact &exact)
{
    const Ints isLarge = absolute(x) > LARGEST_ANGLE;
    for (int i = 0; i < LANES; ++i) {
        if (isLarge[i] != 0)
            result[i] = std::fabs(x[i]) < 1e30f ? exact(x[i]) : 0;
    }
    return result;
}

OSL_INLINE Floats sinOf(const Floats &x)
{
    return withLargeAngles(x, sinCosOf(x).sine, [](float a) { return sinf(a); });
}
OSL_INLINE Floats cosOf(const Floats &x)
{
    return withLargeAngles(x, sinCosOf(x).cosine, [](float a) { return cosf(a); });
}
OSL_INLINE Floats tanOf(const Floats &x)
{
    const SinCos both = sinCosOf(x);
    return withLargeAngles(x, both.sine / both.cosine, [](float a) { return tanf(a); });
}

// ---- powers and logarithms ----

// 2 to a whole number from -126 to 127.
OSL_INLINE Floats powerOfTwo(const Ints &x)
{
    return sameBits<Floats>((x + 127) << 23);
}

// 2^(whole + rest), for a rest of -1 to 1.
OSL_INLINE Floats exp2Parts(const Floats &whole, const Floats &rest)
{
    constexpr float POWER[] = {1.535336188319500e-4f,
                               1.339887440266574e-3f,
                               9.618437357674640e-3f,
                               5.550332471162809e-2f,
                               2.402264791363012e-1f,
                               6.931472028550421e-1f,
                               1.0f};
    return polynomial(rest, POWER) * powerOfTwo(__builtin_convertvector(whole, Ints));
}

OSL_INLINE Floats exp2Of(const Floats &x)
{
    const Floats inside = clampLanes(x, -126, 126);
    const Floats whole = toFloats(floorLanes(inside + 0.5f));
    return exp2Parts(whole, inside - whole);
}

OSL_INLINE Floats expOf(const Floats &x)
{
    constexpr float POWER[] = {1.9875691500e-4f, 1.3981999507e-3f, 8.3334519073e-3f,
                               4.1665795894e-2f, 1.6666665459e-1f, 5.0000001201e-1f};
    const Floats inside = clampLanes(x, -87.3365447f, 87.3365447f);
    const Ints whole = floorLanes(inside * LOG2_E + 0.5f);
    const Floats w = toFloats(whole);
    const Floats r = (inside - w * LN2_HIGH) - w * LN2_LOW;
    return (polynomial(r, POWER) * (r * r) + r + 1) * powerOfTwo(whole);
}

// x as (1 + fraction) * 2^exponent, the fraction from -0.3 to 0.42.
struct Parts {
    Floats fraction, exponent;
};
OSL_INLINE Parts partsOf(const Floats &x)
{
    const Floats inside = clampLanes(x, 1.17549435e-38f, 3.40282347e38f);
    // Counts exponents from the square root of a half.
    const Words bits = sameBits<Words>(inside) - 0x3f3504f3u;
    const Ints exponent = sameBits<Ints>(bits) >> 23;
    const Words mantissa = (bits & 0x7fffffu) + 0x3f3504f3u;
    return {sameBits<Floats>(mantissa) - 1, toFloats(exponent)};
}

// ln(1 + f) - f
OSL_INLINE Floats logRest(const Floats &f)
{
    constexpr float LOG[] = {7.0376836292e-2f,  -1.1514610310e-1f, 1.1676998740e-1f,
                             -1.2420140846e-1f, 1.4249322787e-1f,  -1.6668057665e-1f,
                             2.0000714765e-1f,  -2.4999993993e-1f, 3.3333331174e-1f};
    const Floats square = f * f;
    return polynomial(f, LOG) * f * square - 0.5f * square;
}

OSL_INLINE Floats logOf(const Floats &x)
{
    const Parts p = partsOf(x);
    const Floats low = logRest(p.fraction) + p.exponent * LN2_LOW;
    return (p.fraction + low) + p.exponent * LN2_HIGH;
}

OSL_INLINE Floats log2Of(const Floats &x)
{
    const Parts p = partsOf(x);
    return (p.fraction + logRest(p.fraction)) * LOG2_E + p.exponent;
}

// The whole part of the exponent is taken apart before digits are lost.
OSL_INLINE Floats positivePower(const Floats &x, const Floats &y)
{
    const Parts p = partsOf(x);
    const Floats large = p.exponent * y;
    const Floats small = (p.fraction + logRest(p.fraction)) * LOG2_E * y;
    const Floats sum = large + small;
    const Floats whole = toFloats(floorLanes(clampLanes(sum, -126, 126) + 0.5f));
    const Floats rest = clampLanes((large - whole) + small, -1, 1);
    return exp2Parts(whole, rest);
}

OSL_INLINE Floats floorOf(const Floats &x)
{
    return absolute(x) < 8388608.0f ? toFloats(floorLanes(x)) : x;
}

OSL_INLINE Floats powOf(const Floats &x, const Floats &y)
{
    const Floats zero = {};
    const Floats half = y * 0.5f;
    const Ints isWhole = floorOf(y) == y, isEven = floorOf(half) == half;
    const Floats size = positivePower(absolute(x), y);
    const Floats negative = isWhole ? (isEven ? size : -size) : zero;
    Floats result = x > zero ? size : (x < zero ? negative : zero);
    result = y == 1 ? x : (y == 2 ? x * x : result);
    return y == zero ? allFloats(1) : result;
}

// ---- the others ----

OSL_INLINE Floats sqrtOf(const Floats &x)
{
    return rootOf(maxLanes(x, Floats{}));
}
OSL_INLINE Floats inverseSqrtOf(const Floats &x)
{
    return x > Floats{} ? 1 / rootOf(x) : Floats{};
}
OSL_INLINE Floats divOf(const Floats &x, const Floats &y)
{
    const Floats q = x / y;
    return q - q == Floats{} ? q : Floats{};
}
OSL_INLINE Floats modOf(const Floats &x, const Floats &y)
{
    return x - y * floorOf(divOf(x, y));
}

template <Floats (*F)(const Floats &)>
void unary(float *out, const float *x, int n)
{
    for (int i = 0; i < n; i += LANES)
        storeLanes(out + i, F(loadLanes(x + i, n - i)), n - i);
}
template <Floats (*F)(const Floats &, const Floats &)>
void binary(float *out, const float *x, const float *y, int n)
{
    for (int i = 0; i < n; i += LANES)
        storeLanes(out + i, F(loadLanes(x + i, n - i), loadLanes(y + i, n - i)), n - i);
}

constexpr osl_BatchMath TABLE = {
    unary<sinOf>,  unary<cosOf>,  unary<tanOf>,  unary<expOf>,         unary<exp2Of>,
    unary<logOf>,  unary<log2Of>, unary<sqrtOf>, unary<inverseSqrtOf>, unary<floorOf>,
    binary<powOf>, binary<divOf>, binary<modOf>,
};

} // namespace
