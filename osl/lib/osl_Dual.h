// A number with its derivatives along the two axes of the picture.
//
// Arithmetic follows the rules of differentiation exactly; where a function of
// osl_Math.h has an answer of its own outside its domain, the derivatives are 0
// there. Functions that step (floor, sign, step, comparisons) drop derivatives:
// they take and give plain floats.
#pragma once

#include "osl/lib/osl_Math.h"

struct osl_Dual {
    float val = 0;
    float dx = 0;
    float dy = 0;

    constexpr osl_Dual() = default;
    constexpr osl_Dual(float value) : val(value) {}
    constexpr osl_Dual(float value, float ddx, float ddy) : val(value), dx(ddx), dy(ddy) {}
};

// f(a) by the chain rule, given f's value and slope at a.val.
constexpr osl_Dual osl_chain(const osl_Dual &a, float value, float slope)
{
    return {value, slope * a.dx, slope * a.dy};
}

// f(a, b), likewise.
constexpr osl_Dual osl_chain(const osl_Dual &a, float slopeA, const osl_Dual &b, float slopeB,
                             float value)
{
    return {value, slopeA * a.dx + slopeB * b.dx, slopeA * a.dy + slopeB * b.dy};
}

constexpr osl_Dual operator+(const osl_Dual &a, const osl_Dual &b)
{
    return {a.val + b.val, a.dx + b.dx, a.dy + b.dy};
}
constexpr osl_Dual operator-(const osl_Dual &a, const osl_Dual &b)
{
    return {a.val - b.val, a.dx - b.dx, a.dy - b.dy};
}
constexpr osl_Dual operator-(const osl_Dual &a)
{
    return {-a.val, -a.dx, -a.dy};
}
constexpr osl_Dual operator*(const osl_Dual &a, const osl_Dual &b)
{
    return {a.val * b.val, a.val * b.dx + a.dx * b.val, a.val * b.dy + a.dy * b.val};
}

// Inline, as loops over many points call them.
inline osl_Dual osl_div(const osl_Dual &a, const osl_Dual &b)
{
    const float inverse = osl_div(1.0f, b.val);
    const float value = osl_div(a.val, b.val);
    return osl_chain(a, inverse, b, -value * inverse, value);
}
inline osl_Dual osl_abs(const osl_Dual &a)
{
    return a.val >= 0 ? a : -a;
}
inline osl_Dual osl_min(const osl_Dual &a, const osl_Dual &b)
{
    return a.val < b.val ? a : b;
}
inline osl_Dual osl_max(const osl_Dual &a, const osl_Dual &b)
{
    return a.val > b.val ? a : b;
}
inline osl_Dual osl_clamp(const osl_Dual &x, const osl_Dual &low, const osl_Dual &high)
{
    const osl_Dual raised = x.val < low.val ? low : x;
    return raised.val > high.val ? high : raised;
}
inline osl_Dual osl_mix(const osl_Dual &a, const osl_Dual &b, const osl_Dual &t)
{
    return a * (osl_Dual(1) - t) + b * t;
}
inline osl_Dual osl_linearStep(const osl_Dual &low, const osl_Dual &high, const osl_Dual &x)
{
    if (low.val == high.val)
        return osl_step(low.val, x.val);
    return osl_clamp(osl_div(x - low, high - low), 0, 1);
}
inline osl_Dual osl_smoothStep(const osl_Dual &low, const osl_Dual &high, const osl_Dual &x)
{
    if (x.val < low.val)
        return 0;
    if (x.val >= high.val)
        return 1;
    const osl_Dual t = osl_div(x - low, high - low);
    return (osl_Dual(3) - t * osl_Dual(2)) * (t * t);
}

osl_Dual osl_fmod(const osl_Dual &a, const osl_Dual &b);
osl_Dual osl_mod(const osl_Dual &a, const osl_Dual &b);
osl_Dual osl_sqrt(const osl_Dual &a);
osl_Dual osl_inverseSqrt(const osl_Dual &a);
osl_Dual osl_cbrt(const osl_Dual &a);
osl_Dual osl_hypot(const osl_Dual &a, const osl_Dual &b);

osl_Dual osl_sin(const osl_Dual &a);
osl_Dual osl_cos(const osl_Dual &a);
osl_Dual osl_tan(const osl_Dual &a);
osl_Dual osl_asin(const osl_Dual &a);
osl_Dual osl_acos(const osl_Dual &a);
osl_Dual osl_atan(const osl_Dual &a);
osl_Dual osl_atan2(const osl_Dual &y, const osl_Dual &x);
osl_Dual osl_sinh(const osl_Dual &a);
osl_Dual osl_cosh(const osl_Dual &a);
osl_Dual osl_tanh(const osl_Dual &a);

osl_Dual osl_exp(const osl_Dual &a);
osl_Dual osl_exp2(const osl_Dual &a);
osl_Dual osl_expm1(const osl_Dual &a);
osl_Dual osl_log(const osl_Dual &a);
osl_Dual osl_log2(const osl_Dual &a);
osl_Dual osl_log10(const osl_Dual &a);
osl_Dual osl_log(const osl_Dual &a, const osl_Dual &base);
osl_Dual osl_pow(const osl_Dual &a, const osl_Dual &b);
osl_Dual osl_erf(const osl_Dual &a);
osl_Dual osl_erfc(const osl_Dual &a);

// How far a reaches over one pixel: the length of its two derivatives.
inline float osl_filterWidth(const osl_Dual &a)
{
    return std::sqrt(a.dx * a.dx + a.dy * a.dy);
}
