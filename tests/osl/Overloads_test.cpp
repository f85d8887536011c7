// Every function of the library with every kind of arguments it takes.
#include "Shading.h"

#include <gtest/gtest.h>

namespace
{
const char *const TRIPLES[] = {"color", "point", "vector", "normal"};

// A text with "T" replaced by a type's name.
std::string of(std::string text, const std::string &type)
{
    for (size_t at = text.find('T'); at != std::string::npos; at = text.find('T', at + 1))
        text.replace(at, 1, type);
    return text;
}
} // namespace

// f(T(a, b, c)) is T(f(a), f(b), f(c)).
TEST(Overloads, GoByComponents)
{
    const char *const unary[] = {"radians", "degrees",     "cos",   "sin",  "tan",   "acos",
                                 "asin",    "atan",        "cosh",  "sinh", "tanh",  "exp",
                                 "exp2",    "expm1",       "log",   "log2", "log10", "logb",
                                 "sqrt",    "inversesqrt", "cbrt",  "abs",  "fabs",  "sign",
                                 "floor",   "ceil",        "round", "trunc"};
    for (const std::string name : unary) {
        for (const char *type : TRIPLES) {
            const std::string body =
                "float a = u * 1.5 + 0.1, b = 0.3, c = u + 0.2; T x = " + name +
                "(T(a, b, c)); T y = T(" + name + "(a), " + name + "(b), " + name +
                "(c)); printf(\"%d\", x == y);";
            EXPECT_EQ("1", printedBy(of(body, type))) << name << " of a " << type;
        }
    }
    const char *const more[] = {
        "atan2(@, T(2, 3, 4))",         "pow(@, T(2, 3, 4))",
        "fmod(@, T(0.2, 0.3, 0.4))",    "mod(@, T(0.2, 0.3, 0.4))",
        "min(@, T(0.2, 0.3, 0.4))",     "max(@, T(0.2, 0.3, 0.4))",
        "step(@, T(0.2, 0.3, 0.4))",    "clamp(@, T(0.2), T(0.4))",
        "mix(@, T(2), T(0.1, 0.5, 1))", "smoothstep(T(0), T(1), @)",
        "linearstep(T(0), T(2), @)",    "smooth_linearstep(T(0), T(1), @, T(0.1))",
        "select(@, T(7), T(0, 1, 0))"};
    for (const std::string form : more) {
        for (const char *type : TRIPLES) {
            const size_t at = form.find('@');
            const std::string all = form.substr(0, at) + "x" + form.substr(at + 1);
            std::string body = "T x = T(0.3, u, 0.9); T r = " + all + ";";
            for (int i = 0; i < 3; ++i) {
                const std::string index = "[" + std::to_string(i) + "]";
                body += " { T y = T(x" + index + "); T s = " + form.substr(0, at) + "y" +
                        form.substr(at + 1) + "; printf(\"%d\", s" + index + " == r" + index +
                        "); }";
            }
            EXPECT_EQ("111", printedBy(of(body, type))) << form << " of a " << type;
        }
    }
}

// A number may stand for three.
TEST(Overloads, TakeNumbersForTriples)
{
    const char *const forms[] = {"pow(x, 2) == pow(x, T(2))",
                                 "max(x, 0.4) == max(x, T(0.4))",
                                 "min(0.4, x) == min(T(0.4), x)",
                                 "clamp(x, 0, 0.5) == clamp(x, T(0), T(0.5))",
                                 "mix(x, T(1), 0.5) == mix(x, T(1), T(0.5))",
                                 "mod(x, 0.2) == mod(x, T(0.2))",
                                 "fmod(x, 0.2) == fmod(x, T(0.2))",
                                 "step(0.5, x) == step(T(0.5), x)",
                                 "smoothstep(0, 1, x) == smoothstep(T(0), T(1), x)",
                                 "x * 2 == T(2) * x",
                                 "1 - x == T(1) - x",
                                 "x / 2 == x / T(2)"};
    for (const std::string form : forms) {
        for (const char *type : TRIPLES)
            EXPECT_EQ("1",
                      printedBy(of("T x = T(0.3, u, 0.9); printf(\"%d\", " + form + ");", type)))
                << form << " of a " << type;
    }
}

