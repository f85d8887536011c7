#include "osl/lib/osl_Gabor.h"

#include "osl/lib/osl_Hash.h"

#include <algorithm>

namespace
{
constexpr float TWO_PI = 2 * OSL_PI;
constexpr float FREQUENCY = 2;
// Kernels are left out where they are below this share of their height.
constexpr float TRUNCATE = 0.02f;

// The pseudo-random numbers of one cell: a linear congruential generator
// (Borosh and Niederreiter 1983) that starts from the cell's hash.
class Random
{
public:
    explicit Random(uint32_t seed) : myState(seed != 0 ? seed : 1) {}

    float next()
    {
        myState *= 3039177861u;
        return static_cast<float>(myState) * (1.0f / 4294967296.0f);
    }

    // Knuth's method; `mean` is small.
    int poisson(float mean)
    {
        const float limit = std::exp(-mean);
        int count = 0;
        for (float t = next(); t > limit && count < 1000; t *= next())
            ++count;
        return count;
    }

private:
    uint32_t myState;
};

struct Symmetric { // a 2 x 2 matrix
    float xx, xy, yy;
};
float determinant(const Symmetric &m)
{
    return m.xx * m.yy - m.xy * m.xy;
}
Symmetric inverse(const Symmetric &m)
{
    const float d = determinant(m);
    return {m.yy / d, -m.xy / d, m.xx / d};
}
Symmetric operator+(const Symmetric &a, const Symmetric &b)
{
    return {a.xx + b.xx, a.xy + b.xy, a.yy + b.yy};
}

// What does not change from cell to cell.
struct Kernels {
    const osl_GaborOptions &options;
    const osl_Vec *period;
    float a; // the width of a kernel's spectrum
    float radius;
    float mean; // impulses in a cell
    bool isFiltered;
    osl_Vec axes[3];  // tangent, bitangent and normal of the slice that the filter works in
    Symmetric filter; // covariance of the pixel's footprint, in that slice
};

float meanImpulses(const osl_GaborOptions &options)
{
    return std::clamp(options.impulses, 1.0f, 32.0f) / (1.33333f * OSL_PI);
}

Kernels makeKernels(const osl_GaborOptions &options, const osl_Vec *period)
{
    const float octaves = std::exp2(std::clamp(options.bandwidth, 0.01f, 100.0f));
    const float a =
        FREQUENCY * ((octaves - 1) / (octaves + 1)) * std::sqrt(OSL_PI / std::log(2.0f));
    const float radius = std::sqrt(-std::log(TRUNCATE) / OSL_PI) / a;
    return {options, period, a, radius, meanImpulses(options), false, {}, {}};
}

osl_Vec values(const osl_DualVec &p)
{
    return {p.x.val, p.y.val, p.z.val};
}

// The filter is the Gaussian of half a pixel's variance, brought into the plane of
// the pixel's footprint.
void setUpFilter(const osl_DualVec &p, Kernels &k)
{
    const osl_Vec dx = {p.x.dx, p.y.dx, p.z.dx};
    const osl_Vec dy = {p.x.dy, p.y.dy, p.z.dy};
    const osl_Vec n = osl_normalize(osl_cross(dx, dy));
    const osl_Vec across = n.x != n.y || n.x != n.z ? osl_Vec{n.z - n.y, n.x - n.z, n.y - n.x}
                                                    : osl_Vec{n.z - n.y, n.x + n.z, -n.y - n.x};
    const osl_Vec t = osl_normalize(across);
    const osl_Vec b = osl_cross(n, t);
    const float xt = osl_dot(dx, t), xb = osl_dot(dx, b);
    const float yt = osl_dot(dy, t), yb = osl_dot(dy, b);
    k.filter = {0.5f * (xt * xt + yt * yt), 0.5f * (xt * xb + yt * yb), 0.5f * (xb * xb + yb * yb)};
    k.axes[0] = t;
    k.axes[1] = b;
    k.axes[2] = n;
    k.isFiltered = determinant(k.filter) >= 1e-18f; // numerically all right
}

struct Impulse {
    osl_Vec frequency;
    float phase;
};

Impulse drawImpulse(const osl_GaborOptions &options, Random &random)
{
    osl_Vec frequency = options.direction;
    if (options.anisotropic == 0) {
        const float turn = TWO_PI * random.next();
        const float up = osl_mix(-1.0f, 1.0f, random.next());
        const float level = std::sqrt(std::max(0.0f, 1 - up * up));
        frequency = osl_normalize(osl_Vec{std::cos(turn) * level, std::sin(turn) * level, up});
    } else if (options.anisotropic != 1) {
        const float turn = TWO_PI * random.next();
        frequency = osl_Vec{std::cos(turn), std::sin(turn), 0} * osl_length(options.direction);
    }
    return {frequency, TWO_PI * random.next()};
}

template <class... Axis>
osl_Dual gaborKernel(float a, const osl_Dual &weight, const osl_Dual &angle, const Axis &...x)
{
    return weight * osl_exp(((x * x) + ...) * osl_Dual(-OSL_PI * a * a)) * osl_cos(angle);
}

osl_Dual plainKernel(const Kernels &k, const Impulse &i, const osl_DualVec &x)
{
    const osl_Dual along = x.x * i.frequency.x + x.y * i.frequency.y + x.z * i.frequency.z;
    return gaborKernel(k.a, 1, along * TWO_PI + i.phase, x.x, x.y, x.z);
}

osl_Dual along(const osl_Vec &axis, const osl_DualVec &x)
{
    return x.x * axis.x + x.y * axis.y + x.z * axis.z;
}

// The kernel is cut by the plane of the footprint, which leaves a kernel in two dimensions;
// its product with the filter in the frequency domain is again one.
osl_Dual filteredKernel(const Kernels &k, const Impulse &i, const osl_DualVec &x)
{
    const osl_Dual depth = along(k.axes[2], x);
    const float fx = osl_dot(k.axes[0], i.frequency);
    const float fy = osl_dot(k.axes[1], i.frequency);
    const osl_Dual weight = osl_exp(depth * depth * osl_Dual(-OSL_PI * k.a * k.a));
    const osl_Dual phase = depth * (TWO_PI * osl_dot(k.axes[2], i.frequency)) + i.phase;

    // Gaussians over frequencies: the kernel's covariance, the filter's, their sum's.
    const float variance = k.a * k.a / TWO_PI;
    const Symmetric kernel = {variance, 0, variance};
    const Symmetric spread = inverse(k.filter);
    constexpr float SHRINK = 1 / (TWO_PI * TWO_PI);
    const Symmetric filter = {SHRINK * spread.xx, SHRINK * spread.xy, SHRINK * spread.yy};
    const Symmetric sum = kernel + filter, sumInverse = inverse(sum);
    const float square =
        sumInverse.xx * fx * fx + 2 * sumInverse.xy * fx * fy + sumInverse.yy * fy * fy;
    const float height = std::exp(-0.5f * square) / (TWO_PI * std::sqrt(determinant(k.filter)) *
                                                     TWO_PI * std::sqrt(determinant(sum)));

    // The product's covariance and mean.
    const Symmetric product = inverse(inverse(kernel) + inverse(filter));
    const float px = (product.xx * fx + product.xy * fy) / variance;
    const float py = (product.xy * fx + product.yy * fy) / variance;
    const float a = std::sqrt(TWO_PI * std::sqrt(determinant(product)));
    const osl_Dual tx = along(k.axes[0], x), ty = along(k.axes[1], x);
    const osl_Dual result =
        gaborKernel(a, weight * height, (tx * px + ty * py) * TWO_PI + phase, tx, ty);
    return std::isfinite(result.val) ? result : osl_Dual();
}

uint32_t wordOf(float cell, const float *period)
{
    if (period != nullptr)
        cell = osl_mod(cell, std::max(1.0f, std::floor(*period)));
    return static_cast<uint32_t>(osl_toInt(cell));
}

// The sum of a cell's impulses; `x` is the point seen from the cell's corner, in cells.
osl_Dual sumCell(const Kernels &k, const osl_Vec &cell, const osl_DualVec &x, int seed)
{
    const osl_Vec *p = k.period;
    Random random(osl_hash(wordOf(cell.x, p != nullptr ? &p->x : nullptr),
                           wordOf(cell.y, p != nullptr ? &p->y : nullptr),
                           wordOf(cell.z, p != nullptr ? &p->z : nullptr),
                           static_cast<uint32_t>(seed)));
    osl_Dual sum;
    const int count = random.poisson(k.mean);
    for (int i = 0; i < count; ++i) {
        const float z = random.next(), y = random.next(), at = random.next();
        const osl_DualVec away = (x - osl_DualVec{at, y, z}) * k.radius;
        const Impulse impulse = drawImpulse(k.options, random);
        if (osl_dot(away, away).val >= k.radius * k.radius)
            continue;
        sum =
            sum + (k.isFiltered ? filteredKernel(k, impulse, away) : plainKernel(k, impulse, away));
    }
    return sum;
}

osl_Dual sumNeighbours(const Kernels &k, const osl_DualVec &x, int seed)
{
    const osl_Vec v = values(x);
    const osl_Vec home = {std::floor(v.x), std::floor(v.y), std::floor(v.z)};
    const osl_DualVec inside = x - osl_DualVec{home.x, home.y, home.z};
    osl_Dual sum;
    for (int i = 0; i < 27; ++i) {
        const osl_Vec step = {static_cast<float>(i % 3 - 1), static_cast<float>(i / 3 % 3 - 1),
                              static_cast<float>(i / 9 - 1)};
        sum = sum + sumCell(k, home + step, inside - osl_DualVec{step.x, step.y, step.z}, seed);
    }
    return sum;
}
} // namespace

osl_Dual osl_gabor(const osl_GaborOptions &options, const osl_DualVec &p, int seed,
                   const osl_Vec *period)
{
    Kernels k = makeKernels(options, period);
    if (options.isFiltered)
        setUpFilter(p, k);
    const float density = k.mean / (k.radius * k.radius * k.radius);
    const float variance = 1 / (4 * std::sqrt(2.0f) * (k.a * k.a * k.a));
    // Half of what brings three deviations to 1 is about the range of Perlin's noise.
    const float scale = 0.5f / (3 * std::sqrt(variance)) / std::sqrt(density);
    return sumNeighbours(k, p * (1 / k.radius), seed) * scale;
}
