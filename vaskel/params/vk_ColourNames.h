// Colours that have names.
#pragma once

#include "vaskel/base/vk_Vec.h"

#include <string_view>
#include <vector>

// A linear colour by its name, null when there is none. Metals have the colour that
// they reflect straight on, from measured indices of refraction (Johnson and
// Christy, Physical Review B 6, 1972 and 9, 1974; Rakic, Applied Optics 34, 1995).
const vk_Colour *vk_findColour(std::string_view name);

// All of them.
std::vector<std::string_view> vk_colourNames();
