#include "vaskel/osl/vk_OslLight.h"

namespace
{
// Cells of the picture to each side. A shader costs too much for every sample; and a light
// seen in a mirror is hardly sharper than that.
constexpr int SIDE = 64;
constexpr float STRENGTH = .8f; // v_area's as it comes: parameters are read later

// 0 to SIDE - 1 in a direction of length 1 over the whole light.
int cellOf(float offset)
{
    return std::clamp(static_cast<int>((offset + .5f) * SIDE), 0, SIDE - 1);
}
} // namespace

const vk_OslTargets vk_OslLight::TARGETS = {{"emission", false, false}};

std::shared_ptr<vk_LightShader> vk_OslLight::makeParameters()
{
    std::string ignored;
    return vk_parseShader(VK_LIGHT_SHADERS, {"light", "v_area"}, ignored);
}

vk_OslLight::vk_OslLight(std::shared_ptr<const vk_OslBinding> binding,
                         std::shared_ptr<vk_LightShader> parameters)
    : vk_Light(STRENGTH), myBinding(std::move(binding)), myShader(std::move(parameters))
{
}

// The statement's parameters come after the light was made, so its area is made late.
const vk_Light &vk_OslLight::area() const
{
    std::call_once(myOnce, [this] { prepare(); });
    return *myArea;
}

void vk_OslLight::prepare() const
{
    myArea = myShader->make();
    vk_ParamList list = myShader->params();
    const float width = list.find("width")->value().x, height = list.find("height")->value().x;
    // As v_area lies: the width is level.
    const vk_Vec normal = vk_normalize(myShader->to - myShader->from);
    const vk_Vec level = vk_cross({0, 1, 0}, normal);
    const vk_Vec across = vk_dot(level, level) > 1e-6f ? vk_normalize(level) : vk_Vec{1, 0, 0};
    myAcross = across * width;
    myUp = vk_cross(normal, across) * height;
    shine();
}

void vk_OslLight::shine() const
{
    myPicture.assign(std::size_t{SIDE} * SIDE, vk_Colour{});
    askShader();
    std::vector<float> brightness;
    for (const vk_Colour &light : myPicture)
        // Not the luminance: a blue pane would get hardly any samples.
        brightness.push_back(light.x + light.y + light.z);
    myBright = vk_Distribution(SIDE, SIDE, brightness);
}

// One that was stopped leaves the rest dark: the picture is thrown away.
void vk_OslLight::askShader() const
{
    vk_OslRunner runner(*myBinding, 1);
    vk_SurfacePoint point;
    point.normal = point.facet = vk_normalize(myShader->to - myShader->from);
    // As if seen from where it aims.
    point.incoming = -point.normal;
    point.dPdu = myAcross;
    point.dPdv = myUp;
    // As wide as a cell, so that the shader can smooth what no cell shows.
    point.footprint = vk_length(myAcross) / SIDE;
    for (int i = 0; i < SIDE * SIDE; ++i) {
        point.u = (static_cast<float>(i % SIDE) + .5f) / SIDE;
        point.v = (static_cast<float>(i / SIDE) + .5f) / SIDE;
        point.place = point.position =
            myShader->from + myAcross * (point.u - .5f) + myUp * (point.v - .5f);
        if (!runner.run(&point, 1))
            return;
        const vk_Colour light =
            runner.closure() != nullptr
                ? runner.closures().materialOf(runner.closure()->ints[0], point.normal, 0).emission
                : runner.feed(0).colour(0);
        // Light below 0 or without bounds would spoil every sum that it gets into.
        const auto bounded = [](float x) { return x > 0 ? std::min(x, 1e4f) : 0; };
        myPicture[static_cast<std::size_t>(i)] = {bounded(light.x), bounded(light.y),
                                                  bounded(light.z)};
    }
}

vk_LightSample vk_OslLight::coloured(const vk_Vec &from, vk_LightSample sample) const
{
    if (sample.density <= 0)
        return sample;
    const vk_Vec off = from + sample.direction * sample.distance - myShader->from;
    // The same cells for light and density, so that hits and samples agree.
    const int x = cellOf(vk_dot(off, myAcross) / vk_dot(myAcross, myAcross));
    const int y = cellOf(vk_dot(off, myUp) / vk_dot(myUp, myUp));
    sample.radiance = sample.radiance * myPicture[static_cast<std::size_t>(y * SIDE + x)];
    sample.density *= myBright.pdf(x, y);
    return sample;
}

vk_LightSample vk_OslLight::sample(const vk_Vec &from, const vk_Square &at) const
{
    const vk_Light &whole = area();
    return coloured(from, whole.sample(from, myBright.sample(at)));
}

vk_LightSample vk_OslLight::hit(const vk_Vec &from, const vk_Vec &direction) const
{
    return coloured(from, area().hit(from, direction));
}
