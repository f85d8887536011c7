#include "vaskel/trace/vk_Subsurface.h"

#include "vaskel/base/vk_Stats.h"

namespace
{
constexpr float FURTHEST = 12;                  // times scatter: where less than 2 % is left
constexpr int MOST_LAYERS = 4;                  // that one ray looks through
constexpr vk_Vec AXIS_SHARES = {.1f, .1f, .8f}; // tangents, normal

float component(const vk_Vec &v, int i)
{
    return i == 0 ? v.x : i == 1 ? v.y : v.z;
}

// The profile of one colour, cut off where hardly anything is left, or where no shape is.
class Profile
{
public:
    Profile(float scatter, float furthest)
        : myScatter(scatter), myMost(std::min(FURTHEST * scatter, furthest)),
          myFast(.25f * (1 - std::exp(-myMost / scatter))),
          myWithin(vk_profileWithin(myMost, scatter))
    {
    }
    float most() const { return myMost; }

    // A distance, with density() over the plane. A quarter of the profile falls off fast,
    // the rest slowly.
    float sample(float u) const
    {
        // One number picks an exponential and, stretched over its share, is put through the
        // inverse.
        const float at = u * myWithin;
        if (at < myFast)
            return std::min(-myScatter * std::log(1 - 4 * at), myMost);
        const float left = std::max(1e-6f, 1 - (at - myFast) / .75f);
        return std::min(-3 * myScatter * std::log(left), myMost);
    }
    // Of places `distance` away that a ray passes at `radius`.
    float density(float radius, float distance) const
    {
        // Rays end at a ball of that radius: counting places beyond, which they cannot find, would
        // darken the colour that wanders furthest. At the very end rounding may put one there.
        return distance <= 1.001f * myMost ? vk_profile(radius, myScatter) / myWithin : 0;
    }

private:
    float myScatter, myMost;
    float myFast, myWithin; // what is left of the fast part and of both
};

// One of three by its share of 1; of `u`, which is used up to that share, leaves the rest.
int pick(const vk_Vec &shares, float &u)
{
    int i = 0;
    while (i < 2 && u >= component(shares, i))
        u -= component(shares, i++);
    return i;
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
// importance sampling with the balance heuristic. It is the facet that a ray meets, whatever
// normal it is shaded with.
float densityAt(const vk_Frame &frame, const vk_Vec &off, const vk_Vec &facet,
                const Profile (&profiles)[3], const vk_Vec &shares)
{
    float density = 0;
    const float distance = vk_length(off);
    for (int i = 0; i < 3; ++i) {
        const vk_Frame axis = turned(frame, i);
        const vk_Vec local = axis.toLocal(off);
        const float r = std::sqrt(local.x * local.x + local.y * local.y);
        // The Jacobian from the plane that the ray crosses to the surface.
        const float facing = std::abs(vk_dot(axis.normal, facet)) * component(AXIS_SHARES, i);
        for (int colour = 0; colour < 3; ++colour)
            density += facing * component(shares, colour) * profiles[colour].density(r, distance);
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
        vk_myWork.countScatteredRay();
        if (!world.intersect(origin, direction, hit, length))
            break;
        // Nothing below the floor is lit: layers there would only take chances from others.
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
    // Per area it has a pole at 0; within a thousandth of `scatter` lies .05 % of the light.
    const float r = std::max(distance, scatter * 1e-3f);
    return (std::exp(-r / scatter) + std::exp(-r / (3 * scatter))) / (8 * VK_PI * scatter * r);
}

float vk_profileWithin(float distance, float scatter)
{
    return 1 - .25f * std::exp(-distance / scatter) - .75f * std::exp(-distance / (3 * scatter));
}

bool vk_sampleEntry(const vk_World &world, const vk_Hit &exit, const vk_Vec &scatter,
                    const vk_Colour &albedo, vk_Sampler &sampler, vk_Hit &entry, vk_Colour &weight)
{
    const float furthest = world.diameter();
    const Profile profiles[3] = {
        {scatter.x, furthest}, {scatter.y, furthest}, {scatter.z, furthest}};
    const vk_Vec shares = albedo * (1 / (albedo.x + albedo.y + albedo.z));
    const vk_Square choice = sampler.square(), place = sampler.square();
    float left = choice.u;
    const int axis = pick(AXIS_SHARES, left);
    left = choice.v;
    const int colour = pick(shares, left);
    const Profile &profile = profiles[colour];
    const float r = profile.sample(place.u);
    // The ray's chord of the ball that holds all of the profile: half of it, squared.
    const float far2 = profile.most() * profile.most() - r * r;
    if (far2 <= 0)
        return false;
    const vk_Frame frame(exit.normal);
    const vk_Frame probe = turned(frame, axis);
    const float half = std::sqrt(far2), around = 2 * VK_PI * place.v;
    const vk_Vec start = exit.position + probe.tangent * (r * std::cos(around)) +
                         probe.bitangent * (r * std::sin(around)) + probe.normal * half;
    // What the choice of a colour left of its number picks the layer.
    const float at = left / std::max(component(shares, colour), 1e-6f);
    const int layers = pickLayer(world, start, -probe.normal, 2 * half, at, entry);
    if (layers == 0 || entry.surface != exit.surface)
        return false;
    // Normals of a hit face the ray, which meets the shape from its other side too.
    if (entry.inside != exit.inside) {
        entry.normal = -entry.normal;
        entry.facet = -entry.facet;
    }
    const vk_Vec off = entry.position - exit.position;
    const float distance = vk_length(off);
    const float density = densityAt(frame, off, entry.facet, profiles, shares);
    // Times the layers, of which each was picked with the same chance.
    weight = vk_Colour{vk_profile(distance, scatter.x), vk_profile(distance, scatter.y),
                       vk_profile(distance, scatter.z)} *
             (static_cast<float>(layers) / std::max(density, 1e-12f));
    return true;
}
