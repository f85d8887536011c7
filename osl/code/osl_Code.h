// Code for the machine: instructions over registers.
//
// A register holds words of 32 bits: floats, ints, handles of texts (0 is "") and of
// closures (0 is the null closure). In the machine each word has a lane for each point of
// a batch, side by side; a register's words follow one another, then those of its
// derivatives where it has them:
//
//   word 0, lanes 0 .. W-1 | word 1 ... | d/dx of word 0 ... | d/dy of word 0 ...
//
// An operand tells where these begin, in words. The first operand is the result.
#pragma once

#include "osl/check/osl_Builtins.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

struct OSL_Value;
struct osl_ClosureRow;

struct osl_Operand {
    int at = 0;
    int dx = 0;
    int dy = 0;
    int words = 0;
    int step = 0; // 1, or 0 for a single word that stands for any number of them
    int reg = -1; // its number, for those who need its type; -1 for no operand
};

struct osl_Instruction {
    osl_Op op = OSL_END;
    bool isUniform = false;      // the same for all lanes: done once
    bool isSpread = false;       // and copied to all lanes, for those who read them
    bool isMasked = false;       // the result stays as it was where a lane is off
    bool hasDerivatives = false; // of the result
    int first = 0;               // operand
    int count = 0;
    int words = 0;  // of the result
    int target = 0; // where control goes on
    int number = 0; // depends on the operation
    int text = 0;   // in texts, likewise
    osl_Place place;
};

struct osl_RegisterInfo {
    osl_Type type;
    int words = 0;
    int at = 0;
    int dx = 0;
    int dy = 0;
    bool isVarying = false;
    bool hasDerivatives = false;
    bool isConstant = false;
};

struct osl_CodeOutput {
    std::string name;
    osl_Type type;
    int reg = 0;
};

struct osl_Code {
    std::string shader;
    std::vector<osl_Instruction> instructions;
    std::vector<osl_Operand> operands;
    std::vector<osl_RegisterInfo> registers;
    std::vector<int> constants; // words from `constantsAt` on
    int constantsAt = 0;
    int zerosAt = 0;                // words that stay 0: derivatives of what has none
    int words = 0;                  // of the whole register file
    std::vector<std::string> texts; // by handle; the first is ""
    std::vector<std::string> files; // by the number in a place
    std::array<int, 13> globals{};  // registers of P, I, ... Ci in their order; -1: not used
    std::vector<osl_CodeOutput> outputs;
    std::vector<const osl_ClosureRow *> closures; // by the number of OSL_CLOSURE
};

// The globals in the order of osl_Code::globals.
constexpr const char *OSL_GLOBALS[13] = {"P", "I", "N",    "Ng",    "dPdu",    "dPdv", "Ps",
                                         "u", "v", "time", "dtime", "dPdtime", "Ci"};
