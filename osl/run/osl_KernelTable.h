// Which kernel does which operation: one table for each number of lanes and width.
#pragma once

#include "osl/run/osl_KernelLoops.h"
#include "osl/run/osl_KernelMath.h"
#include "osl/run/osl_KernelVectors.h"

namespace
{
template <int N, int W>
class Table
{
public:
    Table()
    {
        moves();
        wholeNumbers();
        arithmetic();
        mathematics();
        patterns();
        vectors();
        matrices();
    }
    osl_KernelSet set;

private:
    template <class F>
    void unary(osl_Op op)
    {
        set.plain[op] = &Unary<F, float, float, N, W>::run;
        set.dual[op] = &Unary<F, osl_Dual, osl_Dual, N, W>::run;
    }
    template <class F>
    void binary(osl_Op op)
    {
        set.plain[op] = &Binary<F, float, float, N, W>::run;
        set.dual[op] = &Binary<F, osl_Dual, osl_Dual, N, W>::run;
    }
    template <class F>
    void ternary(osl_Op op)
    {
        set.plain[op] = &Ternary<F, float, float, N, W>::run;
        set.dual[op] = &Ternary<F, osl_Dual, osl_Dual, N, W>::run;
    }
    // The plain form in batches
    template <class F, osl_Unary osl_BatchMath::*B>
    void batchUnary(osl_Op op)
    {
        unary<F>(op);
        set.plain[op] = &BatchUnary<B, N, W>::run;
    }
    template <class F, osl_Binary osl_BatchMath::*B>
    void batchBinary(osl_Op op)
    {
        binary<F>(op);
        set.plain[op] = &BatchBinary<B, N, W>::run;
    }
    // Without derivatives
    template <class F>
    void stepping(osl_Op op)
    {
        set.plain[op] = &Unary<F, float, float, N, W>::run;
    }
    template <class F>
    void intUnary(osl_Op op)
    {
        set.plain[op] = &Unary<F, int, int, N, W>::run;
    }
    template <class F>
    void intBinary(osl_Op op)
    {
        set.plain[op] = &Binary<F, int, int, N, W>::run;
    }
    template <class F>
    void intTernary(osl_Op op)
    {
        set.plain[op] = &Ternary<F, int, int, N, W>::run;
    }
    template <class F>
    void order(osl_Op op)
    {
        set.plain[op] = &Binary<F, int, float, N, W>::run;
    }
    template <template <class, int, int> class K>
    void both(osl_Op op)
    {
        set.plain[op] = &K<float, N, W>::run;
        set.dual[op] = &K<osl_Dual, N, W>::run;
    }

    void moves()
    {
        unary<Copy>(OSL_COPY);
        intUnary<Copy>(OSL_COPYI);
        set.plain[OSL_TO_FLOAT] = &Unary<ToFloat, float, int, N, W>::run;
        set.plain[OSL_TO_INT] = &Unary<ToInt, int, float, N, W>::run;
        set.plain[OSL_DIAGONAL] = &Diagonal<N, W>::run;
        both<Gather>(OSL_GATHER);
        set.plain[OSL_GATHERI] = &Gather<int, N, W>::run;
        both<Choice>(OSL_SELECTB);
    }

    void wholeNumbers()
    {
        intBinary<AddI>(OSL_ADDI);
        intBinary<SubI>(OSL_SUBI);
        intBinary<MulI>(OSL_MULI);
        intBinary<DivI>(OSL_DIVI);
        intBinary<ModI>(OSL_MODI);
        intUnary<NegI>(OSL_NEGI);
        intBinary<Shl>(OSL_SHL);
        intBinary<Shr>(OSL_SHR);
        intBinary<BitAnd>(OSL_BITAND);
        intBinary<BitOr>(OSL_BITOR);
        intBinary<Xor>(OSL_XOR);
        intUnary<Compl>(OSL_COMPL);
        intUnary<AbsI>(OSL_ABSI);
        intBinary<MinI>(OSL_MINI);
        intBinary<MaxI>(OSL_MAXI);
        intTernary<ClampI>(OSL_CLAMPI);
        intBinary<FloorModI>(OSL_FLOORMODI);
        intBinary<Eq>(OSL_EQI);
        intBinary<Ne>(OSL_NEI);
        intBinary<Lt>(OSL_LTI);
        intBinary<Le>(OSL_LEI);
        intBinary<Gt>(OSL_GTI);
        intBinary<Ge>(OSL_GEI);
        intUnary<Not>(OSL_NOT);
        intUnary<BoolI>(OSL_BOOLI);
        intBinary<BitAnd>(OSL_ANDI);
        intBinary<BitOr>(OSL_ORI);
        intTernary<SelectI>(OSL_SELECTI);
    }

