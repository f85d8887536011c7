#include "osl/lib/osl_Texture.h"

#include "osl/lib/osl_Colour.h"
#include "osl/lib/osl_MipMap.h"

#include <algorithm>
#include <iterator>

namespace
{
constexpr int MOST_PROBES = 16;

template <class T>
struct Named {
    const char *name;
    T value;
};
constexpr Named<osl_Wrap> WRAPS[] = {{"default", OSL_WRAP_DEFAULT},
                                     {"black", OSL_WRAP_BLACK},
                                     {"clamp", OSL_WRAP_CLAMP},
                                     {"periodic", OSL_WRAP_PERIODIC},
                                     {"mirror", OSL_WRAP_MIRROR}};
constexpr Named<osl_Interp> INTERPS[] = {{"smartcubic", OSL_INTERP_SMARTCUBIC},
                                         {"cubic", OSL_INTERP_CUBIC},
                                         {"linear", OSL_INTERP_LINEAR},
                                         {"closest", OSL_INTERP_CLOSEST}};

template <class T, size_t N>
bool findByName(const Named<T> (&table)[N], std::string_view name, T &value)
{
    for (const Named<T> &row : table) {
        if (name == row.name) {
            value = row.value;
            return true;
        }
    }
    return false;
}

int floorMod(int a, int b)
{
    const int r = a % b;
    return r < 0 ? r + b : r;
}

// Index of the texel that stands at `i`; -1 for black.
int wrapped(osl_Wrap wrap, int i, int size)
{
    if (i >= 0 && i < size)
        return i;
    switch (wrap) {
    case OSL_WRAP_CLAMP:
        return i < 0 ? 0 : size - 1;
    case OSL_WRAP_PERIODIC:
        return floorMod(i, size);
    case OSL_WRAP_MIRROR:
        i = floorMod(i, 2 * size);
        return i < size ? i : 2 * size - 1 - i;
    default:
        return -1;
    }
}

// Whole turns are taken off first, so that places far away stay exact.
float withoutTurns(osl_Wrap wrap, float x)
{
    if (!std::isfinite(x))
        return 0;
    if (wrap == OSL_WRAP_PERIODIC)
        return x - std::floor(x);
    if (wrap == OSL_WRAP_MIRROR)
        return x - 2 * std::floor(x / 2);
    return osl_clamp(x, -8, 8);
}

// The texels along one axis that a lookup blends; slopes are per texel.
struct Taps {
    int count = 0;
    int index[4];
    float weight[4];
    float slope[4];

    void add(int i, float w, float dw)
    {
        index[count] = i;
        weight[count] = w;
        slope[count++] = dw;
    }
};

Taps closestTap(float x)
{
    Taps taps;
    taps.add(osl_toInt(std::floor(x)), 1, 0);
    return taps;
}

Taps linearTaps(float x)
{
    const float low = std::floor(x - 0.5f), f = x - 0.5f - low;
    Taps taps;
    taps.add(osl_toInt(low), 1 - f, -1);
    taps.add(osl_toInt(low) + 1, f, 1);
    return taps;
}

// The uniform cubic B-spline.
Taps cubicTaps(float x)
{
    const float low = std::floor(x - 0.5f), f = x - 0.5f - low, g = 1 - f;
    const int i = osl_toInt(low);
    Taps taps;
    taps.add(i - 1, g * g * g / 6, -g * g / 2);
    taps.add(i, (4 - 3 * f * f * (2 - f)) / 6, f * (3 * f - 4) / 2);
    taps.add(i + 1, (4 - 3 * g * g * (2 - g)) / 6, -g * (3 * g - 4) / 2);
    taps.add(i + 2, f * f * f / 6, f * f / 2);
    return taps;
}

Taps tapsFor(osl_Interp interp, float x)
{
    if (interp == OSL_INTERP_CLOSEST)
        return closestTap(x);
    return interp == OSL_INTERP_CUBIC ? cubicTaps(x) : linearTaps(x);
}

// A lookup as it goes: what is wanted, and the sums.
class Lookup
{
public:
    Lookup(const osl_Texture &texture, const osl_TextureOptions &options, int count)
        : myTexture(texture), myOptions(options), myCount(count)
    {
    }

    osl_TextureValue run(const osl_TexturePlace &place);

private:
    void probe(float s, float t, float level, float weight);
    void addLevel(int level, osl_Interp interp, float s, float t, float weight);
    void addTexel(const osl_Picture &p, int x, int y, float w, float ds, float dt);
    float texel(const osl_Picture &p, size_t at, int channel) const;
    void fillMissing();

