#include "vaskel/lights/vk_LightShaders.h"

#include "vaskel/lights/vk_BallLight.h"
#include "vaskel/lights/vk_SlideLights.h"

#include <iterator>

namespace
{
// Beyond every scene, and still far from the largest float.
constexpr float FAR_AWAY = 1e30f;

class DistantLight final : public vk_Light
{
public:
    DistantLight(const vk_Vec &towards, float degrees, const vk_Colour &white)
        : vk_Light(vk_luminance(white)), myAxis(towards)
    {
        // A surface that faces it receives pi sin^2 times the radiance: so it shows `white`,
        // whatever the angle.
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
    // Four times that of a quarter, which the surface faces at a corner.
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
        // That of an OSL shader may stand where it aims.
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
        // Behind it there is no light, and along it none that a float can tell.
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
        // Seen edge-on it has no area, and its density no bounds.
        const float facing = -vk_dot(sample.direction, myNormal);
        if (facing <= 1e-6f)
            return {};
        // From per area to per solid angle.
        sample.density = square / (facing * myWidth * myHeight);
        sample.radiance = myRadiance;
        return sample;
    }
    vk_Vec myCentre, myNormal, myAcross, myUp;
    float myWidth, myHeight;
    vk_Colour myRadiance;
};

struct Area final : vk_LightShader {
    float width = 3, height = 3;

    void describe(vk_ParamList &list) override
    {
        vk_LightShader::describe(list);
        list.number("width", width, .01f, 1000, "width");
        list.number("height", height, .01f, 1000, "height");
    }
    std::unique_ptr<vk_Light> make() const override
    {
        return std::make_unique<AreaLight>(from, to, width, height, white());
    }
};

struct Point final : vk_LightShader {
    float radius = .25f;

    void describe(vk_ParamList &list) override
    {
        vk_LightShader::describe(list);
        list.number("radius", radius, 0, 1000, "radius; clamped to at least .02");
    }
    std::unique_ptr<vk_Light> make() const override
    {
        // A point would be too small for rays to find in mirrors, and its radiance without bounds.
        return std::make_unique<vk_BallLight>(from, std::max(radius, .02f), to, white());
    }
};

struct Distant final : vk_LightShader {
    float angle = 1.5f;

    void describe(vk_ParamList &list) override
    {
        vk_LightShader::describe(list);
        list.number("angle", angle, 0, 60, "half of its width, degrees; clamped to at least .2");
    }
    std::unique_ptr<vk_Light> make() const override
    {
        // Both only tell where light comes from: it has no place.
        const vk_Vec towards = vk_normalize(from - to);
        // As with points: what has no width is never met.
        return std::make_unique<DistantLight>(towards, std::max(angle, .2f), white());
    }
};

// vk_OslLight makes its area by the name v_area.
constexpr vk_ShaderRow<vk_LightShader> ROWS[] = {
    vk_row<Area>("v_area", "a glowing rectangle"),
    vk_row<Point>("v_point", "a small glowing ball"),
    vk_row<Distant>("v_distant", "parallel light, as from the sun"),
    vk_row<Area>("v_asadlight", "another name of v_area"),
};
} // namespace

std::string vk_LightShader::fault() const
{
    constexpr float NEAREST = 1e-3f; // a light that is nearer aims nowhere

    return vk_length(to - from) < NEAREST ? "expected 'from' and 'to' to be apart" : "";
}

void vk_LightShader::describe(vk_ParamList &list)
{
    list.point("from", from, "where it stands");
    list.point("to", to, "where it aims");
    list.colour("color", color, 0, 1000, "colour");
    // As it is seen at the target, whatever the distance, so that lights can be swapped without a
    // new exposure.
    list.number("intensity", intensity, 0, 1000, "what white matte shows at `to`");
}

const vk_ShaderTable<vk_LightShader> VK_LIGHT_SHADERS = {"light", ROWS, std::size(ROWS),
                                                         &VK_SLIDE_LIGHTS};
