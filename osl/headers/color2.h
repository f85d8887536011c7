// A grey and an alpha. Arithmetic and functions go by components.
#pragma once

struct color2 {
    float r;
    float a;
};

color2 __operator__neg__(color2 a) { return color2(-a.r, -a.a); }
color2 __operator__add__(color2 a, color2 b) { return color2(a.r + b.r, a.a + b.a); }
color2 __operator__add__(color2 a, int b) { return color2(a.r + b, a.a + b); }
color2 __operator__add__(int a, color2 b) { return color2(a + b.r, a + b.a); }
color2 __operator__add__(color2 a, float b) { return color2(a.r + b, a.a + b); }
color2 __operator__add__(float a, color2 b) { return color2(a + b.r, a + b.a); }
color2 __operator__sub__(color2 a, color2 b) { return color2(a.r - b.r, a.a - b.a); }
color2 __operator__sub__(color2 a, int b) { return color2(a.r - b, a.a - b); }
color2 __operator__sub__(int a, color2 b) { return color2(a - b.r, a - b.a); }
color2 __operator__sub__(color2 a, float b) { return color2(a.r - b, a.a - b); }
color2 __operator__sub__(float a, color2 b) { return color2(a - b.r, a - b.a); }
color2 __operator__mul__(color2 a, color2 b) { return color2(a.r * b.r, a.a * b.a); }
color2 __operator__mul__(color2 a, int b) { return color2(a.r * b, a.a * b); }
color2 __operator__mul__(int a, color2 b) { return color2(a * b.r, a * b.a); }
color2 __operator__mul__(color2 a, float b) { return color2(a.r * b, a.a * b); }
color2 __operator__mul__(float a, color2 b) { return color2(a * b.r, a * b.a); }
color2 __operator__div__(color2 a, color2 b) { return color2(a.r / b.r, a.a / b.a); }
color2 __operator__div__(color2 a, int b) { return color2(a.r / b, a.a / b); }
color2 __operator__div__(int a, color2 b) { return color2(a / b.r, a / b.a); }
color2 __operator__div__(color2 a, float b) { return color2(a.r / b, a.a / b); }
color2 __operator__div__(float a, color2 b) { return color2(a / b.r, a / b.a); }
int __operator__eq__(color2 a, color2 b) { return a.r == b.r && a.a == b.a; }
int __operator__ne__(color2 a, color2 b) { return !(a.r == b.r && a.a == b.a); }
int __operator__neq__(color2 a, color2 b) { return !(a.r == b.r && a.a == b.a); }

color2 abs(color2 a) { return color2(abs(a.r), abs(a.a)); }
color2 ceil(color2 a) { return color2(ceil(a.r), ceil(a.a)); }
color2 floor(color2 a) { return color2(floor(a.r), floor(a.a)); }
color2 round(color2 a) { return color2(round(a.r), round(a.a)); }
color2 trunc(color2 a) { return color2(trunc(a.r), trunc(a.a)); }
color2 sqrt(color2 a) { return color2(sqrt(a.r), sqrt(a.a)); }
color2 inversesqrt(color2 a) { return color2(inversesqrt(a.r), inversesqrt(a.a)); }
color2 exp(color2 a) { return color2(exp(a.r), exp(a.a)); }
color2 exp2(color2 a) { return color2(exp2(a.r), exp2(a.a)); }
color2 log(color2 a) { return color2(log(a.r), log(a.a)); }
color2 log2(color2 a) { return color2(log2(a.r), log2(a.a)); }
color2 log10(color2 a) { return color2(log10(a.r), log10(a.a)); }
color2 sign(color2 a) { return color2(sign(a.r), sign(a.a)); }
color2 sin(color2 a) { return color2(sin(a.r), sin(a.a)); }
color2 cos(color2 a) { return color2(cos(a.r), cos(a.a)); }
color2 tan(color2 a) { return color2(tan(a.r), tan(a.a)); }
color2 asin(color2 a) { return color2(asin(a.r), asin(a.a)); }
color2 acos(color2 a) { return color2(acos(a.r), acos(a.a)); }
color2 atan(color2 a) { return color2(atan(a.r), atan(a.a)); }
color2 sinh(color2 a) { return color2(sinh(a.r), sinh(a.a)); }
color2 cosh(color2 a) { return color2(cosh(a.r), cosh(a.a)); }
color2 tanh(color2 a) { return color2(tanh(a.r), tanh(a.a)); }

color2 max(color2 a, color2 b) { return color2(max(a.r, b.r), max(a.a, b.a)); }
color2 max(color2 a, float b) { return color2(max(a.r, b), max(a.a, b)); }
color2 min(color2 a, color2 b) { return color2(min(a.r, b.r), min(a.a, b.a)); }
color2 min(color2 a, float b) { return color2(min(a.r, b), min(a.a, b)); }
color2 fmod(color2 a, color2 b) { return color2(fmod(a.r, b.r), fmod(a.a, b.a)); }
color2 fmod(color2 a, float b) { return color2(fmod(a.r, b), fmod(a.a, b)); }
color2 mod(color2 a, color2 b) { return color2(mod(a.r, b.r), mod(a.a, b.a)); }
color2 mod(color2 a, float b) { return color2(mod(a.r, b), mod(a.a, b)); }
color2 pow(color2 a, color2 b) { return color2(pow(a.r, b.r), pow(a.a, b.a)); }
color2 pow(color2 a, float b) { return color2(pow(a.r, b), pow(a.a, b)); }
color2 atan2(color2 a, color2 b) { return color2(atan2(a.r, b.r), atan2(a.a, b.a)); }
color2 atan2(color2 a, float b) { return color2(atan2(a.r, b), atan2(a.a, b)); }
color2 step(color2 a, color2 b) { return color2(step(a.r, b.r), step(a.a, b.a)); }
color2 step(float a, color2 b) { return color2(step(a, b.r), step(a, b.a)); }

color2 mix(color2 a, color2 b, float x) { return color2(mix(a.r, b.r, x), mix(a.a, b.a, x)); }
color2 mix(color2 a, color2 b, color2 x) { return color2(mix(a.r, b.r, x.r), mix(a.a, b.a, x.a)); }
color2 smoothstep(color2 low, color2 high, color2 x) { return color2(smoothstep(low.r, high.r, x.r), smoothstep(low.a, high.a, x.a)); }
color2 smoothstep(float low, float high, color2 x) { return color2(smoothstep(low, high, x.r), smoothstep(low, high, x.a)); }
color2 linearstep(color2 low, color2 high, color2 x) { return color2(linearstep(low.r, high.r, x.r), linearstep(low.a, high.a, x.a)); }
color2 linearstep(float low, float high, color2 x) { return color2(linearstep(low, high, x.r), linearstep(low, high, x.a)); }
color2 clamp(color2 x, color2 low, color2 high) { return color2(clamp(x.r, low.r, high.r), clamp(x.a, low.a, high.a)); }
color2 clamp(color2 x, float low, float high) { return color2(clamp(x.r, low, high), clamp(x.a, low, high)); }
