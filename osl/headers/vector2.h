// Two numbers. Arithmetic and functions go by components.
#pragma once

struct vector2 {
    float x;
    float y;
};

vector2 __operator__neg__(vector2 a) { return vector2(-a.x, -a.y); }
vector2 __operator__add__(vector2 a, vector2 b) { return vector2(a.x + b.x, a.y + b.y); }
vector2 __operator__add__(vector2 a, int b) { return vector2(a.x + b, a.y + b); }
vector2 __operator__add__(int a, vector2 b) { return vector2(a + b.x, a + b.y); }
vector2 __operator__add__(vector2 a, float b) { return vector2(a.x + b, a.y + b); }
vector2 __operator__add__(float a, vector2 b) { return vector2(a + b.x, a + b.y); }
vector2 __operator__sub__(vector2 a, vector2 b) { return vector2(a.x - b.x, a.y - b.y); }
vector2 __operator__sub__(vector2 a, int b) { return vector2(a.x - b, a.y - b); }
vector2 __operator__sub__(int a, vector2 b) { return vector2(a - b.x, a - b.y); }
vector2 __operator__sub__(vector2 a, float b) { return vector2(a.x - b, a.y - b); }
vector2 __operator__sub__(float a, vector2 b) { return vector2(a - b.x, a - b.y); }
vector2 __operator__mul__(vector2 a, vector2 b) { return vector2(a.x * b.x, a.y * b.y); }
vector2 __operator__mul__(vector2 a, int b) { return vector2(a.x * b, a.y * b); }
vector2 __operator__mul__(int a, vector2 b) { return vector2(a * b.x, a * b.y); }
vector2 __operator__mul__(vector2 a, float b) { return vector2(a.x * b, a.y * b); }
vector2 __operator__mul__(float a, vector2 b) { return vector2(a * b.x, a * b.y); }
vector2 __operator__div__(vector2 a, vector2 b) { return vector2(a.x / b.x, a.y / b.y); }
vector2 __operator__div__(vector2 a, int b) { return vector2(a.x / b, a.y / b); }
vector2 __operator__div__(int a, vector2 b) { return vector2(a / b.x, a / b.y); }
vector2 __operator__div__(vector2 a, float b) { return vector2(a.x / b, a.y / b); }
vector2 __operator__div__(float a, vector2 b) { return vector2(a / b.x, a / b.y); }
int __operator__eq__(vector2 a, vector2 b) { return a.x == b.x && a.y == b.y; }
int __operator__ne__(vector2 a, vector2 b) { return !(a.x == b.x && a.y == b.y); }
int __operator__neq__(vector2 a, vector2 b) { return !(a.x == b.x && a.y == b.y); }

vector2 abs(vector2 a) { return vector2(abs(a.x), abs(a.y)); }
vector2 ceil(vector2 a) { return vector2(ceil(a.x), ceil(a.y)); }
vector2 floor(vector2 a) { return vector2(floor(a.x), floor(a.y)); }
vector2 round(vector2 a) { return vector2(round(a.x), round(a.y)); }
vector2 trunc(vector2 a) { return vector2(trunc(a.x), trunc(a.y)); }
vector2 sqrt(vector2 a) { return vector2(sqrt(a.x), sqrt(a.y)); }
vector2 inversesqrt(vector2 a) { return vector2(inversesqrt(a.x), inversesqrt(a.y)); }
vector2 exp(vector2 a) { return vector2(exp(a.x), exp(a.y)); }
vector2 exp2(vector2 a) { return vector2(exp2(a.x), exp2(a.y)); }
vector2 log(vector2 a) { return vector2(log(a.x), log(a.y)); }
vector2 log2(vector2 a) { return vector2(log2(a.x), log2(a.y)); }
vector2 log10(vector2 a) { return vector2(log10(a.x), log10(a.y)); }
vector2 sign(vector2 a) { return vector2(sign(a.x), sign(a.y)); }
vector2 sin(vector2 a) { return vector2(sin(a.x), sin(a.y)); }
vector2 cos(vector2 a) { return vector2(cos(a.x), cos(a.y)); }
vector2 tan(vector2 a) { return vector2(tan(a.x), tan(a.y)); }
vector2 asin(vector2 a) { return vector2(asin(a.x), asin(a.y)); }
vector2 acos(vector2 a) { return vector2(acos(a.x), acos(a.y)); }
vector2 atan(vector2 a) { return vector2(atan(a.x), atan(a.y)); }
vector2 sinh(vector2 a) { return vector2(sinh(a.x), sinh(a.y)); }
vector2 cosh(vector2 a) { return vector2(cosh(a.x), cosh(a.y)); }
vector2 tanh(vector2 a) { return vector2(tanh(a.x), tanh(a.y)); }

