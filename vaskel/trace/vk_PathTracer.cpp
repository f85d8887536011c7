#include "vaskel/trace/vk_PathTracer.h"

#include "vaskel/base/vk_Stats.h"
#include "vaskel/trace/vk_Subsurface.h"

#include <limits>

namespace
{
constexpr float FOREVER = std::numeric_limits<float>::infinity();
constexpr int MOST_VERTICES = 64;     // a guard: roulette ends nearly all paths before
constexpr int MOST_LIGHT_SAMPLES = 4; // at a first vertex,
constexpr int LIGHT_SAMPLES = 2;      // and at others; but one where a path counts little
constexpr int MOST_SPLITS = 2;        // of a path in two at smooth glass; then by chance
constexpr float FADE_NEAR = 4;        // the floor fades between these
constexpr float FADE_FAR = 18;        // distances from the origin
constexpr float REGULAR = .6f;        // least roughness behind what scattered like matte does,
constexpr float REGULAR_METAL = .4f;  // and of what only reflects: noise against dim caustics
constexpr float REGULAR_STRAY = .8f;  // behind tails of lobes, for a pixel's first sample; for its
constexpr float STRAY_POWER = -.3f;   // n-th times n to this power: noise against light in creases
constexpr float WIDE_METAL = .35f;    // what is rougher shows no edges, so that
constexpr float WIDE_GLASS = .2f;     // its light is filtered like a diffuse surface's
constexpr float GROUND = .35f;        // rougher glass blurs all behind it

// Why a path parts; each way has numbers of its own.
enum Branch : std::uint32_t { OTHER_LOBE = 1, BELOW, BEHIND };

// The mean over directions that are spread evenly over the sphere along a spiral.
vk_Colour meanOf(const vk_EnvironmentShader &environment)
{
    constexpr int COUNT = 256;
    vk_Colour sum;
    for (int i = 0; i < COUNT; ++i) {
        const float up = 1 - (2 * static_cast<float>(i) + 1) / COUNT;
        const float around = 2.39996323f * static_cast<float>(i); // the golden angle
        const float side = std::sqrt(1 - up * up);
        sum += environment.light({side * std::cos(around), up, side * std::sin(around)});
    }
    return sum * (1.0f / COUNT);
}

// Charges a view for the work of this thread, while it lives.
class Meter
{
public:
    explicit Meter(vk_View &view) : myView(view), myBegin(vk_myWork.cost) {}
    ~Meter() { myView.charge(vk_myWork.cost - myBegin); }
    Meter(const Meter &) = delete;
    Meter &operator=(const Meter &) = delete;

private:
    vk_View &myView;
    std::uint64_t myBegin;
};

// Whether all that a surface shows is so blurred that it is filtered as a diffuse layer.
bool blursAll(const vk_Material &material)
{
    const float least = material.isClear() ? WIDE_GLASS : WIDE_METAL;
    return material.rough > least && material.brushed <= 0 && material.coat <= 0 &&
           vk_largest(material.diffuse + material.sheen) <= 0;
}

// Whether light wanders below a surface. A plane without end gives back as much as it took: the
// base stands for that.
bool scattersBelow(const vk_Hit &hit, const vk_Material &material)
{
    return !hit.isFloor && vk_largest(material.scatter) > 0;
}

// The share of light from below a surface that its boundary lets out along a path.
vk_Colour passesBoundary(const vk_Hit &hit, const vk_Material &material, const vk_Path &path)
{
    const float cosine = -vk_dot(hit.normal, path.direction());
    return vk_grey(1) - vk_schlick(material.specular, material.edge, cosine);
}

// Path space regularization, of a path that was scattered as widely as by matte.
float leastRough(const vk_Material &material, const vk_Path &path)
{
    if (path.isDiffuse())
        return vk_largest(material.diffuse) > 0 ? REGULAR : REGULAR_METAL;
    const auto samples = static_cast<float>(path.sampler().index()) + 1;
    return REGULAR_STRAY * std::pow(samples, STRAY_POWER);
}

// What the filter is told of the first vertex.
void describe(const vk_Hit &hit, const vk_Material &material, vk_Path &path)
{
    vk_View &view = path.view();
    // Light that wandered has no edges, but towards a silhouette the boundary darkens it within
    // a pixel or two.
    const bool wanders = scattersBelow(hit, material);
    const vk_Colour passes = wanders ? passesBoundary(hit, material, path) : vk_grey(1);
    view.albedo = material.diffuse * passes + material.sheen;
    if (material.reflects() && blursAll(material)) {
        view.albedo = material.isClear() ? vk_grey(1) : material.specular + material.edge * .1f;
        path.countAsDiffuse();
    }
    view.albedo = view.albedo * material.presence;
    view.normal = material.isClear() ? hit.normal : vk_normalize(hit.normal + material.tilt);
    view.distance = hit.distance;
    const bool isGround = material.isClear() && material.rough > GROUND;
    view.blurred = isGround || wanders ? 1 : 0;
}
} // namespace

