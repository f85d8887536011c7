#include "tests/support/SceneView.h"

#include <cmath>
#include <cstddef>

namespace
{
double dot(const ScenePoint &a, const ScenePoint &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

ScenePoint cross(const ScenePoint &a, const ScenePoint &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

ScenePoint minus(const ScenePoint &a, const ScenePoint &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
} // namespace

SceneMatrix operator*(const SceneMatrix &first, const SceneMatrix &then)
{
    SceneMatrix product = {};
    for (size_t row = 0; row < 4; ++row)
        for (size_t column = 0; column < 4; ++column)
            for (size_t i = 0; i < 4; ++i)
                product[row * 4 + column] += first[row * 4 + i] * then[i * 4 + column];
    return product;
}

ScenePoint operator*(const ScenePoint &point, const SceneMatrix &matrix)
{
    ScenePoint moved = {};
    for (size_t i = 0; i < 3; ++i)
        moved[i] = point[0] * matrix[i] + point[1] * matrix[4 + i] + point[2] * matrix[8 + i] +
                   matrix[12 + i];
    return moved;
}

SceneMatrix sceneScale(double x, double y, double z)
{
    return {x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1};
}

SceneMatrix sceneTranslation(double x, double y, double z)
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

// Rodrigues' formula, for each of the three axes.
SceneMatrix sceneRotation(double angle, ScenePoint axis)
{
    const double length = std::sqrt(dot(axis, axis)), turn = angle * std::acos(-1.0) / 180;
    for (double &part : axis)
        part /= length;
    SceneMatrix matrix = SCENE_IDENTITY;
    for (size_t i = 0; i < 3; ++i) {
        ScenePoint unit = {};
        unit[i] = 1;
        const ScenePoint beside = cross(axis, unit);
        for (size_t k = 0; k < 3; ++k)
            matrix[i * 4 + k] = unit[k] * std::cos(turn) + beside[k] * std::sin(turn) +
                                axis[k] * axis[i] * (1 - std::cos(turn));
    }
    return matrix;
}

std::vector<ScenePoint> scenePoints(const std::vector<double> &numbers)
{
    std::vector<ScenePoint> points;
    for (size_t i = 0; i + 2 < numbers.size(); i += 3)
        points.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
    return points;
}

bool arePlanar(const std::vector<ScenePoint> &points)
{
    if (points.size() < 3)
        return false;
    const ScenePoint normal = cross(minus(points[1], points[0]), minus(points[2], points[0]));
    const double size = std::sqrt(dot(normal, normal));
    for (const ScenePoint &point : points) {
        if (std::abs(dot(minus(point, points[0]), normal)) > 1e-6 * size)
            return false;
    }
    return size > 0;
}

bool isConvex(const std::vector<ScenePoint> &points)
{
    const size_t count = points.size();
    const auto turn = [&](size_t i) {
        const ScenePoint &at = points[(i + 1) % count];
        return cross(minus(at, points[i]), minus(points[(i + 2) % count], at));
    };
    const ScenePoint first = turn(0);
    for (size_t i = 0; i < count; ++i) {
        if (dot(turn(i), first) <= 0)
            return false;
    }
    return true;
}

ScenePixel scenePixel(const ScenePoint &seen, double tangent, int pixels)
{
    const double scale = pixels / 2.0 / tangent / seen[2];
    return {seen[0] * scale, -seen[1] * scale};
}
