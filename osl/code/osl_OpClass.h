// What the generator may do with an operation.
#pragma once

#include "osl/check/osl_Builtins.h"

// Works on each component by itself, reading it before writing it: the result may be an
// argument, and a single number may stand for a triple.
inline bool osl_isByComponent(osl_Op op)
{
    return op == OSL_COPY || op == OSL_COPYI || (op >= OSL_ADDI && op <= OSL_ORI) ||
           (op >= OSL_ADD && op <= OSL_SUBMUL) || (op >= OSL_RADIANS && op <= OSL_SMOOTHSTEP) ||
           (op >= OSL_ERF && op <= OSL_ERFC);
}

// Writes its first operand, all of it, and nothing else.
inline bool osl_hasOneResult(osl_Op op)
{
    const osl_OpRow::Kind kind = OSL_OP_ROWS[op].kind;
    return kind != osl_OpRow::ACTS || op == OSL_ELEMENT || op == OSL_ELEMENTI || op == OSL_NOISE ||
           op == OSL_CLOSURE || op == OSL_CLOSURE_ADD || op == OSL_CLOSURE_MUL ||
           op == OSL_SPACES || op == OSL_TRANSFORMC || op == OSL_TRANSFORMU;
}
