// Functions of the language that are written in the language: they get derivatives
// and vector code for nothing. Only those that a shader names are read.
#include "osl/check/osl_Builtins.h"

namespace
{
const struct {
    const char *name, *source;
} PRELUDE[] = {
    {"hypot", "float hypot(float x, float y, float z) { return sqrt(x*x + y*y + z*z); }"},
    {"distance", "float distance(point a, point b, point q) {"
                 "  vector d = b - a; float dd = dot(d, d);"
                 "  if (dd == 0.0) return distance(q, a);"
                 "  float t = clamp(dot(q - a, d) / dd, 0.0, 1.0);"
                 "  return distance(q, a + t * d); }"},
    {"faceforward",
     "vector faceforward(vector n, vector i, vector nref) { return dot(i, nref) > 0 ? -n : n; }"
     "vector faceforward(vector n, vector i) { return dot(i, Ng) > 0 ? -n : n; }"},
    {"mix", "closure color mix(closure color a, closure color b, float x) {"
            "  return a * (1 - x) + b * x; }"
            "closure color mix(closure color a, closure color b, color x) {"
            "  return a * (1 - x) + b * x; }"},
    {"reflect", "vector reflect(vector i, vector n) { return i - 2 * dot(n, i) * n; }"},
    {"refract", "vector refract(vector i, vector n, float eta) {"
                "  float c = dot(i, n); float k = 1 - eta * eta * (1 - c * c);"
                "  return k < 0 ? vector(0, 0, 0) : eta * i - n * (eta * c + sqrt(k)); }"},
    {"fresnel", "void fresnel(vector i, normal n, float eta, output float kr, output float kt,"
                "             output vector r, output vector t) {"
                "  float c = fabs(dot(i, n));"
                "  r = reflect(i, n);"
                "  float g2 = 1 / (eta * eta) - 1 + c * c;"
                "  if (g2 < 0) { kr = 1; kt = 0; t = vector(0); return; }"
                "  float g = sqrt(g2); float a = (g - c) / (g + c);"
                "  float b = (c * (g + c) - 1) / (c * (g - c) + 1);"
                "  kr = 0.5 * a * a * (1 + b * b);"
                "  kt = (1 - kr) * eta * eta;"
                "  t = refract(i, n, eta); }"
                "void fresnel(vector i, normal n, float eta, output float kr, output float kt) {"
                "  vector r, t; fresnel(i, n, eta, kr, kt, r, t); }"},
    {"rotate", "point rotate(point q, float angle, vector axis) {"
               "  vector w = normalize(axis); float c = cos(angle), s = sin(angle);"
               "  vector v = vector(q);"
               "  return point(v * c + cross(w, v) * s + w * (dot(w, v) * (1 - c))); }"
               "point rotate(point q, float angle, point a, point b) {"
               "  vector w = normalize(b - a); float c = cos(angle), s = sin(angle);"
               "  vector v = q - a;"
               "  return a + (v * c + cross(w, v) * s + w * (dot(w, v) * (1 - c))); }"},
    {"smooth_linearstep",
     "float smooth_linearstep(float low, float high, float at, float reach) {"
     "  if (low == high) return step(low, at);"
     "  float scale = 1 / (high - low); float eps = reach * scale; float x = (at - low) * scale;"
     "  if (x <= -eps) return 0;"
     "  if (x >= 1 + eps) return 1;"
     "  if (x >= eps && x <= 1 - eps) return x;"
     "  if (x < eps) return (x + eps) * (x + eps) * 0.25 / eps;"
     "  return 1 - (1 + eps - x) * (1 + eps - x) * 0.25 / eps; }"
     "vector ___smooth(vector low, vector high, vector at, vector reach) {"
     "  return vector(smooth_linearstep(low[0], high[0], at[0], reach[0]),"
     "                smooth_linearstep(low[1], high[1], at[1], reach[1]),"
     "                smooth_linearstep(low[2], high[2], at[2], reach[2])); }"
     "color smooth_linearstep(color a, color b, color x, color e) {"
     "  return color(___smooth(vector(a), vector(b), vector(x), vector(e))); }"
     "point smooth_linearstep(point a, point b, point x, point e) {"
     "  return point(___smooth(vector(a), vector(b), vector(x), vector(e))); }"
     "vector smooth_linearstep(vector a, vector b, vector x, vector e) {"
     "  return ___smooth(a, b, x, e); }"
     "normal smooth_linearstep(normal a, normal b, normal x, normal e) {"
     "  return normal(___smooth(vector(a), vector(b), vector(x), vector(e))); }"},
    {"aastep", "float aastep(float edge, float s, float dedge, float ds) {"
               "  float width = fabs(dedge) + fabs(ds); float first = edge - 0.5 * width;"
               "  return s <= first ? 0.0 : s >= edge + 0.5 * width ? 1.0 : (s - first) / width; }"
               "float aastep(float edge, float s, float ds) {"
               "  return aastep(edge, s, filterwidth(edge), ds); }"
               "float aastep(float edge, float s) {"
               "  return aastep(edge, s, filterwidth(edge), filterwidth(s)); }"},
    {"displace",
     "void displace(vector offset) { P += offset; N = normalize(normal(calculatenormal(P))); }"
     "void displace(float amp) { displace(amp * vector(normalize(N))); }"
     "void displace(string space, float amp) {"
     "  displace(amp / length(transform(space, vector(normalize(N)))) * vector(normalize(N))); }"},
    {"bump", "void bump(vector offset) { N = normalize(normal(calculatenormal(P + offset))); }"
             "void bump(float amp) { bump(amp * vector(normalize(N))); }"
             "void bump(string space, float amp) {"
             "  bump(amp / length(transform(space, vector(normalize(N)))) * vector(normalize(N)));"
             "}"},
    {"artistic_ior", "void artistic_ior(color reflectivity, color edge_tint, output color ior,"
                     "                  output color extinction) {"
                     "  color r = clamp(reflectivity, color(0), color(0.99)); color s = sqrt(r);"
                     "  color low = (1 - r) / (1 + r); color high = (1 + s) / (1 - s);"
                     "  ior = mix(high, low, edge_tint);"
                     "  color p = ior + 1, m = ior - 1;"
                     "  extinction = sqrt(max(color(0), (r * p * p - m * m) / (1 - r))); }"},
    // Short forms of closures
    {"microfacet",
     "closure color microfacet(string d, normal n, float alpha, float eta, int refr) {"
     "  return microfacet(d, n, vector(0), alpha, alpha, eta, refr); }"},
    {"reflection", "closure color reflection(normal n) { return reflection(n, 0.0); }"},
};
} // namespace

const char *osl_findPrelude(std::string_view name)
{
    for (const auto &row : PRELUDE) {
        if (name == row.name)
            return row.source;
    }
    return nullptr;
}
