// The functions of the language, as one table.
//
// A row has a name, its overloads and the operation that does it. An overload is
// written in letters, the result first:
//
//   x void   i int   f float   c color   p point   v vector   n normal
//   m matrix   s string   C closure color
//   T        float, color, point, vector and normal by turns (V: without float)
//   ?        any type;  $ any but a struct
//   [] behind a letter an array of any length, & in front an output
//   .        at the end: pairs of a name and a value may follow
//   *        at the end: anything may follow;  + more of the last one
//
// Functions that are written in the language itself stand in osl_Prelude.cpp;
// closures in osl_Closures.h.
#pragma once

#include "osl/check/osl_Symbol.h"

enum osl_Op : uint8_t {
#define OSL_OP(name, derivatives, kind) OSL_##name,
#include "osl/check/osl_Ops.def"
#undef OSL_OP
    OSL_OPS
};

struct osl_OpRow {
    enum Derivatives : uint8_t { NONE, ALL, USES };
    enum Kind : uint8_t { PURE, READS, ACTS };

    const char *name;
    Derivatives derivatives;
    Kind kind;
};
extern const osl_OpRow OSL_OP_ROWS[OSL_OPS];

struct osl_Builtin {
    const char *name;
    osl_Op op;
    const char *overloads; // separated by blanks
};

// Null when the language has no such function.
const osl_Builtin *osl_findBuiltin(std::string_view name);

// Appends the overloads of one row.
void osl_expandBuiltin(const osl_Builtin &row, std::deque<osl_Function> &functions);

// The source of functions that are written in the language; null for other names.
const char *osl_findPrelude(std::string_view name);
