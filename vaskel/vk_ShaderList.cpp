#include "vaskel/vk_ShaderList.h"

#include "vaskel/vk_DisplaceShaders.h"
#include "vaskel/vk_FogShaders.h"
#include "vaskel/vk_LightShaders.h"
#include "vaskel/vk_ShadowShaders.h"
#include "vaskel/vk_SurfaceShaders.h"
#include "vaskel/vk_VolumeShaders.h"

namespace
{
template <class Function>
void append(std::string &text, const vk_ShaderTable<Function> &table)
{
    for (const vk_ShaderRow<Function> &row : table) {
        text += std::string(table.type) + " " + row.name + ": " + row.what + "\n";
        for (const vk_Param &param : row.params)
            text += "    " + vk_paramText(param) + "\n";
    }
    if (table.more != nullptr)
        append(text, *table.more);
}
} // namespace

std::string vk_listShaders()
{
    std::string text;
    append(text, VK_SURFACE_SHADERS);
    append(text, VK_DISPLACE_SHADERS);
    append(text, VK_LIGHT_SHADERS);
    append(text, VK_SHADOW_SHADERS);
    append(text, VK_FOG_SHADERS);
    append(text, VK_ENVIRONMENT_SHADERS);
    return text;
}
