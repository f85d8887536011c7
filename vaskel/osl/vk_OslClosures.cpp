#include "vaskel/osl/vk_OslClosures.h"

#include "vaskel/scatter/vk_Microfacet.h"

#include <cstring>

namespace
{
// A shader could nest them for ever.
constexpr int MOST_LAYERS = 8; // of closures inside closures
constexpr float AIR = 1.003f;  // glass needs an index of refraction other than 1
constexpr float LEAST = 1e-6f;

vk_Colour colourOf(const osl_Colour &c)
{
    return {c.x, c.y, c.z};
}

vk_Colour clamped(const vk_Colour &c)
{
    // Written so that NaN becomes 0.
    const auto of = [](float x) { return x > 0 ? std::min(x, 1.0f) : 0; };
    return {of(c.x), of(c.y), of(c.z)};
}

vk_Colour notNegative(const vk_Colour &c)
{
    return {std::max(c.x, 0.0f), std::max(c.y, 0.0f), std::max(c.z, 0.0f)};
}

// Also what is no number: sums of light stay finite whatever a shader says.
vk_Colour finite(const vk_Colour &c)
{
    const auto of = [](float x) { return x > 0 ? std::min(x, 1e6f) : 0; };
    return {of(c.x), of(c.y), of(c.z)};
}

// How much is reflected straight on by a metal of complex index n + ik.
// Fresnel's formula for a complex index, at a cosine of 1.
float reflectanceOfMetal(float n, float k)
{
    const float k2 = k * k;
    return ((n - 1) * (n - 1) + k2) / std::max((n + 1) * (n + 1) + k2, LEAST);
}
} // namespace

// In the order of their numbers.
const char *const vk_OslClosures::PARAMETERS[COUNT] = {
    "albedo",
    "alpha",
    "base",
    "emittance",
    "eta",
    "exponent",
    "extinction",
    "f0",
    "f90",
    "ior",
    "k",
    "mfp",
    "N",
    "radius",
    "reflection_tint",
    "refract",
    "roughness",
    "roughness_x",
    "roughness_y",
    "sigma",
    "top",
    "transmission_depth",
    "transmission_tint",
    "xalpha",
    "xrough",
    "yalpha",
    "yrough",
};

// Closures that this renderer has no lobe for go to the nearest that it has: a shader written
// for another renderer shows something like itself rather than black.
const vk_OslClosures::Row vk_OslClosures::ROWS[] = {
    {"diffuse", &vk_OslClosures::addDiffuse},
    {"oren_nayar", &vk_OslClosures::addDiffuse},
    {"oren_nayar_diffuse_bsdf", &vk_OslClosures::addDiffuse},
    {"burley", &vk_OslClosures::addDiffuse},
    {"burley_diffuse_bsdf", &vk_OslClosures::addDiffuse},
    {"translucent", &vk_OslClosures::addDiffuse},
    {"translucent_bsdf", &vk_OslClosures::addDiffuse},
    {"hair_diffuse", &vk_OslClosures::addDiffuse},
    {"subsurface", &vk_OslClosures::addSubsurface},
    {"subsurface_bssrdf", &vk_OslClosures::addSubsurface},
    {"bssrdf_cubic", &vk_OslClosures::addSubsurface},
    {"bssrdf_gaussian", &vk_OslClosures::addSubsurface},
    {"reflection", &vk_OslClosures::addMirror},
    {"phong", &vk_OslClosures::addMirror},
    {"ward", &vk_OslClosures::addMirror},
    {"ashikhmin_shirley", &vk_OslClosures::addMirror},
    {"hair_specular", &vk_OslClosures::addMirror},
    {"microfacet", &vk_OslClosures::addMicrofacet},
    {"microfacet_ggx", &vk_OslClosures::addMirror},
    {"microfacet_ggx_aniso", &vk_OslClosures::addMirror},
    {"microfacet_beckmann", &vk_OslClosures::addMirror},
    {"microfacet_beckmann_aniso", &vk_OslClosures::addMirror},
    {"refraction", &vk_OslClosures::addRefraction},
    {"microfacet_ggx_refraction", &vk_OslClosures::addRefraction},
    {"microfacet_beckmann_refraction", &vk_OslClosures::addRefraction},
    {"dielectric", &vk_OslClosures::addDielectric},
    {"dielectric_bsdf", &vk_OslClosures::addDielectric},
    {"conductor", &vk_OslClosures::addConductor},
    {"conductor_bsdf", &vk_OslClosures::addConductor},
    {"generalized_schlick_bsdf", &vk_OslClosures::addSchlick},
    {"sheen", &vk_OslClosures::addSheen},
    {"sheen_bsdf", &vk_OslClosures::addSheen},
    {"velvet", &vk_OslClosures::addSheen},
    {"ashikhmin_velvet", &vk_OslClosures::addSheen},
    {"westin_sheen", &vk_OslClosures::addSheen},
    {"westin_backscatter", &vk_OslClosures::addSheen},
    {"cloth", &vk_OslClosures::addSheen},
    {"emission", &vk_OslClosures::addEmission},
    {"background", &vk_OslClosures::addEmission},
    {"uniform_edf", &vk_OslClosures::addEmission},
    {"transparent", &vk_OslClosures::addTransparent},
    {"transparent_bsdf", &vk_OslClosures::addTransparent},
};

