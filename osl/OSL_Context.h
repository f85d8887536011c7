// One thread's place to run a program: registers, texts, closures.
//
// A context runs a program over up to width() points at once. Results stand in the
// context until the next run. The width is 16 where AVX2 is there, 8 elsewhere, unless
// another one is asked for; results do not depend on it.
#pragma once

#include "osl/OSL_Renderer.h"
#include "osl/OSL_Shader.h"

#include <cstdint>

class osl_Machine;
struct osl_ClosureRow;

// A global variable at all points: an array for each component, of `count` numbers.
// Null means 0 everywhere; derivatives likewise.
struct OSL_Varying {
    const float *value[3] = {};
    const float *dx[3] = {};
    const float *dy[3] = {};
};

struct OSL_Points {
    int count = 0;
    int first = 0; // number of the first point, as the renderer's questions tell it
    OSL_Varying P, I, N, Ng, u, v, dPdu, dPdv, Ps, time, dtime, dPdtime;
};

// An output parameter, or a global that the shader has written.
struct OSL_Output {
    osl_Type type;
    int words = 0;                 // numbers at one point: components of all elements
    const float *floats = nullptr; // number c of point i is [c * stride + i]
    const int32_t *ints = nullptr; // for ints, and for the handles of texts and closures
    int stride = 0;
};

// One component of a closure: weight * name(parameters).
struct OSL_ClosureComponent {
    const osl_ClosureRow *closure = nullptr; // name and parameters (osl_Closures.h)
    osl_Colour weight;
    const int32_t *words = nullptr; // values: parameter p's begin at p.at

    std::string_view name() const;
    // A parameter's values by its name; null when the closure has none of that name.
    const float *floats(std::string_view parameter) const;
    const int32_t *ints(std::string_view parameter) const;
};

class OSL_Context
{
public:
    OSL_Context(std::shared_ptr<const OSL_Program> program, OSL_Renderer &renderer, int width = 0);
    ~OSL_Context();
    OSL_Context(const OSL_Context &) = delete;
    OSL_Context &operator=(const OSL_Context &) = delete;

    int width() const { return myWidth; }

    // Runs the shader. REQUIRES: 0 < points.count <= width()
    // False when the shader was stopped (a loop without end): the message is out,
    // the results are those so far, and further runs do nothing.
    bool run(const OSL_Points &points);

    // ---- Results of the last run ----------------------------------------------

    // By the name of an output parameter, or "P", "N", "Ci"; null when the shader has no
    // such output. The address stays the same from run to run.
    const OSL_Output *output(const std::string &name) const;

    std::string_view text(int32_t handle) const; // of a string

    // The components of a closure, with their weights; those of weight 0 are left out.
    void flatten(int32_t closure, std::vector<OSL_ClosureComponent> &components) const;

    // Instructions done for all points since the beginning.
    uint64_t instructionsDone() const;

    // The same, where instructions that take longer count as several: about the time that the
    // points took. It is the same at all widths, and in whatever order points were run.
    uint64_t stepsDone() const;

private:
    std::unique_ptr<osl_Machine> myMachine;
    int myWidth;
};
