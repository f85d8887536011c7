// Every function of the language, with every list of arguments that it takes: a call
// compiles without a word.
#include "Shading.h"

#include <gtest/gtest.h>
#include <sstream>

namespace
{
// As the language's documents write them. T is float, color, point, vector and normal by
// turns, P the last three; ANY is each type that a variable can have. "?" in front of an
// argument: it and those behind it may be left out.
const char *const SIGNATURES[] = {
    // Mathematics
    "T radians(T)",
    "T degrees(T)",
    "T cos(T)",
    "T sin(T)",
    "T tan(T)",
    "void sincos(T, T, T)",
    "T acos(T)",
    "T asin(T)",
    "T atan(T)",
    "T atan2(T, T)",
    "T cosh(T)",
    "T sinh(T)",
    "T tanh(T)",
    "T pow(T, T)",
    "T pow(T, float)",
    "T exp(T)",
    "T exp2(T)",
    "T expm1(T)",
    "T log(T)",
    "T log2(T)",
    "T log10(T)",
    "T log(T, float)",
    "T logb(T)",
    "T sqrt(T)",
    "T inversesqrt(T)",
    "T cbrt(T)",
    "float hypot(float, float, ?float)",
    "T abs(T)",
    "T fabs(T)",
    "int abs(int)",
    "T sign(T)",
    "T floor(T)",
    "T ceil(T)",
    "T round(T)",
    "T trunc(T)",
    "T fmod(T, T)",
    "T mod(T, T)",
    "T fmod(T, float)",
    "T mod(T, float)",
    "T min(T, T)",
    "T max(T, T)",
    "int min(int, int)",
    "int max(int, int)",
    "T clamp(T, T, T)",
    "int clamp(int, int, int)",
    "T mix(T, T, T)",
    "T mix(T, T, float)",
    "T select(T, T, T)",
    "T select(T, T, float)",
    "T select(T, T, int)",
    "int isnan(float)",
    "int isinf(float)",
    "int isfinite(float)",
    "float erf(float)",
    "float erfc(float)",
    // Geometry
    "P point(float)",
    "P vector(float, float, float)",
    "P normal(string, float)",
    "P point(string, float, float, float)",
    "float dot(P, P)",
    "vector cross(P, P)",
    "float length(P)",
    "float distance(point, point, ?point)",
    "vector normalize(vector)",
    "normal normalize(normal)",
    "vector faceforward(vector, vector, ?vector)",
    "normal faceforward(normal, vector, ?normal)",
    "vector reflect(vector, vector)",
    "vector reflect(vector, normal)",
    "vector refract(vector, vector, float)",
    "void fresnel(vector, normal, float, float, float, vector, vector)",
    "point rotate(point, float, point, point)",
    "point rotate(point, float, vector)",
    "P transform(string, P)",
    "P transform(string, string, P)",
    "P transform(matrix, P)",
    "float transformu(string, float)",
    "float transformu(string, string, float)",
    // Colours and matrices
    "color color(float)",
    "color color(float, float, float)",
    "color color(string, float)",
    "color color(string, float, float, float)",
    "float luminance(color)",
    "color blackbody(float)",
    "color wavelength_color(float)",
    "color transformc(string, color)",
    "color transformc(string, string, color)",
    "matrix matrix(float)",
    "matrix matrix(string, float)",
    "matrix matrix(string, string)",
    "matrix matrix(float, float, float, float, float, float, float, float, float, float, float, "
    "float, float, float, float, float)",
    "matrix matrix(string, float, float, float, float, float, float, float, float, float, float, "
    "float, float, float, float, float, float)",
    "int getmatrix(string, string, matrix)",
    "float determinant(matrix)",
    "matrix transpose(matrix)",
    // Patterns
    "T step(T, T)",
    "T linearstep(T, T, T)",
    "T smoothstep(T, T, T)",
    "T smooth_linearstep(T, T, T, T)",
    "T noise(string, float, ?float)",
    "T noise(string, point, ?float)",
    "T noise(float, ?float)",
    "T noise(point, ?float)",
    "T snoise(float, ?float)",
    "T snoise(point, ?float)",
    "T cellnoise(float, ?float)",
    "T cellnoise(point, ?float)",
    "T hashnoise(float, ?float)",
    "T hashnoise(point, ?float)",
    "T pnoise(string, float, float)",
    "T pnoise(string, float, float, float, float)",
    "T pnoise(string, point, point)",
    "T pnoise(string, point, float, point, float)",
    "T pnoise(float, float)",
    "T pnoise(float, float, float, float)",
    "T pnoise(point, point)",
    "T pnoise(point, float, point, float)",
    "T psnoise(float, float)",
    "T psnoise(float, float, float, float)",
    "T psnoise(point, point)",
    "T psnoise(point, float, point, float)",
    "T noise(string, point, 'anisotropic', int, 'direction', vector, 'bandwidth', float, "
    "'impulses', float, 'do_filter', int)",
    "int hash(float, ?float)",
    "int hash(point, ?float)",
    "int hash(int)",
    "int hash(string)",
    "T spline(string, float, T, T, T, T)",
    "T spline(string, float, T, T, T, T, T, T, T)",
    "T spline(string, float, T[4])",
    "T spline(string, float, int, T[4])",
    "float splineinverse(string, float, float, float, float, float)",
    "float splineinverse(string, float, float[4])",
    "float splineinverse(string, float, int, float[4])",
    // Derivatives and displacement
    "float Dx(float)",
    "vector Dx(P)",
    "color Dx(color)",
    "float Dy(float)",
    "vector Dy(P)",
    "color Dy(color)",
    "float Dz(float)",
    "vector Dz(P)",
    "color Dz(color)",
    "float filterwidth(float)",
    "vector filterwidth(P)",
    "float area(point)",
    "vector calculatenormal(point)",
    "float aastep(float, float, ?float, float)",
    "void displace(float)",
    "void displace(string, float)",
    "void displace(vector)",
    "void bump(float)",
    "void bump(string, float)",
    "void bump(vector)",
    // Texts
    "void printf('%g', T)",
    "string format('%d %s', int, string)",
    "void error('%d', int)",
    "void warning('%g', matrix)",
    "void fprintf('file', '%s', closure color)",
    "string concat(string, string, ?string, string)",
    "int strlen(string)",
    "int startswith(string, string)",
    "int endswith(string, string)",
    "int stoi(string)",
    "float stof(string)",
    "int split(string, string[3], ?string, int)",
    "string substr(string, int, ?int)",
    "int getchar(string, int)",
    "int regex_search(string, string)",
    "int regex_search(string, int[4], string)",
    "int regex_match(string, string)",
    "int regex_match(string, int[4], string)",
    // Textures
    "T texture(string, float, float)",
    "T texture(string, float, float, float, float, float, float)",
    "color texture(string, float, float, 'blur', float, 'sblur', float, 'tblur', float, 'width', "
    "float, 'swidth', float, 'twidth', float, 'wrap', string, 'swrap', string, 'twrap', string, "
    "'firstchannel', int, 'subimage', int, 'subimage', string, 'fill', float, 'interp', string, "
    "'colorspace', string, 'missingcolor', color, 'missingalpha', float, 'alpha', float, "
    "'errormessage', string)",
    "T texture3d(string, point)",
    "T texture3d(string, point, vector, vector, vector)",
    "float texture3d(string, point, 'rblur', float, 'rwidth', float, 'rwrap', string, 'time', "
    "float)",
    "T environment(string, vector)",
    "T environment(string, vector, vector, vector, 'blur', float)",
    "int gettextureinfo(string, string, ANY)",
    "int gettextureinfo(string, float, float, string, ANY)",
    "int pointcloud_search(string, point, float, int, 'position', point[2])",
    "int pointcloud_search(string, point, float, int, int, 'index', int[2], 'x', color[2])",
    "int pointcloud_get(string, int[2], int, 'position', point[2])",
    "int pointcloud_get(string, int[2], int, 'a', float[2], 'b', float[8])",
    "int pointcloud_write(string, point, 'N', normal, 'C', color)",
    // Closures
    "closure color oren_nayar_diffuse_bsdf(normal, color, float, 'energy_compensation', int)",
    "closure color burley_diffuse_bsdf(normal, color, float)",
    "closure color dielectric_bsdf(normal, vector, color, color, float, float, float, string)",
    "closure color dielectric_bsdf(normal, vector, color, color, float, float, float, string, "
    "'thinfilm_thickness', float, 'thinfilm_ior', float)",
    "closure color conductor_bsdf(normal, vector, float, float, color, color, string)",
    "closure color generalized_schlick_bsdf(normal, vector, color, color, float, float, color, "
    "color, float, string)",
    "closure color translucent_bsdf(normal, color)",
    "closure color transparent_bsdf()",
    "closure color subsurface_bssrdf(normal, color, color, float)",
    "closure color sheen_bsdf(normal, color, float)",
    "closure color anisotropic_vdf(color, color, float)",
    "closure color medium_vdf(color, float, color, float, float, int)",
    "closure color uniform_edf(color)",
    "closure color layer(closure color, closure color)",
    "closure color holdout()",
    "closure color debug(string)",
    "void artistic_ior(color, color, color, color)",
    "closure color diffuse(normal)",
    "closure color phong(normal, float)",
    "closure color oren_nayar(normal, float)",
    "closure color ward(normal, vector, float, float)",
    "closure color microfacet(string, normal, vector, float, float, float, int)",
    "closure color microfacet(string, normal, float, float, int)",
    "closure color reflection(normal, float)",
    "closure color refraction(normal, float)",
    "closure color transparent()",
    "closure color translucent()",
    "closure color isotropic()",
    "closure color henyey_greenstein(float)",
    "closure color absorption()",
    "closure color emission()",
    "closure color background()",
    // The renderer
    "int getattribute(string, ANY)",
    "int getattribute(string, int, ANY)",
    "int getattribute(string, string, ANY)",
    "int getattribute(string, string, int, ANY)",
    "void setmessage(string, ANY)",
    "int getmessage(string, ANY)",
    "int getmessage(string, string, ANY)",
    "float surfacearea()",
    "int raytype(string)",
    "int backfacing()",
    "int isconnected(ANY)",
    "int isconstant(ANY)",
    "int dict_find(string, string)",
    "int dict_find(int, string)",
    "int dict_next(int)",
    "int dict_value(int, string, T)",
    "int dict_value(int, string, string)",
    "int dict_value(int, string, matrix)",
    "int dict_value(int, string, float[3])",
    "int trace(point, vector)",
    "int trace(point, vector, 'mindist', float, 'maxdist', float, 'shade', int, 'traceset', "
    "string)",
    "int arraylength(T[5])",
    "void exit()",
};

const char *const ANY_TYPES[] = {"int",    "float",     "color",    "point",
                                 "vector", "normal",    "matrix",   "string",
                                 "int[2]", "float[16]", "color[3]", "string[2]"};
const char *const TRIPLES_AND_FLOAT[] = {"float", "color", "point", "vector", "normal"};

// A text with a whole word replaced by another.
std::string with(const std::string &text, const std::string &word, const std::string &other)
{
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const bool isWord = text.compare(at, word.size(), word) == 0 &&
                            (at == 0 || std::isalnum(text[at - 1]) == 0) &&
                            std::isalnum(text.c_str()[at + word.size()]) == 0;
        result += isWord ? other : std::string(1, text[at]);
        at += isWord ? word.size() : 1;
    }
    return result;
}

