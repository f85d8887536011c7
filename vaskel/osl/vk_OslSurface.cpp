#include "vaskel/osl/vk_OslSurface.h"

#include "vaskel/base/vk_Sampler.h"

#include <cstring>

namespace
{
// In the order of TARGETS.
enum Target { DIFF, SPEC, ROUGH, IOR, EMISSION, BUMP, OPACITY };

// How steep a bump is that rises so much on so long a step. One that is no number is none, and
// beyond the steepest all face the horizon.
float slopeOf(float rise, float step)
{
    constexpr float STEEPEST = 1e3f;

    const float slope = rise / step;
    return std::isnan(slope) ? 0 : std::clamp(slope, -STEEPEST, STEEPEST);
}

// A number from 0 to 1 that looks random and is the same wherever a point is asked about.
float chanceAt(const vk_SurfacePoint &point)
{
    // Not 0, whose hash is 0: the origin would always get the least chance.
    std::uint32_t seed = 1;
    for (const float x : {point.position.x, point.position.y, point.position.z}) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &x, sizeof bits);
        // The bits, not the value: neighbours a rounding apart must differ, too.
        seed = vk_hash(seed ^ bits);
    }
    return static_cast<float>(seed >> 8) * 0x1p-24f;
}

float clamped(float x, float least, float most)
{
    return std::min(std::max(x, least), most);
}

vk_Colour clamped(const vk_Colour &c, float most)
{
    return {clamped(c.x, 0, most), clamped(c.y, 0, most), clamped(c.z, 0, most)};
}

// Leaves so much of a material; light passes by the rest.
void thin(float opacity, vk_Material &material)
{
    material.presence = opacity;
    // Presence is not about emission (vk_Material.h).
    material.emission = material.emission * opacity;
    material.passesBy = vk_mix(vk_grey(1), material.passesBy, opacity);
}

// A point a little further on along the surface.
vk_SurfacePoint moved(const vk_SurfacePoint &from, const vk_Vec &by)
{
    vk_SurfacePoint to = from;
    // Not the position: runners tell the place, from which the shape's own space follows.
    to.place += by;
    const float uu = vk_dot(from.dPdu, from.dPdu), vv = vk_dot(from.dPdv, from.dPdv);
    // As if u and v were straight and square to each other there, which they nearly are over half
    // a pixel.
    to.u += uu > 0 ? vk_dot(from.dPdu, by) / uu : 0;
    to.v += vv > 0 ? vk_dot(from.dPdv, by) / vv : 0;
    return to;
}
} // namespace

const vk_OslTargets vk_OslSurface::TARGETS = {
    {"diff", false, false},  {"spec", false, false},     {"rough", false, true},
    {"ior", false, true},    {"emission", false, false}, {"bump", true, true},
    {"opacity", true, true},
};

vk_OslSurface::vk_OslSurface(std::shared_ptr<const vk_OslBinding> binding)
    : myRunners(std::move(binding))
{
}

// Calls ask(runner, first, size) for as many points at a time as a runner takes.
template <class Ask>
void vk_OslSurface::inBatches(std::size_t count, Ask ask) const
{
    // A wave of points is worth wide registers; a single one pays for lanes that are empty.
    std::unique_ptr<vk_OslRunner> runner = myRunners.borrow(count > 1);
    const auto width = static_cast<std::size_t>(runner->width());
    for (std::size_t i = 0; i < count; i += width)
        // A shader that was stopped leaves what is left as it is: the picture is thrown away.
        if (!ask(*runner, i, static_cast<int>(std::min(width, count - i))))
            break;
    myRunners.giveBack(std::move(runner));
}

void vk_OslSurface::shade(const vk_SurfacePoint *points, vk_Material *materials,
                          std::size_t count) const
{
    inBatches(count, [&](vk_OslRunner &runner, std::size_t first, int size) {
        return shade(runner, points + first, materials + first, size) &&
               (!runner.feed(BUMP).isThere() ||
                bump(runner, points + first, materials + first, size));
    });
}

void vk_OslSurface::shadeForShadows(const vk_SurfacePoint *points, vk_Material *materials,
                                    std::size_t count) const
{
    inBatches(count, [&](vk_OslRunner &runner, std::size_t first, int size) {
        return shade(runner, points + first, materials + first, size);
    });
}

