// All shaders and shapes with their parameters, as text.
#pragma once

#include <string>

// Markdown that reads well on a terminal: a heading for each type, one for each
// shader or shape (its name and what it does), and a line for each parameter: name,
// kind, range, standard value, meaning. doc/shaders.md is a copy of it.
std::string vk_listShaders();
