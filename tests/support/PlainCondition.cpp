// The expressions of #if by recursive descent: one call a level of precedence.
#include "tests/support/PlainMacros.h"

#include "UT/UT_String.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

namespace
{
class Parser
{
public:
    Parser(const PlainMacros &macros, const std::string &text) : myMacros(macros), myText(text) {}

    int run()
    {
        if (skipSpace() == myText.size())
            return 0;
        const int64_t value = level(7);
        return !isGood || skipSpace() < myText.size() ? -1 : value != 0 ? 1 : 0;
    }

private:
    size_t skipSpace()
    {
        while (i < myText.size() && std::isspace(static_cast<unsigned char>(myText[i])) != 0)
            ++i;
        return i;
    }

    int64_t fail() { return isGood = false, 0; }

    // The operator that comes next, "" in front of anything else.
    std::string nextOperator()
    {
        skipSpace();
        if (myText[i] == '-' && std::isdigit(static_cast<unsigned char>(myText[i + 1])) != 0)
            return "";
        for (const char *op : {"&&", "||", "==", "!=", "<=", ">=", "&", "|", "^", "<",
                               ">",  "+",  "-",  "*",  "/",  "%",  "!", "~", "(", ")"}) {
            if (myText.compare(i, std::string(op).size(), op) == 0)
                return op;
        }
        return "";
    }

    static int levelOf(const std::string &op)
    {
        return op == "*" || op == "/" || op == "%"                  ? 2
               : op == "+" || op == "-"                             ? 3
               : op == "<" || op == ">" || op == "<=" || op == ">=" ? 4
               : op == "==" || op == "!="                           ? 5
               : op == "&" || op == "|" || op == "^"                ? 6
               : op == "&&" || op == "||"                           ? 7
                                                                    : 0;
    }

    static int64_t applied(const std::string &op, int64_t a, int64_t b)
    {
        if (b == 0 && (op == "/" || op == "%"))
            return op == "/" ? 1000 : 0;
        const int64_t exact = op == "*"    ? a * b
                              : op == "/"  ? a / b
                              : op == "%"  ? a % b
                              : op == "+"  ? a + b
                              : op == "-"  ? a - b
                              : op == "<"  ? a < b
                              : op == ">"  ? a > b
                              : op == "<=" ? a <= b
                              : op == ">=" ? a >= b
                              : op == "==" ? a == b
                              : op == "!=" ? a != b
                              : op == "&"  ? (a & b)
                              : op == "|"  ? (a | b)
                              : op == "^"  ? (a ^ b)
                              : op == "&&" ? (a != 0 && b != 0)
                                           : (a != 0 || b != 0);
        return static_cast<int32_t>(static_cast<uint32_t>(exact & 0xFFFFFFFF));
    }

    // Operators of one level go from left to right.
    int64_t level(int precedence)
    {
        if (precedence == 1)
            return operand();
        int64_t left = level(precedence - 1);
        for (std::string op; isGood && levelOf(op = nextOperator()) == precedence;) {
            i += op.size();
            const int64_t right = level(precedence - 1);
            left = applied(op, left, right);
        }
        return left;
    }

    int64_t operand()
    {
        const std::string op = nextOperator();
        i += op.size();
        if (op == "!")
            return operand() == 0;
        if (op == "~")
            return 0xFFFF - (operand() & 0xFFFF);
        if (op == "(") {
            const int64_t value = level(7);
            return isGood && taken(')') ? value : fail();
        }
        if (!op.empty())
            return fail();
        if (myText[i] == '-')
            return ++i, -number();
        if (std::isdigit(static_cast<unsigned char>(myText[i])) != 0)
            return number();
        const std::string name = text(myText, i, false);
        return !isGood                 ? 0
               : name == "defined"     ? called([&] { return isDefined(text(myText, i, false)); })
               : name == "environment" ? called([&] { return isSet(text(myText, i, false)); })
               : name == "access"      ? called([&] { return isReadable(text(myText, i, true)); })
               : name == "strcmp"      ? called([&] { return compared(); })
                                       : valueOf(name);
    }

