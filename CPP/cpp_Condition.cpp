#include "CPP/cpp_Condition.h"

#include "CPP/CPP_Manager.h"
#include "CPP/cpp_Macro.h"
#include "CPP/cpp_Text.h"

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
constexpr size_t MAX_NAME = 1024;

// ---- Operators -----------------------------------------------------------

int32_t wrap(int64_t value)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
}

using Apply = int32_t (*)(int64_t left, int64_t right);

enum Kind { INFIX, UNARY, OPEN, CLOSE };

struct Operator {
    const char *text;
    int precedence; // the smaller, the tighter
    Kind kind;
    Apply apply;
};

// The first row that the text starts with is the token.
const Operator OPERATORS[] = {
    {"&&", 7, INFIX, [](int64_t a, int64_t b) -> int32_t { return a != 0 && b != 0; }},
    {"||", 7, INFIX, [](int64_t a, int64_t b) -> int32_t { return a != 0 || b != 0; }},
    {"==", 5, INFIX, [](int64_t a, int64_t b) -> int32_t { return a == b; }},
    {"!=", 5, INFIX, [](int64_t a, int64_t b) -> int32_t { return a != b; }},
    {"<=", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a <= b; }},
    {">=", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a >= b; }},
    {"&", 6, INFIX, [](int64_t a, int64_t b) { return wrap(a & b); }},
    {"|", 6, INFIX, [](int64_t a, int64_t b) { return wrap(a | b); }},
    {"^", 6, INFIX, [](int64_t a, int64_t b) { return wrap(a ^ b); }},
    {"<", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a < b; }},
    {">", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a > b; }},
    {"+", 3, INFIX, [](int64_t a, int64_t b) { return wrap(a + b); }},
    {"-", 3, INFIX, [](int64_t a, int64_t b) { return wrap(a - b); }},
    {"*", 2, INFIX, [](int64_t a, int64_t b) { return wrap(a * b); }},
    {"/", 2, INFIX, [](int64_t a, int64_t b) { return b == 0 ? 1000 : wrap(a / b); }},
    {"%", 2, INFIX, [](int64_t a, int64_t b) { return b == 0 ? 0 : wrap(a % b); }},
    {"!", 1, UNARY, [](int64_t, int64_t b) -> int32_t { return b == 0; }},
    {"~", 1, UNARY, [](int64_t, int64_t b) { return wrap(~b & 0xFFFF); }},
    {"(", 9, OPEN, [](int64_t, int64_t) -> int32_t { return 0; }},
    {")", 0, CLOSE, nullptr},
};

// A long that is as wide as on a 32-bit machine.
int32_t parseNumber(const std::string &digits, int base)
{
    const long value = std::strtol(digits.c_str(), nullptr, base);
    if (value > INT32_MAX)
        return INT32_MAX;
    return value < INT32_MIN ? INT32_MIN : static_cast<int32_t>(value);
}

// ---- Operands ------------------------------------------------------------

// Reads operands off a text. Every take function gives false at a syntax error.
class OperandReader
{
public:
    OperandReader(const CPP_Manager &manager, const char *&text) : myManager(manager), myText(text)
    {
    }

    bool take(int32_t &value)
    {
        if (isDigit(*myText) || *myText == '-')
            return takeNumber(value);
        std::string name;
        if (!takeName(name))
            return false;
        for (const Function &function : FUNCTIONS) {
            if (name == function.name)
                return (this->*function.take)(value);
        }
        return valueOfMacro(name, value);
    }

private:
    struct Function {
        const char *name;
        bool (OperandReader::*take)(int32_t &value);
    };
    static const Function FUNCTIONS[4];

    bool takeNumber(int32_t &value)
    {
        const bool isNegative = *myText == '-';
        myText += isNegative ? 1 : 0;
        const bool isHex = myText[0] == '0' && myText[1] == 'x';
        std::string digits = isHex ? "0x" : "";
        myText += digits.size();
        for (; isHex ? std::isxdigit(static_cast<unsigned char>(*myText)) != 0 : isDigit(*myText);
             ++myText)
            digits += *myText;
        value = parseNumber(digits, 0);
        value = isNegative ? wrap(-int64_t{value}) : value;
        return true;
    }

    bool takeName(std::string &name)
    {
        if (!isNameStart(*myText))
            return false;
        for (name.clear(); isNameCharacter(*myText) && name.size() < MAX_NAME; ++myText)
            name += *myText;
        return true;
    }

    // A name, or the inside of a double-quoted string with its backslashes.
    static bool readText(const char *&from, std::string &text)
    {
        text.clear();
        const bool isQuoted = *from == '"';
        if (!isQuoted && !isNameStart(*from))
            return false;
        from += isQuoted ? 1 : 0;
        for (; *from != '\0' && text.size() < MAX_NAME; ++from) {
            const bool ends = isQuoted ? *from == '"' && (text.empty() || text.back() != '\\')
                                       : !isNameCharacter(*from);
            if (ends)
                break;
            text += *from;
        }
        if (isQuoted && *from++ != '"')
            return false;
        return true;
    }

