// What the compiler says.
#include "Shading.h"

#include <gtest/gtest.h>

TEST(Compiler, NamesWhatIsWrong)
{
    const struct {
        const char *what, *source, *says;
    } cases[] = {
        {"unknown name", "shader t() { float a = b; }",
         "t.osl:1: error: 'b' was not declared in this scope\n"},
        {"unknown function", "shader t() { f(1); }",
         "t.osl:1: error: function 'f' was not declared in this scope\n"},
        {"declared twice", "shader t() { int a;\nint a; }",
         "t.osl:2: error: \"a\" already declared in this scope\n"
         "\t\tprevious declaration was at t.osl:1\n"},
        {"syntax", "shader t() { int a = ; }", "t.osl:1: error: Syntax error: syntax error\n"},
        {"types of an assignment", "shader t() { string s;\ns = 1; }",
         "t.osl:2: error: Cannot assign string s = int\n"},
        {"names come before types", "shader t() { string s = 1; q = 2; }",
         "t.osl:1: error: 'q' was not declared in this scope\n"},
        {"arguments", "float f(float a) { return a; } shader t() { f(\"x\"); }",
         "t.osl:1: error: No matching function call to 'f (string)'\n  Candidates are:\n"
         "    t.osl:1\tfloat f (float)\n"},
        {"no default", "shader t(float a) {}",
         "t.osl:1: error: shader parameter 'a' MUST be initialized\n"},
        {"read-only", "float f(float a) { a = 1; return a; } shader t() { f(1); }",
         "t.osl:1: error: cannot write to non-output parameter \"a\"\n"},
        {"break outside", "shader t() { break; }", "t.osl:1: error: Cannot 'break' here.\n"},
        {"recursion", "float f(float a) { return a > 0 ? f(a - 1) : 0.0; } shader t() { f(1); }",
         "t.osl:1: error: function 'f' calls itself\n"},
        {"a reserved word", "shader t() { int class = 1; }",
         "t.osl:1: error: 'class' is a reserved word\n"},
        {"formats", "shader t() { printf(\"%d\", 1.5); }",
         "t.osl:1: error: printf has mismatched format string and arguments (arg 2 needs %f, %g, "
         "or "
         "%e)\n"},
        {"includes", "#include \"no/such.h\"\nshader t() {}",
         "t.osl:1: error: Unable to include \"no/such.h\"\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.says, compilerSays(c.source));
    }
}

TEST(Compiler, Warns)
{
    const struct {
        const char *what, *source, *says;
    } cases[] = {
        {"lost precision", "shader t() { int i = u; }",
         "t.osl:1: warning: Assignment may lose precision: int i = float\n"},
        {"commas", "shader t() { color c = (1, 2, 3); }",
         "t.osl:1: warning: Comma operator inside parenthesis is probably an error -- it is not a "
         "vector/color.\n"},
        {"ambiguous results",
         "normal f() { return 1; }\nvector f() { return 2; }\n"
         "shader t() { point p = f(); }",
         "t.osl:3: warning: Ambiguous call to 'f ()'\n  Chosen function is:\n    t.osl:2\tvector f "
         "()\n"
         "  Other candidates are:\n    t.osl:1\tnormal f ()\n"},
        {"not where it was told not to", "#pragma osl nowarn\nshader t() { int i = u; }", ""},
        {"constructors tell what is wanted", "shader t() { color c = color(noise(u)); }", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.says, compilerSays(c.source));
    }
}

// Whatever a source is, it gets an answer in bounded time and memory.
TEST(Compiler, SurvivesHostileSources)
{
    const std::string many(1 << 20, '(');
    EXPECT_EQ("t.osl:1: error: Syntax error: nested too deeply\n",
              compilerSays("shader t() { float a = " + many));
    EXPECT_NE("", compilerSays("shader t() { float a[2147483647]; }"));
    EXPECT_NE("", compilerSays("#include \"/dev/zero\"\nshader t() {}"));
    EXPECT_NE("", compilerSays("#include \"/\"\nshader t() {}"));
    std::string chain = "shader t() { float a = 1";
    for (int i = 0; i < 100000; ++i)
        chain += "+u";
    EXPECT_NE("", compilerSays(chain + "; }"));
    std::string bomb = "#define A0 u+u\n";
    for (int i = 1; i < 40; ++i)
        bomb += "#define A" + std::to_string(i) + " A" + std::to_string(i - 1) + "+A" +
                std::to_string(i - 1) + "\n";
    EXPECT_NE("", compilerSays(bomb + "shader t() { float a = A39; }"));
    std::string calls = "float f0(float x) { return x + u; }\n";
    for (int i = 1; i < 40; ++i) {
        const std::string inner = "f" + std::to_string(i - 1);
        calls += "float f" + std::to_string(i) + "(float x) { return " + inner + "(x) * " + inner +
                 "(x + 1); }\n";
    }
    EXPECT_EQ("the shader is too large\n", shade(calls + "shader t() { f39(u); }").compiler);
}

TEST(Compiler, DescribesParameters)
{
    OSL_Shader shader;
    ASSERT_TRUE(shader.compileText(
        "surface wood [[ string help = \"x\" ]] (float a = 0.5 [[ float min = 0, "
        "int lockgeom = 0 ]], color c = color(1, 2, 3), int i[] = {1, 2}, "
        "float d = sin(a), output color Cout = 0) {}",
        "wood.osl", {}))
        << shader.messages();
    EXPECT_EQ("surface", shader.kind());
    EXPECT_EQ("wood", shader.name());
    ASSERT_EQ(5u, shader.parameters().size());
    EXPECT_EQ("0.5", shader.parameters()[0].value.text());
    EXPECT_TRUE(shader.parameters()[0].isInterpolated);
    EXPECT_EQ("min", shader.parameters()[0].metadata[0].name);
    EXPECT_EQ("(1, 2, 3)", shader.parameters()[1].value.text());
    EXPECT_EQ("{1, 2}", shader.parameters()[2].value.text());
    EXPECT_FALSE(shader.parameters()[3].hasDefault);
    EXPECT_TRUE(shader.parameters()[4].isOutput);
}