    const osl_Texture &myTexture;
    const osl_TextureOptions &myOptions;
    int myCount;
    osl_TextureValue mySum;
};

bool isAlpha(const osl_Picture &p, int channel)
{
    return p.channels % 2 == 0 && channel == p.channels - 1;
}

float Lookup::texel(const osl_Picture &p, size_t at, int channel) const
{
    const float x = static_cast<float>(p.texels[at + static_cast<size_t>(channel)]) / 65535;
    return myOptions.isSRGB && !isAlpha(p, channel) ? osl_linearFromSRGB(x) : x;
}

void Lookup::addTexel(const osl_Picture &p, int x, int y, float w, float ds, float dt)
{
    const size_t at = static_cast<size_t>(y * p.width + x) * static_cast<size_t>(p.channels);
    const int most = std::min(myCount, p.channels - myOptions.firstChannel);
    for (int c = 0; c < most; ++c) {
        const float v = texel(p, at, myOptions.firstChannel + c);
        mySum.value[c] += w * v;
        mySum.ds[c] += ds * v;
        mySum.dt[c] += dt * v;
    }
}

void Lookup::addLevel(int level, osl_Interp interp, float s, float t, float weight)
{
    const osl_Picture &p = myTexture.level(level);
    const float width = static_cast<float>(p.width), height = static_cast<float>(p.height);
    const Taps across = tapsFor(interp, withoutTurns(myOptions.sWrap, s) * width);
    const Taps down = tapsFor(interp, withoutTurns(myOptions.tWrap, t) * height);
    for (int j = 0; j < down.count; ++j) {
        const int y = wrapped(myOptions.tWrap, down.index[j], p.height);
        for (int i = 0; i < across.count && y >= 0; ++i) {
            const int x = wrapped(myOptions.sWrap, across.index[i], p.width);
            if (x >= 0)
                addTexel(p, x, y, weight * across.weight[i] * down.weight[j],
                         weight * across.slope[i] * down.weight[j] * width,
                         weight * across.weight[i] * down.slope[j] * height);
        }
    }
}

// Between two levels both are looked up; magnified, only the first.
void Lookup::probe(float s, float t, float level, float weight)
{
    osl_Interp interp = myOptions.interp;
    if (interp == OSL_INTERP_SMARTCUBIC)
        interp = level < 0 ? OSL_INTERP_CUBIC : OSL_INTERP_LINEAR;
    const float at = osl_clamp(level, 0, static_cast<float>(myTexture.levels() - 1));
    const int low = interp == OSL_INTERP_CLOSEST ? osl_toInt(at + 0.5f) : osl_toInt(at);
    const float high = interp == OSL_INTERP_CLOSEST ? 0 : at - static_cast<float>(low);
    addLevel(low, interp, s, t, weight * (1 - high));
    if (high > 0)
        addLevel(low + 1, interp, s, t, weight * high);
}

void Lookup::fillMissing()
{
    const int channels = myTexture.level(0).channels;
    for (int c = std::max(0, channels - myOptions.firstChannel); c < myCount; ++c)
        mySum.value[c] = myOptions.fill;
}

// The ellipse that a pixel covers, as the pair of axes of its parallelogram's image:
// half lengths in texels of the first level, and the longer one's direction.
struct Footprint {
    float major, minor;
    float ds, dt; // from one end of the longer axis to the other
};

// Eigenvectors of J J^T; the blur widens both axes.
Footprint footprintOf(const osl_TexturePlace &place, const osl_TextureOptions &options, float width,
                      float height)
{
    const float xs = place.dsdx * options.sWidth * width;
    const float xt = place.dtdx * options.tWidth * height;
    const float ys = place.dsdy * options.sWidth * width;
    const float yt = place.dtdy * options.tWidth * height;
    const float sBlur = options.sBlur * width, tBlur = options.tBlur * height;
    const float a = xs * xs + ys * ys + sBlur * sBlur;
    const float b = xs * xt + ys * yt;
    const float c = xt * xt + yt * yt + tBlur * tBlur;
    const float middle = (a + c) / 2, spread = std::hypot((a - c) / 2, b);
    const float major = std::sqrt(middle + spread);
    if (!std::isfinite(major))
        return {};
    const float angle = std::atan2(b, (a - c) / 2) / 2;
    return {major, std::sqrt(std::max(0.0f, middle - spread)),
            osl_div(major * std::cos(angle), width), osl_div(major * std::sin(angle), height)};
}

// Probes along the longer axis, each as wide as the shorter one (Feline, McCormack et al. 1999).
osl_TextureValue Lookup::run(const osl_TexturePlace &place)
{
    const osl_Picture &p = myTexture.level(0);
    const Footprint f =
        footprintOf(place, myOptions, static_cast<float>(p.width), static_cast<float>(p.height));
    const float minor = std::max({f.minor, f.major / MOST_PROBES, 1e-6f});
    const int probes =
        std::clamp(osl_toInt(std::ceil(f.major / std::max(minor, 1.0f))), 1, MOST_PROBES);
    const float weight = 1 / static_cast<float>(probes);
    for (int i = 0; i < probes; ++i) {
        const float along = (static_cast<float>(i) + 0.5f) * weight - 0.5f;
        probe(place.s + along * f.ds, place.t + along * f.dt, std::log2(minor), weight);
    }
    fillMissing();
    return mySum;
}

bool missing(const osl_TextureOptions &options, int count, osl_TextureValue &value)
{
    const osl_Vec &c = options.missingColour;
    const float colour[] = {c.x, c.y, c.z, options.missingAlpha};
    value = {};
    if (!options.hasMissingColour)
        return false;
    std::copy_n(colour, count, value.value);
    if (options.wantsAlpha)
        value.value[count] = options.missingAlpha;
    return true;
}

// ---- information ----

// The last level is the average of all.
float average(const osl_Texture &texture, int channel)
{
    const osl_Picture &p = texture.level(texture.levels() - 1);
    return channel < p.channels ? static_cast<float>(p.texels[static_cast<size_t>(channel)]) / 65535
                                : 0;
}

struct IntFact {
    const char *name;
    int count;
    void (*write)(const osl_Picture &picture, int *to);
};
void writeWindow2(const osl_Picture &p, int *to)
{
    const int window[] = {0, 0, p.width - 1, p.height - 1};
    std::copy(std::begin(window), std::end(window), to);
}
void writeWindow3(const osl_Picture &p, int *to)
{
    const int window[] = {0, 0, 0, p.width - 1, p.height - 1, 0};
    std::copy(std::begin(window), std::end(window), to);
}
void writeSize(const osl_Picture &p, int *to)
{
    to[0] = p.width;
    to[1] = p.height;
}
void writeVolume(const osl_Picture &p, int *to)
{
    writeSize(p, to);
    to[2] = 1;
}
constexpr IntFact INT_FACTS[] = {
    {"exists", 1, [](const osl_Picture &, int *to) { *to = 1; }},
    {"resolution", 2, writeSize},
    {"resolution", 3, writeVolume},
    {"channels", 1, [](const osl_Picture &p, int *to) { *to = p.channels; }},
    {"subimages", 1, [](const osl_Picture &, int *to) { *to = 1; }},
    {"datawindow", 4, writeWindow2},
    {"datawindow", 6, writeWindow3},
    {"displaywindow", 4, writeWindow2},
    {"displaywindow", 6, writeWindow3},
};
} // namespace

