#include "vaskel/trace/vk_Tracer.h"

#include "vaskel/base/vk_Stats.h"
#include "vaskel/trace/vk_Subsurface.h"

#include <limits>

namespace
{
constexpr float FOREVER = std::numeric_limits<float>::infinity();
constexpr int MOST_SURFACES = 4;
constexpr int MOST_PANES = 8;       // surfaces of smooth
constexpr int MOST_ROUGH_PANES = 4; // and of rough glass
constexpr int LIGHT_SAMPLES = 4;    // where a surface is seen or mirrored,
constexpr int SPREAD_SAMPLES = 1;   // and behind even scattering
constexpr float FADE_NEAR = 4;      // the floor fades between these
constexpr float FADE_FAR = 18;      // distances from the origin
constexpr float BLUR = .6f;         // roughness behind even scattering
constexpr float MOST_INDIRECT = 2;  // brighter strays are cut
constexpr float GROUND = .35f;      // rougher glass shows no edges

// Pairs of the sampler between the beginnings of branches, more than one may use.
constexpr std::uint32_t PAIRS = 128;

vk_Colour cut(const vk_Colour &c, float most)
{
    const float largest = vk_largest(c);
    return largest > most ? c * (most / largest) : c;
}

// Whether all that a surface shows is so blurred that its light counts as evenly
// scattered.
bool blursAll(const vk_Material &material)
{
    const float least = material.isClear() ? .2f : .35f;
    return material.rough > least && material.brushed <= 0 && material.coat <= 0 &&
           vk_largest(material.diffuse + material.sheen) <= 0;
}

// A part of a whole, for each colour.
vk_Colour shareOf(const vk_Colour &part, const vk_Colour &whole)
{
    const auto share = [](float a, float b) { return b > 0 ? a / b : 0; };
    return {share(part.x, whole.x), share(part.y, whole.y), share(part.z, whole.z)};
}
} // namespace

struct vk_Tracer::Path {
    vk_View *view;
    vk_Vec origin, direction;
    vk_Colour weight = {1, 1, 1};
    vk_Colour sharp = {1, 1, 1}; // share that goes to the sharp layer
    vk_Asked asked;              // where it set out,
    vk_Asked here;               // and what is asked for where it arrived
    int surfaces = 0;            // scattered at, other than
    int panes = 0;               // of glass
    bool spread = false;         // has been scattered evenly
    bool foundLights = false;    // in the direction that it took last
    bool isLast = false;         // goes no further

    int scatterings() const { return surfaces + panes; }
    // What one surface mirrors by way of smooth glass is none.
    bool isStray() const
    {
        const bool isMirroredOnce = surfaces == 1 && asked.isRefracted;
        return scatterings() > 1 && !isMirroredOnce;
    }
    void add(const vk_Colour &light) { add(light, sharp); }
    void add(const vk_Colour &light, const vk_Colour &toSharp)
    {
        vk_Colour arrived = weight * light;
        if (isStray())
            arrived = cut(arrived, MOST_INDIRECT);
        view->sharp += arrived * toSharp;
        view->even += arrived * (vk_grey(1) - toSharp);
    }
};

// Paths that are still to be followed.
struct vk_Tracer::Branches {
    static constexpr int MOST = 4;

    Path paths[MOST];
    int count = 0;

    bool hasRoom() const { return count + 2 <= MOST; }
};

vk_Tracer::vk_Tracer(const vk_Scene &scene, const vk_World &world)
    : myScene(scene), myWorld(world), myFog(scene.fog.get()), myLighting(scene, world, myFog)
{
    // Directions spread evenly over the sphere along a spiral.
    constexpr int COUNT = 256;
    constexpr float SHARE = 1.0f / COUNT;
    for (int i = 0; i < COUNT; ++i) {
        const float up = 1 - (2 * static_cast<float>(i) + 1) / COUNT;
        const float around = 2.39996323f * static_cast<float>(i); // the golden angle
        const float side = std::sqrt(1 - up * up);
        const vk_Vec way = {side * std::cos(around), up, side * std::sin(around)};
        const vk_Colour light = scene.environment->light(way) * SHARE;
        myMean += light;
        mySlope[0] += light * (2 * way.x);
        mySlope[1] += light * (2 * way.y);
        mySlope[2] += light * (2 * way.z);
    }
}

