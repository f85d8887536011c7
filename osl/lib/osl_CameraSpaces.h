// The spaces of a picture that the language names: "screen", "NDC" and "raster".
#pragma once

#include "osl/lib/osl_Matrix.h"

#include <string_view>

// A perspective camera: x right, y up, z into the picture.
struct osl_Lens {
    float halfWidth = 1; // of the picture, at a distance of 1
    float halfHeight = 1;
    float near = 0.1f;
    float far = 1000;
    int width = 1; // pixels
    int height = 1;
};

// The matrix from one of these spaces to the camera's; false for any other. In "screen"
// the picture reaches from -1 to 1, in "NDC" from 0 to 1 and in "raster" over its pixels,
// the latter two from its upper left corner on.
[[nodiscard]] bool osl_spaceToCamera(const osl_Lens &lens, std::string_view space,
                                     osl_Matrix &matrix);
