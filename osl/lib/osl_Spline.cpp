#include "osl/lib/osl_Spline.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace
{
constexpr float H = 0.5f;        // halves
constexpr float S = 1.0f / 6.0f; // sixths

constexpr osl_SplineBasis BASES[] = {
    {"catmull-rom", 1, {{-H, 3 * H, -3 * H, H}, {1, -5 * H, 2, -H}, {-H, 0, H, 0}, {0, 1, 0, 0}}},
    {"bezier", 3, {{-1, 3, -3, 1}, {3, -6, 3, 0}, {-3, 3, 0, 0}, {1, 0, 0, 0}}},
    {"bspline",
     1,
     {{-S, 3 * S, -3 * S, S}, {3 * S, -1, 3 * S, 0}, {-H, 0, H, 0}, {S, 4 * S, S, 0}}},
    {"hermite", 2, {{2, 1, -2, 1}, {-3, -2, 3, -1}, {0, 1, 0, 0}, {1, 0, 0, 0}}},
    {"linear", 1, {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, -1, 1, 0}, {0, 1, 0, 0}}},
    {"constant", 1, {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 1, 0, 0}}},
};

int segments(const osl_SplineBasis &basis, const osl_Knots &knots)
{
    return std::max(1, (knots.count - 4) / basis.step + 1);
}

// A segment, and the place in it, 0 to 1.
struct Place {
    int first; // knot
    float t;
};
Place findPlace(const osl_SplineBasis &basis, float x, const osl_Knots &knots)
{
    const int count = segments(basis, knots);
    const float along = osl_clamp(x, 0, 1) * static_cast<float>(count);
    const int segment = std::clamp(osl_toInt(along), 0, count - 1);
    return {segment * basis.step, along - static_cast<float>(segment)};
}

// The cubic of a segment, cubic term first.
void makeCubic(const osl_SplineBasis &basis, const float *data, int stride, float (&cubic)[4])
{
    for (int power = 0; power < 4; ++power) {
        cubic[power] = 0;
        for (int knot = 0; knot < 4; ++knot)
            cubic[power] += basis.weights[power][knot] * data[knot * stride];
    }
}

float valueOf(const float (&cubic)[4], float t)
{
    return ((cubic[0] * t + cubic[1]) * t + cubic[2]) * t + cubic[3];
}

float slopeOf(const float (&cubic)[4], float t)
{
    return (3 * cubic[0] * t + 2 * cubic[1]) * t + cubic[2];
}

float blend(const osl_SplineBasis &basis, const Place &at, const float *data, int stride)
{
    float cubic[4];
    makeCubic(basis, data + at.first * stride, stride, cubic);
    return valueOf(cubic, at.t);
}

// How fast the spline rises at x, per unit of x.
float slopeAt(const osl_SplineBasis &basis, float x, const osl_Knots &knots)
{
    const Place at = findPlace(basis, x, knots);
    float cubic[4];
    makeCubic(basis, knots.data + at.first * knots.stride, knots.stride, cubic);
    return slopeOf(cubic, at.t) * static_cast<float>(segments(basis, knots));
}

float plain(float x)
{
    return x;
}
float plain(const osl_Dual &x)
{
    return x.val;
}

// A piece of the spline on which y is looked for. T is float or osl_Dual: the
// derivatives of the answer come out of the search itself, as they do elsewhere.
template <class T>
struct Bracket {
    T low, high;     // x
    T atLow, atHigh; // values there
};

template <class T>
T between(const Bracket<T> &b, const T &y, bool isBisection)
{
    T t = isBisection ? T(0.5f) : osl_div(y - b.atLow, b.atHigh - b.atLow);
    if (!(plain(t) > 0 && plain(t) < 1))
        t = T(0.5f);
    return osl_mix(b.low, b.high, t);
}

