// Four numbers. Arithmetic and functions go by components.
#pragma once

struct vector4 {
    float x;
    float y;
    float z;
    float w;
};

vector4 __operator__neg__(vector4 a) { return vector4(-a.x, -a.y, -a.z, -a.w); }
vector4 __operator__add__(vector4 a, vector4 b) { return vector4(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w); }
vector4 __operator__add__(vector4 a, int b) { return vector4(a.x + b, a.y + b, a.z + b, a.w + b); }
vector4 __operator__add__(int a, vector4 b) { return vector4(a + b.x, a + b.y, a + b.z, a + b.w); }
vector4 __operator__add__(vector4 a, float b) { return vector4(a.x + b, a.y + b, a.z + b, a.w + b); }
vector4 __operator__add__(float a, vector4 b) { return vector4(a + b.x, a + b.y, a + b.z, a + b.w); }
vector4 __operator__sub__(vector4 a, vector4 b) { return vector4(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w); }
vector4 __operator__sub__(vector4 a, int b) { return vector4(a.x - b, a.y - b, a.z - b, a.w - b); }
vector4 __operator__sub__(int a, vector4 b) { return vector4(a - b.x, a - b.y, a - b.z, a - b.w); }
vector4 __operator__sub__(vector4 a, float b) { return vector4(a.x - b, a.y - b, a.z - b, a.w - b); }
vector4 __operator__sub__(float a, vector4 b) { return vector4(a - b.x, a - b.y, a - b.z, a - b.w); }
vector4 __operator__mul__(vector4 a, vector4 b) { return vector4(a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w); }
vector4 __operator__mul__(vector4 a, int b) { return vector4(a.x * b, a.y * b, a.z * b, a.w * b); }
vector4 __operator__mul__(int a, vector4 b) { return vector4(a * b.x, a * b.y, a * b.z, a * b.w); }
vector4 __operator__mul__(vector4 a, float b) { return vector4(a.x * b, a.y * b, a.z * b, a.w * b); }
vector4 __operator__mul__(float a, vector4 b) { return vector4(a * b.x, a * b.y, a * b.z, a * b.w); }
vector4 __operator__div__(vector4 a, vector4 b) { return vector4(a.x / b.x, a.y / b.y, a.z / b.z, a.w / b.w); }
vector4 __operator__div__(vector4 a, int b) { return vector4(a.x / b, a.y / b, a.z / b, a.w / b); }
vector4 __operator__div__(int a, vector4 b) { return vector4(a / b.x, a / b.y, a / b.z, a / b.w); }
vector4 __operator__div__(vector4 a, float b) { return vector4(a.x / b, a.y / b, a.z / b, a.w / b); }
vector4 __operator__div__(float a, vector4 b) { return vector4(a / b.x, a / b.y, a / b.z, a / b.w); }
int __operator__eq__(vector4 a, vector4 b) { return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w; }
int __operator__ne__(vector4 a, vector4 b) { return !(a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w); }
int __operator__neq__(vector4 a, vector4 b) { return !(a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w); }

vector4 abs(vector4 a) { return vector4(abs(a.x), abs(a.y), abs(a.z), abs(a.w)); }
vector4 ceil(vector4 a) { return vector4(ceil(a.x), ceil(a.y), ceil(a.z), ceil(a.w)); }
vector4 floor(vector4 a) { return vector4(floor(a.x), floor(a.y), floor(a.z), floor(a.w)); }
vector4 round(vector4 a) { return vector4(round(a.x), round(a.y), round(a.z), round(a.w)); }
vector4 trunc(vector4 a) { return vector4(trunc(a.x), trunc(a.y), trunc(a.z), trunc(a.w)); }
vector4 sqrt(vector4 a) { return vector4(sqrt(a.x), sqrt(a.y), sqrt(a.z), sqrt(a.w)); }
vector4 inversesqrt(vector4 a) { return vector4(inversesqrt(a.x), inversesqrt(a.y), inversesqrt(a.z), inversesqrt(a.w)); }
vector4 exp(vector4 a) { return vector4(exp(a.x), exp(a.y), exp(a.z), exp(a.w)); }
vector4 exp2(vector4 a) { return vector4(exp2(a.x), exp2(a.y), exp2(a.z), exp2(a.w)); }
vector4 log(vector4 a) { return vector4(log(a.x), log(a.y), log(a.z), log(a.w)); }
vector4 log2(vector4 a) { return vector4(log2(a.x), log2(a.y), log2(a.z), log2(a.w)); }
vector4 log10(vector4 a) { return vector4(log10(a.x), log10(a.y), log10(a.z), log10(a.w)); }
vector4 sign(vector4 a) { return vector4(sign(a.x), sign(a.y), sign(a.z), sign(a.w)); }
vector4 sin(vector4 a) { return vector4(sin(a.x), sin(a.y), sin(a.z), sin(a.w)); }
vector4 cos(vector4 a) { return vector4(cos(a.x), cos(a.y), cos(a.z), cos(a.w)); }
vector4 tan(vector4 a) { return vector4(tan(a.x), tan(a.y), tan(a.z), tan(a.w)); }
vector4 asin(vector4 a) { return vector4(asin(a.x), asin(a.y), asin(a.z), asin(a.w)); }
vector4 acos(vector4 a) { return vector4(acos(a.x), acos(a.y), acos(a.z), acos(a.w)); }
vector4 atan(vector4 a) { return vector4(atan(a.x), atan(a.y), atan(a.z), atan(a.w)); }
vector4 sinh(vector4 a) { return vector4(sinh(a.x), sinh(a.y), sinh(a.z), sinh(a.w)); }
vector4 cosh(vector4 a) { return vector4(cosh(a.x), cosh(a.y), cosh(a.z), cosh(a.w)); }
vector4 tanh(vector4 a) { return vector4(tanh(a.x), tanh(a.y), tanh(a.z), tanh(a.w)); }

