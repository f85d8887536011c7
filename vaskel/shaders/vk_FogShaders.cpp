#include "vaskel/shaders/vk_FogShaders.h"

#include <iterator>

namespace
{
// What all have.
struct Ball : vk_FogShader {
    vk_Colour color;
    float density, radius;

    Ball(float grey, float extinction, float size)
        : color(vk_grey(grey)), density(extinction), radius(size)
    {
    }
    void describe(vk_ParamList &list) override
    {
        describeBall(list, "light that it takes away per length");
    }
    void describeBall(vk_ParamList &list, const char *ofDensity)
    {
        list.colour("color", color, 0, 1, "share of the light that it scatters on");
        // At a hundred, a tenth of a length hides all that is behind it: more would look alike.
        list.number("density", density, 0, 100, ofDensity);
        list.number("radius", radius, 0, 1000, "of the ball around the origin that it fills");
    }
    vk_Medium medium() const override
    {
        vk_Medium medium;
        medium.extinction = density;
        medium.albedo = color;
        medium.radius = radius;
        return medium;
    }
};

struct Even final : Ball {
    // A little further than the usual camera, which is 6.8 from the origin: it begins at the eye.
    Even() : Ball(.9f, .07f, 8) {}
};

struct Ground final : Ball {
    float height = .35f;

    // Denser, since it is looked through for a short way only.
    Ground() : Ball(.9f, .45f, 9) {}
    void describe(vk_ParamList &list) override
    {
        // A height of 0 would mean an even fog (vk_Medium), so the least is above it.
        describeBall(list, "light that it takes away per length at y = 0");
        list.number("height", height, .01f, 1000, "where it has thinned out to 37 %");
    }
    vk_Medium medium() const override
    {
        vk_Medium medium = Ball::medium();
        medium.height = height;
        return medium;
    }
};

struct Lit final : Ball {
    float forward = .3f;

    // White and thin: its lit parts are what is to be seen, not what it hides.
    Lit() : Ball(1, .1f, 6) {}
    void describe(vk_ParamList &list) override
    {
        Ball::describe(list);
        // Towards 1 the phase function becomes a spike that samples of lights do not find, and at 1
        // it is 0 / 0.
        list.number("forward", forward, -.9f, .9f,
                    "0: light goes on to all sides, .9: straight on");
    }
    vk_Medium medium() const override
    {
        vk_Medium medium = Ball::medium();
        medium.forward = forward;
        return medium;
    }
};

constexpr vk_ShaderRow<vk_FogShader> ROWS[] = {
    vk_row<Even>("v_fog", "even fog that takes light and shadow"),
    vk_row<Ground>("v_groundfog", "fog that lies on the floor"),
    vk_row<Lit>("v_litfog", "haze in which beams of light show"),
};
} // namespace

const vk_ShaderTable<vk_FogShader> VK_FOG_SHADERS = {"fog", ROWS, std::size(ROWS)};
