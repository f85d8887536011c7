// Whole runs of the command.
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

namespace
{
class Vosl : public ::testing::Test
{
protected:
    // "STATUS OUT|ERR" of a run with these arguments, over t.osl.
    std::string run(const std::string &source, const std::string &arguments)
    {
        myFolder.write("t.osl", source);
        const ProgramRun done = runLine("$RUN '" BIN_DIR "/vosl' " + arguments + " t.osl",
                                        {"HOME=" + myFolder.path()}, myFolder.path());
        return std::to_string(done.status) + ' ' + done.out + '|' + done.err;
    }

    ScratchDirectory myFolder;
};
} // namespace

TEST_F(Vosl, ShadesAGrid)
{
    const char *const place = "shader t() { printf(\"%g,%g \", u, v); }";
    EXPECT_EQ("0 0.5,0.5 |", run(place, ""));
    EXPECT_EQ("0 0,0 1,0 0,1 1,1 |", run(place, "-g 2 2"));
    EXPECT_EQ("0 0,0.5 0.5,0.5 1,0.5 |", run(place, "-g 3 1"));
    EXPECT_EQ("0 0.25,0.5 0.75,0.5 |", run(place, "--center -g 2 1"));
    const char *const along = "shader t() { printf(\"%g %g %g;\", Dx(u), Dy(v), Dx(P)); }";
    EXPECT_EQ("0 1 1 1 0 0;|", run(along, ""));
    EXPECT_EQ("0 0.5 1 0.5 0 0;0.5 1 0.5 0 0;0.5 1 0.5 0 0;|", run(along, "-g 3 1"));
}

TEST_F(Vosl, TakesParameters)
{
    const char *const source = "shader t(float f = 1, int i = 2, string s = \"x\", color c = 0.5, "
                               "float l[] = {1}) { printf(\"%g %d %s %g %g\", f, i, s, c, l); }";
    EXPECT_EQ("0 1 2 x 0.5 0.5 0.5 1|", run(source, ""));
    EXPECT_EQ("0 2.5 7 y 0.5 0.5 0.5 1|", run(source, "-param f 2.5 -param i 7 -param s y"));
    EXPECT_EQ("0 1 2 x 3 3 3 1|", run(source, "-param c 2.0 -param c 3.0"));
    EXPECT_EQ("0 1 2 x 1 2 3 1|", run(source, "-param:type=color c 1,2,3"));
    EXPECT_EQ("0 1 2 x 0.5 0.5 0.5 4 5|", run(source, "-param:type=float[2] l 4,5"));
    EXPECT_EQ("0 1 2 x 0.5 0.5 0.5 1|WARNING: attempting to set nonexistent parameter: no\n",
              run(source, "-param no 1"));
    EXPECT_EQ("0 1 2 x 0.5 0.5 0.5 1|WARNING: attempting to set parameter with wrong type: i "
              "(expected 'int', received 'string')\n",
              run(source, "-param i y"));
    EXPECT_EQ("0 2 2|", run("shader t(float a[2] = 2) { printf(\"%g\", a); }", ""));
}

TEST_F(Vosl, DefinesAndIncludes)
{
    myFolder.write("include/a.h", "#define A 3\n");
    EXPECT_EQ("0 3|", run("#include \"a.h\"\nshader t() { printf(\"%d\", A); }", "-Iinclude"));
    EXPECT_EQ("0 1 5|", run("shader t() { printf(\"%d %d\", ONE, FIVE); }", "-DONE -DFIVE=5"));
}

TEST_F(Vosl, KnowsSpacesAndAttributes)
{
    const struct {
        const char *body, *printed;
    } rows[] = {
        {R"(printf("%g", point("myspace", 1, 2, 3));)", "1 4 3"},
        {R"(printf("%.4g", vector("object", 1, 0, 0)[1]);)", "1"},
        {R"(printf("%.4g", point("shader", 0, 0, 0));)", "1 0 0"},
        {R"(printf("%g", transform("world", P));)", "0.5 0.5 1"},
        {R"(printf("%g", transform("camera", "NDC", point(0, 0, 2))[0]);)", "0.5"},
        {R"(point p = transform("screen", point(1, -1, 1)); printf("%g %g", p.x, p.y);)", "1 -1"},
        {R"(point p = transform("NDC", point(1, -1, 1)); printf("%g %g", p.x, p.y);)", "1 1"},
        {R"(int r[2]; getattribute("camera:resolution", r); printf("%d", r);)", "1 1"},
        {R"(int r; getattribute("camera:resolution", 1, r); printf("%d", r);)", "1"},
        {R"(string s; getattribute("camera:projection", s); printf("%s", s);)", "perspective"},
        {R"(float s[2]; getattribute("camera:clip", s); printf("%g", s);)", "0.1 1000"},
        {R"(printf("%d%d", raytype("camera"), raytype("shadow"));)", "10"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ("0 " + std::string(row.printed) + "|",
                  run(std::string("shader t() {") + row.body + "}", ""));
    }
}

TEST_F(Vosl, InterpolatesSAndT)
{
    EXPECT_EQ("0 0 7 1 1 7 1 |", run("shader t(float s = 3 [[int lockgeom = 0]], float t = 7) "
                                     "{ printf(\"%g %g %g \", s, t, Dx(s)); }",
                                     "-g 2 1"));
}

TEST_F(Vosl, SaysWhatIsWrong)
{
    EXPECT_EQ("1 |t.osl:1: error: 'x' was not declared in this scope\n",
              run("shader t() { x = 1; }", ""));
    EXPECT_EQ("0 |t.osl:1: warning: Assignment may lose precision: int i = float\n",
              run("shader t() { int i = 1.5; }", ""));
    EXPECT_EQ("0 |ERROR: Shader error [t]: once\n",
              run("shader t() { error(\"once\"); error(\"once\"); }", "-g 4 4"));
    EXPECT_EQ("2 ", run("shader t() {}", "--nonsense").substr(0, 2));
    for (const char *arguments : {"-g 0 1", "-g 3x 4", "-parametrize a b"})
        EXPECT_EQ("2 ", run("shader t() {}", arguments).substr(0, 2)) << arguments;
    EXPECT_EQ("1 |vosl: cannot write: No space left on device\n",
              run("shader t() { printf(\"a\"); }", ">/dev/full"));
    EXPECT_EQ("0 |WARNING: Shader warning [t]: a?[1m\n",
              run("shader t() { warning(\"a\\033[1m\"); }", ""));
    EXPECT_EQ("1 ", run("shader t() { while (1) P += 1; }", "").substr(0, 2)) << "is stopped";
}

TEST_F(Vosl, WritesFiles)
{
    EXPECT_EQ("0 out|err", run("shader t() { fprintf(\"stdout\", \"out\"); "
                               "fprintf(\"stderr\", \"err\"); fprintf(\"a.txt\", \"%g \", u); }",
                               ""));
    EXPECT_EQ("0.5 ", fileContents(myFolder.path("a.txt")));
}

TEST_F(Vosl, DescribesAShader)
{
    EXPECT_EQ("0 surface \"t\"\n    \"a\" \"float\"\n\t\tDefault value: 1\n"
              "    \"b\" \"output color\"\n\t\tDefault value: (computed)\n|",
              run("surface t(float a = 1, output color b = a) {}", "--info"));
    EXPECT_NE(std::string::npos, run("shader t() {}", "--time").find("points a second"));
}
