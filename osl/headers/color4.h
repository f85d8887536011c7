// A colour and an alpha. Arithmetic and functions go by components.
#pragma once

struct color4 {
    color rgb;
    float a;
};

color4 __operator__neg__(color4 a) { return color4(-a.rgb, -a.a); }
color4 __operator__add__(color4 a, color4 b) { return color4(a.rgb + b.rgb, a.a + b.a); }
color4 __operator__add__(color4 a, int b) { return color4(a.rgb + b, a.a + b); }
color4 __operator__add__(int a, color4 b) { return color4(a + b.rgb, a + b.a); }
color4 __operator__add__(color4 a, float b) { return color4(a.rgb + b, a.a + b); }
color4 __operator__add__(float a, color4 b) { return color4(a + b.rgb, a + b.a); }
color4 __operator__sub__(color4 a, color4 b) { return color4(a.rgb - b.rgb, a.a - b.a); }
color4 __operator__sub__(color4 a, int b) { return color4(a.rgb - b, a.a - b); }
color4 __operator__sub__(int a, color4 b) { return color4(a - b.rgb, a - b.a); }
color4 __operator__sub__(color4 a, float b) { return color4(a.rgb - b, a.a - b); }
color4 __operator__sub__(float a, color4 b) { return color4(a - b.rgb, a - b.a); }
color4 __operator__mul__(color4 a, color4 b) { return color4(a.rgb * b.rgb, a.a * b.a); }
color4 __operator__mul__(color4 a, int b) { return color4(a.rgb * b, a.a * b); }
color4 __operator__mul__(int a, color4 b) { return color4(a * b.rgb, a * b.a); }
color4 __operator__mul__(color4 a, float b) { return color4(a.rgb * b, a.a * b); }
color4 __operator__mul__(float a, color4 b) { return color4(a * b.rgb, a * b.a); }
color4 __operator__div__(color4 a, color4 b) { return color4(a.rgb / b.rgb, a.a / b.a); }
color4 __operator__div__(color4 a, int b) { return color4(a.rgb / b, a.a / b); }
color4 __operator__div__(int a, color4 b) { return color4(a / b.rgb, a / b.a); }
color4 __operator__div__(color4 a, float b) { return color4(a.rgb / b, a.a / b); }
color4 __operator__div__(float a, color4 b) { return color4(a / b.rgb, a / b.a); }
int __operator__eq__(color4 a, color4 b) { return a.rgb == b.rgb && a.a == b.a; }
int __operator__ne__(color4 a, color4 b) { return !(a.rgb == b.rgb && a.a == b.a); }
int __operator__neq__(color4 a, color4 b) { return !(a.rgb == b.rgb && a.a == b.a); }

color4 abs(color4 a) { return color4(abs(a.rgb), abs(a.a)); }
color4 ceil(color4 a) { return color4(ceil(a.rgb), ceil(a.a)); }
color4 floor(color4 a) { return color4(floor(a.rgb), floor(a.a)); }
color4 round(color4 a) { return color4(round(a.rgb), round(a.a)); }
color4 trunc(color4 a) { return color4(trunc(a.rgb), trunc(a.a)); }
color4 sqrt(color4 a) { return color4(sqrt(a.rgb), sqrt(a.a)); }
color4 inversesqrt(color4 a) { return color4(inversesqrt(a.rgb), inversesqrt(a.a)); }
color4 exp(color4 a) { return color4(exp(a.rgb), exp(a.a)); }
color4 exp2(color4 a) { return color4(exp2(a.rgb), exp2(a.a)); }
color4 log(color4 a) { return color4(log(a.rgb), log(a.a)); }
color4 log2(color4 a) { return color4(log2(a.rgb), log2(a.a)); }
color4 log10(color4 a) { return color4(log10(a.rgb), log10(a.a)); }
color4 sign(color4 a) { return color4(sign(a.rgb), sign(a.a)); }
color4 sin(color4 a) { return color4(sin(a.rgb), sin(a.a)); }
color4 cos(color4 a) { return color4(cos(a.rgb), cos(a.a)); }
color4 tan(color4 a) { return color4(tan(a.rgb), tan(a.a)); }
color4 asin(color4 a) { return color4(asin(a.rgb), asin(a.a)); }
color4 acos(color4 a) { return color4(acos(a.rgb), acos(a.a)); }
color4 atan(color4 a) { return color4(atan(a.rgb), atan(a.a)); }
color4 sinh(color4 a) { return color4(sinh(a.rgb), sinh(a.a)); }
color4 cosh(color4 a) { return color4(cosh(a.rgb), cosh(a.a)); }
color4 tanh(color4 a) { return color4(tanh(a.rgb), tanh(a.a)); }