TEST(Overloads, OfNoiseGiveWhatIsWanted)
{
    const char *const calls[] = {"noise(P)",
                                 "snoise(P, u)",
                                 "cellnoise(u)",
                                 "hashnoise(u, 0.3)",
                                 "pnoise(P, point(2))",
                                 "psnoise(P, u, point(3), 2)",
                                 "noise(\"perlin\", P)",
                                 "noise(\"cell\", P, u)",
                                 "noise(\"simplex\", u)",
                                 "noise(\"gabor\", P, \"bandwidth\", 2.0, \"impulses\", 8.0)",
                                 "pnoise(\"hash\", u, 4)"};
    for (const std::string call : calls) {
        SCOPED_TRACE(call);
        for (const char *type : TRIPLES) {
            const std::string body = of("T a = @; printf(\"%d\", a == (T)@);", type);
            std::string full = body;
            for (size_t at = full.find('@'); at != std::string::npos; at = full.find('@'))
                full.replace(at, 1, call);
            EXPECT_EQ("1", printedBy(full));
        }
        EXPECT_EQ("1",
                  printedBy("float f = " + call + "; printf(\"%d\", f == (float)" + call + ");"));
        // Where nothing is wanted it is a float.
        EXPECT_EQ("", compilerSays("shader t() { float f = abs(" + call + "); }"));
    }
}

TEST(Overloads, AreChosenByTheirArguments)
{
    const char *const declarations =
        "int f(int x) { return 1; } int f(float x) { return 2; } int f(color x) { return 3; }"
        "int f(vector x) { return 4; } int f(string x) { return 5; } int f(float x[2]) { return 6; "
        "}"
        "int f(float x[]) { return 7; } int f(matrix m) { return 8; }"
        "int f(closure color c) { return 9; } int f(float x, float y) { return 10; }\n";
    const struct {
        const char *argument, *chosen;
    } rows[] = {{"1", "1"},          {"1.0", "2"},      {"color(1)", "3"}, {"vector(1)", "4"},
                {"\"a\"", "5"},      {"two", "6"},      {"three", "7"},    {"matrix(1)", "8"},
                {"emission()", "9"}, {"1, 2", "10"},    {"1.5, 2", "10"},  {"u", "2"},
                {"(int)u", "1"},     {"P * 2 - P", "4"}};
    for (const auto &row : rows) {
        const Shaded shaded = shade(std::string(declarations) +
                                    "shader t() { float two[2], three[3]; printf(\"%d\", f(" +
                                    row.argument + ")); }");
        EXPECT_EQ(row.chosen, shaded.compiler + shaded.printed) << row.argument;
    }
}

TEST(Overloads, MayBeDefinedLater)
{
    const struct {
        const char *what, *source, *printed;
    } rows[] = {
        {"behind its use",
         "float f(float x); shader t() { printf(\"%g\", f(3)); } float f(float x) { return x + 1; "
         "}",
         "4"},
        {"in another function",
         "float f(float x); float g(float x) { return 2 * f(x); } float f(float x) { return x + 1; "
         "}"
         "shader t() { printf(\"%g\", g(3)); }",
         "8"},
        {"of each other without end",
         "float f(float x); float g(float x) { return f(x); } float f(float x) { return g(x); }"
         "shader t() { g(1); }",
         "t.osl:1: error: function 'g' calls itself\n"},
        {"a closure",
         "closure color f(float x); shader t() { printf(\"%s\", f(2)); }"
         "closure color f(float x) { return x * emission(); }",
         "(2, 2, 2) * emission ()"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const Shaded shaded = shade(row.source);
        EXPECT_EQ(row.printed, shaded.compiler + shaded.printed);
    }
}
