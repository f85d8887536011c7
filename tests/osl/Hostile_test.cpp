// Sources that want to take all time, memory or stack: each ends with a message.
#include "Shading.h"

#include <gtest/gtest.h>

namespace
{
std::string repeated(const std::string &text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

// `first`, then `times` lines made from "%" numbers i and i - 1.
std::string chain(const std::string &first, const std::string &form, int times)
{
    std::string all = first;
    for (int i = 1; i < times; ++i) {
        for (const char c : form)
            all += c == '@'   ? std::to_string(i)
                   : c == '%' ? std::to_string(i - 1)
                              : std::string(1, c);
        all += '\n';
    }
    return all;
}

std::string shaderOf(const std::string &body)
{
    return "shader t() { " + body + " }";
}
} // namespace

TEST(Hostile, EndsWithAMessage)
{
    const struct {
        const char *what;
        std::string source;
        const char *message;
    } cases[] = {
        {"parentheses", shaderOf("float x = " + repeated("(", 900000)), "nested too deeply"},
        {"blocks", shaderOf(repeated("{", 100000)), "nested too deeply"},
        {"signs", shaderOf("int x = " + repeated("- ", 100000) + "1;"), "nested too deeply"},
        {"a long sum", shaderOf("float x = u" + repeated("+u", 100000) + ";"), "too long"},
        {"lists", "shader t(float a[3] = " + repeated("{", 100000), "nested too deeply"},
        {"conditions", "#if " + repeated("(", 100000) + "\nshader t() {}", "#if syntax error"},
        {"lines", shaderOf(repeated("x += u;\n", 400000)), "too much text"},
        {"array", shaderOf("float a[2147483647];"), "Invalid array length"},
        {"structs that double",
         chain("struct S0 { float a; };\n", "struct S@ { S% a, b; };", 64) + shaderOf("S63 s;"),
         "struct too large"},
        {"structs in structs",
         chain("struct S0 { float a; };\n", "struct S@ { S% a; };", 3000) + shaderOf("S9 s;"),
         "struct too large"},
        {"macros that double", chain("#define M0 x\n", "#define M@ M% M%", 60) + shaderOf("M59"),
         "too much text"},
        {"names that double",
         chain("#define M0(x) x##x\n", "#define M@(x) M%(x##x)", 60) + shaderOf("M59(aaaa)"),
         "too much text"},
        {"functions that double",
         chain("float f0(float x) { return x; }\n", "float f@(float x) { return f%(x) + f%(x); }",
               40) +
             shaderOf("printf(\"%g\", f39(u));"),
         "too large"},
        {"calls in calls",
         chain("float f0(float x) { return x; }\n", "float f@(float x) { return f%(x); }", 9000) +
             shaderOf("printf(\"%g\", f8999(u));"),
         "too large"},
        {"recursion", "float f(float x) { return f(x); } " + shaderOf("f(1);"), "calls itself"},
        {"functions of one name",
         chain("", "float f(int a@) { return 1; }", 30000) + shaderOf("f(1);"),
         "too many functions are called 'f'"},
        {"many arrays", shaderOf(chain("", "color a@[100000];", 200)), "too large"},
        {"messages", shaderOf("for (int i = 0; i < 99999; ++i) setmessage(format(\"%d\", i), i);"),
         "too many messages"},
        {"gabor noise", shaderOf("float x = 0; while (1) x += (float)noise(\"gabor\", P + x);"),
         "too long"},
        {"expressions in texts",
         shaderOf("string s = \"" + repeated("a", 50000) +
                  "\"; int n = 0; while (1) n += regex_search(s, \"(a*)*b\");"),
         "too long"},
        {"long texts",
         shaderOf("string s = \"" + repeated("a ", 50000) +
                  "\"; string r[2]; int n = 0; while (1) n += split(s, r) + hash(s);"),
         "too long"},
        {"copies",
         shaderOf("float a[50000]; float b[50000]; a[0] = u; while (1) { b = a; a[1] = b[2]; }"),
         "too long"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const Shaded shaded = shade(c.source);
        const std::string all = shaded.compiler + shaded.printed + shaded.messages;
        EXPECT_NE(std::string::npos, all.find(c.message)) << all.substr(0, 300);
    }
}
