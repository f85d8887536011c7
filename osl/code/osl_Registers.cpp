#include "osl/code/osl_Registers.h"

#include <cstring>

osl_Registers::osl_Registers()
{
    handle("");
}

int osl_Registers::make(Kind kind, const osl_Type &type, int words)
{
    myRegisters.emplace_back();
    Register &made = myRegisters.back();
    made.kind = kind;
    made.type = type;
    made.words = words;
    if (kind != CONSTANT)
        myTotalWords += words;
    return count() - 1;
}

int osl_Registers::constant(const osl_Type &type, const std::vector<int> &words)
{
    const int sort = type.base * 2 + (type.isClosure ? 1 : 0);
    const auto [entry, isNew] = myConstants.emplace(std::make_pair(sort, words), count());
    if (!isNew && (*this)[entry->second].type == type)
        return entry->second;
    const int reg = make(CONSTANT, type, static_cast<int>(words.size()));
    entry->second = reg;
    (*this)[reg].data = static_cast<int>(myData.size());
    myData.insert(myData.end(), words.begin(), words.end());
    myTotalWords += static_cast<long long>(words.size());
    return reg;
}

int osl_Registers::floatConstant(float value)
{
    int word;
    std::memcpy(&word, &value, sizeof word);
    return constant(osl_Type::FLOAT, {word});
}

int osl_Registers::textConstant(std::string_view text)
{
    return constant(osl_Type::STRING, {handle(text)});
}

int osl_Registers::handle(std::string_view text)
{
    const auto [entry, isNew] =
        myHandles.emplace(std::string(text), static_cast<int>(myTexts.size()));
    if (isNew)
        myTexts.emplace_back(text);
    return entry->second;
}

int osl_Registers::part(int reg, int offset, const osl_Type &type, int words)
{
    if (offset == 0 && words == (*this)[reg].words && type == (*this)[reg].type)
        return reg;
    if (isConstant(reg)) {
        const int *from = data(reg) + offset;
        return constant(type, std::vector<int>(from, from + words));
    }
    const int parent = root(reg);
    const int inParent = offset + (*this)[reg].offset;
    myRegisters.emplace_back();
    Register &made = myRegisters.back();
    made.kind = (*this)[parent].kind;
    made.type = type;
    made.words = words;
    made.parent = parent;
    made.offset = inParent;
    return count() - 1;
}