vector2 max(vector2 a, vector2 b) { return vector2(max(a.x, b.x), max(a.y, b.y)); }
vector2 max(vector2 a, float b) { return vector2(max(a.x, b), max(a.y, b)); }
vector2 min(vector2 a, vector2 b) { return vector2(min(a.x, b.x), min(a.y, b.y)); }
vector2 min(vector2 a, float b) { return vector2(min(a.x, b), min(a.y, b)); }
vector2 fmod(vector2 a, vector2 b) { return vector2(fmod(a.x, b.x), fmod(a.y, b.y)); }
vector2 fmod(vector2 a, float b) { return vector2(fmod(a.x, b), fmod(a.y, b)); }
vector2 mod(vector2 a, vector2 b) { return vector2(mod(a.x, b.x), mod(a.y, b.y)); }
vector2 mod(vector2 a, float b) { return vector2(mod(a.x, b), mod(a.y, b)); }
vector2 pow(vector2 a, vector2 b) { return vector2(pow(a.x, b.x), pow(a.y, b.y)); }
vector2 pow(vector2 a, float b) { return vector2(pow(a.x, b), pow(a.y, b)); }
vector2 atan2(vector2 a, vector2 b) { return vector2(atan2(a.x, b.x), atan2(a.y, b.y)); }
vector2 atan2(vector2 a, float b) { return vector2(atan2(a.x, b), atan2(a.y, b)); }
vector2 step(vector2 a, vector2 b) { return vector2(step(a.x, b.x), step(a.y, b.y)); }
vector2 step(float a, vector2 b) { return vector2(step(a, b.x), step(a, b.y)); }

vector2 mix(vector2 a, vector2 b, float x) { return vector2(mix(a.x, b.x, x), mix(a.y, b.y, x)); }
vector2 mix(vector2 a, vector2 b, vector2 x) { return vector2(mix(a.x, b.x, x.x), mix(a.y, b.y, x.y)); }
vector2 smoothstep(vector2 low, vector2 high, vector2 x) { return vector2(smoothstep(low.x, high.x, x.x), smoothstep(low.y, high.y, x.y)); }
vector2 smoothstep(float low, float high, vector2 x) { return vector2(smoothstep(low, high, x.x), smoothstep(low, high, x.y)); }
vector2 linearstep(vector2 low, vector2 high, vector2 x) { return vector2(linearstep(low.x, high.x, x.x), linearstep(low.y, high.y, x.y)); }
vector2 linearstep(float low, float high, vector2 x) { return vector2(linearstep(low, high, x.x), linearstep(low, high, x.y)); }
vector2 clamp(vector2 x, vector2 low, vector2 high) { return vector2(clamp(x.x, low.x, high.x), clamp(x.y, low.y, high.y)); }
vector2 clamp(vector2 x, float low, float high) { return vector2(clamp(x.x, low, high), clamp(x.y, low, high)); }
float dot(vector2 a, vector2 b) { return a.x * b.x + a.y * b.y; }
float length(vector2 a) { return sqrt(dot(a, a)); }
float distance(vector2 a, vector2 b) { return length(a - b); }
vector2 normalize(vector2 a)
{
    float l = length(a);
    return l > 0 ? a / l : a * 0.0;
}
