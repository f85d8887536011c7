#include "vaskel/trace/vk_Lighting.h"

#include "vaskel/base/vk_Stats.h"

namespace
{
constexpr float NOT_QUITE = 1 - 1e-5f; // a light must not hide itself

// Whether a direction leads into the shape.
bool isBehind(const vk_Hit &hit, const vk_Vec &direction)
{
    return (vk_dot(hit.facet, direction) > 0) == hit.inside;
}

// How much of a light that samples find with a density counts where refracted rays find
// it: all where they are so close together that they hardly ever miss it.
float shareOfRays(const vk_Asked &asked, float chance)
{
    return asked.likeliest > 0 ? vk_smoothStep(2, 5, asked.likeliest / chance) : 0;
}

// A direction drawn to mirror.
struct Mirrored {
    vk_Vec direction;
    vk_Colour scattering; // how much of what comes from there
    float density;
};

// What several directions find of a light, and one find by chance, the brighter the likelier.
struct Finds {
    vk_Colour sum;
    vk_LightSample chosen;
    float total = 0; // luminance
    float choice;    // from 0 to 1, even for what is still to be chosen

    explicit Finds(float number) : choice(number) {}
    void add(const vk_Colour &light, const vk_LightSample &from)
    {
        const float part = vk_luminance(light);
        if (part <= 0)
            return;
        sum += light;
        total += part;
        const float at = choice * total;
        if (at >= part && part < total) {
            choice = (at - part) / (total - part);
            return;
        }
        choice = at / part;
        chosen = from;
    }
};
} // namespace

vk_Lighting::vk_Lighting(const vk_Scene &scene, const vk_World &world, const vk_Fog &fog)
    : myScene(scene), myWorld(world), myFog(fog), myShadow(scene.shadow->shadow()),
      myCastsShadows(!(myShadow.left == vk_grey(1))),
      mySeesThrough((world.hasGlass() && myShadow.filter > 0) || myShadow.tint > 0)
{
    for (const auto &light : scene.lights)
        myTotal += light->strength();
}

// How many samples a light gets on average.
float vk_Lighting::expected(const vk_Light &light, int samples) const
{
    if (myScene.lights.size() <= static_cast<std::size_t>(samples))
        return 1;
    return myTotal > 0 ? static_cast<float>(samples) * light.strength() / myTotal : 0;
}

// The light at a place from 0 to 1 on the scale of all strengths.
std::size_t vk_Lighting::pick(float at) const
{
    float left = at * myTotal;
    std::size_t i = 0;
    while (i + 1 < myScene.lights.size() && left >= myScene.lights[i]->strength())
        left -= myScene.lights[i++]->strength();
    return i;
}

// Light of a sample at a point, with what shadows leave of it.
vk_Lighting::Arrival vk_Lighting::arriving(const vk_Vec &from, const vk_Light &light,
                                           const vk_LightSample &sample,
                                           const vk_Colour &left) const
{
    const vk_Colour radiance =
        sample.radiance * myFog.passes(from, sample.direction, sample.distance);
    if (!isHidden(from, light, sample))
        return {radiance, {}, OTHER_SHAPES};
    if (!mySeesThrough)
        return {radiance * left, {}, OTHER_SHAPES};
    const vk_Vec direction = shadowRay(from, light, sample);
    const Passing passes = passing(from, direction, sample.distance * NOT_QUITE);
    return {radiance * left, radiance * (vk_grey(1) - left) * passes.share, passes.between};
}

bool vk_Lighting::isHidden(const vk_Vec &from, const vk_Light &light,
                           const vk_LightSample &sample) const
{
    if (!myCastsShadows)
        return false;
    ++vk_myRays.shadow;
    const vk_Vec direction = shadowRay(from, light, sample);
    return myWorld.occluded(from, direction, sample.distance * NOT_QUITE);
}

// Where a shadow comes from: beside the sample when shadows are softer or harder
// than lights are wide.
vk_Vec vk_Lighting::shadowRay(const vk_Vec &from, const vk_Light &light,
                              const vk_LightSample &sample) const
{
    if (myShadow.soft == 1)
        return sample.direction;
    const vk_LightSample centre = light.sample(from, {.5f, .5f});
    if (centre.density <= 0)
        return sample.direction;
    return vk_normalize(vk_mix(centre.direction, sample.direction, myShadow.soft));
}

// Share of light that passes all that lies on the way.
vk_Lighting::Passing vk_Lighting::passing(vk_Vec origin, const vk_Vec &direction,
                                          float distance) const
{
    constexpr int MOST_LAYERS = 8;

    Passing passes = {vk_grey(1), SMOOTH_GLASS};
    for (int i = 0; i < MOST_LAYERS; ++i) {
        vk_Hit hit;
        ++vk_myRays.shadow;
        if (!myWorld.intersect(origin, direction, hit) || hit.distance >= distance)
            return passes;
        const vk_Material material = hit.surface->shade(hit.point);
        passes.between = std::max(passes.between, kindOf(material));
        passes.share = passes.share * through(hit, material, direction);
        if (vk_largest(passes.share) < 1e-3f)
            break;
        distance -= hit.distance;
        origin = hit.start(direction);
    }
    return {{}, OTHER_SHAPES};
}

