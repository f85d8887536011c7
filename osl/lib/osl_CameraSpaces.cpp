#include "osl/lib/osl_CameraSpaces.h"

namespace
{
osl_Matrix cameraToScreen(const osl_Lens &lens)
{
    const float depth = lens.far - lens.near;
    osl_Matrix matrix = osl_Matrix::diagonal(0);
    matrix.m[0][0] = 1 / lens.halfWidth;
    matrix.m[1][1] = 1 / lens.halfHeight;
    matrix.m[2][2] = lens.far / depth;
    matrix.m[2][3] = 1;
    matrix.m[3][2] = -lens.far * lens.near / depth;
    return matrix;
}

osl_Matrix screenToPicture(float width, float height)
{
    osl_Matrix matrix = osl_Matrix::diagonal(1);
    matrix.m[0][0] = matrix.m[3][0] = 0.5f * width;
    matrix.m[3][1] = 0.5f * height;
    matrix.m[1][1] = -matrix.m[3][1];
    return matrix;
}
} // namespace

bool osl_spaceToCamera(const osl_Lens &lens, std::string_view space, osl_Matrix &matrix)
{
    const bool isRaster = space == "raster";
    osl_Matrix fromCamera = cameraToScreen(lens);
    if (isRaster)
        fromCamera = fromCamera * screenToPicture(static_cast<float>(lens.width),
                                                  static_cast<float>(lens.height));
    else if (space == "NDC")
        fromCamera = fromCamera * screenToPicture(1, 1);
    else if (space != "screen")
        return false;
    matrix = osl_inverse(fromCamera);
    return true;
}
