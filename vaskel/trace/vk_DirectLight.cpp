#include "vaskel/trace/vk_DirectLight.h"

namespace
{
constexpr float NOT_QUITE = 1 - 1e-5f; // what a light lies on must not hide it

// Whether a direction leads into the shape.
bool isInside(const vk_Hit &hit, const vk_Vec &direction)
{
    return (vk_dot(hit.facet, direction) > 0) == hit.inside;
}
} // namespace

vk_DirectLight::vk_DirectLight(const vk_Scene &scene, const vk_World &world, const vk_Fog &fog)
    : myScene(scene), myFog(fog), myShadows(scene, world)
{
    for (const auto &light : scene.lights) {
        myTotal += light->strength();
        myBounds.push_back(light->bound());
    }
}

// How many samples a light gets on average.
float vk_DirectLight::expected(const vk_Light &light, int samples) const
{
    if (myScene.lights.size() <= static_cast<std::size_t>(samples))
        return 1;
    // 0 for no samples: the weight of a ray is 1 then.
    return myTotal > 0 ? static_cast<float>(samples) * light.strength() / myTotal : 0;
}

// So many lights are to be sampled, and the i-th of them.
std::size_t vk_DirectLight::samplesOf(int samples) const
{
    return std::min(myScene.lights.size(), static_cast<std::size_t>(samples));
}

// One offset serves all samples of a vertex: they step evenly along the scale of strengths, so
// that a light gets two only where it has more than its share.
vk_DirectLight::Choice vk_DirectLight::choose(std::size_t i, int samples, float offset) const
{
    const bool all = myScene.lights.size() <= static_cast<std::size_t>(samples);
    const float at = (static_cast<float>(i) + offset) / static_cast<float>(samples);
    const std::size_t light = all ? i : pick(at);
    return {light, expected(*myScene.lights[light], samples)};
}

// The light at a place from 0 to 1 on the scale of all strengths.
std::size_t vk_DirectLight::pick(float at) const
{
    // A walk: a scene has 64 lights at most.
    float left = at * myTotal;
    std::size_t i = 0;
    while (i + 1 < myScene.lights.size() && left >= myScene.lights[i]->strength())
        left -= myScene.lights[i++]->strength();
    return i;
}

// Beside the direction of a sample, as shadows are softer or harder than lights are wide.
vk_Vec vk_DirectLight::softened(const vk_Vec &from, const vk_Light &light,
                                const vk_Vec &direction) const
{
    const vk_LightSample centre = light.middle(from);
    // Within a lamp, for example, there is no direction towards its middle.
    if (centre.density <= 0)
        return direction;
    return vk_normalize(vk_mix(centre.direction, direction, myShadows.shadow().soft));
}

// Of a shadow ray.
inline vk_Segment vk_DirectLight::wayTo(const vk_Vec &from, const vk_Light &light,
                                        const vk_LightSample &sample) const
{
    const bool isAimed = myShadows.shadow().soft == 1;
    return {from, isAimed ? sample.direction : softened(from, light, sample.direction),
            sample.distance * NOT_QUITE};
}

vk_NextEvent vk_DirectLight::atVertex(const vk_Bsdf &bsdf, int samples,
                                      const vk_NextEvent &before) const
{
    vk_NextEvent next;
    next.samples = samples;
    // Only weights behind glass ask for it, and it takes an evaluation.
    if (myShadows.areTransparent() && !bsdf.isGlass())
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
    // In front of the glass the ray counted what shadows leave of a light; of the rest goes on what
    // the shadow of glass would let pass.
    if (next.glassDims) {
        const vk_Shadow &shadow = myShadows.shadow();
        const vk_Colour counted = next.shadowIsCounted ? vk_Colour{} : shadow.left;
        next.left = next.left * (vk_grey(1) - counted) * shadow.filter;
    }
    next.shadowIsCounted = true;
    return next;
}

