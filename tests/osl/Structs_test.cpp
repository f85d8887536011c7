// Structs and arrays, alone and inside each other.
#include "Shading.h"

#include <gtest/gtest.h>

namespace
{
// Declarations in front of a shader, its body, and what that prints.
struct Row {
    const char *what, *declarations, *body, *printed;
};

template <size_t N>
void check(const Row (&rows)[N])
{
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        const std::string source =
            std::string(row.declarations) + "\nshader t() {" + row.body + "}";
        const Shaded shaded = shade(source);
        EXPECT_EQ(row.printed, shaded.compiler + shaded.printed + shaded.messages);
    }
}

const char *const PAIR = "struct Pair { float a; color c; };";
const char *const NESTED = "struct In { float a; color c; };"
                           "struct Out { In i; float list[3]; string s; point p[2]; };";
} // namespace

TEST(Structs, AreMadeAndCopied)
{
    const Row rows[] = {
        {"constructor", PAIR, R"(Pair p = Pair(1, color(2)); printf("%g %g", p.a, p.c);)",
         "1 2 2 2"},
        {"list", PAIR, R"(Pair p = {1, {2, 3, 4}}; printf("%g %g", p.a, p.c);)", "1 2 3 4"},
        {"numbers become colours", PAIR, R"(Pair p = {3, 2}; printf("%g", p.c);)", "2 2 2"},
        {"a copy is its own", PAIR, R"(Pair p = {1, 2}; Pair q = p; q.a = 9; printf("%g", p.a);)",
         "1"},
        {"assigned whole", PAIR, R"(Pair p = {1, 2}, q; q = p; printf("%g %g", q.a, q.c);)",
         "1 2 2 2"},
        {"components of fields", PAIR,
         R"(Pair p = {1, 2}; p.c.g = 5; p.c[2] *= 3; printf("%g", p.c);)", "2 5 6"},
        {"chosen by a condition", PAIR,
         R"(Pair p = {1, 2}, q = {3, 4}; Pair r = u > 0.2 ? q : p; printf("%g", r.a);)", "3"},
    };
    check(rows);
}

TEST(Structs, HoldArraysAndStructs)
{
    const Row rows[] = {
        {"field of a field", NESTED,
         R"(Out o; o.i.a = 7; o.i.c = 2; printf("%g %g", o.i.a, o.i.c);)", "7 2 2 2"},
        {"struct into a field", NESTED, R"(In i = {3, 4}; Out o; o.i = i; printf("%g", o.i.c);)",
         "4 4 4"},
        {"array in a struct", NESTED,
         R"(Out o; o.list[1] = 3; o.list[2] = o.list[1] * 2; printf("%g %g", o.list[2], o.list[0]);)",
         "6 0"},
        {"its length", NESTED, R"(Out o; printf("%d %d", arraylength(o.list), arraylength(o.p));)",
         "3 2"},
        {"copied out and in", NESTED,
         R"(Out o; float l[3] = {1, 2, 3}; o.list = l; l[0] = 9; float m[3] = o.list; printf("%g", m);)",
         "1 2 3"},
        {"component of an element of a field", NESTED,
         R"(Out o; o.p[1] = point(1, 2, 3); o.p[1][2] = 8; printf("%g", o.p[1]);)", "1 2 8"},
        {"lists inside lists", NESTED,
         R"(Out o = {{1, 2}, {3, 4, 5}, "x", {6, 7}}; printf("%g %g %s %g", o.i.c, o.list, o.s, o.p);)",
         "2 2 2 3 4 5 x 6 6 6 7 7 7"},
        {"copy of all of it", NESTED,
         R"(Out o; o.s = "hi"; o.list[0] = 4; Out q = o; o.s = ""; printf("%s %g", q.s, q.list[0]);)",
         "hi 4"},
    };
    check(rows);
}

