// Shaders: what can be named where the scene language says SHADER.
//
// Every type of shader (surface, displace, light, shadow, fog, environment) is a class
// that says what its shaders do, and a table of rows; a row is a name and how to make the
// shader of that name, an object that has its parameters as members (vk_Params.h).
// Adding a shader is adding a class and a row.
#pragma once

#include "vaskel/params/vk_Nearest.h"
#include "vaskel/params/vk_Params.h"

#include <memory>

template <class Type>
struct vk_ShaderRow {
    const char *name;
    const char *what; // one line for the list
    std::unique_ptr<Type> (*make)();
};

// A row for a class of shaders.
template <class Shader>
constexpr vk_ShaderRow<typename Shader::Type> vk_row(const char *name, const char *what)
{
    return {name, what,
            []() -> std::unique_ptr<typename Shader::Type> { return std::make_unique<Shader>(); }};
}

// A table of one type of shader. Rows end before `rows + count`; a type with many
// shaders has more of them in further tables, each in a source of its own.
template <class Type>
struct vk_ShaderTable {
    const char *type; // "surface", ...
    const vk_ShaderRow<Type> *rows;
    std::size_t count;
    const vk_ShaderTable *more = nullptr;

    const vk_ShaderRow<Type> *begin() const { return rows; }
    const vk_ShaderRow<Type> *end() const { return rows + count; }
};

// A shader's name as the tables have it: «opdef:/Shop/v_x» means «v_x».
std::string_view vk_shaderName(std::string_view word);

// "expected ..." for a shader's name that no row has; `known` are the rows'.
std::string vk_unknownShader(const char *type, std::string_view word,
                             const std::vector<std::string_view> &known);

// Makes the shader that the words behind the first describe, a name and parameters.
// Null and a message when the name or a parameter is wrong.
template <class Type>
[[nodiscard]] std::unique_ptr<Type> vk_parseShader(const vk_ShaderTable<Type> &table,
                                                   const vk_Words &words, std::string &error)
{
    const std::string_view name = words.size() > 1 ? vk_shaderName(words[1]) : "";
    std::vector<std::string_view> known;
    for (const auto *part = &table; part != nullptr; part = part->more)
        for (const vk_ShaderRow<Type> &row : *part) {
            known.push_back(row.name);
            if (name != row.name)
                continue;
            std::unique_ptr<Type> shader = row.make();
            if (!vk_parseParams(shader->params(), row.name, words, 2, error))
                return nullptr;
            return shader;
        }
    error = vk_unknownShader(table.type, words.size() > 1 ? words[1] : "", known);
    return nullptr;
}
