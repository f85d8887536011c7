#include "vaskel/params/vk_ColourNames.h"

namespace
{
struct Row {
    const char *name;
    vk_Colour colour;
};
// Metals by their reflectance straight on, in linear light, out of their measured indices of
// refraction.
// Gold's red lies outside of sRGB. It is cut at 1, as no surface may send on more than arrives.
constexpr Row ROWS[] = {
    {"aluminium", {.913f, .922f, .924f}}, {"black", {0, 0, 0}},
    {"brass", {.887f, .789f, .434f}},     {"chromium", {.549f, .556f, .554f}},
    {"copper", {.955f, .638f, .538f}},    {"gold", {1, .782f, .344f}},
    {"iron", {.562f, .565f, .578f}},      {"nickel", {.660f, .609f, .526f}},
    {"platinum", {.673f, .637f, .585f}},  {"silver", {.972f, .960f, .915f}},
    {"titanium", {.542f, .497f, .449f}},  {"white", {1, 1, 1}},
};
} // namespace

const vk_Colour *vk_findColour(std::string_view name)
{
    for (const Row &row : ROWS)
        if (name == row.name)
            return &row.colour;
    return nullptr;
}

std::vector<std::string_view> vk_colourNames()
{
    std::vector<std::string_view> names;
    for (const Row &row : ROWS)
        names.push_back(row.name);
    return names;
}