vk_Lighting::Between vk_Lighting::kindOf(const vk_Material &material)
{
    if (!material.isClear())
        return OTHER_SHAPES;
    return material.isSmoothGlass() ? SMOOTH_GLASS : ROUGH_GLASS;
}

// What a surface lets pass straight on, and the glass in front of it.
vk_Colour vk_Lighting::through(const vk_Hit &hit, const vk_Material &material,
                               const vk_Vec &direction) const
{
    if (!material.isClear())
        return material.diffuse * myShadow.tint;
    const float cosine = std::abs(vk_dot(hit.normal, direction));
    const vk_Colour passes = material.passesStraight(cosine, hit.inside ? hit.distance : 0);
    return passes * myShadow.filter;
}

vk_Asked vk_Lighting::ask(const vk_Bsdf &bsdf, int samples, const vk_Asked &before) const
{
    vk_Asked asked;
    asked.samples = samples;
    if (mySeesThrough && !bsdf.isGlass())
        asked.likeliest = bsdf.likeliest();
    asked.due = before.due;
    asked.behindGlass = before.isShaded;
    asked.isShaded = true;
    return asked;
}

vk_Asked vk_Lighting::passed(vk_Asked asked, float distance) const
{
    asked.way += distance;
    if (asked.isShaded) {
        const vk_Colour left = asked.behindGlass ? vk_Colour{} : myShadow.left;
        asked.due = asked.due * (vk_grey(1) - left) * myShadow.filter;
    }
    asked.behindGlass = true;
    return asked;
}

// How much of the light that comes through shapes counts for a sample that finds it with
// a chance, where scattered rays have a density.
float vk_Lighting::shareOfSample(Between between, const vk_Asked &asked, float chance,
                                 float density, bool refracts)
{
    if (between == OTHER_SHAPES)
        return asked.behindGlass ? 0 : 1;
    if (density <= 0)
        return 1;
    if (!refracts)
        return chance / (chance + density);
    return between == SMOOTH_GLASS ? 1 - shareOfRays(asked, chance) : 0;
}

vk_Scattered vk_Lighting::reflected(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_Colour &weight,
                                    const vk_Asked &asked, bool isLast, vk_Sampler &sampler) const
{
    const int samples = asked.samples;
    const std::size_t count = myScene.lights.size();
    const bool all = count <= static_cast<std::size_t>(samples);
    const std::size_t rounds = all ? count : static_cast<std::size_t>(samples);
    const float offset = all ? 0 : sampler.number();
    const vk_Colour left = asked.behindGlass ? vk_Colour{} : myShadow.left;
    vk_Scattered sum;
    for (std::size_t i = 0; i < rounds; ++i) {
        const float place = (static_cast<float>(i) + offset) / static_cast<float>(rounds);
        const vk_Light &light = *myScene.lights[all ? i : pick(place)];
        const vk_LightSample sample = light.sample(hit.position, sampler.square());
        const float chance = sample.density * expected(light, samples);
        if (chance <= 0 || (bsdf.isGlass() && isBehind(hit, sample.direction)))
            continue;
        float density = 0;
        const vk_Scattered scattering = bsdf.evaluate(sample.direction, density);
        if (vk_largest(scattering.sum()) <= 0)
            continue;
        const bool refracts = vk_refracts(density, weight * scattering.sum() * (1 / density));
        const float ofRays = isLast ? 0 : density;
        const Arrival arrival = arriving(hit.start(sample.direction), light, sample, left);
        const float share = shareOfSample(arrival.between, asked, chance, ofRays, refracts);
        const vk_Colour arrived = asked.due * (arrival.open * (1 / (chance + ofRays)) +
                                               arrival.through * (share / chance));
        sum.sharp += scattering.sharp * arrived;
        sum.even += scattering.even * arrived;
    }
    return sum;
}

bool vk_Lighting::mirrorsLight(const vk_Hit &hit, const vk_Bsdf &bsdf) const
{
    constexpr float WIDEST = .12f; // so wide that edges are no longer sharp

    const float lobe = bsdf.lobe();
    if (lobe > WIDEST || mySeesThrough)
        return false;
    const vk_Vec mirror = bsdf.mirror();
    for (const auto &light : myScene.lights) {
        if (light->size() <= 0)
            continue;
        const vk_Vec way = *light->place() - hit.position;
        const float along = vk_dot(way, mirror);
        const float reach = light->size() + lobe * along;
        if (along > 0 && vk_dot(way, way) - along * along < reach * reach)
            return true;
    }
    return false;
}