// Regula falsi, then bisection. REQUIRES: y is between the values at the ends
template <class T>
T searchPiece(const osl_SplineBasis &basis, const T &y, const osl_Knots &knots, Bracket<T> b)
{
    constexpr int STEPS = 32, FALSI_STEPS = 24;
    constexpr float EPSILON = 1e-6f;
    const bool rises = plain(b.atLow) < plain(b.atHigh);
    T x = b.low;
    if (std::fabs(plain(b.atLow - b.atHigh)) < EPSILON)
        return x;
    for (int step = 0; step < STEPS; ++step) {
        x = between(b, y, step >= FALSI_STEPS);
        const T v = osl_spline(basis, x, knots);
        if ((plain(v) < plain(y)) == rises) {
            b.low = x;
            b.atLow = v;
        } else {
            b.high = x;
            b.atHigh = v;
        }
        if (std::fabs(plain(b.high - b.low)) < EPSILON || std::fabs(plain(v - y)) < EPSILON)
            break;
    }
    return x;
}

// Whether y lies outside of what the knots span; then x is the end next to it.
bool isOutside(const osl_SplineBasis &basis, float y, const osl_Knots &knots, float &x)
{
    const auto knot = [&](int i) { return knots.data[i * knots.stride]; };
    const int margin = basis.step == 1 ? 1 : 0; // knots that only shape the ends
    const float sign = knot(1) < knot(knots.count - 2) ? 1.0f : -1.0f;
    const float first = knot(margin), last = knot(knots.count - 1 - margin);
    if (sign * y <= sign * first) {
        x = 0;
        return true;
    }
    x = 1;
    return sign * y >= sign * last;
}

// The segments one by one, as even rising knots may make a curve that falls in places.
template <class T>
T searchAll(const osl_SplineBasis &basis, const T &y, const osl_Knots &knots)
{
    const int count = segments(basis, knots);
    const float width = 1.0f / static_cast<float>(count), at = plain(y);
    T x = 0;
    Bracket<T> b = {0, 0, 0, osl_spline(basis, T(0), knots)};
    for (int s = 0; s < count; ++s) {
        b = {b.high, width * static_cast<float>(s + 1), b.atHigh, 0};
        b.atHigh = osl_spline(basis, b.high, knots);
        const float low = plain(b.atLow), high = plain(b.atHigh);
        if (at >= std::min(low, high) && at <= std::max(low, high))
            return searchPiece(basis, y, knots, b);
        x = (at < low) == (low < high) ? b.low : b.high;
    }
    return x;
}
} // namespace

const osl_SplineBasis *osl_SplineBasis::find(std::string_view name)
{
    const auto *found = std::find_if(std::begin(BASES), std::end(BASES),
                                     [&](const osl_SplineBasis &b) { return name == b.name; });
    return found != std::end(BASES) ? found : nullptr;
}

const osl_SplineBasis &osl_splineBasis(std::string_view name)
{
    const osl_SplineBasis *basis = osl_SplineBasis::find(name);
    return basis != nullptr ? *basis : *osl_SplineBasis::find("linear");
}

float osl_spline(const osl_SplineBasis &basis, float x, const osl_Knots &knots)
{
    return blend(basis, findPlace(basis, x, knots), knots.data, knots.stride);
}

osl_Dual osl_spline(const osl_SplineBasis &basis, const osl_Dual &x, const osl_Knots &knots)
{
    const Place at = findPlace(basis, x.val, knots);
    const bool isInside = x.val >= 0 && x.val <= 1;
    const float slope = isInside ? slopeAt(basis, x.val, knots) : 0;
    osl_Dual y = osl_chain(x, blend(basis, at, knots.data, knots.stride), slope);
    if (knots.dx == nullptr || std::string_view(basis.name) == "constant")
        return y;
    y.dx += blend(basis, at, knots.dx, knots.stride);
    y.dy += blend(basis, at, knots.dy, knots.stride);
    return y;
}

float osl_splineInverse(const osl_SplineBasis &basis, float y, const osl_Knots &knots)
{
    float x;
    return isOutside(basis, y, knots, x) ? x : searchAll<float>(basis, y, knots);
}

osl_Dual osl_splineInverse(const osl_SplineBasis &basis, const osl_Dual &y, const osl_Knots &knots)
{
    float x;
    if (isOutside(basis, y.val, knots, x))
        return x;
    osl_Knots still = knots;
    still.dx = still.dy = nullptr;
    return searchAll(basis, y, still);
}
