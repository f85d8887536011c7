#include "GridRenderer.h"

#include "Output.h"

#include "osl/lib/osl_CameraSpaces.h"
#include "osl/lib/osl_TextFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{
constexpr int MAX_BATCH = 32;
constexpr int VERSION = 11400;
constexpr float CLIP_NEAR = 0.1f;
constexpr float CLIP_FAR = 1000;

osl_Matrix turned(float angle, float x, float y)
{
    osl_Matrix matrix = osl_Matrix::diagonal(1);
    matrix.m[0][0] = matrix.m[1][1] = std::cos(angle);
    matrix.m[0][1] = std::sin(angle);
    matrix.m[1][0] = -matrix.m[0][1];
    matrix.m[3][0] = x;
    matrix.m[3][1] = y;
    return matrix;
}

OSL_Value ofFloats(std::vector<float> values)
{
    OSL_Value value;
    value.type = osl_Type(osl_Type::FLOAT, static_cast<int>(values.size()));
    value.floats = std::move(values);
    return value;
}

// The camera's numbers.
const struct {
    const char *name;
    std::vector<float> values;
} CAMERA[] = {
    {"camera:fov", {90}},
    {"camera:pixelaspect", {1}},
    {"camera:clip_near", {CLIP_NEAR}},
    {"camera:clip_far", {CLIP_FAR}},
    {"camera:clip", {CLIP_NEAR, CLIP_FAR}},
    {"camera:shutter_open", {0}},
    {"camera:shutter_close", {1}},
    {"camera:shutter", {0, 1}},
    {"camera:screen_window", {-1, -1, 1, 1}},
};
} // namespace

GridRenderer::GridRenderer(int width, int height, bool byCentres)
    : myWidth(width), myHeight(height), isByCentres(byCentres), myU(MAX_BATCH), myV(MAX_BATCH),
      myOnes(MAX_BATCH, 1), myZeros(MAX_BATCH, 0)
{
    const auto along = [](int count) { return 1.0f / static_cast<float>(std::max(1, count - 1)); };
    myDPx.assign(MAX_BATCH, along(width));
    myDPy.assign(MAX_BATCH, along(height));
    myDu.assign(MAX_BATCH, step(width));
    myDv.assign(MAX_BATCH, step(height));
    const float *ones = myOnes.data();
    myPoints.u.value[0] = myU.data();
    myPoints.u.dx[0] = myDu.data();
    myPoints.v.value[0] = myV.data();
    myPoints.v.dy[0] = myDv.data();
    myPoints.P.value[0] = myU.data();
    myPoints.P.value[1] = myV.data();
    myPoints.P.value[2] = ones;
    myPoints.P.dx[0] = myDPx.data();
    myPoints.P.dy[1] = myDPy.data();
    myPoints.N.value[2] = myPoints.Ng.value[2] = ones;
    myPoints.dPdu.value[0] = myPoints.dPdv.value[1] = ones;
}

float GridRenderer::step(int count) const
{
    return 1.0f / static_cast<float>(isByCentres ? count : std::max(1, count - 1));
}

float GridRenderer::coordinate(int number, int count) const
{
    if (isByCentres)
        return (static_cast<float>(number) + 0.5f) / static_cast<float>(count);
    return count == 1 ? 0.5f : static_cast<float>(number) / static_cast<float>(count - 1);
}

const OSL_Points &GridRenderer::batch(int first, int most)
{
    myPoints.first = first;
    myPoints.count = std::min({most, points() - first, MAX_BATCH});
    for (int i = 0; i < myPoints.count; ++i) {
        myU[static_cast<size_t>(i)] = uOf(first + i);
        myV[static_cast<size_t>(i)] = vOf(first + i);
    }
    return myPoints;
}

bool GridRenderer::spaceToCommon(std::string_view space, int, osl_Matrix &matrix)
{
    if (space == "world" || space == "camera") {
        matrix = osl_Matrix::diagonal(1);
    } else if (space == "shader") {
        matrix = turned(OSL_PI / 4, 1, 0);
    } else if (space == "object") {
        matrix = turned(OSL_PI / 2, 0, 1);
    } else if (space == "myspace") {
        matrix = osl_Matrix::diagonal(1);
        matrix.m[1][1] = 2;
    } else {
        osl_Lens lens; // a field of view of 90 degrees
        lens.near = CLIP_NEAR;
        lens.far = CLIP_FAR;
        lens.width = myWidth;
        lens.height = myHeight;
        return osl_spaceToCamera(lens, space, matrix);
    }
    return true;
}

bool GridRenderer::attribute(std::string_view object, std::string_view name, int point,
                             OSL_Value &value)
{
    if (!object.empty() && object != "global" && object != "options")
        return false;
    for (const auto &row : CAMERA) {
        if (name != row.name)
            continue;
        value = row.values.size() == 1 ? OSL_Value::ofFloat(row.values[0]) : ofFloats(row.values);
        return true;
    }
    if (name == "osl:version") {
        value = OSL_Value::ofInt(VERSION);
    } else if (name == "shading:index") {
        value = OSL_Value::ofInt(point);
    } else if (name == "camera:projection") {
        value = OSL_Value::ofString("perspective");
    } else if (name == "camera:resolution") {
        value = OSL_Value();
        value.type = osl_Type(osl_Type::INT, 2);
        value.ints = {myWidth, myHeight};
    } else {
        return false;
    }
    return true;
}

bool GridRenderer::userdata(std::string_view name, int point, OSL_Value &value,
                            std::vector<float> &dx, std::vector<float> &dy)
{
    if ((name != "s" && name != "t") || !value.type.isFloat())
        return false;
    const bool isS = name == "s";
    value = OSL_Value::ofFloat(isS ? uOf(point) : vOf(point));
    dx = {isS ? step(myWidth) : 0};
    dy = {isS ? 0 : step(myHeight)};
    return true;
}

std::shared_ptr<const osl_Texture> GridRenderer::texture(std::string_view name, std::string &error)
{
    return myTextures.find(std::string(name), error);
}

bool GridRenderer::dictionary(std::string_view name, std::string &text)
{
    return osl_readText(std::string(name), text);
}

bool GridRenderer::isRayType(std::string_view type, int)
{
    return type == "camera";
}

void GridRenderer::print(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

// One that was shown is not shown again.
void GridRenderer::message(Severity severity, std::string_view text)
{
    std::string line = severity == ERROR ? "ERROR: " : "WARNING: ";
    line += text;
    if (line.back() != '\n')
        line += '\n';
    if (!myShown.insert(line).second)
        return;
    writeError(line);
}

void GridRenderer::appendToFile(std::string_view file, std::string_view text)
{
    const std::string name(file);
    if (name == "stdout" || name == "stderr") {
        std::fwrite(text.data(), 1, text.size(), name == "stdout" ? stdout : stderr);
        return;
    }
    std::FILE *to = std::fopen(name.c_str(), "a");
    if (to == nullptr) {
        message(ERROR, "cannot write to \"" + name + "\"");
        return;
    }
    std::fwrite(text.data(), 1, text.size(), to);
    std::fclose(to);
}
