// What a shader may ask its renderer, and what it tells it.
//
// A program asks in the middle of a run, from the thread that runs it; a renderer that
// serves several threads must allow for that. `point` is the number of a point in
// the OSL_Points of the run. Each question has the answer of a renderer that knows little.
#pragma once

#include "osl/OSL_Value.h"
#include "osl/lib/osl_Colour.h"
#include "osl/lib/osl_Matrix.h"

#include <memory>
#include <string_view>

class osl_MipMap;
using osl_Texture = osl_MipMap;

struct OSL_Ray {
    osl_Vec origin;
    osl_Vec direction;
    float mindist = 0;
    float maxdist = 1e30f;
    bool isShaded = false;
    std::string_view traceset;
};

class OSL_Renderer
{
public:
    enum Severity { ERROR, WARNING };

    OSL_Renderer() = default;
    virtual ~OSL_Renderer();
    OSL_Renderer(const OSL_Renderer &) = delete;
    OSL_Renderer &operator=(const OSL_Renderer &) = delete;

    // The matrix from a named space to "common"; false for an unknown one. "common"
    // itself is never asked for.
    virtual bool spaceToCommon(std::string_view space, int point, osl_Matrix &matrix);

    // An attribute by name, of any type; of a named object or, for "", of this point's
    // or the scene.
    virtual bool attribute(std::string_view object, std::string_view name, int point,
                           OSL_Value &value);

    // An interpolated parameter: its value and derivatives (of the size of value.floats,
    // or empty for 0).
    virtual bool userdata(std::string_view name, int point, OSL_Value &value,
                          std::vector<float> &dx, std::vector<float> &dy);

    virtual bool isRayType(std::string_view type, int point);
    virtual bool isBackfacing(int point);
    virtual float surfaceArea(int point);

    // 1 connected to an earlier layer, 2 to a later one, 3 both; for a parameter.
    virtual int connection(std::string_view parameter);

    // A texture by the name in the shader; null, and why, for one that cannot be had.
    virtual std::shared_ptr<const osl_Texture> texture(std::string_view name, std::string &error);

    // The text of a dictionary file by the name in the shader; false when there is none.
    virtual bool dictionary(std::string_view name, std::string &text);

    // Whether a ray hits something; getmessage("trace", ...) then asks `traceResult`.
    virtual bool trace(const OSL_Ray &ray, int point);
    virtual bool traceResult(std::string_view name, int point, OSL_Value &value);

    // What shaders print, and their errors and warnings, in the order of points.
    virtual void print(std::string_view text);
    virtual void message(Severity severity, std::string_view text);
    virtual void appendToFile(std::string_view file, std::string_view text); // fprintf()
};
