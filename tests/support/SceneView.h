// Points, and how a scene's camera sees them. A point is a row in front of a matrix, as in
// RIB and in MI.
#pragma once

#include <array>
#include <vector>

using ScenePoint = std::array<double, 3>;
using SceneMatrix = std::array<double, 16>; // by rows

constexpr SceneMatrix SCENE_IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

SceneMatrix operator*(const SceneMatrix &first, const SceneMatrix &then);
ScenePoint operator*(const ScenePoint &point, const SceneMatrix &matrix);

// As RIB's requests have them; the angle is in degrees.
SceneMatrix sceneScale(double x, double y, double z);
SceneMatrix sceneTranslation(double x, double y, double z);
SceneMatrix sceneRotation(double angle, ScenePoint axis);

// Three numbers each.
std::vector<ScenePoint> scenePoints(const std::vector<double> &numbers);

// Whether they lie in one plane.
bool arePlanar(const std::vector<ScenePoint> &points);

// Whether the way around them turns to the same side at each one.
bool isConvex(const std::vector<ScenePoint> &points);

// Where a picture of that many pixels shows a point of the camera's space, whose z axis
// points away from the viewer: to the right and down, from the middle.
struct ScenePixel {
    double x, y;
};
ScenePixel scenePixel(const ScenePoint &seen, double tangent, int pixels);