vk_Material vk_OslClosures::materialOf(int32_t closure, const vk_Vec &normal, float chance)
{
    // One object serves all points of a batch, which keeps the vectors' memory.
    myEmission = myDiffuse = myEdge = myTransparent = myEven = {};
    myScatter = myNormals = {};
    myBoundary = mySheen = myGlass = {};
    addAll(closure, vk_grey(1), 0);

    // Mirrors beside refraction, without a base, are the reflection of glass, which knows
    // better how much that is.
    if (vk_largest(myGlass.colour) > 0 && vk_largest(myDiffuse) <= 0) {
        myGlass.colour += myEdge;
        myBoundary = {};
        myEdge = {};
    }
    // A material is one of two kinds. Which one is drawn by chance in proportion to what each
    // reflects or passes, and gets its light divided by that chance: right on average.
    const float opaque = vk_largest(myDiffuse + myEdge + mySheen.colour);
    const float glass = vk_largest(myGlass.colour), all = opaque + glass;
    vk_Material material;
    if (all > 0 && chance * all < glass)
        fillGlass(glass / all, material);
    else if (all > 0)
        fillOpaque(opaque / all, material);
    // For either kind of point: weights add up, so that both leave room for it.
    material.passesBy = clamped(myTransparent);
    material.emission = finite(myEmission);
    if (vk_dot(myNormals, myNormals) > 0)
        // vk_Bsdf adds the smooth normal, which gives the mean again.
        material.tilt = vk_normalize(myNormals) - normal;
    return material;
}

void vk_OslClosures::fillOpaque(float share, vk_Material &material) const
{
    const float scale = 1 / share;
    // What reflects as much from all sides, as a metal does: nothing of it is left for the base.
    const vk_Colour even = clamped(myEven * scale);
    // The base gets what the boundary leaves, but closures are sums.
    const auto unshared = [](float base, float reflected) {
        // The material takes the reflected share off its base; undo that here. At most a
        // hundredfold, as the base of a perfect mirror is nothing that can be undone.
        return base / std::max(1 - reflected, .01f);
    };
    const vk_Colour base = myDiffuse * scale;
    material.diffuse =
        clamped({unshared(base.x, even.x), unshared(base.y, even.y), unshared(base.z, even.z)});
    material.specular = clamped(myBoundary.colour * scale);
    material.edge = clamped(myEdge * scale);
    material.rough = myBoundary.mean(myBoundary.rough);
    material.brushed = myBoundary.mean(myBoundary.brushed);
    material.sheen = clamped(mySheen.colour * scale);
    material.sheenRough = mySheen.mean(mySheen.rough);
    material.scatter = myScatter;
}

void vk_OslClosures::fillGlass(float share, vk_Material &material) const
{
    material.clear = clamped(myGlass.colour * (1 / share));
    material.rough = myGlass.mean(myGlass.rough);
    // Below 1 the shader had turned it over, above 4 there is no such glass.
    const float ior = std::clamp(myGlass.mean(myGlass.ior), 1.0f, 4.0f);
    material.ior = std::max(ior, AIR);
}

// By names only once: points ask for the same few closures again and again.
const vk_OslClosures::Kind &vk_OslClosures::kindOf(const OSL_ClosureComponent &component)
{
    for (const Kind &kind : myKinds)
        if (kind.closure == component.closure)
            return kind;
    Kind made = {component.closure, nullptr, component.name() == "layer", {}};
    for (const Row &row : ROWS)
        if (component.name() == row.name)
            made.add = row.add;
    for (int i = 0; i < COUNT; ++i) {
        const int32_t *const values = component.ints(PARAMETERS[i]);
        made.at[i] = values == nullptr ? -1 : static_cast<int>(values - component.words);
    }
    // A deque, as lobes refer to kinds while further ones are met.
    myKinds.push_back(made);
    return myKinds.back();
}