bool vk_OslSurface::shade(vk_OslRunner &runner, const vk_SurfacePoint *points,
                          vk_Material *materials, int count) const
{
    if (!runner.run(points, count))
        return false;
    const vk_OslFeed &opacity = runner.feed(OPACITY);
    for (int i = 0; i < count; ++i) {
        vk_Material &material = materials[i];
        if (runner.closure() == nullptr)
            material = plastic(runner, i);
        else
            material = runner.closures().materialOf(runner.closure()->ints[i], points[i].normal,
                                                    chanceAt(points[i]));
        if (opacity.isThere())
            thin(clamped(opacity.number(i), 0, 1), material);
    }
    return true;
}

vk_Material vk_OslSurface::plastic(const vk_OslRunner &runner, int point)
{
    const auto colourOf = [&](Target target, float other) {
        const vk_OslFeed &feed = runner.feed(target);
        return feed.isThere() ? feed.colour(point) : vk_grey(other);
    };
    const auto numberOf = [&](Target target, float other) {
        const vk_OslFeed &feed = runner.feed(target);
        return feed.isThere() ? feed.number(point) : other;
    };
    // Where the shader says nothing it is v_plastic as it comes.
    vk_Material material =
        vk_coated(clamped(colourOf(DIFF, .6f), 1), clamped(colourOf(SPEC, 1), 1),
                  clamped(numberOf(ROUGH, .2f), 0, 1), clamped(numberOf(IOR, 1.5f), 1, 4));
    // Bounded, so that sums of light stay finite whatever the shader says.
    material.emission = clamped(colourOf(EMISSION, 0), 1e6f);
    return material;
}

// Turns normals by the slope of a height, which was asked for at the points themselves.
bool vk_OslSurface::bump(vk_OslRunner &runner, const vk_SurfacePoint *points,
                         vk_Material *materials, int count) const
{
    constexpr float LEAST_STEP = 1e-4f;

    const vk_OslFeed &height = runner.feed(BUMP);
    int solid[vk_OslRunner::MOST_POINTS], size = 0; // glass has no base to turn
    float before[vk_OslRunner::MOST_POINTS];
    for (int i = 0; i < count; ++i)
        if (materials[i].presence > 0 && !materials[i].isClear()) {
            // The next run writes over what feeds point to.
            before[size] = height.number(i);
            solid[size++] = i;
        }
    for (const bool isSecond : {false, true}) {
        vk_SurfacePoint beside[vk_OslRunner::MOST_POINTS];
        vk_Vec steps[vk_OslRunner::MOST_POINTS];
        for (int i = 0; i < size; ++i) {
            const vk_SurfacePoint &point = points[solid[i]];
            const vk_Frame frame(point.normal);
            // Half a pixel: finer bumps would only add noise, and the difference of two heights
            // that are nearly equal is all rounding.
            const float step = std::max(.5f * point.footprint, LEAST_STEP);
            steps[i] = (isSecond ? frame.bitangent : frame.tangent) * step;
            beside[i] = moved(point, steps[i]);
        }
        if (size > 0 && !runner.run(beside, size))
            return false;
        for (int i = 0; i < size; ++i) {
            const float rise = height.number(i) - before[i];
            const float slope = slopeOf(rise, vk_length(steps[i]));
            // Against the slope: a normal leans away from where the height grows.
            materials[solid[i]].tilt += vk_normalize(steps[i]) * -slope;
        }
    }
    return true;
}

// Whether any of some points is: a shader does not tell.
bool vk_OslSurface::mayBeClear() const
{
    constexpr int SIDE = 16;

    // A ball's points, in the middle of even cells of u and v.
    std::vector<vk_SurfacePoint> points;
    for (int i = 0; i < SIDE * SIDE; ++i) {
        vk_SurfacePoint point;
        point.u = (static_cast<float>(i % SIDE) + .5f) / SIDE;
        point.v = (static_cast<float>(i / SIDE) + .5f) / SIDE;
        const float around = 2 * VK_PI * point.u, up = VK_PI * (point.v - .5f);
        point.normal = {std::cos(up) * std::sin(around), std::sin(up),
                        std::cos(up) * std::cos(around)};
        point.facet = point.normal;
        point.position = point.place = point.normal + vk_Vec{0, 1, 0};
        point.incoming = -point.normal;
        points.push_back(point);
    }
    std::vector<vk_Material> materials(points.size());
    shade(points.data(), materials.data(), points.size());
    // Holes between these points are missed: shadows then take the surface for opaque.
    const auto letsLightPass = [](const vk_Material &m) { return m.isClear() || !m.isWhole(); };
    return std::any_of(materials.begin(), materials.end(), letsLightPass);
}