    void arithmetic()
    {
        binary<Add>(OSL_ADD);
        binary<Sub>(OSL_SUB);
        binary<Mul>(OSL_MUL);
        binary<Div>(OSL_DIV);
        unary<Neg>(OSL_NEG);
        ternary<MulAdd>(OSL_MULADD);
        ternary<MulSub>(OSL_MULSUB);
        ternary<SubMul>(OSL_SUBMUL);
        set.plain[OSL_EQ] = &Comparison<Eq, false, N, W>::run;
        set.plain[OSL_NE] = &Comparison<Ne, true, N, W>::run;
        order<Lt>(OSL_LT);
        order<Le>(OSL_LE);
        order<Gt>(OSL_GT);
        order<Ge>(OSL_GE);
        set.plain[OSL_BOOL] = &Truth<N, W>::run;
        set.plain[OSL_ISNAN] = &Unary<IsNan, int, float, N, W>::run;
        set.plain[OSL_ISINF] = &Unary<IsInf, int, float, N, W>::run;
        set.plain[OSL_ISFINITE] = &Unary<IsFinite, int, float, N, W>::run;
    }

    void mathematics()
    {
        unary<Radians>(OSL_RADIANS);
        unary<Degrees>(OSL_DEGREES);
        batchUnary<Sin, &osl_BatchMath::sin>(OSL_SIN);
        batchUnary<Cos, &osl_BatchMath::cos>(OSL_COS);
        unary<Tan>(OSL_TAN);
        unary<Asin>(OSL_ASIN);
        unary<Acos>(OSL_ACOS);
        unary<Atan>(OSL_ATAN);
        binary<Atan2>(OSL_ATAN2);
        unary<Sinh>(OSL_SINH);
        unary<Cosh>(OSL_COSH);
        unary<Tanh>(OSL_TANH);
        batchBinary<Pow, &osl_BatchMath::pow>(OSL_POW);
        batchUnary<Exp, &osl_BatchMath::exp>(OSL_EXP);
        batchUnary<Exp2, &osl_BatchMath::exp2>(OSL_EXP2);
        unary<Expm1>(OSL_EXPM1);
        batchUnary<Log, &osl_BatchMath::log>(OSL_LOG);
        binary<LogBase>(OSL_LOGBASE);
        batchUnary<Log2, &osl_BatchMath::log2>(OSL_LOG2);
        unary<Log10>(OSL_LOG10);
        stepping<Logb>(OSL_LOGB);
        unary<Sqrt>(OSL_SQRT);
        unary<InverseSqrt>(OSL_INVERSESQRT);
        unary<Cbrt>(OSL_CBRT);
        binary<Hypot>(OSL_HYPOT);
        unary<Abs>(OSL_ABS);
        unary<Erf>(OSL_ERF);
        unary<Erfc>(OSL_ERFC);
    }

