// The types of the language.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct osl_Struct;

struct osl_Type {
    enum Base : uint8_t {
        UNKNOWN,
        VOID,
        INT,
        FLOAT,
        COLOR,
        POINT,
        VECTOR,
        NORMAL,
        MATRIX,
        STRING,
        STRUCT
    };
    static constexpr int UNSIZED = -1;

    Base base = UNKNOWN;
    bool isClosure = false;
    int array = 0;                      // elements, UNSIZED, or 0 for no array
    const osl_Struct *record = nullptr; // of STRUCT

    constexpr osl_Type() = default;
    constexpr osl_Type(Base type, int length = 0) : base(type), array(length) {}
    static constexpr osl_Type closure()
    {
        osl_Type type(COLOR);
        type.isClosure = true;
        return type;
    }

    bool isUnknown() const { return base == UNKNOWN; }
    bool isVoid() const { return base == VOID && array == 0; }
    bool isArray() const { return array != 0; }
    bool isStruct() const { return base == STRUCT; } // also arrays of them
    bool isInt() const { return base == INT && array == 0; }
    bool isFloat() const { return base == FLOAT && array == 0; }
    bool isScalar() const { return isInt() || isFloat(); }
    bool isString() const { return base == STRING && array == 0; }
    bool isMatrix() const { return base == MATRIX && array == 0; }
    bool isTripleBased() const { return base >= COLOR && base <= NORMAL && !isClosure; }
    bool isTriple() const { return isTripleBased() && array == 0; }
    bool isPointLike() const { return isTriple() && base != COLOR; }
    bool isNumeric() const { return !isClosure && array == 0 && base >= INT && base <= MATRIX; }
    bool isFloatBased() const { return !isClosure && base >= FLOAT && base <= MATRIX; }
    bool isClosureBased() const { return isClosure; }

    osl_Type element() const
    {
        osl_Type type = *this;
        type.array = 0;
        return type;
    }
    osl_Type arrayOf(int length) const
    {
        osl_Type type = *this;
        type.array = length;
        return type;
    }

    // Numbers in one element: 3 for a colour, 16 for a matrix; 0 for a struct.
    int components() const
    {
        return isClosure ? 1 : isTripleBased() ? 3 : base == MATRIX ? 16 : base == STRUCT ? 0 : 1;
    }

    // As messages say it: "float", "closure color", "struct ray", "int[3]".
    std::string name() const;
};

inline bool operator==(const osl_Type &a, const osl_Type &b)
{
    return a.base == b.base && a.isClosure == b.isClosure && a.array == b.array &&
           a.record == b.record;
}
inline bool operator!=(const osl_Type &a, const osl_Type &b)
{
    return !(a == b);
}

struct osl_Field {
    std::string_view name;
    osl_Type type;
};

struct osl_Struct {
    std::string_view name;
    std::vector<osl_Field> fields;

    long long words = 0; // numbers in it
    int parts = 0;       // fields that are no structs themselves, all the way down
    int depth = 1;

    int find(std::string_view field) const; // -1 when there is none

    // Fills in the three; false for what is larger than a shader needs.
    [[nodiscard]] bool measure();
};

// By the language's word for it; UNKNOWN for any other.
osl_Type::Base osl_typeByName(std::string_view name);

// Whether both are the same but for the kind of three numbers they are.
bool osl_isEquivalent(const osl_Type &a, const osl_Type &b);

// Whether a value of type `from` may stand where `to` is wanted.
bool osl_isAssignable(const osl_Type &to, const osl_Type &from);
