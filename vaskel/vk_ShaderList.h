// All shaders and shapes with their parameters, as text.
#pragma once

#include <string>

// One paragraph a shader: its type and name and what it does, then a line for
// each parameter: name [range] (standard value) meaning.
std::string vk_listShaders();
