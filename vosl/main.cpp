// vosl: compiles a shader and runs it over a grid of points.
#include "GridRenderer.h"
#include "Options.h"
#include "Output.h"
#include "UT/UT_Process.h"

#include <cstdio>
#include <ctime>

namespace
{
enum Status { OK = 0, FAILED = 1, BAD_USAGE = 2 };

std::string metadataText(const std::vector<OSL_Metadatum> &metadata, const char *indent)
{
    std::string text;
    for (const OSL_Metadatum &item : metadata)
        text += indent + ("metadata: " + item.value.type.name()) + " " + item.name + " = " +
                item.value.text() + "\n";
    return text;
}

int printInformation(const OSL_Shader &shader)
{
    std::string text = shader.kind() + " \"" + shader.name() + "\"\n";
    text += metadataText(shader.metadata(), "    ");
    for (const OSL_Parameter &parameter : shader.parameters()) {
        text += "    \"" + parameter.name + "\" \"" + (parameter.isOutput ? "output " : "") +
                parameter.type.name() + "\"\n\t\tDefault value: " +
                (parameter.hasDefault ? parameter.value.text() : "(computed)") + "\n" +
                metadataText(parameter.metadata, "\t\t");
    }
    writeOutput(text);
    return OK;
}

// A value that does not fit is left out, with a warning: scripts give many shaders the same.
std::vector<OSL_Binding> fitting(const OSL_Shader &shader, const std::vector<OSL_Binding> &bindings)
{
    const std::string warning = "WARNING: attempting to set ";
    std::vector<OSL_Binding> fit;
    for (const OSL_Binding &binding : bindings) {
        const OSL_Parameter *const parameter = shader.findParameter(binding.first);
        OSL_Value value = binding.second;
        if (parameter == nullptr)
            writeError(warning + "nonexistent parameter: " + binding.first + "\n");
        else if (!value.convertTo(parameter->type))
            writeError(warning + "parameter with wrong type: " + binding.first + " (expected '" +
                       parameter->type.name() + "', received '" + binding.second.type.name() +
                       "')\n");
        else
            fit.push_back(binding);
    }
    return fit;
}

// Of this process, so that others on the machine do not count.
double seconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

int run(const std::shared_ptr<const OSL_Program> &program, const Options &options)
{
    GridRenderer renderer(options.width, options.height, options.isByCentres);
    OSL_Context context(program, renderer);
    const double start = seconds();
    int status = OK;
    for (int first = 0; status == OK && first < renderer.points(); first += context.width()) {
        if (!context.run(renderer.batch(first, context.width())))
            status = FAILED; // it was stopped
    }
    const double spent = seconds() - start;
    const double points = renderer.points();
    if (options.wantsTime)
        std::printf("%.4g points a second, %.4g instructions a point\n", points / spent,
                    static_cast<double>(context.instructionsDone()) / points);
    return status;
}

int compileAndRun(const Options &options)
{
    const double start = seconds();
    OSL_Shader shader;
    const bool isGood = shader.compileFile(options.file, options.compile);
    writeError(shader.messages());
    if (!isGood)
        return FAILED;
    if (options.wantsInformation)
        return printInformation(shader);
    const auto program = shader.link(fitting(shader, options.bindings));
    if (program == nullptr) {
        writeError(shader.messages());
        return FAILED;
    }
    if (options.wantsTime)
        std::printf("compiled in %.3g ms, %d instructions\n", 1000 * (seconds() - start),
                    program->instructions());
    return run(program, options);
}
} // namespace

int main(int argc, char *argv[])
{
    UTstartProgram();
    Options options;
    if (const std::string problem = options.parse(argc, argv); !problem.empty()) {
        writeError("vosl: " + problem + "\n" + Options::USAGE);
        return BAD_USAGE;
    }
    int status = OK;
    if (options.wantsHelp)
        writeOutput(Options::USAGE);
    else if (options.wantsVersion)
        writeOutput("vosl 1.0\n");
    else
        status = compileAndRun(options);
    return finishOutput() ? status : static_cast<int>(FAILED);
}