bool osl_wrapByName(std::string_view name, osl_Wrap &wrap)
{
    return findByName(WRAPS, name, wrap);
}

bool osl_interpByName(std::string_view name, osl_Interp &interp)
{
    return findByName(INTERPS, name, interp);
}

bool osl_textureLookup(const osl_Texture *texture, const osl_TextureOptions &options,
                       const osl_TexturePlace &place, int count, osl_TextureValue &value)
{
    if (texture == nullptr)
        return missing(options, count, value);
    osl_TextureOptions safe = options;
    safe.firstChannel = std::clamp(options.firstChannel, 0, 4);
    value = Lookup(*texture, safe, count + (options.wantsAlpha ? 1 : 0)).run(place);
    return true;
}

bool osl_environmentLookup(const osl_Texture *texture, const osl_TextureOptions &options,
                           const osl_DualVec &direction, int count, osl_TextureValue &value)
{
    const osl_Dual s = osl_atan2(-direction.x, direction.z) * (1 / (2 * OSL_PI));
    const osl_Dual t = osl_atan2(direction.y, osl_hypot(direction.x, direction.z)) * (-1 / OSL_PI);
    osl_TextureOptions round = options;
    round.sWrap = OSL_WRAP_PERIODIC;
    round.tWrap = OSL_WRAP_CLAMP;
    const osl_TexturePlace place = {s.val + 0.5f, t.val + 0.5f, s.dx, t.dx, s.dy, t.dy};
    return osl_textureLookup(texture, round, place, count, value);
}

bool osl_textureInfo(const osl_Texture *texture, std::string_view name, int count, int *to)
{
    if (texture == nullptr && name == "exists" && count == 1) {
        *to = 0;
        return true;
    }
    for (const IntFact &fact : INT_FACTS) {
        if (texture == nullptr || name != fact.name || count != fact.count)
            continue;
        fact.write(texture->level(0), to);
        return true;
    }
    return false;
}

bool osl_textureInfo(const osl_Texture *texture, std::string_view name, int count, float *to)
{
    if (texture == nullptr)
        return false;
    const int channels = texture->level(0).channels;
    if (name == "averagealpha" && count == 1 && channels % 2 == 0) {
        *to = average(*texture, channels - 1);
        return true;
    }
    if (name != "averagecolor" || count != 3)
        return false;
    for (int c = 0; c < 3; ++c)
        to[c] = average(*texture, c);
    return true;
}

bool osl_textureInfo(const osl_Texture *texture, std::string_view name, std::string &to)
{
    if (texture == nullptr || (name != "type" && name != "textureformat"))
        return false;
    to = "Plain Texture";
    return true;
}
