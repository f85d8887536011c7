#include "vaskel/vk_Tracer.h"

#include "vaskel/vk_Stats.h"

#include <limits>

namespace
{
constexpr float FOREVER = std::numeric_limits<float>::infinity();
constexpr int MOST_SURFACES = 4;
constexpr int LIGHT_SAMPLES = 4;   // where a surface is seen or mirrored,
constexpr int SPREAD_SAMPLES = 1;  // and behind even scattering
constexpr float FADE_NEAR = 12;    // the floor fades between these
constexpr float FADE_FAR = 45;     // distances from the origin
constexpr float BLUR = 0.5f;       // roughness behind even scattering
constexpr float MOST_INDIRECT = 6; // brighter strays are cut
constexpr float EVEN_DENSITY = 1;  // scattering below it counts as even

// Pairs of the sampler that one surface may use, and where each begins.
constexpr std::uint32_t PAIRS = 8 + LIGHT_SAMPLES;
std::uint32_t pairsOf(int surface, int round)
{
    return PAIRS * static_cast<std::uint32_t>(MOST_SURFACES * round + surface);
}

vk_Colour cut(const vk_Colour &c, float most)
{
    const float largest = vk_largest(c);
    return largest > most ? c * (most / largest) : c;
}
} // namespace

struct vk_Tracer::Path {
    vk_Vec origin, direction;
    vk_Colour gathered;
    vk_Colour weight = {1, 1, 1};
    float density = 0;   // of the last scattering
    int samples = 0;     // of lights there
    int surfaces = 0;    // scattered at
    bool spread = false; // has been scattered evenly

    void add(const vk_Colour &light)
    {
        const vk_Colour arrived = weight * light;
        gathered += surfaces > 1 ? cut(arrived, MOST_INDIRECT) : arrived;
    }
};

vk_Tracer::vk_Tracer(const vk_Scene &scene, const vk_World &world)
    : myScene(scene), myWorld(world), myFog(scene.fog), myLighting(scene, world, myFog)
{
    // Directions spread evenly over the sphere along a spiral.
    constexpr int COUNT = 256;
    constexpr float SHARE = 1.0f / COUNT;
    for (int i = 0; i < COUNT; ++i) {
        const float up = 1 - (2 * static_cast<float>(i) + 1) / COUNT;
        const float around = 2.39996323f * static_cast<float>(i); // the golden angle
        const float side = std::sqrt(1 - up * up);
        const vk_Vec way = {side * std::cos(around), up, side * std::sin(around)};
        const vk_Colour light = scene.environment(way) * SHARE;
        myMean += light;
        mySlope[0] += light * (2 * way.x);
        mySlope[1] += light * (2 * way.y);
        mySlope[2] += light * (2 * way.z);
    }
}

vk_Colour vk_Tracer::radiance(const vk_Vec &origin, const vk_Vec &direction,
                              vk_Sampler &sampler) const
{
    Path path;
    path.origin = origin;
    path.direction = direction;
    vk_Hit hit;
    vk_Material material;
    if (!arrive(path, hit, material, sampler))
        return path.gathered;
    vk_Bsdf bsdf = light(path, hit, material, LIGHT_SAMPLES, sampler);
    vk_Colour sum = path.gathered;
    const int rounds = bsdf.rounds();
    for (int round = 0; round < rounds; ++round) {
        Path branch = path;
        branch.gathered = {};
        sampler.jumpTo(pairsOf(branch.surfaces, round));
        if (scatter(branch, hit, bsdf, bsdf.sample(sampler.square(), round)))
            sum += follow(branch, sampler);
    }
    return sum;
}

// What a path brings in from its second surface on.
vk_Colour vk_Tracer::follow(Path path, vk_Sampler &sampler) const
{
    vk_Hit hit;
    vk_Material material;
    while (arrive(path, hit, material, sampler)) {
        const bool isLast = path.spread || path.surfaces + 1 == MOST_SURFACES;
        if (path.spread)
            material.rough = std::max(material.rough, BLUR);
        const vk_Bsdf bsdf =
            light(path, hit, material, path.spread ? SPREAD_SAMPLES : LIGHT_SAMPLES, sampler);
        if (isLast) {
            path.add((material.diffuse + material.specular) * ambient(hit.normal));
            break;
        }
        if (!scatter(path, hit, bsdf, bsdf.sample(sampler.square())))
            break;
    }
    return path.gathered;
}

