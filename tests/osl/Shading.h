// Runs shaders for tests: a text in, what it prints and says out.
#pragma once

#include "osl/OSL_Context.h"

#include <string>
#include <vector>

// Remembers what shaders print. Knows the spaces "shifted" (by 1 along x) and
// "object" (not moved), the attribute
// "answer" (42) and the interpolated float "s" (u).
class RecordingShading : public OSL_Renderer
{
public:
    bool spaceToCommon(std::string_view space, int point, osl_Matrix &matrix) override;
    bool attribute(std::string_view object, std::string_view name, int point,
                   OSL_Value &value) override;
    bool userdata(std::string_view name, int point, OSL_Value &value, std::vector<float> &dx,
                  std::vector<float> &dy) override;
    void print(std::string_view text) override { printed += text; }
    void message(Severity severity, std::string_view text) override;

    std::string printed;
    std::string messages; // "error: text" and "warning: text" lines
    float u[64] = {};
};

struct Shaded {
    std::string compiler; // what the compiler said
    std::string printed;
    std::string messages;
};

// A whole source, at `points` points from u = 0 to u = 1 (0.5 for one), by batches of a
// width (0: the best). dudx = 1.
Shaded shade(const std::string &source, int points = 1, int width = 0,
             const std::vector<OSL_Binding> &bindings = {});

// What the body of a shader prints: "printf" and the like between braces.
std::string printedBy(const std::string &body, int points = 1, int width = 0);

// What the compiler says about a source called "t.osl".
std::string compilerSays(const std::string &source);
