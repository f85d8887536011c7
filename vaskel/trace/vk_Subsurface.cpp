#include "vaskel/trace/vk_Subsurface.h"

#include "vaskel/base/vk_Stats.h"

namespace
{
constexpr float FURTHEST = 12;                     // times scatter: where less than 2 % is left
constexpr int MOST_LAYERS = 4;                     // that one ray looks through
constexpr float AXIS_SHARES[] = {.25f, .25f, .5f}; // tangents, normal

float component(const vk_Vec &v, int i)
{
    return i == 0 ? v.x : i == 1 ? v.y : v.z;
}

// A distance with the profile's density over the plane.
float sampleProfile(float u, float scatter)
{
    // A quarter of it falls off fast, the rest slowly.
    if (u < .25f)
        return -scatter * std::log(1 - 4 * u);
    return -3 * scatter * std::log(std::max(1e-6f, 1 - (u - .25f) / .75f));
}

// The frame with the i-th of its axes as the third.
vk_Frame turned(const vk_Frame &frame, int i)
{
    vk_Frame to = frame;
    if (i == 0) {
        to.tangent = frame.bitangent;
        to.bitangent = frame.normal;
        to.normal = frame.tangent;
    } else if (i == 1) {
        to.tangent = frame.normal;
        to.bitangent = frame.tangent;
        to.normal = frame.bitangent;
    }
    return to;
}

// How densely all axes and colours together would have drawn a place: multiple
// importance sampling with the balance heuristic.
float densityAt(const vk_Frame &frame, const vk_Vec &off, const vk_Vec &normal,
                const vk_Vec &scatter)
{
    float density = 0;
    for (int i = 0; i < 3; ++i) {
        const vk_Frame axis = turned(frame, i);
        const vk_Vec local = axis.toLocal(off);
        const float r = std::sqrt(local.x * local.x + local.y * local.y);
        const float facing = std::abs(vk_dot(axis.normal, normal)) * AXIS_SHARES[i] / 3;
        for (int colour = 0; colour < 3; ++colour)
            density += facing * vk_profile(r, component(scatter, colour));
    }
    return density;
}

// One of the shape's layers on a ray, the same chance for each; how many there are.
int pickLayer(const vk_World &world, vk_Vec origin, const vk_Vec &direction, float length, float at,
              vk_Hit &picked)
{
    vk_Hit hits[MOST_LAYERS];
    int count = 0;
    while (count < MOST_LAYERS && length > 0) {
        vk_Hit &hit = hits[count];
        ++vk_myRays.scattered;
        if (!world.intersect(origin, direction, hit) || hit.distance > length)
            break;
        // Nothing below the floor is lit; and a ray that goes down stays at the floor.
        if (hit.isFloor && direction.y < 0)
            break;
        length -= hit.distance;
        origin = hit.start(direction);
        count += hit.isFloor ? 0 : 1;
    }
    if (count > 0)
        picked = hits[std::min(static_cast<int>(at * static_cast<float>(count)), count - 1)];
    return count;
}
} // namespace

float vk_profile(float distance, float scatter)
{
    const float r = std::max(distance, scatter * 1e-3f);
    return (std::exp(-r / scatter) + std::exp(-r / (3 * scatter))) / (8 * VK_PI * scatter * r);
}

float vk_profileWithin(float distance, float scatter)
{
    return 1 - .25f * std::exp(-distance / scatter) - .75f * std::exp(-distance / (3 * scatter));
}

bool vk_sampleEntry(const vk_World &world, const vk_Hit &exit, const vk_Vec &scatter,
                    vk_Sampler &sampler, vk_Hit &entry, vk_Colour &weight)
{
    const vk_Square choice = sampler.square(), place = sampler.square();
    const int axis = choice.u < .5f ? 2 : choice.u < .75f ? 0 : 1;
    const float colour = std::min(choice.v * 3, 2.999f);
    const float d = component(scatter, static_cast<int>(colour));
    const float r = sampleProfile(place.u, d);
    const float far2 = FURTHEST * FURTHEST * d * d - r * r;
    if (far2 <= 0)
        return false;
    const vk_Frame frame(exit.normal);
    const vk_Frame probe = turned(frame, axis);
    const float half = std::sqrt(far2), around = 2 * VK_PI * place.v;
    const vk_Vec start = exit.position + probe.tangent * (r * std::cos(around)) +
                         probe.bitangent * (r * std::sin(around)) + probe.normal * half;
    const float at = colour - std::floor(colour);
    const int layers = pickLayer(world, start, -probe.normal, 2 * half, at, entry);
    if (layers == 0 || entry.surface != exit.surface)
        return false;
    if (entry.inside != exit.inside) {
        entry.normal = -entry.normal;
        entry.facet = -entry.facet;
    }
    const vk_Vec off = entry.position - exit.position;
    const float distance = vk_length(off);
    const float density = densityAt(frame, off, entry.normal, scatter);
    weight = vk_Colour{vk_profile(distance, scatter.x), vk_profile(distance, scatter.y),
                       vk_profile(distance, scatter.z)} *
             (static_cast<float>(layers) / std::max(density, 1e-12f));
    return true;
}
