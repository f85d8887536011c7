#include "osl/OSL_Context.h"

#include "osl/run/osl_Machine.h"

namespace
{
int bestWidth()
{
    return __builtin_cpu_supports("avx2") != 0 ? 16 : 8;
}
} // namespace

OSL_Context::OSL_Context(std::shared_ptr<const OSL_Program> program, OSL_Renderer &renderer,
                         int width)
    : myWidth(width == 1 || width == 8 || width == 16 ? width : bestWidth())
{
    myMachine = std::make_unique<osl_Machine>(std::move(program), renderer, myWidth);
}

OSL_Context::~OSL_Context() = default;

bool OSL_Context::run(const OSL_Points &points)
{
    return myMachine->run(points);
}

const OSL_Output *OSL_Context::output(const std::string &name) const
{
    return myMachine->output(name);
}

std::string_view OSL_Context::text(int32_t handle) const
{
    return myMachine->text(handle);
}

void OSL_Context::flatten(int32_t closure, std::vector<OSL_ClosureComponent> &components) const
{
    myMachine->closures().flatten(closure, components);
}

uint64_t OSL_Context::instructionsDone() const
{
    return myMachine->instructionsDone();
}

uint64_t OSL_Context::stepsDone() const
{
    return myMachine->stepsDone();
}

std::string_view OSL_ClosureComponent::name() const
{
    return closure->name;
}

const int32_t *OSL_ClosureComponent::ints(std::string_view parameter) const
{
    for (const osl_ClosureParameter &row : closure->parameters) {
        if (row.name == parameter)
            return words + row.at;
    }
    return nullptr;
}

const float *OSL_ClosureComponent::floats(std::string_view parameter) const
{
    return reinterpret_cast<const float *>(ints(parameter));
}
