#include "vaskel/osl/vk_OslFog.h"

namespace
{
enum Target { COLOR, DENSITY, FORWARD };

constexpr float DENSEST = 100;

// What closures of volumes add up to.
struct Sum {
    vk_Colour scattered, absorbed;
    float forward = 0; // times how much is scattered

    void add(const OSL_ClosureComponent &component);
    void scatter(const vk_Colour &colour, float g)
    {
        scattered += colour;
        forward += vk_luminance(colour) * g;
    }
};

vk_Colour colourOf(const float *from)
{
    return {from[0], from[1], from[2]};
}

void Sum::add(const OSL_ClosureComponent &component)
{
    const vk_Colour weight = {component.weight.x, component.weight.y, component.weight.z};
    const std::string_view name = component.name();
    if (name == "isotropic")
        scatter(weight, 0);
    // Their g is the mean cosine, which is what a medium has.
    if (name == "henyey_greenstein")
        scatter(weight, *component.floats("g"));
    if (name == "absorption")
        absorbed += weight;
    if (name != "anisotropic_vdf" && name != "medium_vdf")
        return;
    vk_Colour extinction;
    if (name == "anisotropic_vdf") {
        extinction = weight * colourOf(component.floats("extinction"));
    } else {
        const vk_Colour left = colourOf(component.floats("transmission_color"));
        const float depth = std::max(*component.floats("transmission_depth"), 1e-3f);
        // Black would absorb without bounds, and more than white would add light.
        const auto of = [&](float x) { return -std::log(std::clamp(x, 1e-3f, 1.0f)) / depth; };
        // Given is what is left after a depth, in place of how fast it goes.
        extinction = weight * vk_Colour{of(left.x), of(left.y), of(left.z)};
    }
    const vk_Colour albedo = colourOf(component.floats("albedo"));
    // Extinction is both; the albedo is what scattering has of it.
    scatter(extinction * albedo, *component.floats("anisotropy"));
    absorbed += extinction * (vk_grey(1) - albedo);
}

float shareOf(float part, float rest)
{
    // Absorption below 0, which a weight may make, would send on more than arrives.
    return part > 0 ? std::min(part / (part + std::max(rest, 0.0f)), 1.0f) : 0;
}

void fill(const Sum &sum, vk_Medium &medium)
{
    const vk_Colour &s = sum.scattered, &a = sum.absorbed;
    const float scattered = vk_luminance(s);
    // One for all colours, as paths cross fog with one distance; the colour lies in the albedo.
    medium.extinction = scattered + vk_luminance(a);
    medium.albedo = {shareOf(s.x, a.x), shareOf(s.y, a.y), shareOf(s.z, a.z)};
    // The mean cosine of all that scatters, each by how much it does.
    medium.forward = scattered > 0 ? sum.forward / scattered : 0;
}

void fill(const vk_OslRunner &runner, vk_Medium &medium)
{
    const vk_OslFeed &colour = runner.feed(COLOR), &density = runner.feed(DENSITY);
    const vk_OslFeed &forward = runner.feed(FORWARD);
    const vk_Colour c = colour.isThere() ? colour.colour(0) : vk_grey(.9f);
    medium.albedo = {std::clamp(c.x, 0.0f, 1.0f), std::clamp(c.y, 0.0f, 1.0f),
                     std::clamp(c.z, 0.0f, 1.0f)};
    // As v_fog has it, where the shader says nothing.
    medium.extinction = density.isThere() ? density.number(0) : .07f;
    medium.forward = forward.isThere() ? forward.number(0) : 0;
}
} // namespace

const vk_OslTargets vk_OslFog::TARGETS = {
    {"color", false, false}, {"density", false, true}, {"forward", false, true}};

void vk_OslFogParams::describe(vk_ParamList &list)
{
    list.number("radius", radius, 0, 1000, "of the ball around the origin that it fills");
    list.number("height", height, 0, 1000, "where it has thinned out to 37 %; 0: even");
}

vk_Medium vk_OslFog::medium() const
{
    vk_Medium medium;
    medium.radius = myParams->radius;
    medium.height = myParams->height;
    vk_OslRunner runner(*myBinding, 1);
    // Asked once: fog is even, or thins out with the height that the statement says.
    const vk_SurfacePoint origin;
    // It was stopped, so there will be no picture: any fog will do.
    if (!runner.run(&origin, 1))
        return medium;
    if (runner.closure() != nullptr) {
        std::vector<OSL_ClosureComponent> components;
        runner.context().flatten(runner.closure()->ints[0], components);
        Sum sum;
        for (const OSL_ClosureComponent &component : components)
            sum.add(component);
        fill(sum, medium);
    } else {
        fill(runner, medium);
    }
    // Beyond a hundred it is a wall; what is no number is no fog.
    medium.extinction =
        std::isfinite(medium.extinction) ? std::clamp(medium.extinction, 0.0f, DENSEST) : 0;
    medium.forward = std::isfinite(medium.forward) ? std::clamp(medium.forward, -.9f, .9f) : 0;
    return medium;
}
