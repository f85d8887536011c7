#include "osl/syntax/osl_Type.h"

#include <algorithm>

namespace
{
constexpr std::string_view NAMES[] = {"unknown", "void",   "int",    "float",  "color", "point",
                                      "vector",  "normal", "matrix", "string", "struct"};
}

std::string osl_Type::name() const
{
    std::string text = isClosure ? "closure " : "";
    text += NAMES[base];
    if (base == STRUCT && record != nullptr)
        (text += ' ') += record->name;
    if (array == UNSIZED)
        text += "[]";
    else if (array > 0)
        text += '[' + std::to_string(array) + ']';
    return text;
}

bool osl_Struct::measure()
{
    constexpr long long MOST_WORDS = 1 << 20;
    constexpr int MOST_PARTS = 10000;
    constexpr int MOST_DEPTH = 50;
    for (const osl_Field &field : fields) {
        const osl_Struct *inner = field.type.record;
        words +=
            std::max(field.type.array, 1) *
            (inner != nullptr ? inner->words : static_cast<long long>(field.type.components()));
        parts += inner != nullptr ? inner->parts : 1;
        depth = std::max(depth, inner != nullptr ? inner->depth + 1 : 1);
        if (words > MOST_WORDS || parts > MOST_PARTS || depth > MOST_DEPTH)
            return false;
    }
    return true;
}

int osl_Struct::find(std::string_view field) const
{
    for (size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].name == field)
            return static_cast<int>(i);
    }
    return -1;
}

osl_Type::Base osl_typeByName(std::string_view name)
{
    for (int i = osl_Type::VOID; i < osl_Type::STRUCT; ++i) {
        if (name == NAMES[i])
            return static_cast<osl_Type::Base>(i);
    }
    return osl_Type::UNKNOWN;
}

bool osl_isEquivalent(const osl_Type &a, const osl_Type &b)
{
    return a == b || (a.isTripleBased() && b.isTripleBased() && a.array == b.array);
}

bool osl_isAssignable(const osl_Type &to, const osl_Type &from)
{
    if (to == from)
        return !to.isUnknown();
    if (to.isClosure || from.isClosure || to.isArray() || from.isArray()) {
        const bool fits = to.array == osl_Type::UNSIZED ? from.array != 0 : to.array >= from.array;
        return to.isArray() && from.isArray() && fits &&
               osl_isEquivalent(to.element(), from.element());
    }
    if (to.isFloat() || to.isMatrix())
        return from.isScalar();
    return to.isTriple() && (from.isScalar() || from.isTriple());
}
