// An affine map: where a shape's own space lies in the scene.
#pragma once

#include "vaskel/base/vk_Vec.h"

class vk_Transform
{
public:
    static vk_Transform translation(const vk_Vec &by);
    static vk_Transform scaling(const vk_Vec &by);
    // Right-handed, about an axis through the origin of any length above 0.
    static vk_Transform rotation(float degrees, const vk_Vec &axis);

    // The map that does `inner` first.
    vk_Transform operator*(const vk_Transform &inner) const;

    vk_Vec point(const vk_Vec &p) const { return vector(p) + myOrigin; }
    vk_Vec vector(const vk_Vec &v) const { return myX * v.x + myY * v.y + myZ * v.z; }

    // Unit normal of a transformed surface, on the side that it had.
    vk_Vec normal(const vk_Vec &n) const;

    // REQUIRES: isUsable()
    vk_Transform inverse() const;

    // Whether it neither flattens a shape nor takes it out of what floats can
    // tell apart: scales between a thousandth and ten thousand, a million away.
    bool isUsable() const;

private:
    float determinant() const { return vk_dot(myX, vk_cross(myY, myZ)); }

    vk_Vec myX = {1, 0, 0}; // images of the axes
    vk_Vec myY = {0, 1, 0};
    vk_Vec myZ = {0, 0, 1};
    vk_Vec myOrigin;
};
