#include "vaskel/trace/vk_DirectLight.h"

#include "vaskel/base/vk_Stats.h"

namespace
{
constexpr float NOT_QUITE = 1 - 1e-5f; // a light must not hide itself

// Whether a direction leads into the shape.
bool isInside(const vk_Hit &hit, const vk_Vec &direction)
{
    return (vk_dot(hit.facet, direction) > 0) == hit.inside;
}

vk_Between betweenOf(const vk_Material &material)
{
    if (!material.isClear())
        return VK_OTHER_SHAPES;
    return material.isSmoothGlass() ? VK_SMOOTH_GLASS : VK_ROUGH_GLASS;
}
} // namespace

vk_DirectLight::vk_DirectLight(const vk_Scene &scene, const vk_World &world, const vk_Fog &fog)
    : myScene(scene), myWorld(world), myFog(fog), myShadow(scene.shadow->shadow()),
      myCastsShadows(!(myShadow.left == vk_grey(1))),
      mySeesThrough((world.hasGlass() && myShadow.filter > 0) || myShadow.tint > 0)
{
    for (const auto &light : scene.lights)
        myTotal += light->strength();
}

// How many samples a light gets on average.
float vk_DirectLight::expected(const vk_Light &light, int samples) const
{
    if (myScene.lights.size() <= static_cast<std::size_t>(samples))
        return 1;
    return myTotal > 0 ? static_cast<float>(samples) * light.strength() / myTotal : 0;
}

// So many lights are to be sampled, and the i-th of them.
std::size_t vk_DirectLight::samplesOf(int samples) const
{
    return std::min(myScene.lights.size(), static_cast<std::size_t>(samples));
}

vk_DirectLight::Choice vk_DirectLight::choose(std::size_t i, int samples, float offset) const
{
    const bool all = myScene.lights.size() <= static_cast<std::size_t>(samples);
    const float at = (static_cast<float>(i) + offset) / static_cast<float>(samples);
    const vk_Light &light = *myScene.lights[all ? i : pick(at)];
    return {&light, expected(light, samples)};
}

// The light at a place from 0 to 1 on the scale of all strengths.
std::size_t vk_DirectLight::pick(float at) const
{
    float left = at * myTotal;
    std::size_t i = 0;
    while (i + 1 < myScene.lights.size() && left >= myScene.lights[i]->strength())
        left -= myScene.lights[i++]->strength();
    return i;
}

// Light of a sample at a point, with what shadows leave of it.
vk_DirectLight::Arrival vk_DirectLight::arriving(const vk_Vec &from, const vk_Light &light,
                                                 const vk_LightSample &sample,
                                                 const vk_Colour &left) const
{
    const vk_Colour radiance =
        sample.radiance * myFog.passes(from, sample.direction, sample.distance);
    if (!isOccluded(from, light, sample))
        return {radiance, {}, VK_NOTHING};
    if (!mySeesThrough)
        return {radiance * left, {}, VK_OTHER_SHAPES};
    const vk_Vec direction = shadowRay(from, light, sample);
    const Transmittance passes = transmittance(from, direction, sample.distance * NOT_QUITE);
    return {radiance * left, radiance * (vk_grey(1) - left) * passes.share, passes.between};
}