// A path that has met a surface, and what the surface is made of there.
struct vk_PathTracer::Vertex {
    const vk_Hit &hit;
    vk_Material &material; // for this path alone
};

// What goes on from the vertices of many paths: paths, and light samples on their way.
struct vk_PathTracer::Outgoing {
    std::vector<vk_Path> paths;
    vk_LightQueue lights;
};

vk_PathTracer::vk_PathTracer(const vk_Scene &scene, const vk_World &world)
    : myScene(scene), myWorld(world), myFog(scene.fog.get()), myDirectLight(scene, world, myFog),
      myMeanSky(meanOf(*scene.environment))
{
}

vk_View vk_PathTracer::Li(const vk_Vec &origin, const vk_Vec &direction,
                          const vk_Sampler &sampler) const
{
    vk_View view;
    std::vector<vk_Path> paths = {vk_Path(origin, direction, sampler, view)};
    Li(paths);
    return view;
}

void vk_PathTracer::Li(std::vector<vk_Path> &paths) const
{
    // One of each thread: to set them up for every wave takes as long as the arithmetic at a
    // tenth of its vertices. What is called from here must not wait for tasks of other waves.
    thread_local vk_HitBatch hits;
    thread_local Outgoing outgoing;
    outgoing.paths.clear(); // an exception may have left some
    outgoing.lights.clear();
    while (!paths.empty()) {
        hits.clear();
        std::size_t arrived = 0;
        for (vk_Path &path : paths) {
            const Meter meter(path.view());
            if (arrive(path, hits.add()))
                paths[arrived++] = path;
            else
                hits.dropLast();
        }
        hits.shade();
        for (std::size_t i = 0; i < arrived; ++i) {
            vk_Path &path = paths[hits.index(i)];
            path.view().charge(hits.cost(i));
            const Meter meter(path.view());
            leave({hits.hit(i), hits.material(i)}, path, outgoing);
        }
        myDirectLight.collect(outgoing.lights);
        paths.swap(outgoing.paths);
        outgoing.paths.clear();
    }
}

// To the next vertex: takes in the light on the way, and the environment's where there is
// no vertex.
bool vk_PathTracer::arrive(vk_Path &path, vk_Hit &hit) const
{
    if (path.isCameraRay())
        vk_myWork.countCameraRay();
    else
        vk_myWork.countScatteredRay();
    const bool met = myWorld.intersect(path.origin(), path.direction(), hit);
    const float distance = met ? hit.distance : FOREVER;
    if (path.nextEvent().bsdfPdf > 0 && path.mayMeetLight())
        path.add(myDirectLight.met(path.origin(), path.direction(), distance, path.nextEvent()));
    crossFog(path, distance);
    if (!met) {
        if (path.isFirst()) {
            // Neighbours help all the same: fog may lie in front.
            path.view().normal = -path.direction();
            path.view().distance = vk_View::NOWHERE;
        }
        path.add(environment(path, path.direction()));
        return false;
    }
    if (hit.isFloor)
        fadeFloor(path, hit);
    return true;
}

