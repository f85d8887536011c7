#include "CPP/macros/cpp_Condition.h"

#include "CPP/cpp_Classes.h"
#include "CPP/cpp_MacroTable.h"
#include "UT/UT_String.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace
{
// A longer name ends there, and what is left of it is a second operand: an error.
constexpr size_t MAX_NAME = 1024;

// ---- Operators -----------------------------------------------------------

constexpr int32_t wrap(int64_t value)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
}

using Apply = int32_t (*)(int64_t left, int64_t right);

enum Kind { INFIX, UNARY, OPEN, CLOSE };

struct Operator {
    std::string_view text;
    int precedence; // the smaller, the tighter
    Kind kind;
    Apply apply;
};

// Of two rows that a text starts with, the longer one is the token.
constexpr Operator OPERATORS[] = {
    {"&&", 7, INFIX, [](int64_t a, int64_t b) -> int32_t { return a != 0 && b != 0; }},
    {"&", 6, INFIX, [](int64_t a, int64_t b) { return wrap(a & b); }},
    {"||", 7, INFIX, [](int64_t a, int64_t b) -> int32_t { return a != 0 || b != 0; }},
    {"|", 6, INFIX, [](int64_t a, int64_t b) { return wrap(a | b); }},
    {"==", 5, INFIX, [](int64_t a, int64_t b) -> int32_t { return a == b; }},
    {"!=", 5, INFIX, [](int64_t a, int64_t b) -> int32_t { return a != b; }},
    {"!", 1, UNARY, [](int64_t, int64_t b) -> int32_t { return b == 0; }},
    {"<=", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a <= b; }},
    {"<", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a < b; }},
    {">=", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a >= b; }},
    {">", 4, INFIX, [](int64_t a, int64_t b) -> int32_t { return a > b; }},
    {"^", 6, INFIX, [](int64_t a, int64_t b) { return wrap(a ^ b); }},
    {"+", 3, INFIX, [](int64_t a, int64_t b) { return wrap(a + b); }},
    {"-", 3, INFIX, [](int64_t a, int64_t b) { return wrap(a - b); }},
    {"*", 2, INFIX, [](int64_t a, int64_t b) { return wrap(a * b); }},
    {"/", 2, INFIX, [](int64_t a, int64_t b) { return b == 0 ? 1000 : wrap(a / b); }},
    {"%", 2, INFIX, [](int64_t a, int64_t b) { return b == 0 ? 0 : wrap(a % b); }},
    {"~", 1, UNARY, [](int64_t, int64_t b) { return wrap(~b & 0xFFFF); }},
    {"(", 9, OPEN, [](int64_t, int64_t) -> int32_t { return 0; }},
    {")", 0, CLOSE, nullptr},
};

// The rows that a character begins. Where there is no pair it is the single one's row, so
// that either answer is right.
struct Rows {
    char second = '\0'; // of the pair
    unsigned char pair = std::size(OPERATORS);
    unsigned char single = std::size(OPERATORS); // their number: none
};

constexpr std::array<Rows, 256> rowsByCharacter()
{
    std::array<Rows, 256> rows{};
    for (size_t i = 0; i < std::size(OPERATORS); ++i) {
        const std::string_view text = OPERATORS[i].text;
        Rows &its = rows[static_cast<unsigned char>(text[0])];
        if (text.size() == 2)
            its.second = text[1];
        (text.size() == 2 ? its.pair : its.single) = static_cast<unsigned char>(i);
    }
    for (Rows &its : rows)
        its.pair = its.second == '\0' ? its.single : its.pair;
    return rows;
}
constexpr std::array<Rows, 256> ROWS = rowsByCharacter();

// Null when the text starts with none. REQUIRES: a character in front of its end
constexpr const Operator *findOperator(const char *text)
{
    if (text[0] == '-' && UTisDigit(text[1]))
        return nullptr;
    const Rows &its = ROWS[static_cast<unsigned char>(text[0])];
    const size_t row = text[1] == its.second ? its.pair : its.single;
    return row < std::size(OPERATORS) ? &OPERATORS[row] : nullptr;
}

