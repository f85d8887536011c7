// The library's functions: what they give for arguments whose answer is known.
#include "Shading.h"

#include <gtest/gtest.h>

namespace
{
// The arguments of a printf, and what that prints. u = v = 0.5, P = (0.5, 0.5, 1).
struct Row {
    const char *arguments, *printed;
};

template <size_t N>
void check(const Row (&rows)[N])
{
    for (const Row &row : rows) {
        SCOPED_TRACE(row.arguments);
        EXPECT_EQ(row.printed, printedBy(std::string("printf(") + row.arguments + ");"));
    }
}
} // namespace

TEST(Library, Mathematics)
{
    const Row rows[] = {
        {R"("%g %g", radians(180), degrees(M_PI))", "3.14159 180"},
        {R"("%.4g %.4g %.4g", sin(M_PI_2), cos(2 * M_PI), tan(M_PI_4))", "1 1 1"},
        {R"("%.4g %.4g %.4g", asin(1), acos(1), atan(1))", "1.571 0 0.7854"},
        {R"("%g %.4g %.4g", atan2(0, 1), atan2(1, 0), atan2(1, -1))", "0 1.571 2.356"},
        {R"("%.4g %.4g %.4g", cosh(1), sinh(1), tanh(1))", "1.543 1.175 0.7616"},
        {R"("%g %g %g", pow(2, 10), pow(color(1, 2, 3), 2), pow(0, 0))", "1024 1 4 9 1"},
        {R"("%.4g %g %.4g", exp(1), exp2(3), expm1(0.5))", "2.718 8 0.6487"},
        {R"("%g %g %g %g", log(M_E), log(8, 2), log2(8), log10(1000))", "1 3 3 3"},
        {R"("%g %g", logb(10), logb(0.25))", "3 -2"},
        {R"("%g %g %g", sqrt(9), inversesqrt(4), cbrt(27))", "3 0.5 3"},
        {R"("%g %g", hypot(3, 4), hypot(1, 2, 2))", "5 3"},
        {R"("%g %d %g", abs(-2.5), abs(-3), fabs(vector(-1, 2, -3)))", "2.5 3 1 2 3"},
        {R"("%g", sign(vector(-5, 0, 5)))", "-1 0 1"},
        {R"("%g %g %g %g", floor(-1.5), ceil(-1.5), trunc(-1.5), round(-1.5))", "-2 -1 -1 -2"},
        {R"("%g %g", fmod(-0.25, 1), mod(-0.25, 1))", "-0.25 0.75"},
        {R"("%d %d %g", mod(-7, 3), min(3, 4), max(color(1, 5, 2), color(3)))", "2 3 3 5 3"},
        {R"("%d %g", clamp(7, 1, 3), clamp(-1.5, 0, 1))", "3 0"},
        {R"("%g %g", mix(1, 3, 0.25), mix(color(0), color(2), color(0, 0.5, 1)))", "1.5 0 1 2"},
        {R"("%g %g", select(1.0, 2.0, 0), select(color(1), color(2), color(0, 1, 0)))", "1 1 2 1"},
        {R"("%d %d %d", isnan(1.0), isinf(1.0), isfinite(1.0))", "0 0 1"},
        {R"("%.4g %.4g", erf(0.5), erfc(0.5))", "0.5205 0.4795"},
        {R"("%g %g %g", step(0.5, 0.5), linearstep(1, 3, 2), smoothstep(0, 1, 0.5))", "1 0.5 0.5"},
        {R"("%g", smooth_linearstep(0, 1, 0.5, 0.1))", "0.5"},
        {R"("%g %g", aastep(0.5, 0.2, 0.1), aastep(0.5, 0.5, 0.1, 0.1))", "0 0.5"},
    };
    check(rows);
}

// What would be no number elsewhere.
TEST(Library, ValuesOutsideTheRangeAreTamed)
{
    const Row rows[] = {
        {R"("%g %g", sqrt(u - 1), inversesqrt(u - 1))", "0 0"},
        {R"("%g %g", fmod(u, 0), mod(u, v - 0.5))", "0 0"},
        {R"("%.4g %.4g", acos(u + 1), asin(u + 1))", "0 1.571"},
        {R"("%g %g", pow(u - 1, 0.5), pow(u - 1, 2))", "0 0.25"},
        {R"("%d", isfinite(log(u - 0.5)))", "1"},
        {R"("%d", isfinite(exp(u * 1000)))", "1"},
        {R"("%g", normalize(vector(u - 0.5)))", "0 0 0"},
    };
    check(rows);
}

