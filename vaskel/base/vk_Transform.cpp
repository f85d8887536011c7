#include "vaskel/base/vk_Transform.h"

vk_Transform vk_Transform::translation(const vk_Vec &by)
{
    vk_Transform t;
    t.myOrigin = by;
    return t;
}

vk_Transform vk_Transform::scaling(const vk_Vec &by)
{
    vk_Transform t;
    t.myX = {by.x, 0, 0};
    t.myY = {0, by.y, 0};
    t.myZ = {0, 0, by.z};
    return t;
}

vk_Transform vk_Transform::rotation(float degrees, const vk_Vec &axis)
{
    // Rodrigues' formula, applied to each axis.
    const vk_Vec k = vk_normalize(axis);
    const float angle = degrees * VK_PI / 180;
    const float c = std::cos(angle), s = std::sin(angle);
    const auto turned = [&](const vk_Vec &v) {
        return v * c + vk_cross(k, v) * s + k * (vk_dot(k, v) * (1 - c));
    };
    vk_Transform t;
    t.myX = turned({1, 0, 0});
    t.myY = turned({0, 1, 0});
    t.myZ = turned({0, 0, 1});
    return t;
}

vk_Transform vk_Transform::operator*(const vk_Transform &inner) const
{
    vk_Transform t;
    t.myX = vector(inner.myX);
    t.myY = vector(inner.myY);
    t.myZ = vector(inner.myZ);
    t.myOrigin = point(inner.myOrigin);
    return t;
}

vk_Vec vk_Transform::normal(const vk_Vec &n) const
{
    // The cofactors are the inverse transpose but for a factor, whose sign
    // only a mirroring map turns.
    const vk_Vec image =
        vk_cross(myY, myZ) * n.x + vk_cross(myZ, myX) * n.y + vk_cross(myX, myY) * n.z;
    return vk_normalize(determinant() < 0 ? -image : image);
}

vk_Transform vk_Transform::inverse() const
{
    // Cramer's rule: a row of the inverse is the cross product of the other two axes over the
    // determinant.
    const float scale = 1 / determinant();
    const vk_Vec a = vk_cross(myY, myZ) * scale;
    const vk_Vec b = vk_cross(myZ, myX) * scale;
    const vk_Vec c = vk_cross(myX, myY) * scale;
    vk_Transform t;
    t.myX = {a.x, b.x, c.x};
    t.myY = {a.y, b.y, c.y};
    t.myZ = {a.z, b.z, c.z};
    t.myOrigin = -t.vector(myOrigin);
    return t;
}

bool vk_Transform::isUsable() const
{
    constexpr float ROUNDING = 1e-4f; // of a few transforms in a row
    constexpr float SHORTEST = 1e-3f * (1 - ROUNDING), LONGEST = 1e4f * (1 + ROUNDING);

    const auto [shortest, longest] = std::minmax({vk_length(myX), vk_length(myY), vk_length(myZ)});
    const float volume = std::abs(determinant());
    // A volume that is small against the longest side is a sheet without an inside: its inverse
    // would be noise.
    return shortest >= SHORTEST && longest <= LONGEST && vk_largest(myOrigin) < 1e6f &&
           vk_largest(-myOrigin) < 1e6f && volume > 1e-3f * longest * longest * 1e-3f &&
           volume >= SHORTEST * SHORTEST * SHORTEST;
}
