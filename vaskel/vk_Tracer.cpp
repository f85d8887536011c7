#include "vaskel/vk_Tracer.h"

#include <limits>

namespace
{
constexpr float         FOREVER = std::numeric_limits<float>::infinity();
constexpr int           MOST_SURFACES = 4;
constexpr int           MOST_PICKS = 4;     // lights asked at the first surface
constexpr std::uint32_t PAIRS_A_SURFACE = 16; // of the sampler's pairs
constexpr float         FADE_NEAR = 12;     // the floor fades between these
constexpr float         FADE_FAR = 45;      // distances from the origin
constexpr float         BLUR = 0.5f;        // roughness behind even scattering
constexpr float         MOST_INDIRECT = 6;  // brighter strays are cut

vk_Colour cut(const vk_Colour &c, float most)
{
    const float largest = vk_largest(c);
    return largest > most ? c * (most / largest) : c;
}

// The mean over all directions, from points spread evenly over the sphere.
vk_Colour meanOf(const vk_EnvironmentShader &environment)
{
    constexpr int COUNT = 256;

    vk_Colour sum;
    for (int i = 0; i < COUNT; ++i) {
        const float up = 1 - (2 * static_cast<float>(i) + 1) / COUNT;
        const float around = 2.39996323f * static_cast<float>(i); // the golden angle
        const float side = std::sqrt(1 - up * up);
        sum += environment(vk_Vec{side * std::cos(around), up, side * std::sin(around)});
    }
    return sum * (1.0f / COUNT);
}
} // namespace

struct vk_Tracer::Path {
    vk_Vec    origin, direction;
    vk_Colour gathered;
    vk_Colour weight = {1, 1, 1};
    float     density = 0; // of the last scattering
    int       picks = 0;   // lights asked there
    int       surfaces = 0;
    bool      spread = false; // has met even scattering
};

// The part of a ray that lies in the fog.
struct vk_Tracer::Chord {
    float begin = 0, end = 0;

    float length() const { return std::max(0.0f, end - begin); }
};

vk_Tracer::vk_Tracer(const vk_Scene &scene, const vk_World &world)
    : myScene(scene), myWorld(world), myBlocked(scene.shadow()),
      myCastsShadows(!(myBlocked == vk_grey(1))), myAmbient(meanOf(scene.environment))
{
    if (scene.fog)
        myFog = scene.fog();
    for (const auto &light : scene.lights)
        myTotalStrength += light->strength();
}

vk_Colour vk_Tracer::radiance(const vk_Vec &origin, const vk_Vec &direction,
                              vk_Sampler &sampler) const
{
    Path path;
    path.origin = origin;
    path.direction = direction;
    while (advance(path, sampler))
        sampler.jumpTo(PAIRS_A_SURFACE * static_cast<std::uint32_t>(path.surfaces));
    return path.gathered;
}

// One step from surface to surface; false when the path has ended.
bool vk_Tracer::advance(Path &path, vk_Sampler &sampler) const
{
    vk_Hit     hit;
    const bool met = myWorld.intersect(path.origin, path.direction, hit);
    const float distance = met ? hit.distance : FOREVER;
    addLightsHit(path, distance);
    crossFog(path, distance, sampler);
    if (!met) {
        path.gathered += path.weight * surroundings(path);
        return false;
    }
    if (hit.isFloor)
        fadeFloor(path, hit);

    vk_Material material = (*hit.surface)(hit.point);
    path.gathered += path.weight * material.emission;
    if (!material.reflects() || vk_largest(path.weight) < 1e-3f)
        return false;
    if (path.spread)
        material.rough = std::max(material.rough, BLUR);
    if (++path.surfaces == MOST_SURFACES) {
        path.gathered += path.weight * (material.diffuse + material.specular) * myAmbient;
        return false;
    }
    // A smooth normal may face away from the viewer at a silhouette.
    const vk_Vec  out = -path.direction;
    const vk_Vec &normal = vk_dot(hit.normal, out) > 0 ? hit.normal : hit.facet;
    const vk_Bsdf bsdf(material, normal, out);
    path.picks = path.surfaces == 1 ? MOST_PICKS : 1;
    const vk_Colour lit = path.weight * direct(hit, bsdf, path.picks, sampler);
    path.gathered += path.surfaces == 1 ? lit : cut(lit, MOST_INDIRECT);

    const vk_Vec    next = bsdf.sample(sampler.square());
    const vk_Colour scattered = bsdf.evaluate(next, path.density);
    if (path.density <= 0 || vk_dot(hit.facet, next) <= 0)
        return false;
    path.weight = path.weight * scattered * (1 / path.density);
    path.spread = path.spread || path.density < 1;
    path.origin = hit.start(next);
    path.direction = next;
    return true;
}

vk_Colour vk_Tracer::surroundings(const Path &path) const
{
    if (path.surfaces == 0 && !myScene.showsEnvironment)
        return myScene.backdrop;
    return myScene.environment(path.direction);
}

void vk_Tracer::fadeFloor(Path &path, const vk_Hit &hit) const
{
    const float faded =
        vk_smoothStep(FADE_NEAR, FADE_FAR, std::hypot(hit.position.x, hit.position.z));
    Path level = path;
    level.direction = vk_normalize({path.direction.x, 0, path.direction.z});
    path.gathered += path.weight * surroundings(level) * faded;
    path.weight = path.weight * (1 - faded);
}