vk_View vk_Tracer::view(const vk_Vec &origin, const vk_Vec &direction, vk_Sampler &sampler) const
{
    vk_View view;
    Path path;
    path.view = &view;
    path.origin = origin;
    path.direction = direction;
    Branches branches;
    first(path, sampler, branches);
    for (std::uint32_t i = 1; branches.count > 0; ++i) {
        sampler.jumpTo(PAIRS * i);
        follow(branches.paths[--branches.count], sampler, branches);
    }
    return view;
}

// To the first surface and what it sends on.
void vk_Tracer::first(Path &path, vk_Sampler &sampler, Branches &branches) const
{
    vk_Hit hit;
    vk_Material material;
    const bool scatters = arrive(path, hit, material, sampler);
    // Where nothing is met, neighbours help all the same: fog may lie before it.
    path.view->normal = hit.surface != nullptr ? hit.normal : -path.direction;
    path.view->distance = hit.surface != nullptr ? hit.distance : vk_View::NOWHERE;
    if (!scatters)
        return;
    path.view->albedo = material.diffuse + material.sheen;
    if (blursAll(material)) {
        path.view->albedo =
            material.isClear() ? vk_grey(1) : material.specular + material.edge * .1f;
        path.sharp = {};
    }
    const bool isGround = material.isClear() && material.rough > GROUND;
    path.view->blurred = isGround ? .5f : vk_largest(material.scatter) > 0 ? 1 : 0;
    if (vk_largest(material.scatter) > 0)
        wander(path, hit, material, sampler, branches);
    const vk_Bsdf bsdf = light(path, hit, material, LIGHT_SAMPLES, true, sampler);
    path.foundLights = myLighting.mirrorsLight(hit, bsdf);
    if (path.foundLights)
        path.add(myLighting.mirrored(hit, bsdf, path.here.samples, sampler));
    branch(path, hit, bsdf, sampler, branches);
}

// Gathers what comes out at a hit of light that wanders below the surface, and takes
// the base, which this stands for, out of the material.
void vk_Tracer::wander(Path path, const vk_Hit &hit, vk_Material &material, vk_Sampler &sampler,
                       Branches &branches) const
{
    constexpr float LEAST = 1e-3f;

    const vk_Vec scatter = {std::max(material.scatter.x, LEAST),
                            std::max(material.scatter.y, LEAST),
                            std::max(material.scatter.z, LEAST)};
    const vk_Colour reflectance =
        vk_schlick(material.specular, material.edge, -vk_dot(hit.normal, path.direction));
    path.weight = path.weight * material.diffuse * (vk_grey(1) - reflectance);
    material.diffuse = {};
    vk_Hit entry;
    vk_Colour weight;
    if (!vk_sampleEntry(myWorld, hit, scatter, sampler, entry, weight))
        return;
    path.weight = path.weight * weight;
    path.direction = -entry.normal;
    path.sharp = {};
    vk_Material white;
    white.diffuse = vk_grey(1);
    const vk_Bsdf bsdf = light(path, entry, white, LIGHT_SAMPLES, false, sampler);
    branch(path, entry, bsdf, sampler, branches);
}

