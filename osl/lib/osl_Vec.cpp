#include "osl/lib/osl_Vec.h"

#include <algorithm>

float osl_distance(const osl_Vec &a, const osl_Vec &b, const osl_Vec &q)
{
    const osl_Vec along = b - a;
    const float t = osl_div(osl_dot(q - a, along), osl_dot(along, along));
    return osl_length(q - (a + along * std::clamp(t, 0.0f, 1.0f)));
}

osl_Vec osl_faceForward(const osl_Vec &n, const osl_Vec &i, const osl_Vec &reference)
{
    return osl_dot(i, reference) > 0 ? -n : n;
}

osl_Vec osl_reflect(const osl_Vec &i, const osl_Vec &n)
{
    return i - n * (2 * osl_dot(n, i));
}

osl_Vec osl_refract(const osl_Vec &i, const osl_Vec &n, float eta)
{
    const float cosine = osl_dot(i, n);
    const float k = 1 - eta * eta * (1 - cosine * cosine);
    return k < 0 ? osl_Vec() : i * eta - n * (eta * cosine + std::sqrt(k));
}

osl_Fresnel osl_fresnel(const osl_Vec &i, const osl_Vec &n, float eta)
{
    const float c = std::fabs(osl_dot(i, n));
    const float ratio = osl_div(1.0f, eta); // the far side's index over the near side's
    const float square = ratio * ratio - 1 + c * c;
    osl_Fresnel f = {1, 0, osl_reflect(i, n), osl_refract(i, n, eta)};
    if (square <= 0)
        return f;
    const float g = std::sqrt(square);
    const float across = osl_div(g - c, g + c);
    const float along = osl_div(c * (g + c) - 1, c * (g - c) + 1);
    f.reflected = std::min(1.0f, 0.5f * across * across * (1 + along * along));
    f.transmitted = (1 - f.reflected) * eta * eta;
    return f;
}

// Rodrigues' formula.
osl_Vec osl_rotate(const osl_Vec &q, float angle, const osl_Vec &from, const osl_Vec &to)
{
    const osl_Vec axis = osl_normalize(to - from);
    const osl_Vec arm = q - from;
    const float c = std::cos(angle);
    const float along = osl_dot(axis, arm);
    if (axis == osl_Vec())
        return q;
    return from + arm * c + osl_cross(axis, arm) * std::sin(angle) + axis * (along * (1 - c));
}
