// What the machine does beyond expressions: outputs, closures, messages, budgets.
#include "Shading.h"

#include <gtest/gtest.h>

TEST(Machine, ResultsDoNotDependOnTheWidth)
{
    const char *body = "float s = 0; for (int i = 0; i < 8; ++i) { if (i > u * 8) break; "
                       "s += (float)noise(P * i) * sin(u * i) + pow(u, 1.5); } "
                       "color c = mix(color(1, 0, 0), color(noise(u)), s); "
                       "printf(\"%a %a %a;\", c, Dx(s * u), normalize(vector(s, u, 1)));";
    const std::string wide = printedBy(body, 37, 16);
    EXPECT_EQ(wide, printedBy(body, 37, 8));
    EXPECT_EQ(wide, printedBy(body, 37, 1));
}

TEST(Machine, PointsPrintInOrder)
{
    EXPECT_EQ("a0b0a0.5b0.5a1b1", printedBy("printf(\"a%g\", u); printf(\"b%g\", u);", 3));
}

TEST(Machine, StopsLoopsWithoutEnd)
{
    EXPECT_EQ("error: Shader [t] takes too long: a loop without end?\n",
              printedBy("int i = 0; while (1) i++;"));
    EXPECT_EQ("error: Shader [t] takes too long: a loop without end?\n",
              printedBy("float x = u; while (x < 2) x *= 1;", 3));
    EXPECT_NE(std::string::npos,
              printedBy("string s = \"a\"; while (1) s = concat(s, s);").find("takes too long"));
    EXPECT_NE(
        std::string::npos,
        printedBy("closure color c = 0; while (1) c += emission();").find("too many closures"));
}

TEST(Machine, ClosuresPrint)
{
    const struct {
        const char *what, *body, *printed;
    } cases[] = {
        {"component", "printf(\"%s\", reflection(N, 1.5));",
         "(1, 1, 1) * reflection ((0, 0, 1), 1.5)"},
        {"weights multiply",
         "closure color c = 0.5 * emission(); printf(\"%s\", color(1, 0, 0) * c);",
         "(0.5, 0, 0) * emission ()"},
        {"keywords: the last counts",
         "printf(\"%s\", diffuse(N, \"label\", \"a\", \"label\", \"b\"));",
         "(1, 1, 1) * diffuse ((0, 0, 1), \"label\", \"b\")"},
        {"null", "closure color c = 0; printf(\"[%s]\", c * u);", "[]"},
        {"one in another", "printf(\"%s\", layer(transparent(), emission()));",
         "(1, 1, 1) * layer ((1, 1, 1) * transparent (), (1, 1, 1) * emission ())"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.printed, printedBy(c.body));
    }
}

TEST(Machine, GivesOutputsAndClosures)
{
    OSL_Shader shader;
    ASSERT_TRUE(
        shader.compileText("surface t(float k = 1, output color c = 0, output float f[2] = {0, 0}) "
                           "{ c = color(u, k, 0); f[1] = u; Ci = k * diffuse(N); }",
                           "t.osl", {}))
        << shader.messages();
    const auto program = shader.link({{"k", OSL_Value::ofInt(3)}});
    ASSERT_NE(nullptr, program);
    RecordingShading renderer;
    OSL_Context context(program, renderer);
    const float u[] = {0.25f, 0.75f};
    OSL_Points points;
    points.count = 2;
    points.u.value[0] = u;
    ASSERT_TRUE(context.run(points));
    const OSL_Output *c = context.output("c");
    ASSERT_NE(nullptr, c);
    EXPECT_EQ(0.75f, c->floats[1]);
    EXPECT_EQ(3.0f, c->floats[c->stride]);
    EXPECT_EQ(0.25f, context.output("f")->floats[c->stride]);
    EXPECT_EQ(nullptr, context.output("k"));
    std::vector<OSL_ClosureComponent> components;
    context.flatten(context.output("Ci")->ints[1], components);
    ASSERT_EQ(1u, components.size());
    EXPECT_EQ("diffuse", components[0].name());
    EXPECT_EQ(3.0f, components[0].weight.x);
    EXPECT_NE(nullptr, components[0].floats("N"));
    EXPECT_EQ(nullptr, components[0].floats("alpha"));
}