// What a path brings in from its second surface on.
void vk_Tracer::follow(Path path, vk_Sampler &sampler, Branches &branches) const
{
    vk_Hit hit;
    vk_Material material;
    while (arrive(path, hit, material, sampler)) {
        // Where lights were asked for, the path was judged for all glass on its way.
        if (!material.isClear() || path.asked.samples == 0)
            path.spread = path.spread || vk_isFaint(path.weight);
        const bool isSmooth = material.isSmoothGlass();
        const int mostPanes = isSmooth ? MOST_PANES : MOST_ROUGH_PANES;
        path.isLast =
            path.spread || path.surfaces + 1 == MOST_SURFACES || path.panes + 1 >= mostPanes;
        if (path.spread)
            material.rough = std::max(material.rough, BLUR);
        path.foundLights = false;
        const bool split = isSmooth && path.scatterings() == 1 && branches.hasRoom();
        const int samples = path.spread ? SPREAD_SAMPLES : LIGHT_SAMPLES;
        const vk_Bsdf bsdf = light(path, hit, material, samples, split, sampler);
        if (path.isLast) {
            const vk_Colour passed = material.clear * seen(path, path.direction);
            path.add((material.diffuse + material.specular) * ambient(hit.normal) + passed);
            return;
        }
        if (split) {
            branch(path, hit, bsdf, sampler, branches);
            return;
        }
        if (!scatter(path, hit, bsdf, bsdf.sample(sampler.square())))
            return;
    }
}

// Puts the ways that lead on from a surface on the list.
void vk_Tracer::branch(const Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf,
                       vk_Sampler &sampler, Branches &branches) const
{
    for (int round = 0; round < bsdf.rounds(); ++round) {
        Path &way = branches.paths[branches.count];
        way = path;
        way.foundLights = path.foundLights && round == 0;
        if (scatter(way, hit, bsdf, bsdf.sample(sampler.square(), round)))
            ++branches.count;
    }
}

// Goes to the next surface and takes in all light on the way; false when there
// is no surface, or none that scatters.
bool vk_Tracer::arrive(Path &path, vk_Hit &hit, vk_Material &material, vk_Sampler &sampler) const
{
    for (int panes = 0; panes < MOST_PANES; ++panes) {
        ++(path.scatterings() > 0 ? vk_myRays.scattered : vk_myRays.camera);
        const bool met = myWorld.intersect(path.origin, path.direction, hit);
        const float distance = met ? hit.distance : FOREVER;
        if (path.scatterings() > 0 && path.asked.density > 0 && !path.foundLights)
            path.add(myLighting.reached(path.origin, path.direction, distance, path.asked));
        crossFog(path, distance, sampler);
        if (!met) {
            path.add(seen(path, path.direction));
            return false;
        }
        if (hit.isFloor)
            fadeFloor(path, hit);
        material = hit.surface->shade(hit.point);
        path.add(material.emission);
        if (vk_largest(path.weight) < 1e-3f || !material.reflects())
            return false;
        if (!material.isClear())
            return true;
        if (!path.spread) {
            if (hit.inside)
                path.weight = path.weight * vk_exp(material.absorbs * -hit.distance);
            return true;
        }
        lookThrough(path, hit, material);
    }
    return false;
}

// On behind glass, straight.
void vk_Tracer::lookThrough(Path &path, const vk_Hit &hit, const vk_Material &material) const
{
    const float cosine = std::abs(vk_dot(hit.normal, path.direction));
    const float length = hit.inside ? hit.distance : 0;
    path.weight = path.weight * material.passesStraight(cosine, length);
    path.origin = hit.start(path.direction);
    path.asked = myLighting.passed(path.asked, hit.distance);
}

// The environment in a direction, or what the camera sees in its place.
vk_Colour vk_Tracer::seen(const Path &path, const vk_Vec &direction) const
{
    if (path.scatterings() == 0 && !myScene.showsEnvironment)
        return myScene.backdrop;
    return myScene.environment->light(direction);
}

// Far away the floor gives way to the horizon.
void vk_Tracer::fadeFloor(Path &path, const vk_Hit &hit) const
{
    const vk_Vec &at = hit.position;
    const float far2 = at.x * at.x + at.z * at.z;
    if (far2 <= FADE_NEAR * FADE_NEAR)
        return;
    const float faded = vk_smoothStep(FADE_NEAR, FADE_FAR, std::sqrt(far2));
    const vk_Vec level = vk_normalize({path.direction.x, 0, path.direction.z});
    path.add(seen(path, level) * faded);
    path.weight = path.weight * (1 - faded);
}