float vk_OslClosures::Lobe::number(Parameter parameter) const
{
    float value = 0;
    std::memcpy(&value, ints(parameter), sizeof value);
    return value;
}

vk_Vec vk_OslClosures::Lobe::triple(Parameter parameter) const
{
    float values[3];
    std::memcpy(values, ints(parameter), sizeof values);
    return {values[0], values[1], values[2]};
}

// A closure tells one of several things.
vk_OslClosures::Widths vk_OslClosures::widthsOf(const Lobe &lobe)
{
    static const struct {
        Parameter along, across;
        bool isAlpha; // the width of the distribution, the square of the roughness
    } WAYS[] = {
        {XALPHA, YALPHA, true}, {XROUGH, YROUGH, true},        {ROUGHNESS_X, ROUGHNESS_Y, false},
        {ALPHA, ALPHA, true},   {ROUGHNESS, ROUGHNESS, false},
    };
    for (const auto &way : WAYS) {
        if (!lobe.has(way.along))
            continue;
        const Widths w = {std::clamp(lobe.number(way.along), 0.0f, 1.0f),
                          std::clamp(lobe.number(way.across), 0.0f, 1.0f)};
        return way.isAlpha ? Widths{std::sqrt(w.along), std::sqrt(w.across)} : w;
    }
    // Behind all widths: the exponent of generalized_schlick_bsdf is Fresnel's.
    if (!lobe.has(EXPONENT))
        return {0, 0};
    // The lobe of Blinn and Phong that is as wide: where both their peaks fall as fast, 2 /
    // (exponent + 2) is the square of alpha (Walter et al., EGSR 2007).
    const float exponent = std::max(lobe.number(EXPONENT), 0.0f);
    const float rough = std::pow(2 / (exponent + 2), .25f);
    return {rough, rough};
}

void vk_OslClosures::addAll(int32_t closure, const vk_Colour &factor, int depth)
{
    if (depth == MOST_LAYERS)
        return;
    // All at once: a vector that grew below would move the one that is walked here.
    if (myComponents.size() <= static_cast<std::size_t>(depth))
        myComponents.resize(MOST_LAYERS);
    std::vector<OSL_ClosureComponent> &components = myComponents[static_cast<std::size_t>(depth)];
    myContext.flatten(closure, components);
    for (const OSL_ClosureComponent &component : components) {
        const vk_Colour weight = notNegative(factor * colourOf(component.weight));
        const Kind &kind = kindOf(component);
        const Lobe lobe(kind, component.words);
        if (kind.isLayer) {
            // What the top reflects the base does not get: the material sees to that.
            addAll(*lobe.ints(TOP), weight, depth + 1);
            addAll(*lobe.ints(BASE), weight, depth + 1);
        } else if (kind.add != nullptr) {
            (this->*kind.add)(lobe, weight);
        }
    }
}

// Closures have normals of their own; a material has one.
void vk_OslClosures::bend(const Lobe &lobe, const vk_Colour &weight)
{
    if (lobe.has(NORMAL))
        // Those that are seen most have most to say.
        myNormals += vk_normalize(lobe.triple(NORMAL)) * vk_luminance(weight);
}

void vk_OslClosures::addDiffuse(const Lobe &lobe, const vk_Colour &weight)
{
    const vk_Colour colour = weight * lobe.colour(ALBEDO, vk_grey(1));
    myDiffuse += colour;
    bend(lobe, colour);
}

void vk_OslClosures::addSubsurface(const Lobe &lobe, const vk_Colour &weight)
{
    addDiffuse(lobe, weight);
    const vk_Colour radius = lobe.colour(RADIUS, lobe.colour(MFP, vk_Colour{}));
    const float depth = lobe.number(TRANSMISSION_DEPTH, 0);
    // Closures call it by several names.
    const vk_Colour reach = vk_largest(radius) > 0 ? radius : vk_grey(depth);
    // A material has one profile: the widest shows most. Beyond half of a usual shape's height
    // light would come out anywhere.
    myScatter = {std::max(myScatter.x, std::min(reach.x, 1.0f)),
                 std::max(myScatter.y, std::min(reach.y, 1.0f)),
                 std::max(myScatter.z, std::min(reach.z, 1.0f))};
}

