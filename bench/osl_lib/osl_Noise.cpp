// Noise and mathematics for a tile's points, beside the C library and a copy.
#include "osl/lib/osl_Noise.h"

#include "bench/floors.h"
#include "osl/lib/osl_BatchMath.h"

#include <cmath>
#include <vector>

namespace
{
constexpr int POINTS = 1024;

std::vector<float> ramp(float step)
{
    std::vector<float> x(POINTS);
    for (int i = 0; i < POINTS; ++i)
        x[static_cast<size_t>(i)] = 0.1f + step * static_cast<float>(i);
    return x;
}
const std::vector<float> X = ramp(0.0137f), Y = ramp(0.0071f), Z = ramp(0.031f);

void countPoints(benchmark::State &state)
{
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * POINTS);
}

void noise(benchmark::State &state, osl_NoiseKind kind, int dimensions, int components,
           void (*run)(const osl_NoiseCall &, int))
{
    std::vector<float> out(3 * POINTS);
    osl_NoiseCall call;
    call.kind = kind;
    call.dimensions = dimensions;
    call.components = components;
    const std::vector<float> *const coords[] = {&X, &Y, &Z, &X};
    for (size_t d = 0; d < 4; ++d)
        call.coord[d] = coords[d]->data();
    for (size_t c = 0; c < 3; ++c)
        call.out[c] = &out[c * POINTS];
    for (auto _ : state)
        run(call, POINTS);
    countPoints(state);
}

void unary(benchmark::State &state, osl_Unary function)
{
    std::vector<float> out(POINTS);
    for (auto _ : state) {
        function(out.data(), X.data(), POINTS);
        benchmark::ClobberMemory();
    }
    countPoints(state);
}

void sineOfTheCLibrary(float *out, const float *x, int n)
{
    for (int i = 0; i < n; ++i)
        out[i] = std::sin(x[i]);
}

void copy(float *out, const float *x, int n)
{
    std::memcpy(out, x, sizeof(float) * static_cast<size_t>(n));
}

BENCHMARK_CAPTURE(noise, perlin_2D, OSL_NOISE_PERLIN, 2, 1, osl_noise);
BENCHMARK_CAPTURE(noise, perlin_3D, OSL_NOISE_PERLIN, 3, 1, osl_noise);
BENCHMARK_CAPTURE(noise, perlin_3D_without_AVX2, OSL_NOISE_PERLIN, 3, 1, osl_noisePlain);
BENCHMARK_CAPTURE(noise, perlin_3D_colour, OSL_NOISE_PERLIN, 3, 3, osl_noise);
BENCHMARK_CAPTURE(noise, perlin_4D, OSL_NOISE_PERLIN, 4, 1, osl_noise);
BENCHMARK_CAPTURE(noise, simplex_3D, OSL_NOISE_SIMPLEX, 3, 1, osl_noise);
BENCHMARK_CAPTURE(noise, cell_3D, OSL_NOISE_CELL, 3, 1, osl_noise);
BENCHMARK_CAPTURE(noise, gabor_3D, OSL_NOISE_GABOR, 3, 1, osl_noise);
BENCHMARK_CAPTURE(unary, sin, osl_BatchMath::best().sin);
BENCHMARK_CAPTURE(unary, exp, osl_BatchMath::best().exp);
BENCHMARK_CAPTURE(unary, log, osl_BatchMath::best().log);
BENCHMARK_CAPTURE(unary, floor_sin_of_the_C_library, sineOfTheCLibrary);
BENCHMARK_CAPTURE(unary, floor_copy, copy);
} // namespace
