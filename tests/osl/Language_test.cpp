// What shaders print: the language itself.
#include "Shading.h"

#include <gtest/gtest.h>

namespace
{
struct Case {
    const char *what, *body, *printed;
};

template <size_t N>
void check(const Case (&cases)[N], int points = 1)
{
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.printed, printedBy(c.body, points));
    }
}
} // namespace

TEST(Language, Expressions)
{
    const Case cases[] = {
        {"precedence", "printf(\"%d\", 1 + 2 * 3 << 1);", "14"},
        {"shifts keep the sign", "printf(\"%d\", -8 >> 1);", "-4"},
        {"division by 0 is 0", "int z = 0; printf(\"%d %d %g\", 7 / z, 7 % z, u / z);", "0 0 0"},
        {"whole numbers wrap", "int i = 2147483647; i += 1; printf(\"%d\", i);", "-2147483648"},
        {"words for operators", "printf(\"%d\", not 0 and 1 or 0);", "1"},
        {"casts", "printf(\"%d %g\", (int)2.9, (color)2);", "2 2 2 2"},
        {"assignment is a value", "float a, b; a = b = 3; printf(\"%g\", a + b);", "6"},
        {"old and new value", "int i = 1; int a = i++; int b = ++i; printf(\"%d %d %d\", a, b, i);",
         "1 3 3"},
        {"ternary takes one side",
         "int i = 0; int j = u > 0 ? 1 : (i = 5); printf(\"%d %d\", i, j);", "0 1"},
        {"and stops early", "int i = 0; if (u > 2 && (i = 1)) {} printf(\"%d\", i);", "0"},
        {"texts in conditions", "string s = \"\"; if (!s && \"a\") printf(\"ok\");", "ok"},
        {"hexadecimal, exponent", "printf(\"%d %g\", 0xff, 1.5e-3);", "255 0.0015"},
        {"a text that nobody has set is empty",
         "string s; color c; int n = (int)(u - 1.5); while (n > 0) { dict_value(n, \"c\", c); "
         "dict_value(n, \"\", s); n = dict_next(n); } printf(\"%g %s|\", c, s);",
         "0 0 0 |"},
        {"literals side by side", "printf(\"%s\", \"a\" \"b\");", "ab"},
    };
    check(cases);
}

TEST(Language, ComponentsAndArrays)
{
    const Case cases[] = {
        {"components by name", "color c = color(1, 2, 3); c.g *= 2; printf(\"%g\", c);", "1 4 3"},
        {"a number stands for three", "vector v = 2; printf(\"%g\", v * vector(1, 2, 3) + 1);",
         "3 5 7"},
        {"index at run time", "float a[3] = {1, 2, 3}; a[(int)(u * 2)] = 9; printf(\"%g\", a);",
         "1 9 3"},
        {"component of an element",
         "color c[2] = {1, 2}; c[(int)(u * 2)][2] = 7; printf(\"%g\", c);", "1 1 1 2 2 7"},
        {"matrix", "matrix m = 1; m[1][(int)(u * 4)] = 5; printf(\"%g\", m[1][2]);", "5"},
        {"lists", "float a[] = {1, 2}; color c = {1, 2, 3}; printf(\"%d %g\", arraylength(a), c);",
         "2 1 2 3"},
        {"whole arrays", "int a[3] = {1, 2, 3}; int b[3]; b = a; a[0] = 9; printf(\"%d\", b);",
         "1 2 3"},
        {"out of range", "float a[2] = {1, 2}; int i = 5; printf(\"%g\", a[i]);",
         "2error: Index [5] out of range a[0..1]: t.osl:2\n"},
        {"row-major product",
         "printf(\"%g\", transform(matrix(1,0,0,0, 0,1,0,0, 0,0,1,0, 1,2,3,1), "
         "point(1, 1, 1)));",
         "2 3 4"},
    };
    check(cases);
}

TEST(Language, ControlFlowDiffersFromPointToPoint)
{
    const Case cases[] = {
        {"branches", "int i = 0; if (u > 0.4) i = 1; else i = 2; printf(\"%d\", i);", "211"},
        {"break",
         "int n = 0; for (int i = 0; i < 9; i++) { if (i > u * 4) break; n++; } "
         "printf(\"%d\", n);",
         "135"},
        {"continue",
         "int n = 0; for (int i = 0; i < 4; ++i) { if (i < u * 4) continue; n += 1; } "
         "printf(\"%d\", n);",
         "420"},
        {"while", "float x = u; int n = 0; while (x < 1) { x += 0.3; n++; } printf(\"%d\", n);",
         "420"},
        {"do", "int n = 0; do n++; while (n < u * 2); printf(\"%d\", n);", "112"},
        {"exit", "if (u == 0.5) exit(); printf(\"%g \", u);", "0 1 "},
        {"a uniform variable written in a branch",
         "int n = 7; if (u > 0.7) n = 8; printf(\"%d\", n);", "778"},
        {"a loop in a loop, left and entered again",
         "float x = 0; for (int i = 0; i < 2; ++i) for (int j = 0; j < 3; ++j) { "
         "if (u * 2 < j) break; x += 1; printf(\"%g\", x); }",
         "121234123456"},
        {"back after continue",
         "float x = 5; for (int i = 0; i < 4; ++i) { if (mod(u * 2 + i, 2) < 1) continue; "
         "x += 1; printf(\"%g\", x); } printf(\" \");",
         "67 67 67 "},
        {"back after continue, with what was set in the first round",
         "float x; for (int i = 0; i < 4; ++i) { if (i == 0) x = 5; "
         "if (mod(u * 2 + i, 2) < 1) continue; x += 1; printf(\"%g\", x); } printf(\" \");",
         "67 67 67 "},
    };
    check(cases, 3);
}