bool vk_DirectLight::isOccluded(const vk_Vec &from, const vk_Light &light,
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
vk_Vec vk_DirectLight::shadowRay(const vk_Vec &from, const vk_Light &light,
                                 const vk_LightSample &sample) const
{
    if (myShadow.soft == 1)
        return sample.direction;
    const vk_LightSample centre = light.sample(from, {.5f, .5f});
    if (centre.density <= 0)
        return sample.direction;
    return vk_normalize(vk_mix(centre.direction, sample.direction, myShadow.soft));
}

// Of all that lies on a shadow ray, which goes straight through it.
vk_DirectLight::Transmittance vk_DirectLight::transmittance(vk_Vec origin, const vk_Vec &direction,
                                                            float distance) const
{
    constexpr int MOST_LAYERS = 8;

    Transmittance passes = {vk_grey(1), VK_SMOOTH_GLASS};
    for (int i = 0; i < MOST_LAYERS; ++i) {
        vk_Hit hit;
        ++vk_myRays.shadow;
        if (!myWorld.intersect(origin, direction, hit, distance))
            return passes;
        const vk_Material material = hit.surface->shade(hit.point);
        passes.between = std::max(passes.between, betweenOf(material));
        passes.share = passes.share * ofSurface(hit, material, direction);
        if (vk_largest(passes.share) < 1e-3f)
            break;
        distance -= hit.distance;
        origin = hit.start(direction);
    }
    return {{}, VK_OTHER_SHAPES};
}

// What a surface lets pass straight on, and the glass in front of it.
vk_Colour vk_DirectLight::ofSurface(const vk_Hit &hit, const vk_Material &material,
                                    const vk_Vec &direction) const
{
    if (!material.isClear())
        return material.diffuse * myShadow.tint;
    const float cosine = std::abs(vk_dot(hit.normal, direction));
    const float length = hit.inside ? hit.distance : 0;
    return material.absorbed(length) * material.passesStraight(cosine) * myShadow.filter;
}

vk_NextEvent vk_DirectLight::atVertex(const vk_Bsdf &bsdf, int samples,
                                      const vk_NextEvent &before) const
{
    vk_NextEvent next;
    next.samples = samples;
    if (mySeesThrough && !bsdf.isGlass())
        next.peakPdf = bsdf.peakPdf();
    // Where rough glass is left, its vertex in front has counted what shadows leave, when
    // there was one; the camera has not.
    next.left = before.left;
    next.shadowIsCounted = before.glassDims;
    next.glassDims = true;
    return next;
}

vk_NextEvent vk_DirectLight::throughGlass(vk_NextEvent next, float distance) const
{
    next.distance += distance;
    if (next.glassDims) {
        const vk_Colour counted = next.shadowIsCounted ? vk_Colour{} : myShadow.left;
        next.left = next.left * (vk_grey(1) - counted) * myShadow.filter;
    }
    next.shadowIsCounted = true;
    return next;
}

vk_Scattered vk_DirectLight::scattered(const vk_Hit &hit, const vk_Bsdf &bsdf,
                                       const vk_NextEvent &vertex, bool isWide,
                                       vk_Sampler &sampler) const
{
    const std::size_t count = samplesOf(vertex.samples);
    const float offset = count < myScene.lights.size() ? sampler.number() : 0;
    const vk_Colour left = vertex.shadowIsCounted ? vk_Colour{} : myShadow.left;
    vk_Scattered sum;
    for (std::size_t i = 0; i < count; ++i) {
        const Choice choice = choose(i, vertex.samples, offset);
        const vk_LightSample sample = choice.light->sample(hit.position, sampler.square());
        vk_MisPdfs pdfs = {sample.density * choice.expected, 0, vertex.peakPdf};
        if (pdfs.light <= 0 || (bsdf.isGlass() && isInside(hit, sample.direction)))
            continue;
        const vk_Scattered scattering = bsdf.evaluate(sample.direction, pdfs.bsdf);
        if (vk_largest(scattering.sum()) <= 0)
            continue;
        const Arrival arrival = arriving(hit.start(sample.direction), *choice.light, sample, left);
        const bool refracts = !isWide && vk_isSpecular(pdfs.bsdf);
        const vk_Onwards onwards = refracts ? VK_REFRACTED : VK_STRAIGHT;
        const float ofOpen = vk_misWeights(VK_NOTHING, onwards, pdfs).sample;
        const bool wasCountedInFront = arrival.between == VK_OTHER_SHAPES && vertex.shadowIsCounted;
        const float ofThrough =
            wasCountedInFront ? 0 : vk_misWeights(arrival.between, onwards, pdfs).sample;
        const vk_Colour light = vertex.left * (arrival.open * ofOpen + arrival.through * ofThrough);
        sum.specular += scattering.specular * light * (1 / pdfs.light);
        sum.diffuse += scattering.diffuse * light * (1 / pdfs.light);
    }
    return sum;
}

vk_Colour vk_DirectLight::met(const vk_Vec &origin, const vk_Vec &direction, float distance,
                              const vk_NextEvent &next) const
{
    const vk_Colour whenHidden = next.shadowIsCounted ? vk_Colour{} : myShadow.left;
    vk_Colour sum;
    for (const auto &light : myScene.lights) {
        const vk_LightSample seen = light->hit(origin, direction);
        if (seen.density <= 0)
            continue;
        // The vertex saw the light in about the same direction, had the way been straight.
        const vk_Vec vertex = origin - direction * next.distance;
        const float density =
            next.distance > 0 ? light->hit(vertex, direction).density : seen.density;
        const vk_Between between = next.isRefracted ? VK_SMOOTH_GLASS : VK_NOTHING;
        const vk_MisPdfs pdfs = {density * expected(*light, next.samples), next.bsdfPdf,
                                 next.peakPdf};
        const float weight = vk_misWeights(between, next.onwards(), pdfs).ray;
        const float passes = myFog.passes(origin, direction, seen.distance);
        const bool hidden =
            myShadow.soft == 1 ? seen.distance >= distance : isOccluded(origin, *light, seen);
        sum += seen.radiance * (hidden ? whenHidden : vk_grey(1)) * (weight * passes);
    }
    return sum * next.left;
}

bool vk_DirectLight::isAhead(const vk_Vec &origin, const vk_Vec &direction) const
{
    for (const auto &light : myScene.lights)
        if (light->hit(origin, direction).density > 0)
            return true;
    return false;
}

vk_Colour vk_DirectLight::inScattered(const vk_Vec &origin, const vk_Vec &direction, float distance,
                                      vk_Sampler &sampler) const
{
    constexpr std::size_t FEW = 3; // so many lights all get a sample, else one does

    const std::size_t count = myScene.lights.size();
    vk_Colour sum;
    for (std::size_t i = 0; i < count && count <= FEW; ++i)
        sum += inScattered(*myScene.lights[i], origin, direction, distance, sampler);
    if (count <= FEW)
        return sum;
    const vk_Light &light = *myScene.lights[pick(sampler.number())];
    const float chance = expected(light, 1);
    return chance > 0 ? inScattered(light, origin, direction, distance, sampler) * (1 / chance)
                      : sum;
}

// Of one light.
vk_Colour vk_DirectLight::inScattered(const vk_Light &light, const vk_Vec &origin,
                                      const vk_Vec &direction, float distance,
                                      vk_Sampler &sampler) const
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