void vk_Tracer::crossFog(Path &path, float distance, vk_Sampler &sampler) const
{
    if (myFog.isClear())
        return;
    const float lost = 1 - myFog.passes(path.origin, path.direction, distance);
    if (lost <= 0)
        return;
    vk_Colour light = myMean * lost;
    if (path.scatterings() == 0)
        light += myLighting.scattered(path.origin, path.direction, distance, sampler);
    path.add(myFog.albedo() * light);
    path.weight = path.weight * (1 - lost);
}

// Takes in the light that the lights send by way of a surface; gives how the
// surface scatters.
vk_Bsdf vk_Tracer::light(Path &path, const vk_Hit &hit, const vk_Material &material, int samples,
                         bool split, vk_Sampler &sampler) const
{
    // A smooth normal may face away from the viewer at a silhouette.
    const vk_Vec out = -path.direction;
    const vk_Vec &normal = vk_dot(hit.normal, out) > 0 ? hit.normal : hit.facet;
    const vk_Vec along = material.brushed > 0 ? myWorld.along(hit) : vk_Vec{};
    const vk_Bsdf bsdf(material, normal, out, split, along, hit.inside);
    ++(material.isClear() ? path.panes : path.surfaces);
    if (material.isSmoothGlass())
        return bsdf;
    const bool leavesGlass = material.isClear() && hit.inside;
    const vk_Asked before = leavesGlass ? myLighting.passed(path.asked, hit.distance) : vk_Asked{};
    path.here = myLighting.ask(bsdf, samples, before);
    const vk_Scattered lit =
        myLighting.reflected(hit, bsdf, path.weight, path.here, path.isLast, sampler);
    if (path.scatterings() > 1 || path.sharp == vk_Colour{}) {
        path.add(lit.sum());
    } else {
        path.add(lit.sharp, vk_grey(1));
        path.add(lit.even, {});
    }
    return bsdf;
}

bool vk_Tracer::scatter(Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf,
                        const vk_Vec &next) const
{
    float density = 0;
    const vk_Scattered scattering = bsdf.evaluate(next, density);
    const float above = vk_dot(hit.facet, next);
    if (density <= 0 || (above <= 0 && !bsdf.isGlass()))
        return false;
    const vk_Colour sum = scattering.sum();
    if (path.scatterings() == 1 && !(path.sharp == vk_Colour{}))
        path.sharp = shareOf(scattering.sharp, sum);
    path.weight = path.weight * sum * (1 / density);
    turn(path, hit, bsdf, density, above);
    path.origin = hit.start(next);
    path.direction = next;
    return true;
}

// What a scattering, `above` the side that was hit, means for glass and lights ahead.
void vk_Tracer::turn(Path &path, const vk_Hit &hit, const vk_Bsdf &bsdf, float density,
                     float above) const
{
    const bool crosses = bsdf.isGlass() && above <= 0;
    const bool isInside = bsdf.isGlass() && (above > 0) == hit.inside;
    if (!isInside && !bsdf.isSmoothGlass()) {
        path.spread = path.spread || !vk_refracts(density, path.weight);
        path.asked = path.here;
    } else if (crosses) {
        path.asked = myLighting.passed(path.asked, hit.distance);
        if (!bsdf.isSmoothGlass())
            path.asked.samples = 0;
        path.asked.isRefracted = path.asked.samples > 0;
    } else {
        path.asked = {};
        path.asked.isShaded = !isInside;
        path.asked.behindGlass = isInside;
    }
    if (!path.asked.isRefracted)
        path.asked.density = density;
}

// Mean of the environment over the side that a normal faces, weighted by the
// cosine.
vk_Colour vk_Tracer::ambient(const vk_Vec &normal) const
{
    const vk_Colour light =
        myMean + mySlope[0] * normal.x + mySlope[1] * normal.y + mySlope[2] * normal.z;
    return {std::max(0.0f, light.x), std::max(0.0f, light.y), std::max(0.0f, light.z)};
}
