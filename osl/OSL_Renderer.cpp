#include "osl/OSL_Renderer.h"

OSL_Renderer::~OSL_Renderer() = default;

bool OSL_Renderer::spaceToCommon(std::string_view, int, osl_Matrix &)
{
    return false;
}

bool OSL_Renderer::attribute(std::string_view, std::string_view, int, OSL_Value &)
{
    return false;
}

bool OSL_Renderer::userdata(std::string_view, int, OSL_Value &, std::vector<float> &,
                            std::vector<float> &)
{
    return false;
}

bool OSL_Renderer::isRayType(std::string_view, int)
{
    return false;
}

bool OSL_Renderer::isBackfacing(int)
{
    return false;
}

float OSL_Renderer::surfaceArea(int)
{
    return 1;
}

int OSL_Renderer::connection(std::string_view)
{
    return 0;
}

std::shared_ptr<const osl_Texture> OSL_Renderer::texture(std::string_view name, std::string &error)
{
    error = "no texture \"" + std::string(name) + "\"";
    return nullptr;
}

bool OSL_Renderer::dictionary(std::string_view, std::string &)
{
    return false;
}

bool OSL_Renderer::trace(const OSL_Ray &, int)
{
    return false;
}

bool OSL_Renderer::traceResult(std::string_view, int, OSL_Value &)
{
    return false;
}

void OSL_Renderer::print(std::string_view) {}

void OSL_Renderer::message(Severity, std::string_view) {}

void OSL_Renderer::appendToFile(std::string_view, std::string_view) {}
