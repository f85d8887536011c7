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
        {"a message that is a struct",
         "struct s { float x; }; shader t() { s a; setmessage(\"a\", a); }",
         "t.osl:1: error: No matching function call to 'setmessage (string, struct s)'\n"
         "  Candidates are:\n    built-in\tvoid setmessage (string, <any>)\n"},
        {"include of a file that cannot be read", "#include \"/proc/self/mem\"\nshader t() { }",
         "t.osl:1: error: Unable to include \"/proc/self/mem\"\n"},
        {"no default", "shader t(float a) {}",
         "t.osl:1: error: shader parameter 'a' MUST be initialized\n"},
        {"read-only", "float f(float a) { a = 1; return a; } shader t() { f(1); }",
         "t.osl:1: error: cannot write to non-output parameter \"a\"\n"},
        {"break outside", "shader t() { break; }", "t.osl:1: error: Cannot 'break' here.\n"},
        {"recursion", "float f(float a) { return a > 0 ? f(a - 1) : 0.0; } shader t() { f(1); }",
         "t.osl:1: error: function 'f' calls itself\n"},
        {"an output of another type",
         "void f(output float a) { a = 1; } shader t() { int i; f(i); f(P[0]); }",
         "t.osl:1: error: Cannot pass 'int i' as argument 1 to f\n"
         "\tbecause it is an output parameter that must be a float\n"},
        {"an unknown type", "shader t() { Foo x; }", "t.osl:1: error: Unknown struct name: Foo\n"},
        {"a reserved word", "shader t() { int class = 1; }",
         "t.osl:1: error: 'class' is a reserved word\n"},
        {"formats", "shader t() { printf(\"%d\", 1.5); }",
         "t.osl:1: error: printf has mismatched format string and arguments (arg 2 needs %f, %g, "
         "or "
         "%e)\n"},
        {"a field twice", "struct S { int a;\nint a; }; shader t() {}",
         "t.osl:2: error: Field \"a\" already exists in struct \"S\"\n"},
        {"unknown field", "struct S { int a; }; shader t() { S s; s.b = 1; P.q = 1; }",
         "t.osl:1: error: struct type 'S' does not have a member 'b'\n"
         "t.osl:1: error: type 'point' does not have a member 'q'\n"},
        {"printed struct", "struct S { int a; }; shader t() { S s; printf(\"%d\", s); }",
         "t.osl:1: error: struct 'S' is not a valid argument\n"},
        {"kind of shader", "paint t() {}", "t.osl:1: error: Unknown shader type: paint\n"},
        {"two shaders", "shader a() {}\nshader b() {}",
         "t.osl:2: error: Syntax error: Only one shader is allowed per file.\n"},
        {"returned type", "color f() { return \"a\"; } shader t() { f(); }",
         "t.osl:1: error: Cannot return a 'string' from 'color f()'\n"},
        {"too many values", "shader t() { float a[2] = {1, 2, 3}; }",
         "t.osl:1: error: Too many initializers for a 'float[2]'\n"},
        {"constructor", "shader t() { color c = color(1, 2); }",
         "t.osl:1: error: Cannot construct color (int, int)\n"},
        {"cast", "shader t() { float a = (float)\"1\"; }",
         "t.osl:1: error: Cannot cast 'string' to 'float'\n"},
        {"operator", "shader t() { string s = \"a\" + \"b\"; }",
         "t.osl:1: error: Not allowed: 'string + string'\n"
         "t.osl:1: error: Cannot initialize string s = unknown\n"},
        {"condition", "shader t() { closure color c = 0; while (c) ; }",
         "t.osl:1: error: Cannot use a closure as an 'while' condition\n"},
        {"a directive's error", "#error \"stop\"\nshader t() {}", "t.osl:1: error:  \"stop\"\n"},
        {"a device", "#include \"/dev/zero\"\nshader t() {}",
         "t.osl:1: error: Unable to include \"/dev/zero\"\n"},
        {"a folder", "#include \"/\"\nshader t() {}", "t.osl:1: error: Unable to include \"/\"\n"},
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
        {"redefinition", "int f() { return 1; }\nint f() { return 2; }\nshader t() {}",
         "t.osl:2: warning: Function 'int f ()' redefined in the same scope\n"
         "  Previous definitions:\n    t.osl:1\n"},
        {"formats that are not known", "shader t(string s = \"a\") { printf(s); }",
         "t.osl:1: warning: printf() uses a format string that is not a constant.\n"},
        {"by directive", "#pragma warning \"look\"\nshader t() {}", "t.osl:1: warning: look\n"},
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
