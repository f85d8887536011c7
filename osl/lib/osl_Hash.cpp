#include "osl/lib/osl_Hash.h"

#include "osl/lib/osl_HashMix.h"

#include <cstring>
#include <utility>

namespace
{
template <class... Words>
uint32_t hashWords(Words... words)
{
    const uint32_t list[] = {words...};
    return osl_mix_::hash(list, sizeof...(words));
}

// FarmHash's Fingerprint64: for texts of each length another mixture, all made of
// products, rotations and these primes.
constexpr uint64_t K0 = 0xc3a5c85c97cb3127u;
constexpr uint64_t K1 = 0xb492b66fbe98f273u;
constexpr uint64_t K2 = 0x9ae16a3b2f90404fu;

template <class Word>
uint64_t fetch(const char *at)
{
    Word w;
    std::memcpy(&w, at, sizeof w);
    return w;
}
uint64_t fetch64(const char *at)
{
    return fetch<uint64_t>(at);
}
uint64_t rotated(uint64_t x, int bits)
{
    return (x >> bits) | (x << (64 - bits));
}
uint64_t shifted(uint64_t x)
{
    return x ^ (x >> 47);
}
uint64_t combine(uint64_t u, uint64_t v, uint64_t mul)
{
    const uint64_t a = shifted((u ^ v) * mul);
    return shifted((v ^ a) * mul) * mul;
}

uint64_t fingerprintUpTo16(const char *s, size_t length)
{
    const uint64_t mul = K2 + length * 2;
    if (length >= 8) {
        const uint64_t a = fetch64(s) + K2, b = fetch64(s + length - 8);
        return combine(rotated(b, 37) * mul + a, (rotated(a, 25) + b) * mul, mul);
    }
    if (length >= 4)
        return combine(length + (fetch<uint32_t>(s) << 3), fetch<uint32_t>(s + length - 4), mul);
    const uint64_t y = fetch<uint8_t>(s) + (fetch<uint8_t>(s + (length >> 1)) << 8);
    const uint64_t z = length + (fetch<uint8_t>(s + length - 1) << 2);
    return shifted(y * K2 ^ z * K0) * K2;
}

uint64_t fingerprintUpTo64(const char *s, size_t length)
{
    const char *end = s + length;
    const uint64_t mul = K2 + length * 2;
    const uint64_t a = fetch64(s) * (length <= 32 ? K1 : K2), b = fetch64(s + 8);
    const uint64_t c = fetch64(end - 8) * mul, d = fetch64(end - 16) * K2;
    const uint64_t y = rotated(a + b, 43) + rotated(c, 30) + d;
    const uint64_t z = combine(y, a + rotated(b + K2, 18) + c, mul);
    if (length <= 32)
        return z;
    const uint64_t e = fetch64(s + 16) * mul, f = fetch64(s + 24);
    const uint64_t g = (y + fetch64(end - 32)) * mul, h = (z + fetch64(end - 24)) * mul;
    return combine(rotated(e + f, 43) + rotated(g, 30) + h, e + rotated(f + a, 18) + g, mul);
}

// The state that blocks of 64 bytes are worked into.
struct Blocks {
    struct Pair {
        uint64_t first, second;
    };
    uint64_t x, y, z;
    Pair v = {0, 0}, w = {0, 0};

    static Pair weak(const char *s, uint64_t a, uint64_t b)
    {
        a += fetch64(s);
        b = rotated(b + a + fetch64(s + 24), 21);
        const uint64_t c = a;
        a += fetch64(s + 8) + fetch64(s + 16);
        b += rotated(a, 44);
        return {a + fetch64(s + 24), b + c};
    }

    void add(const char *s, uint64_t mul, uint64_t few)
    {
        x = rotated(x + y + v.first + fetch64(s + 8), 37) * mul;
        y = rotated(y + v.second + fetch64(s + 48), 42) * mul;
        x ^= w.second * few;
        y += v.first * few + fetch64(s + 40);
        z = rotated(z + w.first, 33) * mul;
        v = weak(s, v.second * mul, x + w.first);
        w = weak(s + 32, z + w.second, y + fetch64(s + 16));
        std::swap(z, x);
    }
};

uint64_t fingerprintLong(const char *s, size_t length)
{
    constexpr uint64_t SEED = 81;
    const uint64_t y = SEED * K1 + 113;
    Blocks state = {SEED * K2 + fetch64(s), y, shifted(y * K2 + 113) * K2};
    const char *last = s + length - 64; // it may overlap the block before it
    for (; s < last; s += 64)
        state.add(s, K1, 1);
    const uint64_t mul = K1 + ((state.z & 0xff) << 1);
    state.w.first += (length - 1) & 63;
    state.v.first += state.w.first;
    state.w.first += state.v.first;
    state.add(last, mul, 9);
    return combine(combine(state.v.first, state.w.first, mul) + shifted(state.y) * K0 + state.z,
                   combine(state.v.second, state.w.second, mul) + state.x, mul);
}

uint64_t fingerprint(std::string_view text)
{
    if (text.empty())
        return 0;
    if (text.size() <= 16)
        return fingerprintUpTo16(text.data(), text.size());
    if (text.size() <= 64)
        return fingerprintUpTo64(text.data(), text.size());
    return fingerprintLong(text.data(), text.size());
}
} // namespace

uint32_t osl_hash(uint32_t a)
{
    return hashWords(a);
}
uint32_t osl_hash(uint32_t a, uint32_t b)
{
    return hashWords(a, b);
}
uint32_t osl_hash(uint32_t a, uint32_t b, uint32_t c)
{
    return hashWords(a, b, c);
}
uint32_t osl_hash(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return hashWords(a, b, c, d);
}
uint32_t osl_hash(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e)
{
    return hashWords(a, b, c, d, e);
}

int osl_hashOf(const float *x, int count)
{
    uint32_t words[5] = {};
    std::memcpy(words, x, sizeof(float) * static_cast<size_t>(count));
    return static_cast<int>(osl_mix_::hash(words, static_cast<size_t>(count)));
}

int osl_hashOf(std::string_view text)
{
    return static_cast<int>(static_cast<uint32_t>(fingerprint(text)));
}
