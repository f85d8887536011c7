#include "vaskel/scene/vk_ShaderList.h"

#include "vaskel/lights/vk_LightShaders.h"
#include "vaskel/shaders/vk_DisplaceShaders.h"
#include "vaskel/shaders/vk_EnvironmentShaders.h"
#include "vaskel/shaders/vk_FogShaders.h"
#include "vaskel/shaders/vk_ShadowShaders.h"
#include "vaskel/shaders/vk_SurfaceShaders.h"
#include "vaskel/shapes/vk_Shapes.h"

namespace
{
template <class Type>
void append(std::string &text, const vk_ShaderRow<Type> &row)
{
    // Defaults are what a fresh shader has: the list cannot differ from what is drawn.
    const std::unique_ptr<Type> made = row.make();
    vk_ParamList params = made->params();
    text += "\n### " + std::string(row.name) + ": " + row.what + "\n";
    // Markdown wants a blank line between a heading and a list.
    if (!params.isEmpty())
        text += "\n";
    for (const vk_Param &param : params)
        text += "- " + vk_paramText(param) + "\n";
}

template <class Type>
void append(std::string &text, const vk_ShaderTable<Type> &table)
{
    text += "\n## Type " + std::string(table.type) + "\n";
    // A type's rows come from several sources, but who reads the list does not care.
    for (const auto *part = &table; part != nullptr; part = part->more)
        for (const vk_ShaderRow<Type> &row : *part)
            append(text, row);
}
} // namespace

std::string vk_listShaders()
{
    // A test compares doc/shaders.md with this text; `vaskel --list-shaders` renews it.
    std::string text = "# Shaders and shapes of vaskel\n\n"
                       "A parameter's line: its name and kind, its range, in brackets the value\n"
                       "that it has when it is not given, and what it means.\n";
    append(text, VK_SURFACE_SHADERS);
    append(text, VK_DISPLACE_SHADERS);
    append(text, VK_LIGHT_SHADERS);
    append(text, VK_SHADOW_SHADERS);
    append(text, VK_FOG_SHADERS);
    append(text, VK_ENVIRONMENT_SHADERS);
    // Shapes have no table with a type: their words are statements.
    text += "\n## Shapes\n";
    for (const vk_ShaderRow<vk_Shape> &row : VK_SHAPES)
        append(text, row);
    return text;
}