constexpr bool findsEachOperator()
{
    for (const Operator &op : OPERATORS) {
        if (findOperator(op.text.data()) != &op)
            return false;
    }
    return true;
}
static_assert(findsEachOperator(), "a character begins one pair at most");

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
    OperandReader(const cpp_MacroTable &macros, const char *&text, cpp_ConditionFault &fault)
        : myMacros(macros), myText(text), myFault(fault)
    {
    }

    bool take(int32_t &value)
    {
        if (UTisDigit(*myText) || *myText == '-')
            return takeNumber(value);
        std::string_view name;
        const char *start = myText;
        if (!takeName(name))
            return fail("this is no number, name or operator");
        for (const Function &function : FUNCTIONS) {
            if (name[0] == function.name[0] && name == function.name)
                return (this->*function.take)(value) || fail(function.form);
        }
        // Its value would be that of the bare name, and the list an error without a reason.
        if (*skipSpace(myText) == '(')
            return fail("macros with arguments are not expanded here");
        return valueOfMacro(name, start, value);
    }

    static bool isFunction(std::string_view name);

private:
    struct Function {
        std::string_view name;
        bool (OperandReader::*take)(int32_t &value);
        const char *form; // for the message when it is written otherwise
    };
    static const Function FUNCTIONS[4];

    bool fail(const char *error)
    {
        myFault.error = error;
        return false;
    }

    // A sign in front of a digit is the number's, so "3-5" is two operands.
    bool takeNumber(int32_t &value)
    {
        const bool isNegative = *myText == '-';
        myText += isNegative ? 1 : 0;
        if (takeShortDecimal(value)) {
            value = isNegative ? -value : value;
            return endsNumber();
        }
        const bool isHex = myText[0] == '0' && myText[1] == 'x';
        std::string digits = isHex ? "0x" : "";
        myText += digits.size();
        for (; isHex ? std::isxdigit(static_cast<unsigned char>(*myText)) != 0 : UTisDigit(*myText);
             ++myText)
            digits += *myText;
        value = parseNumber(digits, 0);
        value = isNegative ? wrap(-int64_t{value}) : value;
        return endsNumber();
    }

    // What most numbers are: one that is surely no octal and not too large.
    bool takeShortDecimal(int32_t &value)
    {
        constexpr int MOST_DIGITS = 9;
        if (*myText == '0' && UTisDigit(myText[1]))
            return false;
        const char *digit = myText;
        value = 0;
        for (; UTisDigit(*digit) && digit - myText < MOST_DIGITS; ++digit)
            value = value * 10 + (*digit - '0');
        if (UTisDigit(*digit) || *digit == 'x' || digit == myText)
            return false;
        myText = digit;
        return true;
    }

    // What follows would be another operand.
    bool endsNumber()
    {
        return !UTisNameCharacter(*myText) ||
               fail("a number has no suffix, and is decimal or 0x...");
    }

    bool takeName(std::string_view &name)
    {
        if (!UTisNameStart(*myText))
            return false;
        const auto length = static_cast<size_t>(skipName(myText) - myText);
        name = {myText, std::min(length, MAX_NAME)};
        myText += name.size();
        return true;
    }

    // A name, or the inside of a double-quoted string with its backslashes.
    static bool readText(const char *&from, std::string &text)
    {
        text.clear();
        const bool isQuoted = *from == '"';
        if (!isQuoted && !UTisNameStart(*from))
            return false;
        from += isQuoted ? 1 : 0;
        for (; *from != '\0' && text.size() < MAX_NAME; ++from) {
            const bool ends = isQuoted ? *from == '"' && (text.empty() || text.back() != '\\')
                                       : !UTisNameCharacter(*from);
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
        const cpp_Macro *macro = myMacros.find(text);
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
        std::string_view name;
        if (!takeSign('(') || !takeName(name) || !takeSign(')'))
            return false;
        value = myMacros.holds(name);
        return true;
    }

    bool takeEnvironment(int32_t &value)
    {
        std::string_view name;
        if (!takeSign('(') || !takeName(name) || !takeSign(')'))
            return false;
        value = std::getenv(std::string(name).c_str()) != nullptr;
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
        // strcmp promises a sign only; a value could be seen in arithmetic.
        value = (order > 0) - (order < 0);
        return true;
    }

    bool valueOfMacro(std::string_view name, const char *start, int32_t &value)
    {
        value = 0;
        const cpp_Macro *macro = myMacros.find(name);
        if (macro == nullptr)
            return true;
        const char *body = skipSpace(macro->myBody.c_str());
        value = parseNumber(body, 10);
        // strtol stops without a word where C would go on with an expression.
        const size_t sign = *body == '-' || *body == '+' ? 1 : 0;
        const size_t digits = std::strspn(body + sign, "0123456789");
        if (digits == 0 || *skipSpace(body + sign + digits) != '\0')
            myFault.oddMacro = myFault.oddMacro != nullptr ? myFault.oddMacro : start;
        return *body != '\0' || fail("this macro is empty");
    }

    const cpp_MacroTable &myMacros;
    const char *&myText;
    cpp_ConditionFault &myFault;
};