// From a vertex: takes in its light, and sends the path on, or several.
void vk_PathTracer::leave(const Vertex &vertex, vk_Path &path, Outgoing &outgoing) const
{
    const vk_Hit &hit = vertex.hit;
    vk_Material &material = vertex.material;
    const bool isGlass = material.isClear();
    path.add(material.emission);
    if (path.vertices() == MOST_VERTICES ||
        (!material.isWhole() && !choosePart(hit, material, path, outgoing)))
        return;
    if (path.isFirst())
        describe(hit, material, path);
    // Nothing more comes by a path that is spent, as where the floor has faded away; the filter has
    // been told what it met.
    if (!material.reflects() || path.isSpent())
        return;
    if (isGlass && hit.inside)
        path.attenuate(material.absorbed(hit.distance));
    if (isGlass && !material.isSmoothGlass())
        vk_myWork.countRoughGlass();
    if (isGlass && path.isWide()) {
        lookThrough(hit, material, path);
        if (survives(path))
            outgoing.paths.push_back(path);
        return;
    }
    if (path.isDiffuse() || path.isStray())
        material.rough = std::max(material.rough, leastRough(material, path));
    if (path.isCameraRay() && scattersBelow(hit, material))
        scatterBelow(hit, material, path.fork(BELOW), outgoing);

    // A smooth normal may face away from the viewer at a silhouette.
    const vk_Vec out = -path.direction();
    const vk_Vec &normal = vk_dot(hit.normal, out) > 0 ? hit.normal : hit.facet;
    const vk_Vec along = material.brushed > 0 ? myWorld.along(hit) : vk_Vec{};
    const bool splits = isGlass ? material.isSmoothGlass() && path.dielectricBounces() < MOST_SPLITS
                                : path.isCameraRay();
    const vk_Bsdf bsdf(material, normal, out, splits, along, hit.inside);
    scatter(hit, bsdf, path, outgoing);
}

// Where a surface is there in part, a camera ray goes both ways, and others go one of them by
// chance. False when the path went on behind the surface.
bool vk_PathTracer::choosePart(const vk_Hit &hit, const vk_Material &material, vk_Path &path,
                               Outgoing &outgoing) const
{
    const auto passBy = [&](vk_Path behind, const vk_Colour &share) {
        behind.attenuate(share);
        behind.passBy(hit, myDirectLight.passedBy(behind.nextEvent(), hit.distance));
        if (survives(behind))
            outgoing.paths.push_back(behind);
    };
    if (path.isCameraRay()) {
        passBy(path.fork(BEHIND), material.passesBy);
        path.attenuate(material.presence);
        return true;
    }
    const float passing = vk_largest(material.passesBy);
    const float chance = passing / (passing + material.presence * material.reflectance());
    if (path.sampler().number() < chance) {
        passBy(path, material.passesBy * (1 / chance));
        return false;
    }
    path.attenuate(material.presence / (1 - chance));
    return true;
}

// Next-event estimation, and a ray that the BSDF draws, or one for each of its two parts, or two
// of the same.
void vk_PathTracer::scatter(const vk_Hit &hit, const vk_Bsdf &bsdf, vk_Path &path,
                            Outgoing &outgoing) const
{
    vk_NextEvent throughGlass, vertex;
    if (bsdf.isGlass())
        throughGlass = myDirectLight.throughGlass(path.nextEvent(), hit.distance);
    if (!bsdf.isSmoothGlass()) {
        const bool leavesGlass = bsdf.isGlass() && hit.inside;
        const int samples = path.isFaint()       ? 1
                            : path.isCameraRay() ? MOST_LIGHT_SAMPLES
                                                 : LIGHT_SAMPLES;
        vertex = myDirectLight.atVertex(bsdf, samples, leavesGlass ? throughGlass : vk_NextEvent{});
        myDirectLight.sample(hit, bsdf, vertex, path, outgoing.lights);
    }
    for (int round = 0; round < bsdf.rounds(); ++round) {
        outgoing.paths.push_back(bsdf.repeats() ? path.split(static_cast<std::uint32_t>(round))
                                 : round == 0   ? path
                                                : path.fork(OTHER_LOBE));
        vk_Path &next = outgoing.paths.back();
        const float choice = bsdf.isGlass() ? next.sampler().number() : 0;
        const vk_Vec direction = bsdf.sample(next.sampler().square(), round, choice);
        if (!next.scatter(hit, bsdf, direction, vertex, throughGlass) || !survives(next))
            outgoing.paths.pop_back();
    }
}

