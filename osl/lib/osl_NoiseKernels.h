// Eight points of noise at once: the arithmetic of osl_noise(), for the sources
// that compile it for one kind of processor each.
#pragma once

#include "osl/lib/osl_HashMix.h"
#include "osl/lib/osl_Lanes.h"
#include "osl/lib/osl_Noise.h"

#include <utility>

namespace
{

// Where the points are: D coordinates, and periods (at least 1, whole) if there are any.
template <size_t D>
struct Place {
    Floats coord[D];
    Floats period[D];
    bool isPeriodic;
};

// N components of a noise and their slopes along the coordinates; without these, SLOPES is 0.
template <size_t N, size_t SLOPES>
struct Sample {
    Floats value[N];
    Floats slope[N][SLOPES > 0 ? SLOPES : 1];
};

// ---- cell and hash noise ----

OSL_INLINE Floats wrapped(const Floats &x, const Floats &period)
{
    return x - period * toFloats(floorLanes(x / period));
}

// One component hashes D words, three hash their number as one word more.
template <size_t D, size_t N, bool IS_CELL>
OSL_INLINE void sampleWhite(const Place<D> &at, Sample<N, 0> &out)
{
    Words words[D + 1];
    for (size_t d = 0; d < D; ++d) {
        const Floats x = at.isPeriodic ? wrapped(at.coord[d], at.period[d]) : at.coord[d];
        words[d] = IS_CELL ? toWords(floorLanes(x)) : sameBits<Words>(x);
    }
    for (size_t c = 0; c < N; ++c) {
        words[D] = Words{} + static_cast<uint32_t>(c);
        out.value[c] = fractionOf(osl_mix_::hash(words, N > 1 ? D + 1 : D));
    }
}

// ---- Perlin's noise ----

// Changes signs where `bit` of the hash is set.
OSL_INLINE Floats signedBy(const Words &hash, int bit, const Floats &x)
{
    const Words sign = ((hash >> bit) & 1u) << 31;
    return sameBits<Floats>(sameBits<Words>(x) ^ sign);
}

// The gradient that a hash stands for: zeros and, in one dimension, -8 to 8, else -2 to 2.
OSL_INLINE void gradient(const Words &hash, Floats (&g)[1])
{
    g[0] = signedBy(hash, 3, toFloats(sameBits<Ints>(hash & 7u)) + 1.0f);
}
OSL_INLINE void gradient(const Words &hash, Floats (&g)[2])
{
    const Ints isLow = (sameBits<Ints>(hash) & 7) < 4;
    const Floats one = signedBy(hash, 0, allFloats(1));
    const Floats two = signedBy(hash, 1, allFloats(2));
    g[0] = isLow ? one : two;
    g[1] = isLow ? two : one;
}
OSL_INLINE void gradient(const Words &hash, Floats (&g)[3])
{
    const Ints h = sameBits<Ints>(hash) & 15;
    const Floats zero = {};
    const Floats first = signedBy(hash, 0, allFloats(1));
    const Floats second = signedBy(hash, 1, allFloats(1));
    const Ints secondIsX = (h & 13) == 12;
    g[0] = h < 8 ? first : (secondIsX ? second : zero);
    g[1] = h < 8 ? (h < 4 ? second : zero) : first;
    g[2] = h < 4 ? zero : (secondIsX ? zero : second);
}
OSL_INLINE void gradient(const Words &hash, Floats (&g)[4])
{
    const Ints h = sameBits<Ints>(hash) & 31;
    const Floats zero = {};
    const Floats first = signedBy(hash, 0, allFloats(1));
    const Floats second = signedBy(hash, 1, allFloats(1));
    const Floats third = signedBy(hash, 2, allFloats(1));
    g[0] = h < 24 ? first : zero;
    g[1] = h < 24 ? (h < 16 ? second : zero) : first;
    g[2] = h < 16 ? (h < 8 ? third : zero) : second;
    g[3] = h < 8 ? zero : third;
}

// The cell around the points and where they are in it.
template <size_t D>
struct Lattice {
    Words corner[D][2]; // the lower and the upper side
    Floats inside[D];   // 0 to 1
    Floats fade[D];     // the weight of the upper side
    Floats fadeSlope[D];
};

template <size_t D>
OSL_INLINE void enterCell(const Place<D> &at, Lattice<D> &cell)
{
    for (size_t d = 0; d < D; ++d) {
        Ints low = floorLanes(at.coord[d]);
        const Floats t = at.coord[d] - toFloats(low);
        cell.inside[d] = t;
        cell.fade[d] = t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
        cell.fadeSlope[d] = t * t * (t * (t * 30.0f - 60.0f) + 30.0f);
        Ints high = low + 1;
        if (at.isPeriodic) {
            const Ints period = __builtin_convertvector(at.period[d], Ints);
            low %= period;
            low += (low < 0) & period;
            high = low + 1 == period ? Ints{} : low + 1;
        }
        cell.corner[d][0] = toWords(low);
        cell.corner[d][1] = toWords(high);
    }
}

// The linear functions of one corner; bit d of CORNER is the side along d.
template <size_t CORNER, size_t D, size_t N, size_t SLOPES>
OSL_INLINE void sampleCorner(const Lattice<D> &cell, Sample<N, SLOPES> &out)
{
    Words words[D];
    for (size_t d = 0; d < D; ++d)
        words[d] = cell.corner[d][CORNER >> d & 1];
    const Words hash = osl_mix_::hash(words, D);
    for (size_t c = 0; c < N; ++c) {
        Floats g[D];
        gradient(hash >> static_cast<uint32_t>(8 * c), g);
        out.value[c] = g[0] * (cell.inside[0] - static_cast<float>(CORNER & 1));
        for (size_t d = 1; d < D; ++d)
            out.value[c] += g[d] * (cell.inside[d] - static_cast<float>(CORNER >> d & 1));
        for (size_t d = 0; d < SLOPES; ++d)
            out.slope[c][d] = g[d];
    }
}

OSL_INLINE Floats blend(const Floats &a, const Floats &b, const Floats &t)
{
    return (1 - t) * a + t * b;
}

// The blend over AXES axes of the corners that agree with CORNER in all others.
template <size_t AXES, size_t CORNER, size_t D, size_t N, size_t SLOPES>
OSL_INLINE void blendCorners(const Lattice<D> &cell, Sample<N, SLOPES> &out)
{
    if constexpr (AXES == 0) {
        sampleCorner<CORNER>(cell, out);
    } else {
        constexpr size_t AXIS = AXES - 1;
        Sample<N, SLOPES> high;
        blendCorners<AXIS, CORNER>(cell, out);
        blendCorners<AXIS, (CORNER | 1 << AXIS)>(cell, high);
        for (size_t c = 0; c < N; ++c) {
            for (size_t d = 0; d < SLOPES; ++d)
                out.slope[c][d] = blend(out.slope[c][d], high.slope[c][d], cell.fade[AXIS]);
            if (SLOPES > 0)
                out.slope[c][AXIS] += cell.fadeSlope[AXIS] * (high.value[c] - out.value[c]);
            out.value[c] = blend(out.value[c], high.value[c], cell.fade[AXIS]);
        }
    }
}

template <size_t D, size_t N, size_t SLOPES>
OSL_INLINE void samplePerlin(const Place<D> &at, Sample<N, SLOPES> &out)
{
    // Bring each dimension's range to about [-1, 1].
    constexpr float SCALES[] = {0.25f, 0.6616f, 0.982f, 0.8344f};
    Lattice<D> cell;
    enterCell(at, cell);
    blendCorners<D, 0>(cell, out);
    for (size_t c = 0; c < N; ++c) {
        out.value[c] *= SCALES[D - 1];
        for (size_t d = 0; d < SLOPES; ++d)
            out.slope[c][d] *= SCALES[D - 1];
    }
}

// ---- simplex noise, after Gustavson, "Simplex noise demystified", 2005 ----

// Tables of gradients: component d of gradient i is (bits[d] >> 2 * i & 3) - 1.
constexpr uint32_t GRADIENTS_2D[2] = {0x9488, 0x2294};
constexpr uint32_t GRADIENTS_3D[3] = {0x520a4646, 0x25281919, 0x0a5500aa};

OSL_INLINE Floats tableGradient(uint32_t bits, const Words &index)
{
    const Words code = ((Words{} + bits) >> (index + index)) & 3u;
    return toFloats(sameBits<Ints>(code) - 1);
}

OSL_INLINE void simplexGradient(const Words &hash, Floats (&g)[1])
{
    gradient(hash, g);
}
OSL_INLINE void simplexGradient(const Words &hash, Floats (&g)[2])
{
    for (size_t d = 0; d < 2; ++d)
        g[d] = tableGradient(GRADIENTS_2D[d], hash & 7u);
}
OSL_INLINE void simplexGradient(const Words &hash, Floats (&g)[3])
{
    for (size_t d = 0; d < 3; ++d)
        g[d] = tableGradient(GRADIENTS_3D[d], hash & 15u);
}
// One of the four components is 0, the others take signs from three bits in turn.
OSL_INLINE void simplexGradient(const Words &hash, Floats (&g)[4])
{
    const Ints zeroAt = sameBits<Ints>(hash >> 3) & 3;
    const Floats zero = {};
    const Floats first = signedBy(hash, 2, allFloats(1));
    const Floats second = signedBy(hash, 1, allFloats(1));
    const Floats third = signedBy(hash, 0, allFloats(1));
    g[0] = zeroAt == 0 ? zero : first;
    g[1] = zeroAt == 1 ? zero : (zeroAt == 0 ? first : second);
    g[2] = zeroAt == 2 ? zero : (zeroAt < 2 ? second : third);
    g[3] = zeroAt == 3 ? zero : third;
}

OSL_INLINE Words scrambled(const Words &a, const Words &b, const Words &c)
{
    return osl_mix_::last(a, b, c ^ osl_mix_::START);
}
template <size_t D>
OSL_INLINE Words simplexHash(const Words (&at)[D], uint32_t seed)
{
    const Words last = Words{} + seed;
    if constexpr (D == 1)
        return scrambled(at[0], last, Words{});
    else if constexpr (D == 2)
        return scrambled(at[0], at[1], last);
    else if constexpr (D == 3)
        return scrambled(at[0], at[1], scrambled(at[2], last, Words{}));
    else
        return scrambled(at[0], at[1], scrambled(at[2], at[3], last));
}

// The constants of each dimension: skewing the lattice and back, the squared
// radius of a corner's influence, and what brings the range to about [-1, 1].
struct SimplexShape {
    float skew, unskew, radius, scale;
};
constexpr SimplexShape SIMPLEX_SHAPES[] = {{0, 0, 1, 0.36f},
                                           {0.366025403784f, 0.211324865405f, 0.5f, 64},
                                           {0.333333333f, 0.166666667f, 0.5f, 68},
                                           {0.309016994f, 0.138196601f, 0.5f, 54}};

// The simplex around the points: its first corner, the way from there, and for each
// axis how many others go ahead of it less.
template <size_t D>
struct Simplex {
    Ints corner[D];
    Floats inside[D];
    Ints rank[D];
};

template <size_t D>
OSL_INLINE void enterSimplex(const Place<D> &at, Simplex<D> &s)
{
    constexpr SimplexShape SHAPE = SIMPLEX_SHAPES[D - 1];
    Floats sum = at.coord[0];
    for (size_t d = 1; d < D; ++d)
        sum += at.coord[d];
    Floats cornerSum = {};
    for (size_t d = 0; d < D; ++d) {
        s.corner[d] = floorLanes(at.coord[d] + sum * SHAPE.skew);
        cornerSum += toFloats(s.corner[d]);
        s.rank[d] = Ints{};
    }
    for (size_t d = 0; d < D; ++d)
        s.inside[d] = at.coord[d] - (toFloats(s.corner[d]) - cornerSum * SHAPE.unskew);
    for (size_t d = 0; d < D; ++d) {
        for (size_t e = d + 1; e < D; ++e) {
            const Ints isAhead = s.inside[d] > s.inside[e]; // -1
            s.rank[d] -= isAhead;
            s.rank[e] += isAhead + 1;
        }
    }
}

// Adds what corner CORNER of D + 1 gives; it lies CORNER steps along the axes of highest rank.
template <size_t CORNER, size_t D, size_t N, size_t SLOPES>
OSL_INLINE void addSimplexCorner(const Simplex<D> &s, Sample<N, SLOPES> &out)
{
    constexpr SimplexShape SHAPE = SIMPLEX_SHAPES[D - 1];
    Words at[D];
    Floats x[D];
    Floats t = allFloats(SHAPE.radius);
    for (size_t d = 0; d < D; ++d) {
        const Ints isStep = s.rank[d] >= static_cast<int>(D - CORNER); // -1
        at[d] = toWords(s.corner[d] - isStep);
        x[d] = s.inside[d] + toFloats(isStep) + static_cast<float>(CORNER) * SHAPE.unskew;
        t -= x[d] * x[d];
    }
    t = maxLanes(t, Floats{});
    const Floats t2 = t * t;
    for (size_t c = 0; c < N; ++c) {
        Floats g[D];
        simplexGradient(simplexHash(at, static_cast<uint32_t>(c)), g);
        Floats dot = g[0] * x[0];
        for (size_t d = 1; d < D; ++d)
            dot += g[d] * x[d];
        out.value[c] += t2 * t2 * dot;
        for (size_t d = 0; d < SLOPES; ++d)
            out.slope[c][d] += t2 * (t2 * g[d] - 8 * t * dot * x[d]);
    }
}

template <size_t... CORNERS, size_t D, size_t N, size_t SLOPES>
OSL_INLINE void addSimplexCorners(const Simplex<D> &s, Sample<N, SLOPES> &out,
                                  std::index_sequence<CORNERS...>)
{
    (addSimplexCorner<CORNERS>(s, out), ...);
}

template <size_t D, size_t N, size_t SLOPES>
OSL_INLINE void sampleSimplex(const Place<D> &at, Sample<N, SLOPES> &out)
{
    constexpr float SCALE = SIMPLEX_SHAPES[D - 1].scale;
    Simplex<D> s;
    enterSimplex(at, s);
    out = {};
    addSimplexCorners(s, out, std::make_index_sequence<D + 1>());
    for (size_t c = 0; c < N; ++c) {
        out.value[c] *= SCALE;
        for (size_t d = 0; d < SLOPES; ++d)
            out.slope[c][d] *= SCALE;
    }
}

// ---- calls ----

enum Family { PERLIN, SIMPLEX, CELL, HASH };

template <Family FAMILY, size_t D, size_t N, size_t SLOPES>
OSL_INLINE void sampleNoise(const Place<D> &at, Sample<N, SLOPES> &out)
{
    if constexpr (FAMILY == PERLIN)
        samplePerlin(at, out);
    else if constexpr (FAMILY == SIMPLEX)
        sampleSimplex(at, out);
    else
        sampleWhite<D, N, FAMILY == CELL>(at, out);
}

template <size_t D>
OSL_INLINE void loadPlace(const osl_NoiseCall &call, int first, int count, Place<D> &at)
{
    at.isPeriodic = call.period[0] != nullptr;
    for (size_t d = 0; d < D; ++d) {
        at.coord[d] = loadLanes(call.coord[d] + first, count);
        if (at.isPeriodic) {
            const Floats p = loadLanes(call.period[d] + first, count);
            at.period[d] = maxLanes(toFloats(floorLanes(p)), allFloats(1));
        }
    }
}

// How the result changes along one axis of the picture, by the chain rule.
template <size_t N, size_t SLOPES>
OSL_INLINE void followAxis(const Sample<N, SLOPES> &s, const float *const (&coord)[4], int first,
                           int count, Floats (&out)[N])
{
    for (size_t c = 0; c < N; ++c)
        out[c] = Floats{};
    for (size_t d = 0; d < SLOPES; ++d) {
        if (coord[d] == nullptr)
            continue;
        const Floats change = loadLanes(coord[d] + first, count);
        for (size_t c = 0; c < N; ++c)
            out[c] += s.slope[c][d] * change;
    }
}

template <size_t N>
OSL_INLINE void storeAll(const Floats (&from)[N], float *const (&to)[3], int first, int count)
{
    for (size_t c = 0; c < N; ++c)
        storeLanes(to[c] + first, from[c], count);
}

// Everything is loaded before anything is stored: results may replace coordinates.
template <Family FAMILY, size_t D, size_t N, size_t SLOPES>
void runCall(const osl_NoiseCall &call, int n)
{
    const bool isUnsigned = call.kind == OSL_NOISE_UPERLIN || call.kind == OSL_NOISE_USIMPLEX;
    const float scale = isUnsigned ? 0.5f : 1.0f;
    const float offset = isUnsigned ? 0.5f : 0.0f;
    for (int first = 0; first < n; first += LANES) {
        const int count = n - first;
        Place<D> at;
        Sample<N, SLOPES> s;
        loadPlace(call, first, count, at);
        sampleNoise<FAMILY>(at, s);
        for (size_t c = 0; c < N; ++c) {
            s.value[c] = s.value[c] * scale + offset;
            for (size_t d = 0; d < SLOPES; ++d)
                s.slope[c][d] *= scale;
        }
        if constexpr (SLOPES > 0) {
            Floats dx[N], dy[N];
            followAxis(s, call.coordDx, first, count, dx);
            followAxis(s, call.coordDy, first, count, dy);
            storeAll(dx, call.outDx, first, count);
            storeAll(dy, call.outDy, first, count);
        }
        storeAll(s.value, call.out, first, count);
    }
}

template <Family FAMILY, size_t D>
void runSized(const osl_NoiseCall &call, int n)
{
    constexpr size_t SLOPES = FAMILY == PERLIN || FAMILY == SIMPLEX ? D : 0;
    const bool isTriple = call.components > 1;
    if (call.outDx[0] != nullptr)
        isTriple ? runCall<FAMILY, D, 3, SLOPES>(call, n) : runCall<FAMILY, D, 1, SLOPES>(call, n);
    else
        isTriple ? runCall<FAMILY, D, 3, 0>(call, n) : runCall<FAMILY, D, 1, 0>(call, n);
}

template <Family FAMILY>
void runFamily(const osl_NoiseCall &call, int n)
{
    switch (call.dimensions) {
    case 1:
        return runSized<FAMILY, 1>(call, n);
    case 2:
        return runSized<FAMILY, 2>(call, n);
    case 3:
        return runSized<FAMILY, 3>(call, n);
    default:
        return runSized<FAMILY, 4>(call, n);
    }
}

// One of the kinds that are made of lanes.
void runNoise(const osl_NoiseCall &call, int n)
{
    switch (call.kind) {
    case OSL_NOISE_CELL:
        return runFamily<CELL>(call, n);
    case OSL_NOISE_HASH:
        return runFamily<HASH>(call, n);
    case OSL_NOISE_SIMPLEX:
    case OSL_NOISE_USIMPLEX:
        return runFamily<SIMPLEX>(call, n);
    default:
        return runFamily<PERLIN>(call, n);
    }
}

} // namespace