TEST(Structs, StandInArrays)
{
    const Row rows[] = {
        {"elements", PAIR, R"(Pair l[3]; l[1].a = 5; l[2] = l[1]; printf("%g", l[2].a);)", "5"},
        {"from lists", PAIR, R"(Pair l[2] = {{1, 2}, {3, 4}}; printf("%g %g", l[1].a, l[0].c);)",
         "3 2 2 2"},
        {"index at run time", PAIR,
         R"(Pair l[3] = {{1, 2}, {3, 4}, {5, 6}}; int k = (int)(u * 4); l[k].c[k] = 9; printf("%g %g", l[k].a, l[2].c);)",
         "5 6 6 9"},
        {"an element is a value", PAIR,
         R"(Pair l[2] = {{1, 2}, {3, 4}}; Pair p = l[1]; p.a = 7; printf("%g", l[1].a);)", "3"},
    };
    check(rows);
}

TEST(Structs, GoThroughFunctions)
{
    const Row rows[] = {
        {"returned",
         "struct Q { float a; color c; }; Q f(float a) { Q p; p.a = a; p.c = a; return p; }",
         R"(Q p = f(2); printf("%g %g", p.a, f(3).c);)", "2 3 3 3"},
        {"returned as a list",
         "struct Q { float a; color c; }; Q f(float a) { return {a, {1, 2, a}}; }",
         R"(printf("%g", f(3).c);)", "1 2 3"},
        {"changed", "struct Q { float a; color c; }; void f(output Q p) { p.a += 1; p.c.g = 5; }",
         R"(Q p = {1, 2}; f(p); printf("%g %g", p.a, p.c);)", "2 2 5 2"},
        {"an element changed", "struct Q { float a; }; void f(output Q p) { p.a = 6; }",
         R"(Q l[2] = {{1}, {2}}; f(l[1]); printf("%g %g", l[0].a, l[1].a);)", "1 6"},
        {"arrays of them",
         "struct L { point p; float r; };"
         "L most(L l[]) { L b = l[0]; for (int i = 1; i < arraylength(l); ++i)"
         "  if (l[i].r > b.r) b = l[i]; return b; }",
         R"(L l[3] = {{0, 1}, {1, 5}, {2, 2}}; printf("%g %g", most(l).r, most(l).p);)", "5 1 1 1"},
        {"the same fields, another struct",
         "struct A { float x; }; struct B { float x; };"
         "int f(A a) { return 1; } int f(B b) { return 2; }",
         R"(A a = {1}; B b = {2}; printf("%d%d", f(a), f(b));)", "12"},
        {"lists as arguments",
         "struct Q { float a; color c; }; float f(Q p) { return p.a + p.c[2]; }",
         R"(printf("%g", f({1, {2, 3, 4}}));)", "5"},
    };
    check(rows);
}

TEST(Structs, HaveOperators)
{
    const char *const VECTOR = "struct V { float x, y; };"
                               "V __operator__add__(V a, V b) { return V(a.x + b.x, a.y + b.y); }"
                               "V __operator__mul__(V a, float s) { return V(a.x * s, a.y * s); }"
                               "V __operator__neg__(V a) { return V(-a.x, -a.y); }"
                               "int __operator__lt__(V a, V b) { return a.x < b.x; }"
                               "int __operator__neq__(V a, V b) { return a.x != b.x; }"
                               "int __operator__not__(V a) { return a.x == 0; }"
                               "V __operator__shl__(V a, int n) { return V(a.x, n); }";
    const Row rows[] = {
        {"sum and product", VECTOR, R"(V a = {1, 2}; V b = a + a * 3; printf("%g %g", b.x, b.y);)",
         "4 8"},
        {"sign", VECTOR, R"(V a = {1, 2}; V b = -a; printf("%g %g", b.x, b.y);)", "-1 -2"},
        {"order", VECTOR, R"(V a = {1, 2}, b = {2, 1}; printf("%d%d", a < b, b < a);)", "10"},
        {"unequal", VECTOR, R"(V a = {1, 2}, b = {2, 1}; printf("%d%d", a != b, a != a);)", "10"},
        {"not", VECTOR, R"(V a = {0, 2}; printf("%d", !a);)", "1"},
        {"shift", VECTOR, R"(V a = {1, 2}; V b = a << 5; printf("%g", b.y);)", "5"},
        {"with assignment", VECTOR, R"(V a = {1, 2}; a += a; a *= 2.0; printf("%g %g", a.x, a.y);)",
         "4 8"},
        {"in conditions", VECTOR, R"(V a = {1, 2}, b = {2, 1}; if (a < b) printf("less");)",
         "less"},
    };
    check(rows);
}