// In front of the surface the ray counted what shadows leave of the lights behind it.
vk_NextEvent vk_DirectLight::passedBy(vk_NextEvent next, float distance) const
{
    next.distance += distance;
    if (next.bsdfPdf > 0 && !next.shadowIsCounted) {
        next.left = next.left * (vk_grey(1) - myShadows.shadow().left);
        next.shadowIsCounted = true;
    }
    return next;
}

void vk_DirectLight::sample(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_NextEvent &vertex,
                            vk_Path &path, vk_LightQueue &queue) const
{
    const std::size_t count = samplesOf(vertex.samples), before = queue.samples.size();
    const float offset = count < myScene.lights.size() ? path.sampler().number() : 0;
    for (std::size_t i = 0; i < count; ++i) {
        const Choice choice = choose(i, vertex.samples, offset);
        if (!bsdf.isGlass() && myBounds[choice.light].isBelow(hit.position, bsdf.normal())) {
            // One pair of numbers must mean the same in all samples of a pixel, or points that are
            // well spread no longer help.
            path.sampler().skip();
            continue;
        }
        const vk_Light &lamp = *myScene.lights[choice.light];
        const vk_LightSample sample = lamp.sample(hit.position, path.sampler().square());
        // Each counts over n times its pdf, so that the n samples expected come to one estimate.
        vk_MisPdfs pdfs = {sample.density * choice.expected, 0, vertex.peakPdf};
        // What arrives through the glass is left to the ray that goes on into it.
        if (pdfs.light <= 0 || (bsdf.isGlass() && isInside(hit, sample.direction)))
            continue;
        vk_Scattered light = bsdf.evaluate(sample.direction, pdfs.bsdf);
        if (vk_largest(light.sum()) <= 0)
            continue;
        const vk_Vec from = hit.start(sample.direction);
        const float passes = myFog.passes(from, sample.direction, sample.distance);
        const vk_Colour radiance = vertex.left * sample.radiance * (passes / pdfs.light);
        light = {light.specular * radiance, light.diffuse * radiance};
        // A glossy vertex sends rays through smooth glass to the same light: these share.
        const bool refracts = !path.isWide() && vk_isSpecular(pdfs.bsdf);
        queue.samples.push_back({light, pdfs, refracts ? VK_REFRACTED : VK_STRAIGHT});
        queue.rays.emplace_back().way = wayTo(from, lamp, sample);
    }
    if (queue.samples.size() > before)
        queue.vertices.emplace_back(path, vertex, queue.samples.size());
}

void vk_DirectLight::collect(vk_LightQueue &queue) const
{
    myShadows.cast(queue.rays.data(), queue.rays.size());
    std::size_t at = 0;
    for (vk_LightQueue::Vertex &vertex : queue.vertices) {
        vk_Scattered sum;
        std::uint64_t cost = 0;
        for (; at < vertex.end; ++at) {
            const vk_Scattered light =
                arriving(queue.samples[at], queue.rays[at], vertex.nextEvent);
            sum = {sum.specular + light.specular, sum.diffuse + light.diffuse};
            cost += queue.rays[at].cost;
        }
        vertex.path.view().charge(cost);
        vertex.path.add(sum);
    }
    queue.clear();
}

// What shadows leave of a sample, and what comes through the shapes that cast them.
vk_Scattered vk_DirectLight::arriving(const vk_LightQueue::Sample &sample, const vk_ShadowRay &ray,
                                      const vk_NextEvent &vertex) const
{
    const float ofOpen = vk_misWeights(VK_NOTHING, sample.onwards, sample.pdfs).sample;
    if (!ray.isOccluded)
        return {sample.light.specular * ofOpen, sample.light.diffuse * ofOpen};
    // What shadows leave counts as if nothing were there, for rays as well (see met()).
    const vk_Colour left = vertex.shadowIsCounted ? vk_Colour{} : myShadows.shadow().left;
    // Where rough glass is left, the vertex in front of it has counted what comes through other
    // shapes: their row gives all of that to its sample.
    const bool wasCountedInFront = ray.between == VK_OTHER_SHAPES && vertex.shadowIsCounted;
    const float ofThrough =
        wasCountedInFront ? 0 : vk_misWeights(ray.between, sample.onwards, sample.pdfs).sample;
    // A ray passes by holes as a sample does, and shares that with it as in the open.
    const vk_Colour passing = ray.by * ofOpen + (ray.passes - ray.by) * ofThrough;
    const vk_Colour share = left * ofOpen + (vk_grey(1) - left) * passing;
    return {sample.light.specular * share, sample.light.diffuse * share};
}

