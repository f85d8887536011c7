// The expressions of #if by recursive descent: one call a level of precedence.
#include "tests/support/PlainMacros.h"

#include "UT/UT_String.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

namespace
{
// The infix operators, those that bind tightest first.
const char *const LEVELS[] = {"[*/%]", "\\+|-(?!\\d)",          "[<>]=?",
                              "[=!]=", "&(?!&)|\\|(?!\\|)|\\^", "&&|\\|\\|"};

int64_t applied(const std::string &op, int64_t a, int64_t b)
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

class Parser
{
public:
    Parser(const PlainMacros &macros, const std::string &text) : myMacros(macros), in{text} {}

    int run()
    {
        in.take("\\s*");
        const int64_t value = in.isAtEnd() ? 0 : level(6);
        in.take("\\s*");
        return isGood && in.isAtEnd() ? value != 0 : -1;
    }

private:
    bool expect(const char *form) { return isGood = isGood && in.took(form); }
    // Operators of one level go from left to right.
    int64_t level(size_t precedence)
    {
        if (precedence == 0)
            return operand();
        int64_t left = level(precedence - 1);
        for (in.take("\\s*"); isGood; in.take("\\s*")) {
            const std::string op = in.take(LEVELS[precedence - 1]);
            if (op.empty())
                break;
            left = applied(op, left, level(precedence - 1));
        }
        return left;
    }

    int64_t operand()
    {
        in.take("\\s*");
        if (in.took("!(?!=)"))
            return operand() == 0;
        if (in.took("~"))
            return 0xFFFF - (operand() & 0xFFFF);
        if (in.next() == '(')
            return called([&] { return level(6); });
        const int64_t sign = in.took("-(?=\\d)") ? -1 : 1;
        const std::string digits = in.take("0x[0-9a-fA-F]*|\\d+");
        if (!digits.empty())
            return sign * std::min<int64_t>(std::strtoll(digits.c_str(), nullptr, 0), INT32_MAX);
        const std::string name = takeName(in);
        return !isGood             ? 0
               : name == "defined" ? called([&] { return valueOf(takeName(in), true); })
               : name == "environment"
                   ? called([&] { return std::getenv(takeName(in).c_str()) ? 1 : 0; })
               : name == "access" ? called([&] { return isReadable(takeText(in)); })
               : name == "strcmp" ? called([&] { return compared(); })
                                  : valueOf(name, false);
    }

    template <typename Function>
    int64_t called(Function function)
    {
        const int64_t value = expect("\\s*\\(") ? function() : 0;
        return expect("\\s*\\)") ? value : 0;
    }

    static bool isReadable(const std::string &path)
    {
        UT_String expanded(path.c_str(), true);
        expanded.substituteVariables();
        return access(expanded, R_OK) == 0;
    }

    int64_t compared()
    {
        const std::string left = takeTextOrBody();
        const int order = expect("\\s*,\\s*") ? left.compare(takeTextOrBody()) : 0;
        return order < 0 ? -1 : order > 0;
    }

    std::string takeName(PlainScanner &from)
    {
        const std::string name = from.take("[A-Za-z_]\\w*"), start = name.substr(0, 1024);
        isGood = isGood && !name.empty();
        from.at -= name.size() - start.size();
        return start;
    }

    // A name or a string in double quotes.
    std::string takeText(PlainScanner &from)
    {
        const std::string quoted = from.take("\"([^\"\\\\]|\\\\\"|\\\\(?!\"))*\"");
        isGood = isGood && quoted.size() <= 1026;
        return quoted.empty() ? takeName(from) : quoted.substr(1, quoted.size() - 2);
    }

    std::string takeTextOrBody()
    {
        const std::string own = takeText(in);
        const PlainMacros::Macro *macro = isGood ? myMacros.find(own) : nullptr;
        PlainScanner body{macro != nullptr ? macro->body : ""};
        body.take("\\s*");
        return macro == nullptr ? own : takeText(body);
    }

    int64_t valueOf(const std::string &name, bool isAskedFor)
    {
        const PlainMacros::Macro *macro = myMacros.find(name);
        if (macro == nullptr || isAskedFor)
            return macro != nullptr;
        if (macro->body.find_first_not_of(" \t\n\v\f\r") == std::string::npos)
            return isGood = false;
        const int64_t value = std::strtoll(macro->body.c_str(), nullptr, 10);
        return std::clamp<int64_t>(value, INT32_MIN, INT32_MAX);
    }

    const PlainMacros &myMacros;
    PlainScanner in;
    bool isGood = true;
};
} // namespace

int PlainMacros::evaluate(const std::string &text) const
{
    return Parser(*this, text).run();
}