// Goes to the next surface and takes in all light on the way; false when there
// is no surface, or none that scatters.
bool vk_Tracer::arrive(Path &path, vk_Hit &hit, vk_Material &material, vk_Sampler &sampler) const
{
    ++(path.surfaces > 0 ? vk_myRays.scattered : vk_myRays.camera);
    const bool met = myWorld.intersect(path.origin, path.direction, hit);
    const float distance = met ? hit.distance : FOREVER;
    if (path.surfaces > 0)
        path.add(
            myLighting.reached(path.origin, path.direction, distance, path.density, path.samples));
    crossFog(path, distance, sampler);
    if (!met) {
        path.add(seen(path, path.direction));
        return false;
    }
    if (hit.isFloor)
        fadeFloor(path, hit);
    material = (*hit.surface)(hit.point);
    path.add(material.emission);
    return material.reflects() && vk_largest(path.weight) > 1e-3f;
}

// The environment in a direction, or what the camera sees in its place.
vk_Colour vk_Tracer::seen(const Path &path, const vk_Vec &direction) const
{
    if (path.surfaces == 0 && !myScene.showsEnvironment)
        return myScene.backdrop;
    return myScene.environment(direction);
}

// Far away the floor gives way to the horizon.
void vk_Tracer::fadeFloor(Path &path, const vk_Hit &hit) const
{
    const vk_Vec &at = hit.position;
    const float faded = vk_smoothStep(FADE_NEAR, FADE_FAR, std::sqrt(at.x * at.x + at.z * at.z));
    if (faded <= 0)
        return;
    const vk_Vec level = vk_normalize({path.direction.x, 0, path.direction.z});
    path.add(seen(path, level) * faded);
    path.weight = path.weight * (1 - faded);
}

void vk_Tracer::crossFog(Path &path, float distance, vk_Sampler &sampler) const
{
    const float lost = 1 - myFog.passes(path.origin, path.direction, distance);
    if (lost <= 0)
        return;
    vk_Colour light = myMean;
    if (path.surfaces == 0) {
        const vk_Vec at = myFog.place(path.origin, path.direction, distance, sampler.number());
        light += myLighting.scattered(at, sampler);
    }
    path.add(myFog.albedo() * light * lost);
    path.weight = path.weight * (1 - lost);
}

// Takes in the light that the lights send by way of a surface; gives how the
// surface scatters.
vk_Bsdf vk_Tracer::light(Path &path, const vk_Hit &hit, const vk_Material &material, int samples,
                         vk_Sampler &sampler) const
{
    // A smooth normal may face away from the viewer at a silhouette.
    const vk_Vec out = -path.direction;
    const vk_Vec &normal = vk_dot(hit.normal, out) > 0 ? hit.normal : hit.facet;
    const vk_Bsdf bsdf(material, normal, out, path.surfaces == 0);
    path.samples = samples;
    ++path.surfaces;
    path.add(myLighting.reflected(hit, bsdf, samples, sampler));
    return bsdf;
}

bool vk_Tracer::scatter(Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf,
                        const vk_Vec &next) const
{
    const vk_Colour scattering = bsdf.evaluate(next, path.density);
    if (path.density <= 0 || vk_dot(hit.facet, next) <= 0)
        return false;
    path.weight = path.weight * scattering * (1 / path.density);
    path.spread = path.spread || path.density < EVEN_DENSITY;
    path.origin = hit.start(next);
    path.direction = next;
    return true;
}

// Mean of the environment over the side that a normal faces, weighted by the
// cosine.
vk_Colour vk_Tracer::ambient(const vk_Vec &normal) const
{
    const vk_Colour light =
        myMean + mySlope[0] * normal.x + mySlope[1] * normal.y + mySlope[2] * normal.z;
    return {std::max(0.0f, light.x), std::max(0.0f, light.y), std::max(0.0f, light.z)};
}