vk_Colour vk_Lighting::mirrored(const vk_Hit &hit, const vk_Bsdf &bsdf, int samples,
                                vk_Sampler &sampler) const
{
    constexpr int DIRECTIONS = 4;

    const float number = sampler.number();
    Mirrored drawn[DIRECTIONS];
    int count = 0;
    for (int i = 0; i < DIRECTIONS; ++i) {
        Mirrored &now = drawn[count];
        now.direction = bsdf.sample(sampler.square());
        now.scattering = bsdf.evaluate(now.direction, now.density).sum();
        if (now.density > 0 && vk_dot(hit.facet, now.direction) > 0)
            ++count;
    }
    vk_Colour sum;
    for (const auto &light : myScene.lights) {
        Finds finds(number);
        for (int i = 0; i < count; ++i) {
            const Mirrored &now = drawn[i];
            const vk_LightSample seen = light->hit(hit.start(now.direction), now.direction);
            const float chance = seen.density * expected(*light, samples);
            if (chance > 0)
                finds.add(now.scattering * seen.radiance * (1 / (now.density + chance)), seen);
        }
        if (finds.total <= 0)
            continue;
        const vk_LightSample &seen = finds.chosen;
        const vk_Vec from = hit.start(seen.direction);
        const vk_Colour left = isHidden(from, *light, seen) ? myShadow.left : vk_grey(1);
        sum += finds.sum * left * myFog.passes(from, seen.direction, seen.distance);
    }
    return sum * (1.0f / DIRECTIONS);
}

vk_Colour vk_Lighting::reached(const vk_Vec &origin, const vk_Vec &direction, float distance,
                               const vk_Asked &asked) const
{
    const vk_Colour whenHidden = asked.behindGlass ? vk_Colour{} : myShadow.left;
    vk_Colour sum;
    for (const auto &light : myScene.lights) {
        const vk_LightSample seen = light->hit(origin, direction);
        if (seen.density <= 0)
            continue;
        const vk_Vec asker = origin - direction * asked.way; // as if the way were straight
        const float density = asked.way > 0 ? light->hit(asker, direction).density : seen.density;
        const float chance = density * expected(*light, asked.samples);
        const float share = asked.isRefracted ? shareOfRays(asked, chance)
                                              : asked.density / (asked.density + chance);
        const float passes = myFog.passes(origin, direction, seen.distance);
        const bool hidden =
            myShadow.soft == 1 ? seen.distance >= distance : isHidden(origin, *light, seen);
        sum += seen.radiance * (hidden ? whenHidden : vk_grey(1)) * (share * passes);
    }
    return sum * asked.due;
}

vk_Colour vk_Lighting::scattered(const vk_Vec &origin, const vk_Vec &direction, float distance,
                                 vk_Sampler &sampler) const
{
    constexpr std::size_t FEW = 3; // so many lights all get a sample, else one does

    const std::size_t count = myScene.lights.size();
    vk_Colour sum;
    for (std::size_t i = 0; i < count && count <= FEW; ++i)
        sum += scattered(*myScene.lights[i], origin, direction, distance, sampler);
    if (count <= FEW)
        return sum;
    const vk_Light &light = *myScene.lights[pick(sampler.number())];
    const float chance = expected(light, 1);
    return chance > 0 ? scattered(light, origin, direction, distance, sampler) * (1 / chance) : sum;
}

// Of one light.
vk_Colour vk_Lighting::scattered(const vk_Light &light, const vk_Vec &origin,
                                 const vk_Vec &direction, float distance, vk_Sampler &sampler) const
{
    constexpr int PLACES = 4; // evenly spread over the ray

    const vk_Span lit = light.reach(origin, direction);
    const float end = std::min(lit.end, distance);
    if (lit.begin >= end)
        return {};
    const vk_Vec begin = origin + direction * lit.begin;
    const float passes = myFog.passes(origin, direction, lit.begin);
    const float first = sampler.number();
    vk_Colour sum;
    for (int i = 0; i < PLACES; ++i) {
        const float turn = first + static_cast<float>(i) / PLACES;
        const vk_Fog::Place place = myFog.place(begin, direction, end - lit.begin, light.place(),
                                                turn < 1 ? turn : turn - 1);
        const vk_Vec at = begin + direction * place.distance;
        const vk_LightSample sample = light.sample(at, sampler.square());
        // Most places lie outside the beam of a lamp, and need no ray to tell.
        if (place.weight <= 0 || sample.density <= 0 || vk_largest(sample.radiance) <= 0)
            continue;
        const float phase = myFog.phase(vk_dot(direction, sample.direction));
        const Arrival arrival = arriving(at, light, sample, myShadow.left);
        sum +=
            (arrival.open + arrival.through) * (place.weight * phase / (sample.density * PLACES));
    }
    return sum * passes;
}
