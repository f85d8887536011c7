// Kernels of vectors and matrices.
#pragma once

#include "osl/lib/osl_Colour.h"
#include "osl/lib/osl_Matrix.h"
#include "osl/run/osl_KernelLoops.h"

namespace
{
template <class T, int W>
struct VectorLanes {
    Lanes<T, W> x, y, z;
    VectorLanes(int *memory, const osl_Operand &operand)
        : x(memory, operand, 0), y(memory, operand, 1), z(memory, operand, 2)
    {
    }
    osl_Vec3<T> get(int lane) const { return {x.get(lane), y.get(lane), z.get(lane)}; }
    void set(int lane, const osl_Vec3<T> &v) const
    {
        x.set(lane, v.x);
        y.set(lane, v.y);
        z.set(lane, v.z);
    }
};

template <int N, class T, int W, class F>
inline void eachLane(const VectorLanes<T, W> &out, F value)
{
    Made<T, N> x, y, z;
    for (int l = 0; l < N; ++l) {
        const osl_Vec3<T> v = value(l);
        x.set(l, v.x);
        y.set(l, v.y);
        z.set(l, v.z);
    }
    x.store(out.x);
    y.store(out.y);
    z.store(out.z);
}

struct Dot {
    template <class T>
    static T apply(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
    {
        return osl_dot(a, b);
    }
};
struct Distance {
    template <class T>
    static T apply(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
    {
        return osl_distance(a, b);
    }
};
struct Length {
    template <class T>
    static T apply(const osl_Vec3<T> &a)
    {
        return osl_length(a);
    }
};
struct Luminance {
    template <class T>
    static T apply(const osl_Vec3<T> &a)
    {
        return a.x * T(0.2126f) + a.y * T(0.7152f) + a.z * T(0.0722f);
    }
};
struct Normalize {
    template <class T>
    static osl_Vec3<T> apply(const osl_Vec3<T> &a)
    {
        return osl_normalize(a);
    }
};
struct Cross {
    template <class T>
    static osl_Vec3<T> apply(const osl_Vec3<T> &a, const osl_Vec3<T> &b)
    {
        return osl_cross(a, b);
    }
};

template <class F, class T, int N, int W>
struct VectorToNumber {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const Lanes<T, W> out(memory, o[0], 0);
        const VectorLanes<T, W> a(memory, o[1]);
        eachLane<N>(out, [&](int l) { return F::apply(a.get(l)); });
    }
};
template <class F, class T, int N, int W>
struct VectorsToNumber {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const Lanes<T, W> out(memory, o[0], 0);
        const VectorLanes<T, W> a(memory, o[1]);
        const VectorLanes<T, W> b(memory, o[2]);
        eachLane<N>(out, [&](int l) { return F::apply(a.get(l), b.get(l)); });
    }
};
template <class F, class T, int N, int W>
struct VectorToVector {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const VectorLanes<T, W> out(memory, o[0]);
        const VectorLanes<T, W> a(memory, o[1]);
        eachLane<N>(out, [&](int l) { return F::apply(a.get(l)); });
    }
};
template <class F, class T, int N, int W>
struct VectorsToVector {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const VectorLanes<T, W> out(memory, o[0]);
        const VectorLanes<T, W> a(memory, o[1]);
        const VectorLanes<T, W> b(memory, o[2]);
        eachLane<N>(out, [&](int l) { return F::apply(a.get(l), b.get(l)); });
    }
};

// ---- Derivatives ----------------------------------------------------------

// The operand's derivatives as a value: WHICH 0 is d/dx, 1 d/dy, 2 d/dz (none).
template <int WHICH, int N, int W>
struct Derivative {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        for (int w = 0; w < in.words; ++w) {
            const Lanes<float, W> out(memory, o[0], w);
            const Lanes<osl_Dual, W> a(memory, o[1], w);
            eachLane<N>(out, [&](int l) {
                return WHICH == 0 ? a.dx[l] : WHICH == 1 ? a.dy[l] : 0.0f;
            });
        }
    }
};

template <int N, int W>
struct FilterWidth {
    static void run(int *memory, const osl_Instruction &in, const osl_Operand *o)
    {
        for (int w = 0; w < in.words; ++w) {
            const Lanes<float, W> out(memory, o[0], w);
            const Lanes<osl_Dual, W> a(memory, o[1], w);
            eachLane<N>(out,
                        [&](int l) { return std::sqrt(a.dx[l] * a.dx[l] + a.dy[l] * a.dy[l]); });
        }
    }
};

