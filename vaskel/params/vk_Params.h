// Named parameters: how shaders, shapes and some statements are told things.
//
// A thing that has parameters keeps them as members of its own, whose initial values
// are the standard ones, and describes them in a list; a scene gives «name value» pairs
// in any order, which go straight to the members:
//
//     struct Matte final : vk_Pointwise<Matte> {
//         vk_Colour diff = vk_grey(.5f);
//         void describe(vk_ParamList &list) override
//         {
//             list.colour("diff", diff, 0, 1, "colour");
//         }
//         vk_Material at(const vk_SurfacePoint &) const { ... diff ... }
//     };
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <string>
#include <string_view>
#include <vector>

enum vk_ParamKind {
    VK_NUMBER, // one number
    VK_POINT,  // three numbers
    VK_COLOUR  // three numbers, one for a grey, or a name (vk_ColourNames.h)
};

struct vk_Param {
    const char *name; // lives as long as whatever has the parameter
    vk_ParamKind kind;
    float *number; // where the value is, of a number
    vk_Vec *vec;   // or of the other kinds
    float least;   // range of each number given, ends included
    float most;
    const char *what;

    vk_Vec value() const { return kind == VK_NUMBER ? vk_Vec{*number, 0, 0} : *vec; }
    void set(const vk_Vec &to)
    {
        if (kind == VK_NUMBER)
            *number = to.x;
        else
            *vec = to;
    }
};

// The parameters that something has, in the order in which lists show them.
class vk_ParamList
{
public:
    void number(const char *name, float &value, float least, float most, const char *what)
    {
        myRows.push_back({name, VK_NUMBER, &value, nullptr, least, most, what});
    }
    void point(const char *name, vk_Vec &value, const char *what)
    {
        myRows.push_back({name, VK_POINT, nullptr, &value, -1e6f, 1e6f, what});
    }
    void colour(const char *name, vk_Colour &value, float least, float most, const char *what)
    {
        myRows.push_back({name, VK_COLOUR, nullptr, &value, least, most, what});
    }

    // Null when there is none of that name.
    vk_Param *find(std::string_view name);

    bool isEmpty() const { return myRows.empty(); }
    std::vector<vk_Param>::iterator begin() { return myRows.begin(); }
    std::vector<vk_Param>::iterator end() { return myRows.end(); }

private:
    std::vector<vk_Param> myRows;
};

// What has parameters.
class vk_Parametrised
{
public:
    virtual ~vk_Parametrised() = default;

    // Adds the parameters, which then lead to this very object.
    virtual void describe(vk_ParamList &) {}

    // What is wrong with their values together, as a message behind a name; "" when nothing is.
    virtual std::string fault() const { return ""; }

    vk_ParamList params()
    {
        vk_ParamList list;
        describe(list);
        return list;
    }
};

using vk_Words = std::vector<std::string>;

// Takes «name value» pairs, from word number `first` on, into what the list leads to.
// False and a message without file and line when a name is unknown (the message
// names the nearest), a number is missing or no number, or a value lies outside
// its range; `owner` is who has the parameters, for the message.
[[nodiscard]] bool vk_parseParams(vk_ParamList list, const char *owner, const vk_Words &words,
                                  std::size_t first, std::string &error);

// One decimal number that fits a float and lies in the range, ends included.
// Takes no «nan», «inf», hexadecimal or trailing characters. False and a
// message otherwise; `what` names the number in it.
[[nodiscard]] bool vk_parseNumber(const std::string &word, const std::string &what, float least,
                                  float most, float &number, std::string &error);

// A short form of a number, as messages print it, and a parameter as a line of a list,
// with the value that it has.
std::string vk_numberText(float number);
std::string vk_paramText(const vk_Param &param);