TEST(Library, Geometry)
{
    const Row rows[] = {
        {R"("%g %g", dot(vector(1, 2, 3), vector(4, 5, 6)), length(vector(2, 3, 6)))", "32 7"},
        {R"("%g", cross(vector(1, 0, 0), vector(0, 1, 0)))", "0 0 1"},
        {R"("%g %g", distance(point(1), point(1, 1, 3)), normalize(vector(0, 3, 4)))",
         "2 0 0.6 0.8"},
        {R"("%g", faceforward(vector(0, 0, 1), vector(0, 0, 2), vector(0, 0, 1)))", "-0 -0 -1"},
        {R"("%g", reflect(vector(1, -1, 0), vector(0, 1, 0)))", "1 1 0"},
        {R"("%g", refract(vector(0, -1, 0), vector(0, 1, 0), 1.5))", "0 -1 0"},
        {R"("%g", refract(vector(1, 0, 0), vector(0, 1, 0), 1.5))", "0 0 0"}, // total reflection
        {R"("%.4g", rotate(point(1, 0, 0), M_PI_2, vector(0, 0, 1)))", "-4.371e-08 1 0"},
        {R"("%g", transform("shifted", point(1, 2, 3)))", "0 2 3"},
        {R"("%g", transform("shifted", "common", point(1, 2, 3)))", "2 2 3"},
        {R"("%g", transform("shifted", vector(1, 2, 3)))", "1 2 3"},
        {R"("%g", point("shifted", 1, 2, 3))", "2 2 3"},
        {R"("%g %g %g", transformu("cm", "m", 250), transformu("in", "mm", 1), transformu("ft", "in", 1))",
         "2.5 25.4 12"},
        {R"("%g %g", determinant(matrix(2)), transpose(matrix(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16))[0][3])",
         "16 13"},
        {R"("%g", (matrix(1,2,3,4, 0,1,0,0, 0,0,1,0, 0,0,0,1) * 2)[0][2])", "6"},
        {R"("%d", matrix(1,2,0,0, 0,1,0,0, 0,0,1,0, 0,0,5,1) / matrix(1,2,0,0, 0,1,0,0, 0,0,1,0, 0,0,5,1) == 1)",
         "1"},
        {R"("%g %d", surfacearea(), backfacing())", "1 0"},
    };
    check(rows);
}

TEST(Library, Colours)
{
    const Row rows[] = {
        {R"("%.3g", transformc("hsv", color(0, 1, 0)))", "0.333 1 1"},
        {R"("%.3g", transformc("hsv", "rgb", color(0.5, 1, 1)))", "0 1 1"},
        {R"("%.3g", transformc("hsl", color(0.5, 0, 0)))", "0 1 0.25"},
        {R"("%.3g", transformc("sRGB", "linear", color(0.5)))", "0.214 0.214 0.214"},
        {R"("%.3g", transformc("linear", "sRGB", color(0.214)))", "0.5 0.5 0.5"},
        {R"("%.3g", transformc("YIQ", "rgb", transformc("YIQ", color(0.1, 0.2, 0.3))))",
         "0.1 0.2 0.3"},
        {R"("%.3g", transformc("xyY", "rgb", transformc("xyY", color(0.1, 0.2, 0.3))))",
         "0.1 0.2 0.3"},
        {R"("%.3g", color("hsv", 0, 1, 0.5))", "0.5 0 0"},
        {R"("%.4g", luminance(color(1)))", "1"},
        {R"("%d %d", blackbody(3000)[0] > blackbody(3000)[2], blackbody(12000)[0] < blackbody(12000)[2])",
         "1 1"},
        {R"("%d", wavelength_color(650)[0] > 0 && wavelength_color(650)[2] == 0)", "1"},
    };
    check(rows);
}

