// Named parameters: how shaders, shapes and some statements are told things.
//
// A table lists the parameters that a thing has; its users give «name value»
// pairs in any order, and what they leave out keeps its standard value. Values
// are then addressed by their place in the table, so that shading needs no
// names:
//
//     enum { DIFF, ROUGH };
//     constexpr vk_Param MATTE[] = {
//         {"diff", VK_COLOUR, {.5f, .5f, .5f}, 0, 1, "colour"},
//         {"rough", VK_NUMBER, {.1f, 0, 0}, 0, 1, "roughness"}};
//     ... values.number(ROUGH) ...
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

enum vk_ParamKind {
    VK_NUMBER, // one number
    VK_POINT,  // three numbers
    VK_COLOUR  // three numbers, one for a grey, or a name (vk_ColourNames.h)
};

struct vk_Param {
    const char *name;
    vk_ParamKind kind;
    vk_Vec standard; // a number sits in x
    float least;     // range of each number given, ends included
    float most;
    const char *what;
};

// A table of parameters, seen from outside.
struct vk_ParamTable {
    const vk_Param *rows = nullptr;
    std::size_t count = 0;

    constexpr vk_ParamTable() = default;
    template <std::size_t N>
    constexpr vk_ParamTable(const vk_Param (&table)[N]) : rows(table), count(N)
    {
        static_assert(N <= 12, "vk_Values holds twelve parameters");
    }
    const vk_Param *begin() const { return rows; }
    const vk_Param *end() const { return rows + count; }
};

// One value for each row of a table.
class vk_Values
{
public:
    vk_Values() = default;
    explicit vk_Values(const vk_ParamTable &table); // standard values

    float number(std::size_t row) const { return myValues[row].x; }
    const vk_Vec &vec(std::size_t row) const { return myValues[row]; }
    void set(std::size_t row, const vk_Vec &value) { myValues[row] = value; }

private:
    std::array<vk_Vec, 12> myValues;
};

using vk_Words = std::vector<std::string>;

// Takes «name value» pairs, from word number `first` on, into `values`. False
// and a message without file and line when a name is unknown (the message
// names the nearest), a number is missing or no number, or a value lies outside
// its range; `owner` is who has the parameters, for the message.
[[nodiscard]] bool vk_parseParams(const vk_ParamTable &table, const char *owner,
                                  const vk_Words &words, std::size_t first, vk_Values &values,
                                  std::string &error);

// One decimal number that fits a float and lies in the range, ends included.
// Takes no «nan», «inf», hexadecimal or trailing characters. False and a
// message otherwise; `what` names the number in it.
[[nodiscard]] bool vk_parseNumber(const std::string &word, const std::string &what, float least,
                                  float most, float &number, std::string &error);

// A short form of a number, as messages print it, and a row as a line of a list.
std::string vk_numberText(float number);
std::string vk_paramText(const vk_Param &param);
