// Any text: the compiler takes it or says why not; what it takes runs to an end or to
// its budget, and prints the same at every width.
#include "fuzz/fuzz.h"
#include "osl/OSL_Context.h"

#include <algorithm>

struct Printer : OSL_Renderer {
    void print(std::string_view text) override { printed += text; }
    void message(Severity, std::string_view text) override { printed += text; }
    std::string printed;
};

std::string printedAt(int width, const std::shared_ptr<const OSL_Program> &program)
{
    Printer printer;
    OSL_Context context(program, printer, width);
    const float u[16] = {0, 0.25f, 0.5f, 0.75f, 1};
    for (int first = 0; first < 5; first += context.width()) {
        OSL_Points points;
        points.first = first;
        points.count = std::min(context.width(), 5 - first);
        points.u.value[0] = u + first;
        if (!context.run(points))
            return ""; // it was stopped somewhere
    }
    return printer.printed;
}

void fuzz(const std::string &bytes)
{
    OSL_CompileOptions options;
    options.mayRead = [](const std::string &) { return false; };
    OSL_Shader shader;
    if (!shader.compileText(bytes, "in.osl", options))
        return;
    const auto program = shader.link({});
    if (program == nullptr)
        return;
    const std::string wide = printedAt(16, program);
    const std::string narrow = printedAt(1, program);
    if (!wide.empty() && !narrow.empty())
        fuzzExpectEqual(narrow, wide);
}