// Paths that count little end by chance. Not those that may meet a light, which is so much
// brighter than all else; and most others find what the environment shows.
bool vk_PathTracer::survives(vk_Path &path) const
{
    path.findLight(!path.isFaint() || myDirectLight.isAhead(path.origin(), path.direction()));
    if (path.mayMeetLight())
        return true;
    return path.survivesRoulette(myScene.environment->light(path.direction()));
}

// Follows what comes out at a hit of light that is scattered below the surface, and takes
// the base, which this stands for, out of the material.
void vk_PathTracer::scatterBelow(const vk_Hit &hit, vk_Material &material, vk_Path path,
                                 Outgoing &outgoing) const
{
    constexpr float LEAST = 1e-3f;
    constexpr float DARK = 1e-20f; // less has no inverse to count on

    const vk_Vec scatter = {std::max(material.scatter.x, LEAST),
                            std::max(material.scatter.y, LEAST),
                            std::max(material.scatter.z, LEAST)};
    const vk_Colour albedo = material.diffuse * passesBoundary(hit, material, path);
    material.diffuse = {};
    vk_Hit entry;
    vk_Colour weight;
    if (vk_largest(albedo) <= DARK ||
        !vk_sampleEntry(myWorld, hit, scatter, albedo, path.sampler(), entry, weight))
        return;
    path.moveBelowSurface(entry, albedo * weight);
    vk_Material white;
    white.diffuse = vk_grey(1);
    this->scatter(entry, vk_Bsdf(white, entry.normal, entry.normal, false), path, outgoing);
}

// On behind glass as if it were not there, or, as often as glass does, back from its surface.
void vk_PathTracer::lookThrough(const vk_Hit &hit, const vk_Material &material, vk_Path &path) const
{
    const float cosine = std::abs(vk_dot(hit.normal, path.direction()));
    const float passed = vk_luminance(material.passesStraight(cosine)) /
                         std::max(vk_luminance(material.clear), 1e-6f);
    if (path.sampler().number() < passed) {
        path.attenuate(material.clear);
        path.passStraight(hit, myDirectLight.throughGlass(path.nextEvent(), hit.distance));
    } else {
        path.reflect(hit);
    }
}

// What is seen in a direction where nothing is met.
vk_Colour vk_PathTracer::environment(const vk_Path &path, const vk_Vec &direction) const
{
    if (path.isCameraRay() && !myScene.showsEnvironment)
        return myScene.backdrop;
    return myScene.environment->light(direction);
}

// Far away the floor gives way to the horizon.
void vk_PathTracer::fadeFloor(vk_Path &path, const vk_Hit &hit) const
{
    const vk_Vec &at = hit.position;
    const float far2 = at.x * at.x + at.z * at.z;
    if (far2 <= FADE_NEAR * FADE_NEAR)
        return;
    const float faded = vk_smoothStep(FADE_NEAR, FADE_FAR, std::sqrt(far2));
    const vk_Vec level = vk_normalize({path.direction().x, 0, path.direction().z});
    path.add(environment(path, level) * faded);
    path.attenuate(1 - faded);
}

void vk_PathTracer::crossFog(vk_Path &path, float distance) const
{
    if (myFog.isClear())
        return;
    const float lost = 1 - myFog.passes(path.origin(), path.direction(), distance);
    if (lost <= 0)
        return;
    vk_Colour light = myMeanSky * lost;
    if (path.isCameraRay())
        light +=
            myDirectLight.inScattered(path.origin(), path.direction(), distance, path.sampler());
    path.add(myFog.albedo() * light);
    path.attenuate(1 - lost);
}
