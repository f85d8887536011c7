#include "vaskel/params/vk_Shader.h"

#include <cstring>

std::string_view vk_shaderName(std::string_view word)
{
    // How shop networks write the name of a shader.
    constexpr std::string_view SHOP = "opdef:/Shop/";
    return word.substr(0, SHOP.size()) == SHOP ? word.substr(SHOP.size()) : word;
}

std::string vk_unknownShader(const char *type, std::string_view word,
                             const std::vector<std::string_view> &known)
{
    std::string list;
    for (const std::string_view name : known)
        list += (list.empty() ? "" : ", ") + std::string(name);
    const char *const article = std::strchr("aeiou", type[0]) != nullptr ? "an " : "a ";
    const std::string expected = "expected " + (article + std::string(type)) + " shader: " + list;
    if (word.empty())
        return expected;
    // The bare name is compared: a shop in front would count as a dozen wrong letters.
    return "unknown " + std::string(type) + " shader " + vk_quoted(word) + "; " + expected +
           "; nearest is " + vk_quoted(vk_nearest(vk_shaderName(word), known));
}