color4 max(color4 a, color4 b) { return color4(max(a.rgb, b.rgb), max(a.a, b.a)); }
color4 max(color4 a, float b) { return color4(max(a.rgb, color(b)), max(a.a, b)); }
color4 min(color4 a, color4 b) { return color4(min(a.rgb, b.rgb), min(a.a, b.a)); }
color4 min(color4 a, float b) { return color4(min(a.rgb, color(b)), min(a.a, b)); }
color4 fmod(color4 a, color4 b) { return color4(fmod(a.rgb, b.rgb), fmod(a.a, b.a)); }
color4 fmod(color4 a, float b) { return color4(fmod(a.rgb, color(b)), fmod(a.a, b)); }
color4 mod(color4 a, color4 b) { return color4(mod(a.rgb, b.rgb), mod(a.a, b.a)); }
color4 mod(color4 a, float b) { return color4(mod(a.rgb, color(b)), mod(a.a, b)); }
color4 pow(color4 a, color4 b) { return color4(pow(a.rgb, b.rgb), pow(a.a, b.a)); }
color4 pow(color4 a, float b) { return color4(pow(a.rgb, color(b)), pow(a.a, b)); }
color4 atan2(color4 a, color4 b) { return color4(atan2(a.rgb, b.rgb), atan2(a.a, b.a)); }
color4 atan2(color4 a, float b) { return color4(atan2(a.rgb, color(b)), atan2(a.a, b)); }
color4 step(color4 a, color4 b) { return color4(step(a.rgb, b.rgb), step(a.a, b.a)); }
color4 step(float a, color4 b) { return color4(step(color(a), b.rgb), step(a, b.a)); }

color4 mix(color4 a, color4 b, float x) { return color4(mix(a.rgb, b.rgb, x), mix(a.a, b.a, x)); }
color4 mix(color4 a, color4 b, color4 x) { return color4(mix(a.rgb, b.rgb, x.rgb), mix(a.a, b.a, x.a)); }
color4 smoothstep(color4 low, color4 high, color4 x) { return color4(smoothstep(low.rgb, high.rgb, x.rgb), smoothstep(low.a, high.a, x.a)); }
color4 smoothstep(float low, float high, color4 x) { return color4(smoothstep(color(low), color(high), x.rgb), smoothstep(low, high, x.a)); }
color4 linearstep(color4 low, color4 high, color4 x) { return color4(linearstep(low.rgb, high.rgb, x.rgb), linearstep(low.a, high.a, x.a)); }
color4 linearstep(float low, float high, color4 x) { return color4(linearstep(color(low), color(high), x.rgb), linearstep(low, high, x.a)); }
color4 clamp(color4 x, color4 low, color4 high) { return color4(clamp(x.rgb, low.rgb, high.rgb), clamp(x.a, low.a, high.a)); }
color4 clamp(color4 x, float low, float high) { return color4(clamp(x.rgb, color(low), color(high)), clamp(x.a, low, high)); }
color4 unpremult(color4 c) { return c.a != 0 ? color4(c.rgb / c.a, c.a) : c; }
color4 premult(color4 c) { return color4(c.rgb * c.a, c.a); }
color4 transformc(string to, color4 c) { return color4(transformc(to, c.rgb), c.a); }
color4 transformc(string from, string to, color4 c) { return color4(transformc(from, to, c.rgb), c.a); }
