// The registers of code that is being made.
#pragma once

#include "osl/code/osl_Code.h"

#include <map>
#include <string_view>

class osl_Registers
{
public:
    enum Kind : uint8_t {
        CONSTANT,
        GLOBAL,
        VARIABLE,
        TEMPORARY // written once, read while it is fresh
    };
    struct Register {
        Kind kind = TEMPORARY;
        osl_Type type;
        int words = 0;
        int parent = -1; // it is a part of this one, `offset` words in
        int offset = 0;
        int data = 0; // CONSTANT: its first word in data()
        bool isVarying = false;
        bool hasDerivatives = false;
        bool isNamed = false;       // a variable that is written only once: this write
        bool isReadByLanes = false; // by operations on all lanes
        bool isKept = false;        // has its place for the whole run
        int firstUse = -1;          // instruction
        int lastUse = -1;
        int at = 0;
    };

    osl_Registers();

    int make(Kind kind, const osl_Type &type, int words);
    int constant(const osl_Type &type, const std::vector<int> &words);
    int intConstant(int value) { return constant(osl_Type::INT, {value}); }
    int floatConstant(float value);
    int textConstant(std::string_view text);

    // A part of another register.
    int part(int reg, int offset, const osl_Type &type, int words);

    Register &operator[](int reg) { return myRegisters[static_cast<size_t>(reg)]; }
    const Register &operator[](int reg) const { return myRegisters[static_cast<size_t>(reg)]; }
    int count() const { return static_cast<int>(myRegisters.size()); }
    int root(int reg) const { return (*this)[reg].parent < 0 ? reg : (*this)[reg].parent; }
    // An argument that is not there (-1) is none.
    bool isConstant(int reg) const { return reg >= 0 && (*this)[reg].kind == CONSTANT; }
    const int *data(int reg) const { return &myData[static_cast<size_t>((*this)[reg].data)]; }
    const std::vector<int> &allData() const { return myData; }

    int handle(std::string_view text); // of a constant text
    std::vector<std::string> &texts() { return myTexts; }
    const std::string &text(int reg) const { return myTexts[static_cast<size_t>(*data(reg))]; }
    long long totalWords() const { return myTotalWords; }

private:
    std::vector<Register> myRegisters;
    std::vector<int> myData;
    std::vector<std::string> myTexts;
    std::unordered_map<std::string, int> myHandles;
    std::map<std::pair<int, std::vector<int>>, int> myConstants;
    long long myTotalWords = 0;
};
