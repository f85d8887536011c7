// Shaders: what can be named where the scene language says SHADER.
//
// Every type of shader (surface, displace, light, shadow, fog, environment) is
// a table of rows; a row is a name, its parameters and one function. A shader
// chosen by a scene is a row and the values of its parameters. Adding a shader
// is adding a row and a function.
#pragma once

#include "vaskel/params/vk_Nearest.h"
#include "vaskel/params/vk_Params.h"

template <class Function>
struct vk_ShaderRow {
    const char *name;
    const char *what; // one line for the list
    vk_ParamTable params;
    Function *function;
};

template <class Function>
struct vk_Shader {
    const vk_ShaderRow<Function> *row = nullptr; // null: none chosen
    vk_Values values;

    explicit operator bool() const { return row != nullptr; }

    // What the function makes of the values and its other arguments.
    template <class... Arguments>
    auto operator()(const Arguments &...arguments) const
    {
        return row->function(values, arguments...);
    }
};

// A table of one type of shader. Rows end before `rows + count`; a type with many
// shaders has more of them in further tables, each in a source of its own.
template <class Function>
struct vk_ShaderTable {
    const char *type; // "surface", ...
    const vk_ShaderRow<Function> *rows;
    std::size_t count;
    const vk_ShaderTable *more = nullptr;

    const vk_ShaderRow<Function> *begin() const { return rows; }
    const vk_ShaderRow<Function> *end() const { return rows + count; }
};

// A shader's name as the tables have it: «opdef:/Shop/v_x» means «v_x».
std::string_view vk_shaderName(std::string_view word);

// "expected ..." for a shader's name that no row has; `known` are the rows'.
std::string vk_unknownShader(const char *type, std::string_view word,
                             const std::vector<std::string_view> &known);

// Takes the words behind the first, a name and parameters, into `shader`; what the
// words leave out gets its standard value. False and a message when the name or a
// parameter is wrong.
template <class Function>
[[nodiscard]] bool vk_parseShader(const vk_ShaderTable<Function> &table, const vk_Words &words,
                                  vk_Shader<Function> &shader, std::string &error)
{
    const std::string_view name = words.size() > 1 ? vk_shaderName(words[1]) : "";
    std::vector<std::string_view> known;
    for (const auto *part = &table; part != nullptr; part = part->more)
        for (const vk_ShaderRow<Function> &row : *part) {
            known.push_back(row.name);
            if (name != row.name)
                continue;
            shader = {&row, vk_Values(row.params)};
            return vk_parseParams(row.params, row.name, words, 2, shader.values, error);
        }
    error = vk_unknownShader(table.type, words.size() > 1 ? words[1] : "", known);
    return false;
}
