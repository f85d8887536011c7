#include "osl/text/osl_Condition.h"

#include <charconv>

namespace
{
struct Operator {
    const char *punct;
    int precedence;
};
const Operator OPERATORS[] = {
    {"||", 1}, {"&&", 2}, {"|", 3},  {"^", 4},  {"&", 5},  {"==", 6},
    {"!=", 6}, {"<", 7},  {"<=", 7}, {">", 7},  {">=", 7}, {"<<", 8},
    {">>", 8}, {"+", 9},  {"-", 9},  {"*", 10}, {"/", 10}, {"%", 10},
};

int precedenceOf(int punct)
{
    for (const Operator &row : OPERATORS) {
        if (osl_punct(row.punct) == punct)
            return row.precedence;
    }
    return 0;
}

int64_t wrapped(uint64_t value)
{
    return static_cast<int64_t>(value);
}
} // namespace

bool osl_Condition::accept(const char *text)
{
    if (punct() != osl_punct(text))
        return false;
    ++myNext;
    return true;
}

int64_t osl_Condition::fail()
{
    isGood = false;
    myNext = myTokens.size();
    return 0;
}

int osl_Condition::value()
{
    const bool isTrue = takeTernary() != 0;
    return isGood && myNext == myTokens.size() ? static_cast<int>(isTrue) : -1;
}

int64_t osl_Condition::takeTernary()
{
    if (++myDepth > MAX_DEPTH)
        return fail();
    int64_t result = takeBinary(1);
    if (accept("?")) {
        const bool isTrue = result != 0;
        myUnseen += !isTrue;
        const int64_t first = takeTernary();
        myUnseen -= !isTrue;
        if (!accept(":"))
            return fail();
        myUnseen += isTrue;
        const int64_t second = takeTernary();
        myUnseen -= isTrue;
        result = isTrue ? first : second;
    }
    --myDepth;
    return result;
}

int64_t osl_Condition::takeBinary(int precedence)
{
    int64_t left = takeUnary();
    for (;;) {
        const int op = punct();
        const int found = precedenceOf(op);
        if (found == 0 || found < precedence)
            return left;
        ++myNext;
        const bool isDecided =
            (op == osl_punct("&&") && left == 0) || (op == osl_punct("||") && left != 0);
        myUnseen += isDecided;
        const int64_t right = takeBinary(found + 1);
        myUnseen -= isDecided;
        left = apply(op, left, right);
    }
}

int64_t osl_Condition::takeUnary()
{
    if (++myDepth > MAX_DEPTH)
        return fail();
    int64_t result = 0;
    if (accept("!"))
        result = takeUnary() == 0;
    else if (accept("~"))
        result = ~takeUnary();
    else if (accept("-"))
        result = wrapped(0 - static_cast<uint64_t>(takeUnary()));
    else if (accept("+"))
        result = takeUnary();
    else
        result = takeOperand();
    --myDepth;
    return result;
}

int64_t osl_Condition::takeOperand()
{
    if (accept("(")) {
        const int64_t inner = takeTernary();
        return accept(")") ? inner : fail();
    }
    if (myNext >= myTokens.size())
        return fail();
    const osl_Token &token = myTokens[myNext++];
    if (token.kind == osl_Token::NAME)
        return 0;
    return token.kind == osl_Token::NUMBER ? takeNumber(token.text) : fail();
}

// Decimal, octal or hexadecimal, with C's suffixes.
int64_t osl_Condition::takeNumber(std::string_view text)
{
    while (!text.empty() && std::string_view("uUlL").find(text.back()) != text.npos)
        text.remove_suffix(1);
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text.remove_prefix(2);
    } else if (text.size() > 1 && text[0] == '0') {
        base = 8;
    }
    uint64_t value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value, base);
    const bool isWhole = read.ec == std::errc() && read.ptr == text.data() + text.size();
    return isWhole ? wrapped(value) : fail();
}

int64_t osl_Condition::apply(int op, int64_t l, int64_t r)
{
    const auto ul = static_cast<uint64_t>(l);
    const auto ur = static_cast<uint64_t>(r);
    const bool divides = op == osl_punct("/") || op == osl_punct("%");
    if (divides && (r == 0 || r == -1)) {
        if (r == 0)
            return myUnseen > 0 ? 0 : fail();
        return op == osl_punct("/") ? wrapped(0 - ul) : 0;
    }
    switch (op) {
    case osl_punct("||"):
        return l != 0 || r != 0;
    case osl_punct("&&"):
        return l != 0 && r != 0;
    case osl_punct("|"):
        return l | r;
    case osl_punct("^"):
        return l ^ r;
    case osl_punct("&"):
        return l & r;
    case osl_punct("=="):
        return l == r;
    case osl_punct("!="):
        return l != r;
    case osl_punct("<"):
        return l < r;
    case osl_punct("<="):
        return l <= r;
    case osl_punct(">"):
        return l > r;
    case osl_punct(">="):
        return l >= r;
    case osl_punct("<<"):
        return wrapped(ul << (ur & 63));
    case osl_punct(">>"):
        return l >> (ur & 63);
    case osl_punct("+"):
        return wrapped(ul + ur);
    case osl_punct("-"):
        return wrapped(ul - ur);
    case osl_punct("*"):
        return wrapped(ul * ur);
    case osl_punct("/"):
        return l / r;
    default:
        return l % r;
    }
}
