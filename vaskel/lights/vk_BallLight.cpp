#include "vaskel/lights/vk_BallLight.h"

vk_BallLight::vk_BallLight(const vk_Vec &centre, float radius, const vk_Vec &target,
                           const vk_Colour &white)
    : vk_Light(vk_luminance(white)), myCentre(centre), myRadius2(radius * radius)
{
    const vk_Vec way = target - centre;
    // A matte surface at the target that faces it shows `white`: radiance times the square of the
    // sine under which the ball is seen. From within its own radius that is all of it.
    myRadiance = white * (std::max(vk_dot(way, way), myRadius2) / myRadius2);
}

vk_LightSample vk_BallLight::sample(const vk_Vec &from, const vk_Square &at) const
{
    const vk_Vec way = myCentre - from;
    const float distance2 = vk_dot(way, way);
    // From inside there is no cap of directions to draw from; shapes seldom stand in lamps.
    if (distance2 <= myRadius2)
        return {};
    const float height = vk_capHeight(myRadius2 / distance2);
    return complete(vk_capSample(vk_inCap(vk_normalize(way), height, at), height), way);
}

vk_LightSample vk_BallLight::hit(const vk_Vec &from, const vk_Vec &direction) const
{
    const vk_Vec way = myCentre - from;
    const float distance2 = vk_dot(way, way);
    // A cross product: seen from afar, the square of the distance less that of the part along the
    // ray would leave rounding only.
    const vk_Vec beside = vk_cross(way, direction);
    if (distance2 <= myRadius2 || vk_dot(way, direction) < 0 || vk_dot(beside, beside) > myRadius2)
        return {};
    return complete(vk_capSample(direction, vk_capHeight(myRadius2 / distance2)), way);
}

vk_LightSample vk_BallLight::complete(vk_LightSample sample, const vk_Vec &way) const
{
    const vk_Vec beside = vk_cross(way, sample.direction);
    // Rounding may put the rim of the cap beside the ball.
    const float inside = myRadius2 - vk_dot(beside, beside);
    sample.distance = vk_dot(way, sample.direction) - std::sqrt(std::max(0.0f, inside));
    sample.radiance = myRadiance;
    return sample;
}