vector4 max(vector4 a, vector4 b) { return vector4(max(a.x, b.x), max(a.y, b.y), max(a.z, b.z), max(a.w, b.w)); }
vector4 max(vector4 a, float b) { return vector4(max(a.x, b), max(a.y, b), max(a.z, b), max(a.w, b)); }
vector4 min(vector4 a, vector4 b) { return vector4(min(a.x, b.x), min(a.y, b.y), min(a.z, b.z), min(a.w, b.w)); }
vector4 min(vector4 a, float b) { return vector4(min(a.x, b), min(a.y, b), min(a.z, b), min(a.w, b)); }
vector4 fmod(vector4 a, vector4 b) { return vector4(fmod(a.x, b.x), fmod(a.y, b.y), fmod(a.z, b.z), fmod(a.w, b.w)); }
vector4 fmod(vector4 a, float b) { return vector4(fmod(a.x, b), fmod(a.y, b), fmod(a.z, b), fmod(a.w, b)); }
vector4 mod(vector4 a, vector4 b) { return vector4(mod(a.x, b.x), mod(a.y, b.y), mod(a.z, b.z), mod(a.w, b.w)); }
vector4 mod(vector4 a, float b) { return vector4(mod(a.x, b), mod(a.y, b), mod(a.z, b), mod(a.w, b)); }
vector4 pow(vector4 a, vector4 b) { return vector4(pow(a.x, b.x), pow(a.y, b.y), pow(a.z, b.z), pow(a.w, b.w)); }
vector4 pow(vector4 a, float b) { return vector4(pow(a.x, b), pow(a.y, b), pow(a.z, b), pow(a.w, b)); }
vector4 atan2(vector4 a, vector4 b) { return vector4(atan2(a.x, b.x), atan2(a.y, b.y), atan2(a.z, b.z), atan2(a.w, b.w)); }
vector4 atan2(vector4 a, float b) { return vector4(atan2(a.x, b), atan2(a.y, b), atan2(a.z, b), atan2(a.w, b)); }
vector4 step(vector4 a, vector4 b) { return vector4(step(a.x, b.x), step(a.y, b.y), step(a.z, b.z), step(a.w, b.w)); }
vector4 step(float a, vector4 b) { return vector4(step(a, b.x), step(a, b.y), step(a, b.z), step(a, b.w)); }

vector4 mix(vector4 a, vector4 b, float x) { return vector4(mix(a.x, b.x, x), mix(a.y, b.y, x), mix(a.z, b.z, x), mix(a.w, b.w, x)); }
vector4 mix(vector4 a, vector4 b, vector4 x) { return vector4(mix(a.x, b.x, x.x), mix(a.y, b.y, x.y), mix(a.z, b.z, x.z), mix(a.w, b.w, x.w)); }
vector4 smoothstep(vector4 low, vector4 high, vector4 x) { return vector4(smoothstep(low.x, high.x, x.x), smoothstep(low.y, high.y, x.y), smoothstep(low.z, high.z, x.z), smoothstep(low.w, high.w, x.w)); }
vector4 smoothstep(float low, float high, vector4 x) { return vector4(smoothstep(low, high, x.x), smoothstep(low, high, x.y), smoothstep(low, high, x.z), smoothstep(low, high, x.w)); }
vector4 linearstep(vector4 low, vector4 high, vector4 x) { return vector4(linearstep(low.x, high.x, x.x), linearstep(low.y, high.y, x.y), linearstep(low.z, high.z, x.z), linearstep(low.w, high.w, x.w)); }
vector4 linearstep(float low, float high, vector4 x) { return vector4(linearstep(low, high, x.x), linearstep(low, high, x.y), linearstep(low, high, x.z), linearstep(low, high, x.w)); }
vector4 clamp(vector4 x, vector4 low, vector4 high) { return vector4(clamp(x.x, low.x, high.x), clamp(x.y, low.y, high.y), clamp(x.z, low.z, high.z), clamp(x.w, low.w, high.w)); }
vector4 clamp(vector4 x, float low, float high) { return vector4(clamp(x.x, low, high), clamp(x.y, low, high), clamp(x.z, low, high), clamp(x.w, low, high)); }
float dot(vector4 a, vector4 b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }
float length(vector4 a) { return sqrt(dot(a, a)); }
float distance(vector4 a, vector4 b) { return length(a - b); }
vector4 normalize(vector4 a)
{
    float l = length(a);
    return l > 0 ? a / l : a * 0.0;
}
vector4 transform(matrix m, vector4 p) { return vector4(p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + p.w * m[3][0], p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + p.w * m[3][1], p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + p.w * m[3][2], p.x * m[0][3] + p.y * m[1][3] + p.z * m[2][3] + p.w * m[3][3]); }

// A homogeneous point as three numbers, and back.
vector vec4ToVec3(vector4 v) { return vector(v.x, v.y, v.z) / v.w; }
vector4 vec3ToVec4(vector v) { return vector4(v[0], v[1], v[2], 1.0); }

vector4 transform(string fromspace, string tospace, vector4 p)
{
    return transform(matrix(fromspace, tospace), p);
}
vector4 transform(string tospace, vector4 p) { return transform("common", tospace, p); }