// Lights that a scattered ray runs into.
void vk_Tracer::addLightsHit(Path &path, float distance) const
{
    if (path.surfaces == 0)
        return;
    for (const auto &light : myScene.lights) {
        const vk_LightSample seen = light->hit(path.origin, path.direction);
        if (seen.density <= 0)
            continue;
        const float share = path.density / (path.density + seen.density * expected(*light, path.picks));
        const vk_Colour through = seen.distance < distance ? vk_grey(1) : myBlocked;
        const float     haze = clear(path.origin, path.direction, seen.distance);
        const vk_Colour lit = path.weight * seen.radiance * through * (share * haze);
        path.gathered += path.surfaces == 1 ? lit : cut(lit, MOST_INDIRECT);
    }
}

// How many samples a light gets on average when `picks` are made.
float vk_Tracer::expected(const vk_Light &light, int picks) const
{
    if (myScene.lights.size() <= static_cast<std::size_t>(picks))
        return 1;
    if (myTotalStrength <= 0)
        return 0;
    return static_cast<float>(picks) * light.strength() / myTotalStrength;
}

// A light chosen by strength, for a place from 0 to 1 on the scale of them all.
std::size_t vk_Tracer::pick(float at) const
{
    float       left = at * myTotalStrength;
    std::size_t i = 0;
    while (i + 1 < myScene.lights.size() && left >= myScene.lights[i]->strength())
        left -= myScene.lights[i++]->strength();
    return i;
}

// Radiance that a light sends to a point, shadows and fog on the way counted.
vk_Colour vk_Tracer::arriving(const vk_Vec &from, const vk_LightSample &light) const
{
    vk_Colour radiance = light.radiance * clear(from, light.direction, light.distance);
    if (myCastsShadows && myWorld.occluded(from, light.direction, light.distance * (1 - 1e-5f)))
        radiance = radiance * myBlocked;
    return radiance;
}

vk_Colour vk_Tracer::direct(const vk_Hit &hit, const vk_Bsdf &bsdf, int picks,
                            vk_Sampler &sampler) const
{
    const std::size_t count = myScene.lights.size();
    const bool        all = count <= static_cast<std::size_t>(picks);
    const std::size_t rounds = all ? count : static_cast<std::size_t>(picks);
    const float       offset = all ? 0 : sampler.number();
    vk_Colour         sum;
    for (std::size_t i = 0; i < rounds; ++i) {
        const float place = (static_cast<float>(i) + offset) / static_cast<float>(rounds);
        const vk_Light      &light = *myScene.lights[all ? i : pick(place)];
        const vk_LightSample sample = light.sample(hit.position, sampler.square());
        const float          chance = sample.density * expected(light, picks);
        if (chance <= 0)
            continue;
        float           density = 0;
        const vk_Colour scattered = bsdf.evaluate(sample.direction, density);
        if (vk_largest(scattered) <= 0)
            continue;
        sum += scattered * arriving(hit.start(sample.direction), sample) * (1 / (chance + density));
    }
    return sum;
}

vk_Tracer::Chord vk_Tracer::chord(const vk_Vec &origin, const vk_Vec &direction,
                                  float distance) const
{
    const float middle = -vk_dot(origin, direction);
    const vk_Vec nearest = origin + direction * middle;
    const float half2 = myFog.radius * myFog.radius - vk_dot(nearest, nearest);
    if (half2 <= 0)
        return {};
    const float half = std::sqrt(half2);
    return {std::max(0.0f, middle - half), std::min(distance, middle + half)};
}

// Share of light that fog lets through.
float vk_Tracer::clear(const vk_Vec &origin, const vk_Vec &direction, float distance) const
{
    if (myFog.extinction <= 0)
        return 1;
    return std::exp(-myFog.extinction * chord(origin, direction, distance).length());
}

void vk_Tracer::crossFog(Path &path, float distance, vk_Sampler &sampler) const
{
    if (myFog.extinction <= 0)
        return;
    const Chord in = chord(path.origin, path.direction, distance);
    const float lost = 1 - std::exp(-myFog.extinction * in.length());
    if (lost <= 0)
        return;
    // A place drawn as often as light is lost there needs no further weight.
    vk_Colour scattered = myAmbient;
    if (path.surfaces == 0) {
        const float depth = -std::log(1 - sampler.number() * lost) / myFog.extinction;
        scattered += scatteredByFog(path.origin + path.direction * (in.begin + depth), sampler);
    }
    path.gathered += path.weight * myFog.albedo * scattered * lost;
    path.weight = path.weight * (1 - lost);
}

// Light from one light that fog at a point sends on, the same in all
// directions; the environment's share is the ambient light.
vk_Colour vk_Tracer::scatteredByFog(const vk_Vec &at, vk_Sampler &sampler) const
{
    if (myScene.lights.empty())
        return {};
    const vk_Light      &light = *myScene.lights[pick(sampler.number())];
    const vk_LightSample sample = light.sample(at, sampler.square());
    const bool           all = myScene.lights.size() == 1;
    const float          chance = sample.density * (all ? 1 : expected(light, 1));
    if (chance <= 0)
        return {};
    return arriving(at, sample) * (1 / (4 * VK_PI * chance));
}