TEST(Arrays, AreCopiedAndFilled)
{
    const Row rows[] = {
        {"by a list that is shorter", "", R"(float a[3] = {1, 2}; printf("%g %g", a[0], a[1]);)",
         "1 2"},
        {"of texts", "", R"(string s[2] = {"a", "b"}; s[1] = concat(s[0], s[1]); printf("%s", s);)",
         "a ab"},
        {"of colours", "", R"(color c[2] = {color(1), 0.5}; c[0].g = 3; printf("%g", c);)",
         "1 3 1 0.5 0.5 0.5"},
        {"of matrices", "", R"(matrix m[2]; m[1] = 1; m[1][2][3] = 5; printf("%g", m[1][2][3]);)",
         "5"},
        {"of closures", "",
         R"(closure color c[2]; c[1] = emission(); Ci = c[1] * 2; printf("%s", Ci);)",
         "(2, 2, 2) * emission ()"},
        {"a shorter one into a longer", "",
         R"(float a[2] = {1, 2}; float b[3] = {7, 8, 9}; b = a; printf("%g %g", b[0], b[1]);)",
         "1 2"},
        {"an element as output", "void f(output float x) { x += 1; }",
         R"(float a[3] = {1, 2, 3}; int i = 1; f(a[i]); f(a[2]); printf("%g", a);)", "1 3 4"},
        {"a component as output", "void f(output float x) { x += 1; }",
         R"(color c = color(1, 2, 3); matrix m = 1; f(c[2]); f(c.r); f(m[1][1]); printf("%g %g", c, m[1][1]);)",
         "2 2 4 2"},
        {"of any length, filled",
         "void f(output float x[]) { for (int i = 0; i < arraylength(x); ++i) x[i] = i; }",
         R"(float a[4]; f(a); printf("%g", a);)", "0 1 2 3"},
        {"below 0", "", R"(int a[3] = {1, 2, 3}; int i = -1; a[i] = 5; printf("%d", a);)",
         "5 2 3error: Index [-1] out of range a[0..2]: t.osl:2\n"},
    };
    check(rows);
}

// What a shader prints of a parameter is what it tells about it.
TEST(Arrays, AreFilledByASingleValue)
{
    const struct {
        const char *parameter, *printed;
    } rows[] = {
        {"int a[2] = 7", "7 7"},
        {"float a[3] = 1", "1 1 1"},
        {"color a[2] = color(1, 2, 3)", "1 2 3 1 2 3"},
        {"color a[2] = 0.5", "0.5 0.5 0.5 0.5 0.5 0.5"},
        {"matrix a[2] = 2", "2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2 2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2"},
        {"matrix a[2] = {1, 2}", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.parameter);
        const std::string parameter = row.parameter;
        const std::string format = parameter[0] == 'i' ? "%d" : "%g";
        const std::string source = "shader t(" + parameter + ") { printf(\"" + format + "\", a); }";
        EXPECT_EQ(row.printed, shade(source).printed);
        OSL_Shader shader;
        ASSERT_TRUE(shader.compileText(source, "t.osl", {}));
        EXPECT_EQ(row.printed, shade("shader t(" + parameter.substr(0, parameter.find('=')) +
                                         " = {0}) { printf(\"" + format + "\", a); }",
                                     1, 0, {{"a", shader.parameters()[0].value}})
                                   .printed);
    }
}
