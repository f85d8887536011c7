// A ball around all of a light. It tells for less than the light would that a ray misses it, or
// that nothing of it reaches a surface; most of both can be told so.
#pragma once

#include "vaskel/lights/vk_Light.h"

class vk_LightBound
{
public:
    // Has no end around a light that is far away.
    explicit vk_LightBound(const vk_Light &light);

    // Whether a ray may meet the light. False is certain.
    bool mayMeet(const vk_Vec &origin, const vk_Vec &direction) const
    {
        const vk_Vec way = myCentre - origin;
        const float along = vk_dot(way, direction), far2 = vk_dot(way, way);
        return along > -myRadius && far2 - along * along <= myReach2 + ROUNDING * far2;
    }

    // Whether all of the light lies below the horizon of a place.
    bool isBelow(const vk_Vec &place, const vk_Vec &normal) const
    {
        return vk_dot(normal, myCentre - place) < -myRadius;
    }

private:
    static constexpr float ROUNDING = 1e-5f;

    vk_Vec myCentre;
    float myRadius, myReach2; // with a margin; and squared
};
