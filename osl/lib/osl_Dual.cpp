#include "osl/lib/osl_Dual.h"

#include <algorithm>

namespace
{
constexpr float LN2 = 0.693147180559945f;
constexpr float LN10 = 2.302585092994046f;
constexpr float TWO_OVER_SQRT_PI = 1.128379167095513f;

// The logarithm's slope, 0 where its argument is taken for another.
osl_Dual chainLog(const osl_Dual &a, float value, float factor)
{
    return osl_chain(a, value, a.val > 0 ? osl_div(factor, a.val) : 0);
}

osl_Dual chainArc(const osl_Dual &a, float value, float sign)
{
    const float inside = 1 - a.val * a.val;
    return osl_chain(a, value, inside > 0 ? sign / std::sqrt(inside) : 0);
}
} // namespace

osl_Dual osl_fmod(const osl_Dual &a, const osl_Dual &b)
{
    return {osl_fmod(a.val, b.val), a.dx, a.dy};
}

osl_Dual osl_mod(const osl_Dual &a, const osl_Dual &b)
{
    const float turns = std::floor(osl_div(a.val, b.val));
    return osl_chain(a, 1, b, -turns, osl_mod(a.val, b.val));
}

osl_Dual osl_sqrt(const osl_Dual &a)
{
    const float root = osl_sqrt(a.val);
    return osl_chain(a, root, osl_div(0.5f, root));
}

osl_Dual osl_inverseSqrt(const osl_Dual &a)
{
    const float value = osl_inverseSqrt(a.val);
    return osl_chain(a, value, osl_div(-0.5f * value, a.val));
}

osl_Dual osl_cbrt(const osl_Dual &a)
{
    const float root = std::cbrt(a.val);
    return osl_chain(a, root, osl_div(1.0f, 3 * root * root));
}

osl_Dual osl_hypot(const osl_Dual &a, const osl_Dual &b)
{
    const float value = std::hypot(a.val, b.val);
    return osl_chain(a, osl_div(a.val, value), b, osl_div(b.val, value), value);
}

osl_Dual osl_sin(const osl_Dual &a)
{
    return osl_chain(a, std::sin(a.val), std::cos(a.val));
}
osl_Dual osl_cos(const osl_Dual &a)
{
    return osl_chain(a, std::cos(a.val), -std::sin(a.val));
}
osl_Dual osl_tan(const osl_Dual &a)
{
    const float value = std::tan(a.val);
    return osl_chain(a, value, 1 + value * value);
}
osl_Dual osl_asin(const osl_Dual &a)
{
    return chainArc(a, osl_asin(a.val), 1);
}
osl_Dual osl_acos(const osl_Dual &a)
{
    return chainArc(a, osl_acos(a.val), -1);
}
osl_Dual osl_atan(const osl_Dual &a)
{
    return osl_chain(a, std::atan(a.val), 1 / (1 + a.val * a.val));
}
osl_Dual osl_atan2(const osl_Dual &y, const osl_Dual &x)
{
    const float square = y.val * y.val + x.val * x.val;
    return osl_chain(y, osl_div(x.val, square), x, osl_div(-y.val, square),
                     std::atan2(y.val, x.val));
}
osl_Dual osl_sinh(const osl_Dual &a)
{
    return osl_chain(a, std::sinh(a.val), std::cosh(a.val));
}
osl_Dual osl_cosh(const osl_Dual &a)
{
    return osl_chain(a, std::cosh(a.val), std::sinh(a.val));
}
osl_Dual osl_tanh(const osl_Dual &a)
{
    const float value = std::tanh(a.val);
    return osl_chain(a, value, 1 - value * value);
}

osl_Dual osl_exp(const osl_Dual &a)
{
    const float value = osl_exp(a.val);
    return osl_chain(a, value, value);
}
osl_Dual osl_exp2(const osl_Dual &a)
{
    const float value = osl_exp2(a.val);
    return osl_chain(a, value, value * LN2);
}
osl_Dual osl_expm1(const osl_Dual &a)
{
    return osl_chain(a, osl_expm1(a.val), osl_exp(a.val));
}
osl_Dual osl_log(const osl_Dual &a)
{
    return chainLog(a, osl_log(a.val), 1);
}
osl_Dual osl_log2(const osl_Dual &a)
{
    return chainLog(a, osl_log2(a.val), 1 / LN2);
}
osl_Dual osl_log10(const osl_Dual &a)
{
    return chainLog(a, osl_log10(a.val), 1 / LN10);
}
osl_Dual osl_log(const osl_Dual &a, const osl_Dual &base)
{
    return osl_div(osl_log(a), osl_log(base));
}

osl_Dual osl_pow(const osl_Dual &a, const osl_Dual &b)
{
    const float slopeA = b.val * osl_pow(a.val, b.val - 1);
    const float value = osl_pow(a.val, b.val);
    const float slopeB = a.val > 0 ? value * osl_log(a.val) : 0;
    return osl_chain(a, slopeA, b, slopeB, value);
}

osl_Dual osl_erf(const osl_Dual &a)
{
    return osl_chain(a, std::erf(a.val), osl_exp(-a.val * a.val) * TWO_OVER_SQRT_PI);
}
osl_Dual osl_erfc(const osl_Dual &a)
{
    return osl_chain(a, std::erfc(a.val), -osl_exp(-a.val * a.val) * TWO_OVER_SQRT_PI);
}
