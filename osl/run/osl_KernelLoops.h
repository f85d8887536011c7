// Loops over lanes. Included by the kernels' sources only: everything here is in the
// anonymous namespace, so that code for AVX2 stays in the one source that may have it.
#pragma once

#include "osl/lib/osl_BatchMath.h"
#include "osl/lib/osl_Dual.h"
#include "osl/run/osl_Kernel.h"

// Words of different operands do not overlap, or are the same. (Clang finds that out by
// itself, and warns of each loop that it leaves as it is.)
#if defined(__clang__)
#define OSL_LANES
#else
#define OSL_LANES _Pragma("GCC ivdep")
#endif

namespace
{
template <int W>
float *floatsAt(int *memory, int word)
{
    return reinterpret_cast<float *>(memory) + static_cast<std::ptrdiff_t>(word) * W;
}

template <int W>
int *intsAt(int *memory, int word)
{
    return memory + static_cast<std::ptrdiff_t>(word) * W;
}

// One word of an operand, as floats or as numbers with derivatives.
template <class T, int W>
struct Lanes;

template <int W>
struct Lanes<float, W> {
    float *val;
    Lanes(int *memory, const osl_Operand &operand, int word)
        : val(floatsAt<W>(memory, operand.at + word * operand.step))
    {
    }
    float get(int lane) const { return val[lane]; }
    void set(int lane, float x) const { val[lane] = x; }
};

template <int W>
struct Lanes<osl_Dual, W> {
    float *val;
    float *dx;
    float *dy;
    Lanes(int *memory, const osl_Operand &operand, int word)
        : val(floatsAt<W>(memory, operand.at + word * operand.step)),
          dx(floatsAt<W>(memory, operand.dx + word * operand.step)),
          dy(floatsAt<W>(memory, operand.dy + word * operand.step))
    {
    }
    osl_Dual get(int lane) const { return {val[lane], dx[lane], dy[lane]}; }
    void set(int lane, const osl_Dual &x) const
    {
        val[lane] = x.val;
        dx[lane] = x.dx;
        dy[lane] = x.dy;
    }
};

template <int W>
struct Lanes<int, W> {
    int *val;
    Lanes(int *memory, const osl_Operand &operand, int word)
        : val(intsAt<W>(memory, operand.at + word * operand.step))
    {
    }
    int get(int lane) const { return val[lane]; }
    void set(int lane, int x) const { val[lane] = x; }
};

// What a loop over lanes makes. A result may lie where an operand lies; from here it goes
// there in one step, so that compilers need not wonder whether they overlap.
template <class T, int N>
struct Made {
    T val[static_cast<size_t>(N)];
    void set(int lane, T x) { val[lane] = x; }
    template <int W>
    void store(const Lanes<T, W> &out) const
    {
        copy(out.val);
    }
    void copy(T *to) const
    {
        OSL_LANES
        for (int l = 0; l < N; ++l)
            to[l] = val[l];
    }
};

template <int N>
struct Made<osl_Dual, N> {
    Made<float, N> val;
    Made<float, N> dx;
    Made<float, N> dy;
    void set(int lane, const osl_Dual &x)
    {
        val.set(lane, x.val);
        dx.set(lane, x.dx);
        dy.set(lane, x.dy);
    }
    template <int W>
    void store(const Lanes<osl_Dual, W> &out) const
    {
        val.copy(out.val);
        dx.copy(out.dx);
        dy.copy(out.dy);
    }
};

template <int N, class T, int W, class F>
inline void eachLane(const Lanes<T, W> &out, F value)
{
    Made<T, N> made;
    for (int l = 0; l < N; ++l)
        made.set(l, value(l));
    made.store(out);
}

// out = F(a), F(a, b), F(a, b, c) by components.
template <class F, class R, class A, int N, int W>
struct Unary {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        for (int w = 0; w < in.words; ++w) {
            const Lanes<R, W> out(memory, o[0], w);
            const Lanes<A, W> a(memory, o[1], w);
            eachLane<N>(out, [&](int l) { return F::apply(a.get(l)); });
        }
    }
};

