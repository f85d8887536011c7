// What kernels do with one lane: arithmetic and mathematics.
#pragma once

#include "osl/lib/osl_Dual.h"
#include "osl/lib/osl_Math.h"

namespace
{
// A function of one to three numbers under its name in lib/.
#define OSL_UNARY(Name, expression)                                                                \
    struct Name {                                                                                  \
        template <class T>                                                                         \
        static T apply(const T &x)                                                                 \
        {                                                                                          \
            return expression;                                                                     \
        }                                                                                          \
    };
#define OSL_BINARY(Name, expression)                                                               \
    struct Name {                                                                                  \
        template <class T>                                                                         \
        static T apply(const T &x, const T &y)                                                     \
        {                                                                                          \
            return expression;                                                                     \
        }                                                                                          \
    };
#define OSL_TERNARY(Name, expression)                                                              \
    struct Name {                                                                                  \
        template <class T>                                                                         \
        static T apply(const T &x, const T &y, const T &z)                                         \
        {                                                                                          \
            return expression;                                                                     \
        }                                                                                          \
    };

inline float valueOf(float x)
{
    return x;
}
inline float valueOf(const osl_Dual &x)
{
    return x.val;
}

OSL_UNARY(Copy, x)
OSL_BINARY(Add, x + y)
OSL_BINARY(Sub, x - y)
OSL_BINARY(Mul, x *y)
OSL_BINARY(Div, osl_div(x, y))
OSL_UNARY(Neg, -x)
OSL_TERNARY(MulAdd, x *y + z)
OSL_TERNARY(MulSub, x *y - z)
OSL_TERNARY(SubMul, z - x * y)
OSL_UNARY(Radians, x *T(OSL_PI / 180))
OSL_UNARY(Degrees, x *T(180 / OSL_PI))
OSL_UNARY(Sin, osl_sin(x))
OSL_UNARY(Cos, osl_cos(x))
OSL_UNARY(Asin, osl_asin(x))
OSL_UNARY(Acos, osl_acos(x))
OSL_UNARY(Exp, osl_exp(x))
OSL_UNARY(Exp2, osl_exp2(x))
OSL_UNARY(Expm1, osl_expm1(x))
OSL_UNARY(Log, osl_log(x))
OSL_UNARY(Log2, osl_log2(x))
OSL_UNARY(Log10, osl_log10(x))
OSL_BINARY(LogBase, osl_log(x, y))
OSL_BINARY(Pow, osl_pow(x, y))
OSL_UNARY(Sqrt, osl_sqrt(x))
OSL_UNARY(InverseSqrt, osl_inverseSqrt(x))
OSL_BINARY(Fmod, osl_fmod(x, y))
OSL_BINARY(Mod, osl_mod(x, y))
OSL_BINARY(Min, valueOf(y) < valueOf(x) ? y : x)
OSL_BINARY(Max, valueOf(y) > valueOf(x) ? y : x)
OSL_TERNARY(Clamp, Min::apply(Max::apply(x, y), z))
OSL_TERNARY(Mix, x *(T(1) - z) + y * z)
OSL_TERNARY(Select, valueOf(z) != 0 ? y : x)
OSL_TERNARY(LinearStep, osl_linearStep(x, y, z))
OSL_TERNARY(SmoothStep, osl_smoothStep(x, y, z))

// Functions whose form for floats is the C library's.
#define OSL_STD(Name, std_function, dual_function)                                                 \
    struct Name {                                                                                  \
        static float apply(float x) { return std_function(x); }                                    \
        static osl_Dual apply(const osl_Dual &x) { return dual_function(x); }                      \
    };
OSL_STD(Tan, std::tan, osl_tan)
OSL_STD(Atan, std::atan, osl_atan)
OSL_STD(Sinh, std::sinh, osl_sinh)
OSL_STD(Cosh, std::cosh, osl_cosh)
OSL_STD(Tanh, std::tanh, osl_tanh)
OSL_STD(Cbrt, std::cbrt, osl_cbrt)
OSL_STD(Abs, std::fabs, osl_abs)
OSL_STD(Erf, std::erf, osl_erf)
OSL_STD(Erfc, std::erfc, osl_erfc)

struct Atan2 {
    static float apply(float y, float x) { return std::atan2(y, x); }
    static osl_Dual apply(const osl_Dual &y, const osl_Dual &x) { return osl_atan2(y, x); }
};
struct Hypot {
    static float apply(float x, float y) { return osl_sqrt(x * x + y * y); }
    static osl_Dual apply(const osl_Dual &x, const osl_Dual &y) { return osl_hypot(x, y); }
};

// Without derivatives.
OSL_UNARY(Sign, osl_sign(x))
OSL_UNARY(Floor, std::floor(x))
OSL_UNARY(Ceil, std::ceil(x))
OSL_UNARY(Round, osl_round(x))
OSL_UNARY(Trunc, std::trunc(x))
OSL_UNARY(Logb, osl_logb(x))
OSL_BINARY(Step, osl_step(x, y))

// Whole numbers wrap around.
inline int wrapped(unsigned x)
{
    return static_cast<int>(x);
}
inline unsigned bits(int x)
{
    return static_cast<unsigned>(x);
}
OSL_BINARY(AddI, wrapped(bits(x) + bits(y)))
OSL_BINARY(SubI, wrapped(bits(x) - bits(y)))
OSL_BINARY(MulI, wrapped(bits(x) * bits(y)))
OSL_BINARY(DivI, osl_div(x, y))
OSL_BINARY(ModI, osl_remainder(x, y))
OSL_UNARY(NegI, wrapped(0u - bits(x)))
OSL_BINARY(Shl, osl_shiftLeft(x, y))
OSL_BINARY(Shr, osl_shiftRight(x, y))
OSL_BINARY(BitAnd, x &y)
OSL_BINARY(BitOr, x | y)
OSL_BINARY(Xor, x ^ y)
OSL_UNARY(Compl, ~x)
OSL_UNARY(AbsI, x < 0 ? wrapped(0u - bits(x)) : x)
OSL_BINARY(MinI, y < x ? y : x)
OSL_BINARY(MaxI, y > x ? y : x)
OSL_TERNARY(ClampI, MinI::apply(MaxI::apply(x, y), z))
OSL_TERNARY(SelectI, z != 0 ? y : x)
OSL_UNARY(Not, x == 0 ? 1 : 0)
OSL_UNARY(BoolI, x != 0 ? 1 : 0)

// x - y * floor(x / y)
struct FloorModI {
    static int apply(int x, int y)
    {
        const int rest = osl_remainder(x, y);
        return rest != 0 && (rest < 0) != (y < 0) ? rest + y : rest;
    }
};

#define OSL_COMPARISON(Name, op)                                                                   \
    struct Name {                                                                                  \
        template <class T>                                                                         \
        static int apply(const T &x, const T &y)                                                   \
        {                                                                                          \
            return x op y ? 1 : 0;                                                                 \
        }                                                                                          \
    };
OSL_COMPARISON(Eq, ==)
OSL_COMPARISON(Ne, !=)
OSL_COMPARISON(Lt, <)
OSL_COMPARISON(Le, <=)
OSL_COMPARISON(Gt, >)
OSL_COMPARISON(Ge, >=)

struct IsNan {
    static int apply(float x) { return std::isnan(x) ? 1 : 0; }
};
struct IsInf {
    static int apply(float x) { return std::isinf(x) ? 1 : 0; }
};
struct IsFinite {
    static int apply(float x) { return std::isfinite(x) ? 1 : 0; }
};
struct ToFloat {
    static float apply(int x) { return static_cast<float>(x); }
};
// The compiler's own conversion where the number fits, so that loops become vector code.
struct ToInt {
    static int apply(float x)
    {
        const bool fits = x >= -2147483648.0f && x < 2147483648.0f;
        return fits ? static_cast<int>(fits ? x : 0.0f) : osl_toInt(x);
    }
};
} // namespace