// For those who deal out time.
TEST(Machine, CountsStepsOfPointsByWhatTheyTakeAtAnyWidth)
{
    const auto steps = [](const std::string &body, int count, int width) {
        OSL_Shader shader;
        EXPECT_TRUE(
            shader.compileText("surface t(output point p = 0) { " + body + " }", "t.osl", {}));
        RecordingShading renderer;
        for (int i = 0; i < 64; ++i)
            renderer.u[i] = static_cast<float>(i) / 8;
        OSL_Context context(shader.link({}), renderer, width);
        OSL_Points points;
        for (int first = 0; first < count; first += context.width()) {
            points.count = std::min(context.width(), count - first);
            points.u.value[0] = renderer.u + first;
            EXPECT_TRUE(context.run(points));
        }
        return context.stepsDone();
    };
    EXPECT_EQ(8 * steps("p = (vector)noise(u);", 1, 8), steps("p = (vector)noise(u);", 8, 8));
    EXPECT_GE(steps("p = (vector)noise(u);", 1, 1), 50 + steps("p = (float)noise(u);", 1, 1));
    for (const char *ways : {"for (int i = 0; i < u; ++i) p += noise(u); if (u > .3) { p *= 2; "
                             "if (u > 2) return; p = noise(p); } else p = 3 * p;",
                             "int i = 0; while (1) { p += u; if (++i > u) break; if (i > 3) "
                             "continue; p *= sin(u); } if (u > 1) exit(); p = sqrt(p);",
                             "warning(\"%g\", u); p = noise(p);"}) {
        const auto alone = steps(ways, 16, 1);
        EXPECT_EQ(alone, steps(ways, 16, 8)) << ways;
        EXPECT_EQ(alone, steps(ways, 16, 16)) << ways;
    }
}

TEST(Machine, AClosureKeepsItsOwnWeightBesideThoseItIsGiven)
{
    EXPECT_EQ(
        "(2, 2, 2) * emission ()\n\t+ (12, 12, 12) * emission ()\n\t+ (1, 1, 1) * emission ()",
        shade("shader t() { closure color e = emission();"
              " closure color both = 2 * e + 3 * (4 * e); printf(\"%s\", both + e); }")
            .printed);
}

// Also where all lanes of a branch have left, or differ in what they give.
TEST(Machine, ClosuresDoNotHangOnTheWidthOfABatch)
{
    for (const char *body :
         {"if (u < .7) { if (v < 2) { return; } Ci = emission(); } Ci = 2 * emission();",
          "for (int i = 0; i < 2; i++) { if (u < .7) { continue; Ci = emission(); } }",
          "if (u > .2) Ci = 3 * reflection(N, u); else Ci = u * emission();"}) {
        const std::string source = "surface t() { " + std::string(body) + " printf(\"%s;\", Ci); }";
        const std::string alone = shade(source, 3, 1).printed;
        EXPECT_EQ(alone, shade(source, 3, 8).printed) << body;
        EXPECT_EQ(alone, shade(source, 3, 16).printed) << body;
    }
}

TEST(Machine, ClosuresOfTooManyPartsStopIt)
{
    for (const char *body : {"Ci = emission(); for (int i = 0; i < 40; i++) Ci = Ci + Ci;",
                             "closure color w = emission(); for (int i = 0; i < 15; i++) w = w + w;"
                             " Ci = layer(w, w); for (int i = 0; i < 15; i++) Ci = Ci + Ci;",
                             "Ci = emission(); for (int i = 0; i < 40; i++) Ci = layer(Ci, Ci);"})
        EXPECT_NE(std::string::npos, shade("surface t() { " + std::string(body) + " }")
                                         .messages.find("makes too many closures"))
            << body;
    EXPECT_EQ("(6, 6, 6) * emission ()\n\t+ (6, 6, 6) * holdout ()",
              shade("surface t() { closure color c = 3 * (emission() + holdout());"
                    " printf(\"%s\", 2 * c); }")
                  .printed);
}