template <class F, class R, class A, int N, int W>
struct Binary {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        for (int w = 0; w < in.words; ++w) {
            const Lanes<R, W> out(memory, o[0], w);
            const Lanes<A, W> a(memory, o[1], w);
            const Lanes<A, W> b(memory, o[2], w);
            eachLane<N>(out, [&](int l) { return F::apply(a.get(l), b.get(l)); });
        }
    }
};

template <class F, class R, class A, int N, int W>
struct Ternary {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        for (int w = 0; w < in.words; ++w) {
            const Lanes<R, W> out(memory, o[0], w);
            const Lanes<A, W> a(memory, o[1], w);
            const Lanes<A, W> b(memory, o[2], w);
            const Lanes<A, W> c(memory, o[3], w);
            eachLane<N>(out, [&](int l) { return F::apply(a.get(l), b.get(l), c.get(l)); });
        }
    }
};

// Functions that the library has for many numbers at once.
template <osl_Unary osl_BatchMath::*F, int N, int W>
struct BatchUnary {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        const osl_BatchMath &math = osl_BatchMath::best();
        if (N == W && o[1].words == in.words) {
            (math.*F)(floatsAt<W>(memory, o[0].at), floatsAt<W>(memory, o[1].at), in.words * W);
            return;
        }
        for (int w = 0; w < in.words; ++w)
            (math.*F)(floatsAt<W>(memory, o[0].at + w),
                      floatsAt<W>(memory, o[1].at + w * o[1].step), N);
    }
};

template <osl_Binary osl_BatchMath::*F, int N, int W>
struct BatchBinary {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        const osl_BatchMath &math = osl_BatchMath::best();
        for (int w = 0; w < in.words; ++w)
            (math.*F)(floatsAt<W>(memory, o[0].at + w),
                      floatsAt<W>(memory, o[1].at + w * o[1].step),
                      floatsAt<W>(memory, o[2].at + w * o[2].step), N);
    }
};

// A single int from all components: F of each, all of them (or any).
template <class F, bool IS_ANY, int N, int W>
struct Comparison {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const Lanes<int, W> out(memory, o[0], 0);
        const int words = o[1].words > o[2].words ? o[1].words : o[2].words;
        int result[static_cast<size_t>(N)];
        for (int l = 0; l < N; ++l)
            result[l] = IS_ANY ? 0 : 1;
        for (int w = 0; w < words; ++w) {
            const Lanes<float, W> a(memory, o[1], w);
            const Lanes<float, W> b(memory, o[2], w);
            for (int l = 0; l < N; ++l) {
                const int here = F::apply(a.get(l), b.get(l)) ? 1 : 0;
                result[l] = IS_ANY ? result[l] | here : result[l] & here;
            }
        }
        for (int l = 0; l < N; ++l)
            out.set(l, result[l]);
    }
};

// The truth of a value: whether any component is not 0.
template <int N, int W>
struct Truth {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const Lanes<int, W> out(memory, o[0], 0);
        int result[static_cast<size_t>(N)] = {};
        for (int w = 0; w < o[1].words; ++w) {
            const Lanes<float, W> a(memory, o[1], w);
            for (int l = 0; l < N; ++l)
                result[l] |= a.get(l) != 0 ? 1 : 0;
        }
        for (int l = 0; l < N; ++l)
            out.set(l, result[l]);
    }
};

// Components from single numbers.
template <class T, int N, int W>
struct Gather {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        for (int w = 0; w < in.words; ++w) {
            const Lanes<T, W> out(memory, o[0], w);
            const Lanes<T, W> a(memory, o[1 + w], 0);
            eachLane<N>(out, [&](int l) { return a.get(l); });
        }
    }
};

// (no, yes, condition), where a single int chooses all components.
template <class T, int N, int W>
struct Choice {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        const Lanes<int, W> condition(memory, o[3], 0);
        for (int w = 0; w < in.words; ++w) {
            const Lanes<T, W> out(memory, o[0], w);
            const Lanes<T, W> no(memory, o[1], w);
            const Lanes<T, W> yes(memory, o[2], w);
            eachLane<N>(out, [&](int l) {
                const T a = no.get(l);
                const T b = yes.get(l);
                return condition.get(l) != 0 ? b : a;
            });
        }
    }
};
} // namespace
