// A ball around something: it tells for less than what is inside would that a ray misses it, or
// that a surface does not face it.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <limits>

struct vk_Ball {
    vk_Vec centre;
    float radius = 0; // may be infinite

    // Whether a ray may go through it. False is certain, also where floats round.
    bool mayMeet(const vk_Vec &origin, const vk_Vec &direction) const
    {
        constexpr float ROUNDING = 1e-5f;
        const vk_Vec way = centre - origin;
        const float along = vk_dot(way, direction), far2 = vk_dot(way, way);
        const float radius2 = radius * radius;
        return far2 <= radius2 || (along > 0 && far2 - along * along <= radius2 + ROUNDING * far2);
    }

    // Whether all of it lies below the horizon of a place.
    bool isBelow(const vk_Vec &place, const vk_Vec &normal) const
    {
        return vk_dot(normal, centre - place) < -radius;
    }

    // Around all there is.
    static vk_Ball endless() { return {{}, std::numeric_limits<float>::infinity()}; }
};
