#include "osl/lib/osl_Noise.h"

#include <algorithm>
#include <iterator>

// One of each source that includes osl_NoiseKernels.h.
void osl_noiseForPlain(const osl_NoiseCall &call, int n);
void osl_noiseForAVX2(const osl_NoiseCall &call, int n);

namespace
{
struct KindName {
    const char *name;
    osl_NoiseKind kind;
};
constexpr KindName KIND_NAMES[] = {
    {"perlin", OSL_NOISE_PERLIN},   {"snoise", OSL_NOISE_PERLIN},
    {"uperlin", OSL_NOISE_UPERLIN}, {"noise", OSL_NOISE_UPERLIN},
    {"cell", OSL_NOISE_CELL},       {"hash", OSL_NOISE_HASH},
    {"simplex", OSL_NOISE_SIMPLEX}, {"usimplex", OSL_NOISE_USIMPLEX},
    {"gabor", OSL_NOISE_GABOR},     {"null", OSL_NOISE_ZERO},
    {"unull", OSL_NOISE_UZERO},
};

using Run = void (*)(const osl_NoiseCall &call, int n);

void fill(float *const (&to)[3], int components, int n, float value)
{
    for (int c = 0; c < components; ++c)
        std::fill_n(to[c], n, value);
}

osl_Dual coordinate(const osl_NoiseCall &call, int d, int i)
{
    if (d >= std::min(call.dimensions, 3))
        return {};
    return {call.coord[d][i], call.coordDx[d] != nullptr ? call.coordDx[d][i] : 0,
            call.coordDy[d] != nullptr ? call.coordDy[d][i] : 0};
}

float periodAlong(const osl_NoiseCall &call, int d, int i)
{
    return d < std::min(call.dimensions, 3) ? call.period[d][i] : 1;
}

// Gabor noise has three dimensions: a fourth is ignored, missing ones are 0.
void runGabor(const osl_NoiseCall &call, int n)
{
    for (int i = 0; i < n; ++i) {
        const osl_DualVec p = {coordinate(call, 0, i), coordinate(call, 1, i),
                               coordinate(call, 2, i)};
        osl_Vec period;
        if (call.period[0] != nullptr)
            period = {periodAlong(call, 0, i), periodAlong(call, 1, i), periodAlong(call, 2, i)};
        osl_Dual results[3];
        for (int c = 0; c < call.components; ++c)
            results[c] = osl_gabor(call.gabor, p, c, call.period[0] != nullptr ? &period : nullptr);
        for (int c = 0; c < call.components; ++c) {
            call.out[c][i] = results[c].val;
            if (call.outDx[0] == nullptr)
                continue;
            call.outDx[c][i] = results[c].dx;
            call.outDy[c][i] = results[c].dy;
        }
    }
}

void runCall(const osl_NoiseCall &call, int n, Run lanes)
{
    if (call.kind == OSL_NOISE_GABOR)
        return runGabor(call, n);
    if (!osl_noiseHasDerivatives(call.kind) && call.outDx[0] != nullptr) {
        osl_NoiseCall values = call;
        values.outDx[0] = nullptr;
        runCall(values, n, lanes);
        fill(call.outDx, call.components, n, 0);
        fill(call.outDy, call.components, n, 0);
    } else if (call.kind == OSL_NOISE_ZERO || call.kind == OSL_NOISE_UZERO) {
        fill(call.out, call.components, n, call.kind == OSL_NOISE_ZERO ? 0.0f : 0.5f);
    } else {
        lanes(call, n);
    }
}
} // namespace

osl_NoiseKind osl_noiseKind(std::string_view name)
{
    const auto *found = std::find_if(std::begin(KIND_NAMES), std::end(KIND_NAMES),
                                     [&](const KindName &k) { return name == k.name; });
    return found != std::end(KIND_NAMES) ? found->kind : OSL_NOISE_UNKNOWN;
}

bool osl_noiseHasDerivatives(osl_NoiseKind kind)
{
    return kind == OSL_NOISE_PERLIN || kind == OSL_NOISE_UPERLIN || kind == OSL_NOISE_SIMPLEX ||
           kind == OSL_NOISE_USIMPLEX || kind == OSL_NOISE_GABOR;
}

bool osl_noiseNeedsDerivatives(osl_NoiseKind kind)
{
    return kind == OSL_NOISE_GABOR;
}

void osl_noise(const osl_NoiseCall &call, int n)
{
    static const Run lanes =
        __builtin_cpu_supports("avx2") != 0 ? osl_noiseForAVX2 : osl_noiseForPlain;
    runCall(call, n, lanes);
}

void osl_noisePlain(const osl_NoiseCall &call, int n)
{
    runCall(call, n, osl_noiseForPlain);
}

float osl_noise(osl_NoiseKind kind, const float *p, int dimensions)
{
    float result = 0;
    osl_NoiseCall call;
    call.kind = kind;
    call.dimensions = dimensions;
    for (int d = 0; d < dimensions; ++d)
        call.coord[d] = p + d;
    call.out[0] = &result;
    osl_noise(call, 1);
    return result;
}