TEST(Library, Texts)
{
    const Row rows[] = {
        {R"("%s", concat("a", "b", "c"))", "abc"},
        {R"("%d %d", strlen(""), strlen("a\tb"))", "0 3"},
        {R"("%d %d", startswith("shader", "sha"), endswith("shader", "sha"))", "1 0"},
        {R"("%d %d %d", stoi("12abc"), stoi("-5"), stoi("x"))", "12 -5 0"},
        {R"("%g %g %g", stof("1.5e3x"), stof(" -.5"), stof(""))", "1500 -0.5 0"},
        {R"("%s|%s|%s|%s", substr("hello", 1), substr("hello", -2), substr("hello", 1, 2), substr("a", 9))",
         "ello|lo|el|"},
        {R"("%d %d %d", getchar("A", 0), getchar("A", 1), getchar("A", -1))", "65 0 0"},
        {R"("%d %d", hash("a") == hash("a"), hash("a") == hash("b"))", "1 0"},
        {R"("%d %d", regex_search("foobar", "o+b"), regex_match("foobar", "o+b"))", "1 0"},
        {R"("%d", regex_match("a.b", "[a-c]\\.(b|c){1,2}$"))", "1"},
        {R"("%5d|%-5d|%05d|%+d|%x|%X|%o", 42, 42, 42, 42, 255, 255, 8)",
         "   42|42   |00042|+42|ff|FF|10"},
        {R"("%6.2f|%e|%g|%%", 3.14159, 1.5, 1e10)", "  3.14|1.500000e+00|1e+10|%"},
        {R"("%5s|%-5s|%.2s", "abc", "abc", "abc")", "  abc|abc  |ab"},
        {R"("%s", format("%d-%g", 1, color(2)))", "1-2 2 2"},
    };
    check(rows);
}