void vk_OslClosures::addBoundary(const Lobe &lobe, const vk_Colour &straight, const vk_Colour &edge)
{
    const Widths w = widthsOf(lobe);
    const float weight = std::max(vk_luminance(straight), LEAST);
    myBoundary.add(straight, std::sqrt(w.along * w.across));
    // Only across the scratches, which run along u, is a boundary rougher.
    // The other way round u would have to be turned, which needs the shape: left even.
    const float ratio = w.across > w.along ? w.along / w.across : 1;
    // The inverse of Burley's aspect, which vk_Bsdf gives to alphas, the squares of these widths.
    myBoundary.brushed += std::clamp((1 - ratio * ratio) / .9f, 0.0f, 1.0f) * weight;
    myEdge += edge;
    bend(lobe, straight);
}

void vk_OslClosures::addMirror(const Lobe &lobe, const vk_Colour &weight)
{
    myEven += weight;
    addBoundary(lobe, weight, weight);
}

void vk_OslClosures::addMicrofacet(const Lobe &lobe, const vk_Colour &weight)
{
    // Zero reflects; others refract, or do both.
    const int kind = lobe.has(REFRACT) ? *lobe.ints(REFRACT) : 0;
    if (kind == 0)
        addMirror(lobe, weight);
    else
        addGlass(lobe, weight, lobe.number(ETA, 1.5f));
}

void vk_OslClosures::addGlass(const Lobe &lobe, const vk_Colour &weight, float ior)
{
    const Widths w = widthsOf(lobe);
    myGlass.add(weight, std::sqrt(w.along * w.across));
    // From within, some shaders turn it over.
    const float outward = ior > 0 && ior < 1 ? 1 / ior : ior;
    myGlass.ior += outward * vk_luminance(weight);
    bend(lobe, weight);
}

void vk_OslClosures::addRefraction(const Lobe &lobe, const vk_Colour &weight)
{
    addGlass(lobe, weight, lobe.number(ETA, 1.5f));
}

void vk_OslClosures::addDielectric(const Lobe &lobe, const vk_Colour &weight)
{
    const float ior = lobe.number(IOR, lobe.number(ETA, 1.5f));
    const vk_Colour passes = weight * lobe.colour(TRANSMISSION_TINT, vk_grey(1));
    if (vk_largest(passes) > 0) {
        addGlass(lobe, passes, ior);
        return;
    }
    const vk_Colour tint = weight * lobe.colour(REFLECTION_TINT, vk_grey(1));
    // Nothing passes: a lacquer, over whatever lies below.
    addBoundary(lobe, tint * vk_straightReflectance(ior), tint);
}

void vk_OslClosures::addConductor(const Lobe &lobe, const vk_Colour &weight)
{
    const vk_Colour n = lobe.colour(IOR, lobe.colour(ETA, vk_grey(1)));
    const vk_Colour k = lobe.colour(EXTINCTION, lobe.colour(K, vk_grey(1)));
    const vk_Colour straight = {reflectanceOfMetal(n.x, k.x), reflectanceOfMetal(n.y, k.y),
                                reflectanceOfMetal(n.z, k.z)};
    // At grazing angles a metal reflects all light without its colour.
    addBoundary(lobe, weight * straight, weight);
}

void vk_OslClosures::addSchlick(const Lobe &lobe, const vk_Colour &weight)
{
    const vk_Colour passes = weight * lobe.colour(TRANSMISSION_TINT, vk_Colour{});
    const vk_Colour f0 = lobe.colour(F0, vk_grey(.04f));
    if (vk_largest(passes) > 0) {
        // The index of refraction that reflects as much straight on.
        // At most .3, an index of 3.4.
        const float root = std::sqrt(std::clamp(vk_luminance(f0), 0.0f, .3f));
        addGlass(lobe, passes, (1 + root) / (1 - root));
        return;
    }
    const vk_Colour tint = weight * lobe.colour(REFLECTION_TINT, vk_grey(1));
    addBoundary(lobe, tint * f0, tint * lobe.colour(F90, vk_grey(1)));
}

void vk_OslClosures::addSheen(const Lobe &lobe, const vk_Colour &weight)
{
    const vk_Colour colour = weight * lobe.colour(ALBEDO, vk_grey(1));
    const float sigma = lobe.number(SIGMA, .5f);
    // Below .2 the tables of the sheen end.
    mySheen.add(colour, std::clamp(lobe.number(ROUGHNESS, sigma), .2f, 1.0f));
    bend(lobe, colour);
}

void vk_OslClosures::addEmission(const Lobe &lobe, const vk_Colour &weight)
{
    myEmission += weight * lobe.colour(EMITTANCE, vk_grey(1));
}

void vk_OslClosures::addTransparent(const Lobe &, const vk_Colour &weight)
{
    myTransparent += weight;
}
