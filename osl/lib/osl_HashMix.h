// The mixing steps of Bob Jenkins' lookup3 (2006, public domain), for one word
// or for lanes of words.
#pragma once

#include <cstddef>
#include <cstdint>

namespace osl_mix_
{
constexpr uint32_t START = 0xdeadbeef;

template <class W>
[[gnu::always_inline]] inline W rotated(const W &x, int bits)
{
    return (x << bits) | (x >> (32 - bits));
}

template <class W>
[[gnu::always_inline]] inline void mix(W &a, W &b, W &c)
{
    a -= c, a ^= rotated(c, 4), c += b;
    b -= a, b ^= rotated(a, 6), a += c;
    c -= b, c ^= rotated(b, 8), b += a;
    a -= c, a ^= rotated(c, 16), c += b;
    b -= a, b ^= rotated(a, 19), a += c;
    c -= b, c ^= rotated(b, 4), b += a;
}

template <class W>
[[gnu::always_inline]] inline W last(W a, W b, W c)
{
    c ^= b, c -= rotated(b, 14);
    a ^= c, a -= rotated(c, 11);
    b ^= a, b -= rotated(a, 25);
    c ^= b, c -= rotated(b, 16);
    a ^= c, a -= rotated(c, 4);
    b ^= a, b -= rotated(a, 14);
    c ^= b, c -= rotated(b, 24);
    return c;
}

// The hash of `count` words, 1 to 5.
template <class W>
[[gnu::always_inline]] inline W hash(const W *words, size_t count)
{
    const W start = W{} + (START + (static_cast<uint32_t>(count) << 2) + 13);
    W a = start + words[0];
    W b = count > 1 ? start + words[1] : start;
    W c = count > 2 ? start + words[2] : start;
    if (count <= 3)
        return last(a, b, c);
    mix(a, b, c);
    a += words[3];
    if (count > 4)
        b += words[4];
    return last(a, b, c);
}
} // namespace osl_mix_