// Code behind a jump that all points take must not run for any.
TEST(Language, AllPointsJump)
{
    const Case cases[] = {
        {"break",
         "int i; for (i = 0; i < 9; ++i) { if (i == 4) break; i += 0; } printf(\"%d\", i);", "4"},
        {"continue",
         "int n = 0; for (int i = 0; i < 5; ++i) { if (i != 2) continue; n = n + 10; } "
         "printf(\"%d\", n);",
         "10"},
        {"endless loop",
         "int k = 0; while (1) { ++k; if (k > 5) break; if (k == 2) continue; k += 1; } "
         "printf(\"%d\", k);",
         "7"},
    };
    check(cases);
    const char *early = "float f(float x) { if (x < 9) return 1; return 2; }\n"
                        "shader t() { printf(\"%g %g\", f(3), f(u * 20)); }";
    EXPECT_EQ("1 11 2", shade(early, 2).printed);
}

TEST(Language, Functions)
{
    const struct {
        const char *what, *source, *printed;
    } cases[] = {
        {"outputs",
         "void f(output float a, float b) { a = b; } shader t() { float x[2] = {1, 2}; "
         "f(x[1], 5); printf(\"%g\", x); }",
         "1 5"},
        {"arguments are the variables themselves",
         "void f(float a, output float b) { b = 2; printf(\"%g\", a); } "
         "shader t() { float x = u; f(x, x); }",
         "2"},
        {"overloads by argument",
         "int f(int a) { return 1; } int f(float a) { return 2; } "
         "shader t() { printf(\"%d%d\", f(1), f(1.0)); }",
         "12"},
        {"overloads by result",
         "float f() { return 1; } color f() { return 2; } "
         "shader t() { color c = f(); printf(\"%g\", c); }",
         "2 2 2"},
        {"arrays of any length",
         "float sum(float a[]) { float s = 0; for (int i = 0; i < "
         "arraylength(a); ++i) s += a[i]; return s; } "
         "shader t() { printf(\"%g\", sum({1, 2, 3})); }",
         "6"},
        {"functions inside",
         "shader t() { float twice(float a) { return 2 * a; } "
         "printf(\"%g\", twice(4)); }",
         "8"},
        {"closures mix", "shader t() { printf(\"%s\", mix(emission(), transparent(), 0.25)); }",
         "(0.75, 0.75, 0.75) * emission ()\n\t+ (0.25, 0.25, 0.25) * transparent ()"},
        {"defaults that follow from others",
         "shader t(float a = 2, color c = a * 2, float d[2] = {a, c[1]}, string s = "
         "format(\"%g\", a)) { printf(\"%g %g %s\", c, d, s); }",
         "4 4 4 2 4 2"},
        {"constants by their defaults",
         "shader t(float a = 1, color c = 2) { printf(\"%d %d %d\", isconstant(a + 1), "
         "isconstant(c), isconstant(u)); }",
         "1 1 0"},
        {"arrays of structs",
         "struct S { float a; color c[2]; }; shader t(S p[2] = {{1, {2, 3}}, {4, {5, 6}}}) { "
         "S q[2]; q = p; q[1].c[1][2] = 9; int i = (int)(u * 2); "
         "printf(\"%g %g\", q[i].c, p[i].a); }",
         "5 5 5 6 6 9 4"},
        {"structs",
         "struct S { color c; float a[2]; }; S f(S s) { S r = s; r.a[1] = 7; return r; } "
         "shader t() { S s = {{1, 2, 3}, {4, 5}}; s = f(s); printf(\"%g %g\", s.c, s.a); }",
         "1 2 3 4 7"},
        {"operators",
         "struct V { float x; }; V __operator__add__(V a, V b) { return V(a.x + b.x); } "
         "shader t() { V a = {1}; V b = {2}; a += b; printf(\"%g\", (a + b).x); }",
         "5"},
        {"distance to a line, in the language",
         "shader t() { printf(\"%g\", distance(point(0), point(2, 0, 0), point(1, 3, 0))); }", "3"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const Shaded shaded = shade(c.source);
        EXPECT_EQ(c.printed, shaded.compiler + shaded.printed);
    }
}

TEST(Language, Derivatives)
{
    const Case cases[] = {
        {"product", "float x = u * u; printf(\"%g\", Dx(x));", "1"},
        {"into the same variable", "float x = u; x = x * x; printf(\"%g\", Dx(x));", "1"},
        {"through an array", "float a[2]; a[1] = sin(u); printf(\"%.4g\", Dx(a[1]));", "0.8776"},
        {"floor has none", "printf(\"%g\", Dx(floor(u) + u));", "1"},
        {"constants have none", "float x = 3; printf(\"%g %g\", Dx(x), Dy(u));", "0 0"},
        {"of a point", "printf(\"%g\", Dx(P * 2));", "2 0 0"},
    };
    check(cases);
}

TEST(Language, Preprocessor)
{
    const struct {
        const char *what, *source, *printed;
    } cases[] = {
        {"paste and quote",
         "#define CAT(a, b) a ## b\n#define STR(x) #x\n"
         "shader t() { int ab = 3; printf(\"%d %s\", CAT(a, b), STR(a + \"b\")); }",
         "3 a + \"b\""},
        {"arguments are quoted as they stand",
         "#define S(x) #x\n#define T(f) S(f(1))\n"
         "shader t() { printf(\"%s\", T(sin)); }",
         "sin(1)"},
        {"more arguments",
         "#define P(f, ...) printf(f, __VA_ARGS__)\nshader t() { P(\"%d%d\", 1, 2); }", "12"},
        {"a macro's own name", "#define x x + 1\nshader t(int y = 1) { }", ""},
        {"conditions",
         "#if defined(FOO) || OSL_VERSION\n#endif\n#if OSL_VERSION >= 10900\n"
         "shader t() { printf(\"new\"); }\n#else\n#endif",
         "new"},
        {"defined without brackets",
         "#define A\n#if defined A && !defined B\nshader t() { "
         "printf(\"ok\"); }\n#endif",
         "ok"},
        {"functions in conditions",
         "#define BIG(x) ((x) > 2 ? 1 : 0)\n#if BIG(3) && 1 << 2 == 4 && 0xfUL == 017\n"
         "shader t() { printf(\"ok\"); }\n#endif",
         "ok"},
        {"what && does not reach may divide by 0",
         "#define Z 0\n#if Z && 1 / Z\n#else\nshader t() { printf(\"ok\"); }\n#endif", "ok"},
        {"the mark of UTF-8", "\xef\xbb\xbfshader t() { printf(\"ok\"); }", "ok"},
        {"lines", "\n\nshader t() { printf(\"%d\", __LINE__); }", "3"},
        {"arguments on several lines",
         "#define F(a, b) a + b\nshader t() { printf(\"%d\", F(1,\n 2)); }", "3"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.printed, shade(c.source).printed);
    }
}

// Points part in loops and functions; those that wait go on, whatever the others do.
TEST(Language, PointsThatWaitGoOn)
{
    const Case cases[] = {
        {"others return behind continue",
         "int find(float x) { float keys[4] = {.1, .3, .6, .9};"
         " for (int i = 0; i < 4; i++) { if (keys[i] < x) continue; return i; } return 4; }"
         "printf(\"%d \", find(u));",
         "0 1 2 3 4 "},
        {"others return behind break",
         "int f(int p) { int i = 0; for (i = 0; i < 3; i++) { if (p == 1) break; return 7; }"
         " return 100 + i; }"
         "printf(\"%d \", f((int)(u * 4)));",
         "7 100 7 7 7 "},
        {"others exit behind break",
         "for (int i = 0; i < 3; i++) { if (u == .25) break; exit(); } printf(\"%g\", u);", "0.25"},
        {"others exit behind return",
         "int g() { if (u == .25) return 5; exit(); return 6; } printf(\"%d\", g());", "5"},
        {"others exit in a loop of a loop",
         "int p = (int)(u * 4), r = 0; for (int j = 0; j < 3; j++) {"
         " for (int i = 0; i < 5; i++) { if (i == p) break; if (i == 3) exit(); } r++; }"
         "printf(\"%d:%d \", p, r);",
         "0:3 1:3 2:3 3:3 "},
        {"a loop's step sees what continue left",
         "int p = (int)(u * 4), x, i; string s = \"\";"
         "for (i = 0; i < 4; s = concat(s, format(\"%d,\", x)), i++) {"
         " x = i + 10 * p; if ((i + p) % 2 == 0) continue; x = 99; } printf(\"%s \", s);",
         "0,99,2,99, 99,11,99,13, 20,99,22,99, 99,31,99,33, 40,99,42,99, "},
        {"and so does its condition",
         "int p = (int)(u * 4), x, i = 0;"
         "do { x = i < 3 + p; i++; if (i % 2 == p % 2) continue; x = 0; } while (x);"
         "printf(\"%d \", i);",
         "1 2 1 2 1 "},
    };
    check(cases, 5);
}
