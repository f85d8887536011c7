// The mathematical functions of the shading language, for one number.
//
// None of them traps, and none gives NaN for finite input: where mathematics
// has no answer the language has one, told below. Functions that are not here
// (floor, fabs, atan, sinh ...) are those of <cmath>.
//
// osl_Dual.h has the same functions with derivatives, under the same names;
// osl_BatchMath.h has them for many numbers at once.
#pragma once

#include <cmath>

constexpr float OSL_PI = 3.14159265358979f;

// The quotient; 0 where it is not finite, so 0 for a divisor of 0.
inline float osl_div(float a, float b)
{
    const float q = a / b;
    return q - q == 0 ? q : 0;
}

// Division of whole numbers towards 0 and its remainder (the sign is a's); both
// 0 for a divisor of 0. The one quotient that does not fit wraps around.
inline int osl_div(int a, int b)
{
    if (b == -1) // no trap for the smallest number
        return static_cast<int>(0u - static_cast<unsigned>(a));
    return b != 0 ? a / b : 0;
}
inline int osl_remainder(int a, int b)
{
    return b != 0 && b != -1 ? a % b : 0;
}

// a shifted by the low five bits of b; to the right the sign is kept.
inline int osl_shiftLeft(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) << (b & 31));
}
inline int osl_shiftRight(int a, int b)
{
    return a >> (b & 31);
}

// Towards 0, as casts do; the nearest whole number for one that is too large, 0 for NaN.
int osl_toInt(float x);

// fmod keeps a's sign, mod is a - b * floor(a / b); with b = 0 they are 0 and a.
inline float osl_fmod(float a, float b)
{
    return b != 0 ? a - b * std::trunc(a / b) : 0;
}
inline float osl_mod(float a, float b)
{
    return a - b * std::floor(osl_div(a, b));
}

// Both 0 below 0; the reciprocal is 0 at 0 as well.
inline float osl_sqrt(float x)
{
    return x >= 0 ? std::sqrt(x) : 0;
}
inline float osl_inverseSqrt(float x)
{
    return x > 0 ? 1 / std::sqrt(x) : 0;
}

// Arguments outside [-1, 1] count as the nearer end.
float osl_acos(float x);
float osl_asin(float x);

inline float osl_sin(float x)
{
    return std::sin(x);
}
inline float osl_cos(float x)
{
    return std::cos(x);
}

// Exponents are limited so that results stay within 2^-126 and 2^126.
float osl_exp(float x);
float osl_exp2(float x);
float osl_expm1(float x);

// Arguments below FLT_MIN count as FLT_MIN.
float osl_log(float x);
float osl_log2(float x);
float osl_log10(float x);
float osl_log(float x, float base); // 0 for base 1

// The exponent of |x| as a power of two, -126 for anything smaller.
float osl_logb(float x);

// 1 for y = 0, else 0 for x = 0 and for roots of negative numbers; results that are
// too large are the largest float.
float osl_pow(float x, float y);

inline float osl_sign(float x)
{
    return x < 0 ? -1.0f : x > 0 ? 1.0f : 0.0f;
}

// The nearest whole number; halves go away from 0.
inline float osl_round(float x)
{
    return std::round(x);
}

inline float osl_mix(float a, float b, float t)
{
    return a * (1 - t) + b * t;
}

// min(max(x, low), high), which is `high` where the ends are crossed.
inline float osl_clamp(float x, float low, float high)
{
    const float raised = x < low ? low : x;
    return raised > high ? high : raised;
}

inline float osl_step(float edge, float x)
{
    return x < edge ? 0.0f : 1.0f;
}

// 0 up to `low`, 1 from `high` on, between them a line or a Hermite curve. The
// third form is a line with rounded corners: each reaches `eps` to both sides of its end.
inline float osl_linearStep(float low, float high, float x)
{
    const float t = osl_clamp((x - low) / (high - low), 0, 1);
    return low == high ? osl_step(low, x) : t;
}
inline float osl_smoothStep(float low, float high, float x)
{
    const float t = (x - low) / (high - low);
    const float curve = (3 - 2 * t) * (t * t);
    return x < low ? 0 : x >= high ? 1 : curve;
}
float osl_smoothLinearStep(float low, float high, float x, float eps);