const OperandReader::Function OperandReader::FUNCTIONS[4] = {
    {"defined", &OperandReader::takeDefined, "this is written defined(NAME)"},
    {"environment", &OperandReader::takeEnvironment, "this is written environment(NAME)"},
    {"access", &OperandReader::takeAccess, "this is written access(\"PATH\")"},
    {"strcmp", &OperandReader::takeCompare, "this is written strcmp(\"TEXT\", \"TEXT\")"},
};

bool OperandReader::isFunction(std::string_view name)
{
    const auto isIts = [name](const Function &function) {
        return name[0] == function.name[0] && name == function.name;
    };
    return std::any_of(std::begin(FUNCTIONS), std::end(FUNCTIONS), isIts);
}

// ---- Evaluation ----------------------------------------------------------

// The usual few without memory of their own.
template <class T>
class Stack
{
public:
    bool isEmpty() const { return myCount == 0; }
    size_t size() const { return myCount; }
    T &top() { return myCount <= FEW ? myFew[myCount - 1] : myMore.back(); }
    void push(T value)
    {
        if (myCount < FEW)
            myFew[myCount] = value;
        else
            myMore.push_back(value);
        ++myCount;
    }
    T pop()
    {
        const T value = top();
        if (myCount > FEW)
            myMore.pop_back();
        --myCount;
        return value;
    }

private:
    static constexpr size_t FEW = 8;

    T myFew[FEW];
    std::vector<T> myMore;
    size_t myCount = 0;
};

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
        myValues.push(value);
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
            myValues.push(0); // in place of a left operand
        while (op.kind == INFIX && !myOperators.isEmpty() &&
               myOperators.top()->precedence <= op.precedence) {
            if (!applyTop())
                return false;
        }
        myOperators.push(&op);
        expectsOperand = true;
        return true;
    }

    bool finish(bool &value)
    {
        while (!myOperators.isEmpty()) {
            if (!applyTop())
                return false;
        }
        value = !myValues.isEmpty() && myValues.top() != 0;
        return true;
    }

private:
    bool closeGroup()
    {
        while (!myOperators.isEmpty() && myOperators.top()->kind != OPEN) {
            if (!applyTop())
                return false;
        }
        if (myOperators.isEmpty())
            return false;
        myOperators.pop();
        return true;
    }

    bool applyTop()
    {
        if (myValues.size() < 2)
            return false;
        const int32_t right = myValues.pop();
        myValues.top() = myOperators.pop()->apply(myValues.top(), right);
        return true;
    }

    Stack<int32_t> myValues;
    Stack<const Operator *> myOperators;
    bool expectsOperand = true;
};
} // namespace