vk_Colour vk_DirectLight::met(const vk_Vec &origin, const vk_Vec &direction, float distance,
                              const vk_NextEvent &next) const
{
    const vk_Shadow &shadow = myShadows.shadow();
    const vk_Colour whenHidden = next.shadowIsCounted ? vk_Colour{} : shadow.left;
    vk_Colour sum;
    for (std::size_t i = 0; i < myBounds.size(); ++i) {
        if (!myBounds[i].mayMeet(origin, direction))
            continue;
        const vk_Light &light = *myScene.lights[i];
        const vk_LightSample seen = light.hit(origin, direction);
        if (seen.density <= 0)
            continue;
        // The vertex saw the light in about the same direction, had the way been straight.
        const vk_Vec vertex = origin - direction * next.distance;
        const float density =
            next.distance > 0 ? light.hit(vertex, direction).density : seen.density;
        const vk_Between between = next.isRefracted ? VK_SMOOTH_GLASS : VK_NOTHING;
        const vk_MisPdfs pdfs = {density * expected(light, next.samples), next.bsdfPdf,
                                 next.peakPdf};
        const float weight = vk_misWeights(between, next.onwards(), pdfs).ray;
        const float passes = myFog.passes(origin, direction, seen.distance);
        // Samples of softer or harder shadows look beside the light; a ray must find the same ones,
        // or what both count would not come to the whole.
        const bool hidden = shadow.soft == 1 ? seen.distance >= distance
                                             : myShadows.isOccluded(wayTo(origin, light, seen));
        sum += seen.radiance * (hidden ? whenHidden : vk_grey(1)) * (weight * passes);
    }
    return sum * next.left;
}

bool vk_DirectLight::isAhead(const vk_Vec &origin, const vk_Vec &direction) const
{
    for (std::size_t i = 0; i < myBounds.size(); ++i)
        if (myBounds[i].mayMeet(origin, direction) &&
            myScene.lights[i]->hit(origin, direction).density > 0)
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
    // Over the chance that this light was picked.
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
    // The others follow at equal steps, round the end, so that each quarter of the scale has one.
    const float first = sampler.number();
    vk_Colour arriving[PLACES];
    vk_ShadowRay rays[PLACES];
    std::size_t count = 0;
    for (int i = 0; i < PLACES; ++i) {
        const float turn = first + static_cast<float>(i) / PLACES;
        const vk_Fog::Place place = myFog.place(begin, direction, end - lit.begin, light.place(),
                                                turn < 1 ? turn : turn - 1);
        const vk_Vec at = begin + direction * place.distance;
        const vk_LightSample sample = light.sample(at, sampler.square());
        // Most places lie outside the beam of a lamp, and need no ray to tell.
        if (place.weight <= 0 || sample.density <= 0 || vk_largest(sample.radiance) <= 0)
            continue;
        // Both directions point against the light that goes along them.
        const float phase = myFog.phase(vk_dot(direction, sample.direction));
        const float open = myFog.passes(at, sample.direction, sample.distance);
        arriving[count] =
            sample.radiance * (open * place.weight * phase / (sample.density * PLACES));
        rays[count++].way = wayTo(at, light, sample);
    }
    myShadows.cast(rays, count);
    const vk_Colour &left = myShadows.shadow().left;
    vk_Colour sum;
    for (std::size_t i = 0; i < count; ++i)
        sum += arriving[i] *
               (rays[i].isOccluded ? left + (vk_grey(1) - left) * rays[i].passes : vk_grey(1));
    return sum * passes;
}