TEST(Library, FunctionsThatWriteTheirArguments)
{
    const struct {
        const char *body, *printed;
    } rows[] = {
        {"string r[4]; int n = split(\"a,b,,c\", r, \",\"); printf(\"%d[%s]\", n, r);",
         "4[a b  c]"},
        {"string r[4]; int n = split(\" a  b \", r); printf(\"%d[%s]\", n, r[1]);", "2[b]"},
        {"string r[2]; int n = split(\"a b c\", r, \" \", 2); printf(\"%d[%s]\", n, r[0]);",
         "2[a]"},
        {"int r[4]; int n = regex_search(\"xfoo12\", r, \"o([0-9]+)\"); printf(\"%d %d\", n, r);",
         "1 3 6 4 6"},
        {"float s, c; sincos(0, s, c); printf(\"%g %g\", s, c);", "0 1"},
        {"matrix m; int i = getmatrix(\"shifted\", \"common\", m); printf(\"%d %g\", i, m[3][0]);",
         "1 1"},
        {"int a; printf(\"%d %d\", getattribute(\"answer\", a), a);", "1 42"},
        {"float a = 7; printf(\"%d %g\", getattribute(\"nothing\", a), a);", "0 7"},
        {"string a = \"?\"; printf(\"%d[%s]\", getattribute(\"shader:layername\", a), a);", "1[]"},
        {"float kr, kt; vector r, t; fresnel(vector(0, 0, -1), N, 1 / 1.5, kr, kt, r, t); "
         "printf(\"%.3g %g\", kr, r);",
         "0.04 0 0 1"},
        {"setmessage(\"m\", 3); int i; getmessage(\"m\", i); printf(\"%d\", i);", "3"},
        {"int i = 5; printf(\"%d %d\", getmessage(\"m\", i), i);", "0 5"},
        {"color ior, k; artistic_ior(color(0.04), color(0), ior, k); printf(\"%.2f\", ior[0]);",
         "1.50"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(row.printed, printedBy(row.body));
    }
}

// Properties that hold whatever the values are.
TEST(Library, Noise)
{
    const Row rows[] = {
        {R"("%g %g", (float)snoise(3), (float)noise(point(1, 2, 3)))", "0 0.5"}, // on the lattice
        {R"("%d", (float)noise("perlin", P * 3) == (float)snoise(P * 3))", "1"},
        {R"("%d", (float)noise("uperlin", P * 3) == (float)noise(P * 3))", "1"},
        {R"("%d", (float)noise("cell", P * 3) == (float)cellnoise(P * 3))", "1"},
        {R"("%d", (float)noise("hash", P * 3) == (float)hashnoise(P * 3))", "1"},
        {R"("%d", (float)cellnoise(1.1) == (float)cellnoise(1.9))", "1"},
        {R"("%d", (float)hashnoise(1.1) == (float)hashnoise(1.9))", "0"},
        {R"("%.5f", (float)pnoise(0.3, 2) - (float)pnoise(2.3, 2))", "0.00000"},
        {R"("%.5f", (float)psnoise(P, point(2)) - (float)psnoise(P + 4, point(2)))", "0.00000"},
        {R"("%.5f", (float)noise("usimplex", P) - 0.5 * ((float)noise("simplex", P) + 1))",
         "0.00000"},
        {R"("%d", fabs((float)noise("gabor", P * 3, "bandwidth", 2.0)) < 2)", "1"},
        {R"("%d", hash(1.5) == hash(1.5) && hash(1.5) != hash(2.5))", "1"},
    };
    check(rows);
}

TEST(Library, Splines)
{
    const Row rows[] = {
        {R"("%g", spline("linear", 0.25, 0, 0, 1, 2, 2))", "0.5"},
        {R"("%g", spline("catmull-rom", 0.5, 0, 1, 2, 3))", "1.5"},
        {R"("%g", spline("bezier", 1.0, 0, 1, 2, 3))", "3"},
        {R"("%g", spline("constant", 0.1, color(0), color(1), color(2), color(3)))", "1 1 1"},
        {R"("%g", spline("linear", 7.0, 0, 0, 1, 1))", "1"},
        {R"("%g", splineinverse("linear", 1.5, 0, 1, 2, 3))", "0.5"},
    };
    check(rows);
}

// d/du at u = 0.5.
TEST(Library, Derivatives)
{
    const Row rows[] = {
        {R"("%g %g %g", Dx(u), Dy(u), Dz(u))", "1 0 0"},
        {R"("%.4g %.4g", Dx(sin(u)), Dx(cos(u)))", "0.8776 -0.4794"},
        {R"("%.4g %.4g %.4g", Dx(exp(u)), Dx(log(u)), Dx(sqrt(u)))", "1.649 2 0.7071"},
        {R"("%.4g %.4g", Dx(pow(u, 3)), Dx(1 / u))", "0.75 -4"},
        {R"("%.4g %.4g", Dx(atan2(u, 1)), Dx(inversesqrt(u)))", "0.8 -1.414"},
        {R"("%g %g", Dx(smoothstep(0, 1, u)), Dx(linearstep(0, 2, u)))", "1.5 0.5"},
        {R"("%g %g %g", Dx(clamp(u, 0, 0.2)), Dx(min(u, 1)), Dx(abs(-u)))", "0 1 1"},
        {R"("%g %g", Dx(mix(0, 4, u)), Dx(fmod(u, 0.3)))", "4 1"},
        {R"("%g", Dx(cross(P, vector(0, 0, 1))))", "0 -1 0"},
        {R"("%g", Dx(u > 0.2 ? 2 * u : 3 * u))", "2"},
        {R"("%g", filterwidth(u))", "1"},
        {R"("%d", fabs(Dx((float)noise(u * 2)) - ((float)noise(u * 2 + 0.002) - (float)noise(u * 2)) * 1000) < 0.02)",
         "1"},
        {R"("%d", fabs(Dx((float)noise("simplex", u)) - ((float)noise("simplex", u + 0.001) - (float)noise("simplex", u)) * 1000) < 0.02)",
         "1"},
    };
    check(rows);
}

TEST(Library, TexturesThatAreMissing)
{
    const char *body = "color c = texture(\"none\", u, v, \"missingcolor\", color(1, 0, 2)); "
                       "string e; float f = texture(\"none\", u, v, \"errormessage\", e); "
                       "printf(\"%g %g %d\", c, f, strlen(e) > 0);";
    EXPECT_EQ("1 0 2 0 1", printedBy(body));
    EXPECT_EQ("0",
              printedBy("int r[2]; printf(\"%d\", gettextureinfo(\"none\", \"resolution\", r));"));
    EXPECT_EQ("1 0",
              printedBy("int i = 1; printf(\"%d \", gettextureinfo(\"none\", \"exists\", i)); "
                        "printf(\"%d\", i);"));
}
