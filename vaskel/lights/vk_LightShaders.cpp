#include "vaskel/lights/vk_LightShaders.h"

#include "vaskel/lights/vk_BallLight.h"
#include "vaskel/lights/vk_SlideLights.h"

#include <iterator>

namespace
{
constexpr float FAR_AWAY = 1e30f;

class DistantLight final : public vk_Light
{
public:
    DistantLight(const vk_Vec &towards, float degrees, const vk_Colour &white)
        : vk_Light(vk_luminance(white)), myAxis(towards)
    {
        const float sine = std::sin(degrees * VK_PI / 180);
        myHeight = vk_capHeight(sine * sine);
        myRadiance = white * (1 / (sine * sine));
    }
    vk_LightSample sample(const vk_Vec &, const vk_Square &at) const override
    {
        return complete(vk_inCap(myAxis, myHeight, at));
    }
    vk_LightSample hit(const vk_Vec &, const vk_Vec &direction) const override
    {
        if (vk_dot(direction, myAxis) < 1 - myHeight)
            return {};
        return complete(direction);
    }

private:
    vk_LightSample complete(const vk_Vec &direction) const
    {
        vk_LightSample sample = vk_capSample(direction, myHeight);
        sample.distance = FAR_AWAY;
        sample.radiance = myRadiance;
        return sample;
    }
    vk_Vec myAxis;
    float myHeight = 0;
    vk_Colour myRadiance;
};

// Share of the light of a w by h rectangle that a surface receives that faces
// its centre squarely at a distance (the form factor of parallel rectangles).
float rectangleShare(float w, float h, float distance)
{
    const float a = w / 2 / distance, b = h / 2 / distance;
    const float ra = std::sqrt(1 + a * a), rb = std::sqrt(1 + b * b);
    return 2 / VK_PI * (a / ra * std::atan(b / ra) + b / rb * std::atan(a / rb));
}

class AreaLight final : public vk_Light
{
public:
    AreaLight(const vk_Vec &centre, const vk_Vec &target, float width, float height,
              const vk_Colour &white)
        : vk_Light(vk_luminance(white)), myCentre(centre), myNormal(vk_normalize(target - centre)),
          myWidth(width), myHeight(height)
    {
        // The width stays level, unless the light looks straight up or down.
        const vk_Vec level = vk_cross({0, 1, 0}, myNormal);
        myAcross = vk_dot(level, level) > 1e-6f ? vk_normalize(level) : vk_Vec{1, 0, 0};
        myUp = vk_cross(myNormal, myAcross);
        const float distance = std::max(vk_length(target - centre), 1e-3f);
        myRadiance = white * (1 / rectangleShare(width, height, distance));
    }
    vk_LightSample sample(const vk_Vec &from, const vk_Square &at) const override
    {
        const vk_Vec place =
            myCentre + myAcross * (myWidth * (at.u - 0.5f)) + myUp * (myHeight * (at.v - 0.5f));
        return seen(from, place);
    }
    vk_LightSample hit(const vk_Vec &from, const vk_Vec &direction) const override
    {
        const float facing = vk_dot(direction, myNormal);
        if (facing >= -1e-6f)
            return {};
        const float distance = vk_dot(myCentre - from, myNormal) / facing;
        const vk_Vec place = from + direction * distance;
        const vk_Vec off = place - myCentre;
        if (distance <= 0 || std::abs(vk_dot(off, myAcross)) > myWidth / 2 ||
            std::abs(vk_dot(off, myUp)) > myHeight / 2)
            return {};
        return seen(from, place);
    }
    const vk_Vec *place() const override { return &myCentre; }
    float size() const override { return std::sqrt(myWidth * myWidth + myHeight * myHeight) / 2; }

private:
    vk_LightSample seen(const vk_Vec &from, const vk_Vec &place) const
    {
        const vk_Vec way = place - from;
        const float square = vk_dot(way, way);
        vk_LightSample sample;
        sample.distance = std::sqrt(square);
        if (sample.distance <= 0)
            return {};
        sample.direction = way * (1 / sample.distance);
        const float facing = -vk_dot(sample.direction, myNormal);
        if (facing <= 1e-6f)
            return {};
        sample.density = square / (facing * myWidth * myHeight);
        sample.radiance = myRadiance;
        return sample;
    }
    vk_Vec myCentre, myNormal, myAcross, myUp;
    float myWidth, myHeight;
    vk_Colour myRadiance;
};

enum { AREA_WIDTH = VK_LIGHT_OWN, AREA_HEIGHT };
constexpr vk_Param AREA[] = {
    VK_LIGHT_FROM,
    VK_LIGHT_TO,
    VK_LIGHT_COLOR,
    VK_LIGHT_INTENSITY,
    {"width", VK_NUMBER, {3, 0, 0}, .01f, 1000, "width"},
    {"height", VK_NUMBER, {3, 0, 0}, .01f, 1000, "height"},
};

std::unique_ptr<vk_Light> area(const vk_Values &p)
{
    return std::make_unique<AreaLight>(p.vec(VK_FROM), p.vec(VK_TO), p.number(AREA_WIDTH),
                                       p.number(AREA_HEIGHT), vk_lightWhite(p));
}

enum { POINT_RADIUS = VK_LIGHT_OWN };
constexpr vk_Param POINT[] = {
    VK_LIGHT_FROM,
    VK_LIGHT_TO,
    VK_LIGHT_COLOR,
    VK_LIGHT_INTENSITY,
    {"radius", VK_NUMBER, {.25f, 0, 0}, 0, 1000, "radius; clamped to at least .02"},
};

std::unique_ptr<vk_Light> point(const vk_Values &p)
{
    const float radius = std::max(p.number(POINT_RADIUS), .02f);
    return std::make_unique<vk_BallLight>(p.vec(VK_FROM), radius, p.vec(VK_TO), vk_lightWhite(p));
}

enum { DISTANT_ANGLE = VK_LIGHT_OWN };
constexpr vk_Param DISTANT[] = {
    VK_LIGHT_FROM,
    VK_LIGHT_TO,
    VK_LIGHT_COLOR,
    VK_LIGHT_INTENSITY,
    {"angle", VK_NUMBER, {1.5f, 0, 0}, 0, 60, "half of its width, degrees; clamped to at least .2"},
};

std::unique_ptr<vk_Light> distant(const vk_Values &p)
{
    const vk_Vec towards = vk_normalize(p.vec(VK_FROM) - p.vec(VK_TO));
    return std::make_unique<DistantLight>(towards, std::max(p.number(DISTANT_ANGLE), .2f),
                                          vk_lightWhite(p));
}

constexpr vk_ShaderRow<vk_LightFunction> LIGHT_ROWS[] = {
    {"v_area", "a glowing rectangle", AREA, area},
    {"v_point", "a small glowing ball", POINT, point},
    {"v_distant", "parallel light, as from the sun", DISTANT, distant},
    {"v_asadlight", "another name of v_area", AREA, area},
};

static_assert(std::size(AREA) == AREA_HEIGHT + 1 && std::size(POINT) == POINT_RADIUS + 1 &&
              std::size(DISTANT) == DISTANT_ANGLE + 1);
} // namespace

vk_Colour vk_lightWhite(const vk_Values &p)
{
    return p.vec(VK_COLOR) * p.number(VK_INTENSITY);
}

const vk_ShaderTable<vk_LightFunction> VK_LIGHT_SHADERS = {"light", LIGHT_ROWS,
                                                           std::size(LIGHT_ROWS), &VK_SLIDE_LIGHTS};