// The signatures that one stands for.
std::vector<std::string> meant(const std::string &signature)
{
    std::vector<std::string> all;
    if (with(signature, "ANY", "") != signature) {
        for (const char *type : ANY_TYPES)
            all.push_back(with(signature, "ANY", type));
    } else if (with(signature, "T", "") != signature) {
        for (const char *type : TRIPLES_AND_FLOAT)
            all.push_back(with(signature, "T", type));
    } else if (with(signature, "P", "") != signature) {
        for (const char *type : {"point", "vector", "normal"})
            all.push_back(with(signature, "P", type));
    } else {
        all.push_back(signature);
    }
    return all;
}

std::string declaration(const std::string &type, const std::string &name)
{
    const size_t bracket = type.find('[');
    return type.substr(0, bracket) + " " + name +
           (bracket == std::string::npos ? "" : type.substr(bracket)) + "; ";
}

// Shaders that call a function, with the arguments that may be left out and without.
std::vector<std::string> callers(const std::string &signature)
{
    const size_t open = signature.find('(');
    const size_t blank = signature.rfind(' ', open);
    const std::string result = signature.substr(0, blank);
    std::string variables = result == "void" ? "" : declaration(result, "r");
    std::string call = (result == "void" ? "" : "r = ") + signature.substr(blank + 1, open - blank);
    std::vector<std::string> all;
    std::istringstream arguments(signature.substr(open + 1, signature.size() - open - 2));
    std::string argument;
    for (int i = 0; std::getline(arguments, argument, ','); ++i) {
        argument.erase(0, argument.find_first_not_of(' '));
        if (argument[0] == '?')
            all.push_back("displacement t() { " + variables + call + "); }");
        argument.erase(0, argument[0] == '?' ? 1 : 0);
        const std::string name = "a" + std::to_string(i);
        call += i > 0 ? ", " : "";
        if (argument[0] == '\'') {
            call += '"' + argument.substr(1, argument.size() - 2) + '"';
            continue;
        }
        variables += declaration(argument, name);
        call += name;
    }
    all.push_back("displacement t() { " + variables + call + "); }");
    return all;
}
} // namespace

TEST(Signatures, AreAllThere)
{
    for (const char *row : SIGNATURES) {
        for (const std::string &signature : meant(row)) {
            for (const std::string &source : callers(signature))
                EXPECT_EQ("", compilerSays(source)) << signature << "\n" << source;
        }
    }
}