inline osl_Vec normalOf(const osl_DualVec &p)
{
    const osl_Vec dx = {p.x.dx, p.y.dx, p.z.dx};
    const osl_Vec dy = {p.x.dy, p.y.dy, p.z.dy};
    return osl_cross(dx, dy);
}

template <int N, int W>
struct Area {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const Lanes<float, W> out(memory, o[0], 0);
        const VectorLanes<osl_Dual, W> a(memory, o[1]);
        for (int l = 0; l < N; ++l)
            out.set(l, osl_length(normalOf(a.get(l))));
    }
};

template <int N, int W>
struct CalculateNormal {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const VectorLanes<float, W> out(memory, o[0]);
        const VectorLanes<osl_Dual, W> a(memory, o[1]);
        for (int l = 0; l < N; ++l)
            out.set(l, normalOf(a.get(l)));
    }
};

// ---- Matrices -------------------------------------------------------------

template <int W>
osl_Matrix matrixAt(int *memory, const osl_Operand &operand, int lane)
{
    osl_Matrix matrix;
    const float *from = floatsAt<W>(memory, operand.at) + lane;
    for (int i = 0; i < 16; ++i)
        matrix.m[i / 4][i % 4] = from[i * W];
    return matrix;
}

template <int W>
void setMatrix(int *memory, const osl_Operand &operand, int lane, const osl_Matrix &matrix)
{
    float *to = floatsAt<W>(memory, operand.at) + lane;
    for (int i = 0; i < 16; ++i)
        to[i * W] = matrix.m[i / 4][i % 4];
}

struct MatrixProduct {
    static osl_Matrix apply(const osl_Matrix &a, const osl_Matrix &b) { return a * b; }
};
struct MatrixQuotient {
    static osl_Matrix apply(const osl_Matrix &a, const osl_Matrix &b) { return osl_div(a, b); }
};

template <class F, int N, int W>
struct Matrices {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        for (int l = 0; l < N; ++l)
            setMatrix<W>(memory, o[0], l,
                         F::apply(matrixAt<W>(memory, o[1], l), matrixAt<W>(memory, o[2], l)));
    }
};

template <bool IS_QUOTIENT, int N, int W>
struct MatrixByNumber {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const float *number = floatsAt<W>(memory, o[2].at);
        for (int l = 0; l < N; ++l) {
            const osl_Matrix a = matrixAt<W>(memory, o[1], l);
            setMatrix<W>(memory, o[0], l, IS_QUOTIENT ? osl_div(a, number[l]) : a * number[l]);
        }
    }
};

template <int N, int W>
struct Diagonal {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const float *number = floatsAt<W>(memory, o[1].at);
        for (int l = 0; l < N; ++l)
            setMatrix<W>(memory, o[0], l, osl_Matrix::diagonal(number[l]));
    }
};

template <int N, int W>
struct Transpose {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        for (int l = 0; l < N; ++l)
            setMatrix<W>(memory, o[0], l, osl_transpose(matrixAt<W>(memory, o[1], l)));
    }
};

template <int N, int W>
struct Determinant {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        for (int l = 0; l < N; ++l)
            floatsAt<W>(memory, o[0].at)[l] = osl_determinant(matrixAt<W>(memory, o[1], l));
    }
};

enum Transformed { AS_POINT, AS_VECTOR, AS_NORMAL };

template <Transformed KIND, class T, int N, int W>
struct Transform {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const VectorLanes<T, W> out(memory, o[0]);
        const VectorLanes<T, W> a(memory, o[2]);
        for (int l = 0; l < N; ++l) {
            const osl_Matrix matrix = matrixAt<W>(memory, o[1], l);
            if (KIND == AS_POINT)
                out.set(l, osl_transformPoint(matrix, a.get(l)));
            else if (KIND == AS_VECTOR)
                out.set(l, osl_transformVector(matrix, a.get(l)));
            else
                out.set(l, osl_transformNormal(matrix, a.get(l)));
        }
    }
};

template <bool IS_BLACKBODY, int N, int W>
struct Spectral {
    static void run(int *memory, const osl_Instruction &, const osl_Operand *o)
    {
        const VectorLanes<float, W> out(memory, o[0]);
        const float *number = floatsAt<W>(memory, o[1].at);
        const osl_Primaries &primaries = osl_Primaries::rec709();
        for (int l = 0; l < N; ++l)
            out.set(l, IS_BLACKBODY ? primaries.blackbody(number[l])
                                    : primaries.wavelength(number[l]));
    }
};
} // namespace
