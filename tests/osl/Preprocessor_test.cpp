// Directives, macros and included files.
#include "Shading.h"

#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

TEST(Preprocessor, Macros)
{
    const struct {
        const char *what, *source, *printed;
    } rows[] = {
        {"in each other", "#define A B + 1\n#define B 2\nshader t() { printf(\"%d\", A); }", "3"},
        {"a name without its arguments",
         "#define F(x) 9\nshader t() { int F = 3; printf(\"%d\", F); }", "3"},
        {"without parameters", "#define F() 7\nshader t() { printf(\"%d\", F()); }", "7"},
        {"empty", "#define NOTHING\nshader t(NOTHING) { NOTHING printf(\"ok\"); }", "ok"},
        {"statements over lines",
         "#define SWAP(a, b) { float h = a; \\\n  a = b; \\\n  b = h; }\n"
         "shader t() { float x = 1, y = 2; SWAP(x, y) printf(\"%g %g\", x, y); }",
         "2 1"},
        {"brackets in arguments",
         "#define F(a, b) a\nshader t() { printf(\"%g\", F(max(1.0, 2.0), 3)); }", "2"},
        {"functions made by a macro",
         "#define SQUARE(T) T square(T x) { return x * x; }\nSQUARE(float)\nSQUARE(color)\n"
         "shader t() { printf(\"%g %g\", square(3.0), square(color(2))); }",
         "9 4 4 4"},
        {"no further arguments",
         "#define P(f, ...) printf(f, ##__VA_ARGS__)\nshader t() { P(\"ok\"); }", "ok"},
        {"defined anew", "#define A 1\n#undef A\n#define A 2\nshader t() { printf(\"%d\", A); }",
         "2"},
        {"names of files", "shader t() { printf(\"%s\", __FILE__); }", "t.osl"},
        {"the language's version",
         "#if OSL_VERSION_MAJOR > 0 && OSL_VERSION > 10000\n"
         "shader t() { printf(\"ok\"); }\n#endif",
         "ok"},
        {"constants", "shader t() { printf(\"%.4f %.4f\", M_PI, M_SQRT2); }", "3.1416 1.4142"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const Shaded shaded = shade(row.source);
        EXPECT_EQ(row.printed, shaded.compiler + shaded.printed);
    }
}

TEST(Preprocessor, LeavesOutWhatIsNotTaken)
{
    const struct {
        const char *what, *directives, *printed;
    } rows[] = {
        {"quotes that nobody closes", "#if 0\n it's \"open\n#endif\n#define X 1", "1"},
        {"directives that nobody knows", "#if 0\n#strange\n#endif\n#define X 1", "1"},
        {"inner conditions", "#if 0\n#if 1\n#define X 2\n#endif\n#else\n#define X 1\n#endif", "1"},
        {"the first that is true",
         "#if 0\n#define X 0\n#elif 1\n#define X 1\n#elif 1\n#define X 2\n#else\n#define X "
         "3\n#endif",
         "1"},
        {"comments behind directives",
         "#ifdef NO // a\n#define X 2\n#else /* b */\n#define X 1\n#endif // c", "1"},
        {"comments over lines", "#define X 1 /* one\n two */", "1"},
        {"comments that end inside a directive", "#define X (0 + \\\n /* one\n two */ 1)", "1"},
        {"directives inside comments", "#define X 1\n/*\n#define X 2 /* a\n b */", "1"},
        {"blanks around the sign", "  #  define X 1", "1"},
        {"line ends of other systems", "#define X \\\r\n 1\r\n", "1"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        const Shaded shaded =
            shade(std::string(row.directives) + "\nshader t() { printf(\"%d\", X); }");
        EXPECT_EQ(row.printed, shaded.compiler + shaded.printed);
    }
}

TEST(Preprocessor, IncludesFiles)
{
    ScratchDirectory folder;
    folder.write("sub/a.h", "#include \"deep/b.h\"\nfloat a(float x) { return b(x) + 1; }\n");
    folder.write("sub/deep/b.h", "#pragma once\nfloat b(float x) { return x * 2; }\n");
    folder.write("path/c.h", "#ifndef C\n#define C 5\n#endif\n");
    folder.write("loop.h", "#include \"loop.h\"\n");
    OSL_CompileOptions options;
    options.includePaths = {folder.path("path")};
    const auto says = [&](const std::string &text) {
        OSL_Shader shader;
        const bool isGood = shader.compileFile(folder.write("t.osl", text), options);
        return isGood ? "good" + shader.messages() : shader.messages();
    };
    EXPECT_EQ("good", says("#include \"sub/a.h\"\n#include \"sub/deep/b.h\"\n"
                           "shader t() { float x = a(1) + b(2); }"));
    EXPECT_EQ("good", says("#include <c.h>\n#include \"c.h\"\nshader t() { float x[C]; }"));
    EXPECT_EQ("good", says("#include \"stdosl.h\"\n#include <color4.h>\n"
                           "shader t(color4 c = {1, 0.5}) { color4 d = c * 2.0; }"));
    EXPECT_NE(std::string::npos, says("#include \"loop.h\"\nshader t() {}").find("limit"));
    options.mayRead = [](const std::string &path) { return path.find("sub") == path.npos; };
    EXPECT_NE(std::string::npos,
              says("#include \"sub/a.h\"\nshader t() {}").find("Unable to include"));
    EXPECT_EQ("good", says("#include \"path/c.h\"\nshader t() { float x[C]; }"));
}
