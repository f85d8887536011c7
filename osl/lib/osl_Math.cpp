#include "osl/lib/osl_Math.h"

#include <algorithm>
#include <cfloat>
#include <climits>

namespace
{
// What logarithms are taken of.
float loggable(float x)
{
    return x > FLT_MIN ? std::min(x, FLT_MAX) : FLT_MIN;
}

float powerable(float exponent)
{
    return osl_clamp(exponent, -126, 126);
}
} // namespace

int osl_toInt(float x)
{
    if (x >= 2147483648.0f)
        return INT_MAX;
    if (x <= -2147483648.0f)
        return INT_MIN;
    return std::isnan(x) ? 0 : static_cast<int>(x);
}

float osl_acos(float x)
{
    return std::acos(osl_clamp(x, -1, 1));
}

float osl_asin(float x)
{
    return std::asin(osl_clamp(x, -1, 1));
}

float osl_exp(float x)
{
    constexpr float LIMIT = 87.3365447f; // 126 ln 2
    return std::exp(osl_clamp(x, -LIMIT, LIMIT));
}

float osl_exp2(float x)
{
    return std::exp2(powerable(x));
}

float osl_expm1(float x)
{
    return std::fabs(x) < 1 ? std::expm1(x) : osl_exp(x) - 1;
}

float osl_log(float x)
{
    return std::log(loggable(x));
}

float osl_log2(float x)
{
    return std::log2(loggable(x));
}

float osl_log10(float x)
{
    return std::log10(loggable(x));
}

float osl_log(float x, float base)
{
    return osl_div(osl_log(x), osl_log(base));
}

float osl_logb(float x)
{
    return std::logb(loggable(std::fabs(x)));
}

float osl_pow(float x, float y)
{
    if (y == 0)
        return 1;
    if (x == 0 || (x < 0 && y != std::floor(y)))
        return 0;
    return osl_clamp(std::pow(x, y), -FLT_MAX, FLT_MAX);
}

// The corner is a parabola, so that the slope goes evenly from 0 to the line's.
float osl_smoothLinearStep(float low, float high, float x, float eps)
{
    if (low == high)
        return osl_step(low, x);
    const float t = (x - low) / (high - low);
    const float e = eps / (high - low);
    if (t >= e && t <= 1 - e)
        return t;
    if (t <= -e)
        return 0;
    if (t >= 1 + e)
        return 1;
    return t < e ? (t + e) * (t + e) / (4 * e) : 1 - (1 + e - t) * (1 + e - t) / (4 * e);
}
