#include "Shading.h"

#include <algorithm>

bool RecordingShading::spaceToCommon(std::string_view space, int, osl_Matrix &matrix)
{
    matrix = osl_Matrix::diagonal(1);
    matrix.m[3][0] = space == "shifted" ? 1 : 0;
    return space == "shifted" || space == "object";
}

bool RecordingShading::attribute(std::string_view, std::string_view name, int, OSL_Value &value)
{
    if (name != "answer")
        return false;
    value = OSL_Value::ofInt(42);
    return true;
}

bool RecordingShading::userdata(std::string_view name, int point, OSL_Value &value,
                                std::vector<float> &dx, std::vector<float> &dy)
{
    if (name != "s")
        return false;
    value = OSL_Value::ofFloat(u[point]);
    dx = {1};
    dy = {0};
    return true;
}

void RecordingShading::message(Severity severity, std::string_view text)
{
    messages += severity == ERROR ? "error: " : "warning: ";
    messages += text;
    messages += '\n';
}

Shaded shade(const std::string &source, int points, int width,
             const std::vector<OSL_Binding> &bindings)
{
    OSL_Shader shader;
    Shaded result;
    const bool isGood = shader.compileText(source, "t.osl", {});
    result.compiler = shader.messages();
    const auto program = isGood ? shader.link(bindings) : nullptr;
    if (program == nullptr) {
        result.compiler = shader.messages();
        return result;
    }
    RecordingShading renderer;
    OSL_Context context(program, renderer, width);
    const std::vector<float> ones(64, 1.0f);
    for (int i = 0; i < points; ++i)
        renderer.u[i] = points == 1 ? 0.5f : static_cast<float>(i) / static_cast<float>(points - 1);
    for (int first = 0; first < points; first += context.width()) {
        OSL_Points batch;
        batch.first = first;
        batch.count = std::min(context.width(), points - first);
        batch.u.value[0] = batch.P.value[0] = renderer.u + first;
        batch.u.dx[0] = batch.P.dx[0] = ones.data();
        batch.N.value[2] = ones.data();
        if (!context.run(batch))
            break;
    }
    result.printed = renderer.printed;
    result.messages = renderer.messages;
    return result;
}

std::string printedBy(const std::string &body, int points, int width)
{
    const Shaded shaded = shade("shader t() {\n" + body + "\n}\n", points, width);
    return shaded.compiler + shaded.printed + shaded.messages;
}

std::string compilerSays(const std::string &source)
{
    OSL_Shader shader;
    static_cast<void>(shader.compileText(source, "t.osl", {}));
    return shader.messages();
}