TEST(Machine, RefusesBindingsThatDoNotFit)
{
    EXPECT_EQ("the shader has no parameter 'b'\n",
              shade("shader t(float a = 1) {}", 1, 0, {{"b", OSL_Value::ofInt(1)}}).compiler);
    EXPECT_EQ("parameter 'a' is a float, not a string\n",
              shade("shader t(float a = 1) {}", 1, 0, {{"a", OSL_Value::ofString("x")}}).compiler);
    OSL_Value three;
    three.type = osl_Type(osl_Type::FLOAT, 3);
    three.floats = {1, 2, 3};
    EXPECT_EQ("3 2", shade("shader t(float a[] = {0}) { printf(\"%d %g\", arraylength(a), a[1]); }",
                           1, 0, {{"a", three}})
                         .printed);
}

TEST(Machine, AsksTheRenderer)
{
    const struct {
        const char *what, *body, *printed;
    } cases[] = {
        {"attribute", "int a = 0; printf(\"%d\", getattribute(\"answer\", a)); printf(\"%d\", a);",
         "142"},
        {"converted", "color c; getattribute(\"answer\", c); printf(\"%g\", c);", "42 42 42"},
        {"unknown", "float f = 3; printf(\"%d %g\", getattribute(\"question\", f), f);", "0 3"},
        {"spaces", "printf(\"%g\", point(\"shifted\", 1, 2, 3));", "2 2 3"},
        {"vectors do not move", "printf(\"%g\", transform(\"shifted\", vector(1, 2, 3)));",
         "1 2 3"},
        {"unknown space", "matrix m; printf(\"%d\", getmatrix(\"common\", \"lost\", m));",
         "0error: Unknown transformation \"lost\"\n"},
        {"messages", "setmessage(\"m\", 3.5); float f; getmessage(\"m\", f); printf(\"%g\", f);",
         "3.5"},
        {"set too late", "float f; getmessage(\"m\", f); setmessage(\"m\", 1);",
         "error: message \"m\" was queried before being set (queried here: t.osl:2) setting it now "
         "(t.osl:2) would lead to inconsistent results\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.printed, printedBy(c.body));
    }
    EXPECT_EQ(
        "0 1.1 1.",
        shade("shader t(float s = 7 [[ int lockgeom = 0 ]]) { printf(\"%g %g.\", s, Dx(s)); }", 2)
            .printed);
}

TEST(Machine, SaysEachMessageOnce)
{
    EXPECT_EQ("warning: Shader warning [t]: twice\n",
              printedBy("warning(\"twice\"); warning(\"twice\");", 5));
}

TEST(Machine, TextFunctions)
{
    const struct {
        const char *body, *printed;
    } cases[] = {
        {"printf(\"%s\", substr(\"hello\", -3, 2));", "ll"},
        {"string p[3]; printf(\"%d %s\", split(\"a,b,c,d\", p, \",\", 2), p[1]);", "2 b,c,d"},
        {"int m[2]; printf(\"%d %d %d\", regex_search(\"foobar\", m, \"o+\"), m[0], m[1]);",
         "1 1 3"},
        {"printf(\"%d %g\", stoi(\"12x\"), stof(\"2.5\"));", "12 2.5"},
        {"printf(\"%s|%5.1f|%-3d|%x\", format(\"%g\", u), 2.25, 7, 255);", "0.5|  2.2|7  |ff"},
        {"printf(\"%s\", concat(\"a\", \"b\", \"c\"));", "abc"},
        {"printf(\"%d\", getchar(\"A\", 0) + getchar(\"A\", 5));", "65"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.printed, printedBy(c.body)) << c.body;
}
