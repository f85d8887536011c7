// The mathematics of bench/osl.py's shaders, written in C++ as one would: a point after
// another. Prints for the kernel that is named how many points it does a second.
#include "osl/lib/osl_Noise.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace
{
struct Colour {
    float r, g, b;
};

Colour operator*(const Colour &a, const Colour &b)
{
    return {a.r * b.r, a.g * b.g, a.b * b.b};
}

Colour operator+(const Colour &a, float x)
{
    return {a.r + x, a.g + x, a.b + x};
}

float smoothstep(float low, float high, float x)
{
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

float mix(float a, float b, float x)
{
    return a * (1 - x) + b * x;
}

Colour mix(const Colour &a, const Colour &b, float x)
{
    return {mix(a.r, b.r, x), mix(a.g, b.g, x), mix(a.b, b.b, x)};
}

Colour clamp(const Colour &a)
{
    return {std::clamp(a.r, 0.0f, 1.0f), std::clamp(a.g, 0.0f, 1.0f), std::clamp(a.b, 0.0f, 1.0f)};
}

float colours(float u, float v)
{
    Colour c = {u, v, 0.5f};
    for (int i = 0; i < 32; ++i) {
        const float x = u * static_cast<float>(i);
        const float t = smoothstep(0, 1, x - std::floor(x));
        c = mix(c, {t, v, 1 - t}, 0.25f);
        c = clamp(c * c + 0.05f);
    }
    return c.r + c.g + c.b;
}

float waves(float u, float v)
{
    float sum = 0;
    for (int i = 1; i < 32; ++i) {
        const auto f = static_cast<float>(i);
        const float wave = std::sin(u * f) + std::cos(v * f);
        sum += std::exp(-wave * wave) * std::sqrt(u * u + v * v) + std::pow(u, 1 / f);
    }
    return sum;
}

float branches(float u, float v)
{
    float x = u;
    float y = v;
    int n = 0;
    while (n < 64 && x * x + y * y < 4) {
        const float next = x * x - y * y + u;
        y = 2 * x * y + v;
        x = next;
        if (x > y)
            x *= 0.9f;
        ++n;
    }
    return static_cast<float>(n);
}

float clouds(float u, float v)
{
    float sum = 0;
    float gain = 0.5f;
    float p[3] = {u * 4, v * 4, 1};
    for (int i = 0; i < 8; ++i) {
        sum += gain * osl_noise(OSL_NOISE_PERLIN, p, 3);
        gain *= 0.5f;
        for (float &x : p)
            x *= 2;
    }
    return sum;
}

const struct {
    const char *name;
    float (*value)(float u, float v);
} KERNELS[] = {{"colours", colours}, {"waves", waves}, {"branches", branches}, {"clouds", clouds}};
} // namespace

int main(int argc, char *argv[])
{
    constexpr int SIDE = 512;
    for (const auto &kernel : KERNELS) {
        if (argc < 2 || std::strcmp(kernel.name, argv[1]) != 0)
            continue;
        const std::clock_t start = std::clock();
        float sum = 0;
        for (int y = 0; y < SIDE; ++y) {
            for (int x = 0; x < SIDE; ++x)
                sum += kernel.value(static_cast<float>(x) / (SIDE - 1),
                                    static_cast<float>(y) / (SIDE - 1));
        }
        const double spent = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        std::printf("%.4g points a second, sum %g\n", SIDE * SIDE / spent,
                    static_cast<double>(sum));
        return 0;
    }
    std::fprintf(stderr, "usage: osl_twin colours|waves|branches|clouds\n");
    return 1;
}