    // A text, or the one that the body of the macro of that name begins with.
    bool takeTextOfMacro(std::string &text)
    {
        if (!readText(myText, text))
            return false;
        const cpp_Macro *macro = myManager.findMacro(text.c_str());
        if (macro == nullptr)
            return true;
        const char *body = skipSpace(macro->myBody.c_str());
        return readText(body, text);
    }

    bool takeSign(char sign)
    {
        myText = skipSpace(myText);
        return *myText == sign && *myText++ != '\0';
    }

    bool takeDefined(int32_t &value)
    {
        std::string name;
        if (!takeSign('(') || !takeName(name) || !takeSign(')'))
            return false;
        value = myManager.isMacroDefined(name.c_str());
        return true;
    }

    bool takeEnvironment(int32_t &value)
    {
        std::string name;
        if (!takeSign('(') || !takeName(name) || !takeSign(')'))
            return false;
        value = std::getenv(name.c_str()) != nullptr;
        return true;
    }

    bool takeAccess(int32_t &value)
    {
        std::string text;
        if (!takeSign('(') || !readText(myText, text) || !takeSign(')'))
            return false;
        UT_String path(text.c_str(), true);
        path.substituteVariables();
        value = access(path, R_OK) == 0;
        return true;
    }

    bool takeCompare(int32_t &value)
    {
        std::string left;
        std::string right;
        if (!takeSign('(') || !takeTextOfMacro(left) || !takeSign(','))
            return false;
        myText = skipSpace(myText);
        if (!takeTextOfMacro(right) || !takeSign(')'))
            return false;
        const int order = std::strcmp(left.c_str(), right.c_str());
        value = (order > 0) - (order < 0);
        return true;
    }

    bool valueOfMacro(const std::string &name, int32_t &value) const
    {
        value = 0;
        const cpp_Macro *macro = myManager.findMacro(name.c_str());
        if (macro == nullptr)
            return true;
        const char *body = skipSpace(macro->myBody.c_str());
        value = parseNumber(body, 10);
        return *body != '\0';
    }

    const CPP_Manager &myManager;
    const char *&myText;
};

const OperandReader::Function OperandReader::FUNCTIONS[4] = {
    {"defined", &OperandReader::takeDefined},
    {"environment", &OperandReader::takeEnvironment},
    {"access", &OperandReader::takeAccess},
    {"strcmp", &OperandReader::takeCompare},
};

// ---- Evaluation ----------------------------------------------------------

// Operands and operators wait on two stacks until an operator that binds less
// tightly comes (the shunting-yard method). Each take function gives false at a
// syntax error.
class Evaluator
{
public:
    bool takeOperand(int32_t value)
    {
        if (!expectsOperand)
            return false;
        myValues.push_back(value);
        expectsOperand = false;
        return true;
    }

    bool takeOperator(const Operator &op)
    {
        // "(" and unary operators stand where an operand may begin.
        const bool startsOperand = op.kind == OPEN || op.kind == UNARY;
        if (startsOperand != expectsOperand)
            return false;
        if (op.kind == CLOSE)
            return closeGroup();
        if (op.kind == UNARY)
            myValues.push_back(0); // in place of a left operand
        while (op.kind == INFIX && !myOperators.empty() &&
               myOperators.back()->precedence <= op.precedence) {
            if (!applyTop())
                return false;
        }
        myOperators.push_back(&op);
        expectsOperand = true;
        return true;
    }

    bool finish(bool &value)
    {
        while (!myOperators.empty()) {
            if (!applyTop())
                return false;
        }
        value = !myValues.empty() && myValues.back() != 0;
        return true;
    }

private:
    bool closeGroup()
    {
        while (!myOperators.empty() && myOperators.back()->kind != OPEN) {
            if (!applyTop())
                return false;
        }
        if (myOperators.empty())
            return false;
        myOperators.pop_back();
        return true;
    }

    bool applyTop()
    {
        if (myValues.size() < 2)
            return false;
        const int32_t right = myValues.back();
        myValues.pop_back();
        myValues.back() = myOperators.back()->apply(myValues.back(), right);
        myOperators.pop_back();
        return true;
    }

    std::vector<int32_t> myValues;
    std::vector<const Operator *> myOperators;
    bool expectsOperand = true;
};

const Operator *findOperator(const char *text)
{
    if (text[0] == '-' && isDigit(text[1]))
        return nullptr;
    for (const Operator &op : OPERATORS) {
        if (std::strncmp(text, op.text, std::strlen(op.text)) == 0)
            return &op;
    }
    return nullptr;
}
} // namespace

int evaluateCondition(CPP_Manager &manager, const char *text)
{
    Evaluator evaluator;
    OperandReader operands(manager, text);
    while (*(text = skipSpace(text)) != '\0') {
        bool isGood = false;
        if (const Operator *op = findOperator(text)) {
            text += std::strlen(op->text);
            isGood = evaluator.takeOperator(*op);
        } else {
            int32_t value = 0;
            isGood = operands.take(value) && evaluator.takeOperand(value);
        }
        if (!isGood)
            return -1;
    }
    bool value = false;
    return evaluator.finish(value) ? static_cast<int>(value) : -1;
}