    bool isDefined(const std::string &name) const { return myMacros.find(name) != nullptr; }
    static bool isSet(const std::string &name) { return std::getenv(name.c_str()) != nullptr; }

    static bool isReadable(const std::string &path)
    {
        UT_String expanded(path.c_str(), true);
        expanded.substituteVariables();
        return access(expanded, R_OK) == 0;
    }

    int64_t compared()
    {
        const std::string left = textOrBody();
        if (!taken(','))
            return fail();
        skipSpace();
        const int order = left.compare(textOrBody());
        return order < 0 ? -1 : order > 0;
    }

    template <typename Function>
    int64_t called(Function function)
    {
        if (!taken('('))
            return fail();
        const int64_t value = function();
        return isGood && taken(')') ? value : fail();
    }

    bool taken(char c) { return myText[skipSpace()] == c && ++i > 0; }

    // A number of at most 31 bits.
    int64_t number()
    {
        const bool isHex = myText.compare(i, 2, "0x") == 0;
        const unsigned base = isHex ? 16 : myText[i] == '0' ? 8 : 10;
        i += isHex ? 2 : 0;
        int64_t value = 0;
        for (bool ends = false;; ++i) {
            const auto c = static_cast<unsigned char>(myText[i]);
            if (isHex ? std::isxdigit(c) == 0 : std::isdigit(c) == 0)
                return value;
            const int digit = std::isdigit(c) != 0 ? c - '0' : std::tolower(c) - 'a' + 10;
            ends = ends || digit >= static_cast<int>(base);
            value = ends ? value : std::min<int64_t>(value * base + digit, INT32_MAX);
        }
    }

    // A name, or with `allowsQuotes` a string in double quotes.
    std::string text(const std::string &from, size_t &at, bool allowsQuotes)
    {
        const size_t start = at;
        if (allowsQuotes && from[at] == '"') {
            size_t end = from.find('"', at + 1);
            while (end != std::string::npos && end > start + 1 && from[end - 1] == '\\')
                end = from.find('"', end + 1);
            if (end == std::string::npos || end - start > 1025)
                return fail(), "";
            at = end + 1;
            return from.substr(start + 1, end - start - 1);
        }
        const auto isLetter = [&](char c) {
            return c == '_' || std::isalpha(static_cast<unsigned char>(c)) != 0;
        };
        if (!isLetter(from[at]))
            return fail(), "";
        while (at - start < 1024 &&
               (isLetter(from[at]) || std::isdigit(static_cast<unsigned char>(from[at])) != 0))
            ++at;
        return from.substr(start, at - start);
    }

    std::string textOrBody()
    {
        const std::string own = text(myText, i, true);
        const PlainMacros::Macro *macro = isGood ? myMacros.find(own) : nullptr;
        size_t start = 0;
        return macro == nullptr ? own : text(trimmed(macro->body), start, true);
    }

    static std::string trimmed(const std::string &body)
    {
        const size_t start = body.find_first_not_of(" \t\n\v\f\r");
        return start == std::string::npos ? "" : body.substr(start);
    }

    int64_t valueOf(const std::string &name)
    {
        const PlainMacros::Macro *macro = myMacros.find(name);
        if (macro == nullptr)
            return 0;
        const std::string body = trimmed(macro->body);
        if (body.empty())
            return fail();
        const long long value = std::strtoll(body.c_str(), nullptr, 10);
        return std::max<long long>(INT32_MIN, std::min<long long>(value, INT32_MAX));
    }

    const PlainMacros &myMacros;
    const std::string myText;
    size_t i = 0;
    bool isGood = true;
};
} // namespace

int PlainMacros::evaluate(const std::string &text) const
{
    return Parser(*this, text).run();
}
