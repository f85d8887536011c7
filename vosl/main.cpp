// vosl: compiles a shader and runs it over a grid of points.
#include "GridRenderer.h"
#include "Options.h"

#include <cstdio>
#include <ctime>

namespace
{
enum Status { OK = 0, FAILED = 1, BAD_USAGE = 2 };

void printMetadata(const std::vector<OSL_Metadatum> &metadata, const char *indent)
{
    for (const OSL_Metadatum &item : metadata)
        std::printf("%smetadata: %s %s = %s\n", indent, item.value.type.name().c_str(),
                    item.name.c_str(), item.value.text().c_str());
}

int printInformation(const OSL_Shader &shader)
{
    std::printf("%s \"%s\"\n", shader.kind().c_str(), shader.name().c_str());
    printMetadata(shader.metadata(), "    ");
    for (const OSL_Parameter &parameter : shader.parameters()) {
        std::printf("    \"%s\" \"%s%s\"\n", parameter.name.c_str(),
                    parameter.isOutput ? "output " : "", parameter.type.name().c_str());
        std::printf("\t\tDefault value: %s\n",
                    parameter.hasDefault ? parameter.value.text().c_str() : "(computed)");
        printMetadata(parameter.metadata, "\t\t");
    }
    return OK;
}

// Of this process, so that others on the machine do not count.
// A value that does not fit is left out, with a warning: scripts give many shaders the same.
std::vector<OSL_Binding> fitting(const OSL_Shader &shader, const std::vector<OSL_Binding> &bindings)
{
    std::vector<OSL_Binding> fit;
    for (const OSL_Binding &binding : bindings) {
        const OSL_Parameter *const parameter = shader.findParameter(binding.first);
        OSL_Value value = binding.second;
        if (parameter == nullptr)
            std::fprintf(stderr, "WARNING: attempting to set nonexistent parameter: %s\n",
                         binding.first.c_str());
        else if (!value.convertTo(parameter->type))
            std::fprintf(stderr,
                         "WARNING: attempting to set parameter with wrong type: %s (expected "
                         "'%s', received '%s')\n",
                         binding.first.c_str(), parameter->type.name().c_str(),
                         binding.second.type.name().c_str());
        else
            fit.push_back(binding);
    }
    return fit;
}

double seconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void run(const std::shared_ptr<const OSL_Program> &program, const Options &options)
{
    GridRenderer renderer(options.width, options.height, options.isByCentres);
    OSL_Context context(program, renderer);
    const double start = seconds();
    for (int first = 0; first < renderer.points(); first += context.width()) {
        if (!context.run(renderer.batch(first, context.width())))
            break;
    }
    const double spent = seconds() - start;
    const double points = renderer.points();
    if (options.wantsTime)
        std::printf("%.4g points a second, %.4g instructions a point\n", points / spent,
                    static_cast<double>(context.instructionsDone()) / points);
}
} // namespace

int main(int argc, char *argv[])
{
    Options options;
    if (const std::string problem = options.parse(argc, argv); !problem.empty()) {
        std::fprintf(stderr, "vosl: %s\n%s", problem.c_str(), Options::USAGE);
        return BAD_USAGE;
    }
    if (options.wantsHelp) {
        std::fputs(Options::USAGE, stdout);
        return OK;
    }
    const double start = seconds();
    OSL_Shader shader;
    const bool isGood = shader.compileFile(options.file, options.compile);
    std::fputs(shader.messages().c_str(), stderr);
    if (!isGood)
        return FAILED;
    if (options.wantsInformation)
        return printInformation(shader);
    const auto program = shader.link(fitting(shader, options.bindings));
    if (program == nullptr) {
        std::fprintf(stderr, "%s", shader.messages().c_str());
        return FAILED;
    }
    if (options.wantsTime)
        std::printf("compiled in %.3g ms, %d instructions\n", 1000 * (seconds() - start),
                    program->instructions());
    run(program, options);
    return OK;
}
