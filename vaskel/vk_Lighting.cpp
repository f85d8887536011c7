#include "vaskel/vk_Lighting.h"

#include "vaskel/vk_Stats.h"

vk_Lighting::vk_Lighting(const vk_Scene &scene, const vk_World &world, const vk_Fog &fog)
    : myScene(scene), myWorld(world), myFog(fog), myBlocked(scene.shadow()),
      myCastsShadows(!(myBlocked == vk_grey(1)))
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

vk_Colour vk_Lighting::arriving(const vk_Vec &from, const vk_LightSample &light) const
{
    constexpr float NOT_QUITE = 1 - 1e-5f; // a light must not hide itself

    const vk_Colour radiance = light.radiance * myFog.passes(from, light.direction, light.distance);
    if (!myCastsShadows)
        return radiance;
    ++vk_myRays.shadow;
    const bool isBlocked = myWorld.occluded(from, light.direction, light.distance * NOT_QUITE);
    return isBlocked ? radiance * myBlocked : radiance;
}

vk_Colour vk_Lighting::reflected(const vk_Hit &hit, const vk_Bsdf &bsdf, int samples,
                                 vk_Sampler &sampler) const
{
    const std::size_t count = myScene.lights.size();
    const bool all = count <= static_cast<std::size_t>(samples);
    const std::size_t rounds = all ? count : static_cast<std::size_t>(samples);
    const float offset = all ? 0 : sampler.number();
    vk_Colour sum;
    for (std::size_t i = 0; i < rounds; ++i) {
        const float place = (static_cast<float>(i) + offset) / static_cast<float>(rounds);
        const vk_Light &light = *myScene.lights[all ? i : pick(place)];
        const vk_LightSample sample = light.sample(hit.position, sampler.square());
        const float chance = sample.density * expected(light, samples);
        if (chance <= 0)
            continue;
        float density = 0;
        const vk_Colour scattering = bsdf.evaluate(sample.direction, density);
        if (vk_largest(scattering) > 0)
            sum += scattering * arriving(hit.start(sample.direction), sample) *
                   (1 / (chance + density));
    }
    return sum;
}

vk_Colour vk_Lighting::reached(const vk_Vec &origin, const vk_Vec &direction, float distance,
                               float density, int samples) const
{
    vk_Colour sum;
    for (const auto &light : myScene.lights) {
        const vk_LightSample seen = light->hit(origin, direction);
        if (seen.density <= 0)
            continue;
        const float share = density / (density + seen.density * expected(*light, samples));
        const float passes = myFog.passes(origin, direction, seen.distance);
        sum +=
            seen.radiance * (seen.distance < distance ? vk_grey(1) : myBlocked) * (share * passes);
    }
    return sum;
}

vk_Colour vk_Lighting::scattered(const vk_Vec &at, vk_Sampler &sampler) const
{
    if (myScene.lights.empty())
        return {};
    const vk_Light &light = *myScene.lights[pick(sampler.number())];
    const vk_LightSample sample = light.sample(at, sampler.square());
    const float chance = sample.density * expected(light, 1);
    return chance > 0 ? arriving(at, sample) * (1 / (4 * VK_PI * chance)) : vk_Colour{};
}