    void patterns()
    {
        stepping<Sign>(OSL_SIGN);
        stepping<Floor>(OSL_FLOOR);
        stepping<Ceil>(OSL_CEIL);
        stepping<Round>(OSL_ROUND);
        stepping<Trunc>(OSL_TRUNC);
        binary<Fmod>(OSL_FMOD);
        binary<Mod>(OSL_MOD);
        binary<Min>(OSL_MIN);
        binary<Max>(OSL_MAX);
        ternary<Clamp>(OSL_CLAMP);
        ternary<Mix>(OSL_MIX);
        ternary<Select>(OSL_SELECT);
        set.plain[OSL_STEP] = &Binary<Step, float, float, N, W>::run;
        ternary<LinearStep>(OSL_LINEARSTEP);
        ternary<SmoothStep>(OSL_SMOOTHSTEP);
        set.plain[OSL_BLACKBODY] = &Spectral<true, N, W>::run;
        set.plain[OSL_WAVELENGTH] = &Spectral<false, N, W>::run;
    }

    void vectors()
    {
        set.plain[OSL_DOT] = &VectorsToNumber<Dot, float, N, W>::run;
        set.dual[OSL_DOT] = &VectorsToNumber<Dot, osl_Dual, N, W>::run;
        set.plain[OSL_DISTANCE] = &VectorsToNumber<Distance, float, N, W>::run;
        set.dual[OSL_DISTANCE] = &VectorsToNumber<Distance, osl_Dual, N, W>::run;
        set.plain[OSL_LENGTH] = &VectorToNumber<Length, float, N, W>::run;
        set.dual[OSL_LENGTH] = &VectorToNumber<Length, osl_Dual, N, W>::run;
        set.plain[OSL_LUMINANCE] = &VectorToNumber<Luminance, float, N, W>::run;
        set.dual[OSL_LUMINANCE] = &VectorToNumber<Luminance, osl_Dual, N, W>::run;
        set.plain[OSL_NORMALIZE] = &VectorToVector<Normalize, float, N, W>::run;
        set.dual[OSL_NORMALIZE] = &VectorToVector<Normalize, osl_Dual, N, W>::run;
        set.plain[OSL_CROSS] = &VectorsToVector<Cross, float, N, W>::run;
        set.dual[OSL_CROSS] = &VectorsToVector<Cross, osl_Dual, N, W>::run;
        set.plain[OSL_DX] = &Derivative<0, N, W>::run;
        set.plain[OSL_DY] = &Derivative<1, N, W>::run;
        set.plain[OSL_DZ] = &Derivative<2, N, W>::run;
        set.plain[OSL_FILTERWIDTH] = &FilterWidth<N, W>::run;
        set.plain[OSL_AREA] = &Area<N, W>::run;
        set.plain[OSL_CALCULATENORMAL] = &CalculateNormal<N, W>::run;
    }

    void matrices()
    {
        set.plain[OSL_MMUL] = &Matrices<MatrixProduct, N, W>::run;
        set.plain[OSL_MDIV] = &Matrices<MatrixQuotient, N, W>::run;
        set.plain[OSL_MSCALE] = &MatrixByNumber<false, N, W>::run;
        set.plain[OSL_MDIVF] = &MatrixByNumber<true, N, W>::run;
        set.plain[OSL_TRANSPOSE] = &Transpose<N, W>::run;
        set.plain[OSL_DETERMINANT] = &Determinant<N, W>::run;
        set.plain[OSL_TRANSFORM_POINT] = &Transform<AS_POINT, float, N, W>::run;
        set.dual[OSL_TRANSFORM_POINT] = &Transform<AS_POINT, osl_Dual, N, W>::run;
        set.plain[OSL_TRANSFORM_VECTOR] = &Transform<AS_VECTOR, float, N, W>::run;
        set.dual[OSL_TRANSFORM_VECTOR] = &Transform<AS_VECTOR, osl_Dual, N, W>::run;
        set.plain[OSL_TRANSFORM_NORMAL] = &Transform<AS_NORMAL, float, N, W>::run;
        set.dual[OSL_TRANSFORM_NORMAL] = &Transform<AS_NORMAL, osl_Dual, N, W>::run;
    }
};

template <int N, int W>
const osl_KernelSet &kernelsOf()
{
    static const Table<N, W> table;
    return table.set;
}
} // namespace