int evaluateCondition(const cpp_MacroTable &macros, const char *text, cpp_ConditionFault *fault)
{
    cpp_ConditionFault unasked;
    cpp_ConditionFault &found = fault != nullptr ? *fault : unasked;
    Evaluator evaluator;
    OperandReader operands(macros, text, found);
    while (*(text = skipSpace(text)) != '\0') {
        found.place = text;
        bool isGood = false;
        if (const Operator *op = findOperator(text)) {
            text += op->text.size();
            isGood = evaluator.takeOperator(*op);
        } else {
            int32_t value = 0;
            isGood = operands.take(value) && evaluator.takeOperand(value);
        }
        if (isGood)
            continue;
        if (found.error == nullptr)
            found.error = "this does not follow what is in front of it";
        return -1;
    }
    bool value = false;
    if (evaluator.finish(value))
        return static_cast<int>(value);
    found.error = "the expression does not end";
    return -1;
}

// ---- Without a value -----------------------------------------------------

namespace
{
// Passes operands and operators in turn. The newline that ends the line is part of none of
// them, so nearly nothing has to ask where the text ends. Every pass function gives false at
// what is not one of the common forms.
class Passer
{
public:
    Passer(const cpp_MacroTable &macros, const char *text, const char *end)
        : myMacros(macros), myText(text), myEnd(end)
    {
    }

    // The newline behind them; null when they do not end there as an expression.
    const char *passAll()
    {
        while (passOperand()) {
            if (!passOperator())
                return myDepth == 0 && *myText == '\n' ? myText : nullptr;
        }
        return nullptr;
    }

private:
    void skip()
    {
        while (*myText == ' ' || *myText == '\t')
            ++myText;
    }

    bool take(char c)
    {
        const bool isNext = *myText == c;
        myText += isNext ? 1 : 0;
        return isNext;
    }

    std::string_view takeName()
    {
        const char *name = myText;
        if (isOf(CPP_NAME_START, *name))
            myText = skipName(name);
        const auto length = static_cast<size_t>(myText - name);
        return {name, length <= MAX_NAME ? length : 0};
    }

    // A number of digits, defined(NAME), or a name that is no macro and so stands for 0.
    bool passOperand()
    {
        for (skip(); !isOf(CPP_NAME, *myText); skip()) {
            if (take('('))
                ++myDepth;
            else if (!take('!'))
                return false;
        }
        if (UTisDigit(*myText))
            return passNumber();
        if (takeDefined())
            return passArgument();
        const std::string_view name = takeName();
        return !name.empty() && !myMacros.holds(name) && !OperandReader::isFunction(name);
    }

    // At once, since most names in conditions are this one.
    bool takeDefined()
    {
        constexpr std::string_view FORM = "defined(";
        const auto room = static_cast<size_t>(myEnd - myText);
        const bool isNext =
            room > FORM.size() && std::memcmp(myText, FORM.data(), FORM.size()) == 0;
        myText += isNext ? FORM.size() : 0;
        return isNext;
    }

    bool passArgument()
    {
        if (takeName().empty())
            return false;
        skip();
        return take(')');
    }

    bool passNumber()
    {
        while (UTisDigit(*myText))
            ++myText;
        return !isOf(CPP_NAME, *myText);
    }

    // False also at the end of the expression.
    bool passOperator()
    {
        for (skip(); take(')'); skip())
            --myDepth;
        if (*myText == '\n')
            return false;
        const Operator *op = findOperator(myText);
        if (op == nullptr || op->kind != INFIX || myDepth < 0)
            return false;
        myText += op->text.size();
        return true;
    }

    const cpp_MacroTable &myMacros;
    const char *myText;
    const char *myEnd;
    int myDepth = 0;
};
} // namespace

const char *plainConditionEnd(const cpp_MacroTable &macros, const char *text, const char *end)
{
    return Passer(macros, text, end).passAll();
}
