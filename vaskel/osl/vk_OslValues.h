// Values of an OSL shader's parameters from the words of a scene's line.
//
//     int, float               a number; an int must be whole
//     string                   a word
//     color                    three numbers, one for a grey, or a colour's name
//     point, vector, normal    three numbers
//     matrix                   sixteen numbers, row after row
//     an array                 the numbers or words of all its elements, in brackets if
//                              it has no length of its own: [ 1 2 3 ]
//
// Each number of a parameter with `min` or `max` among its metadata lies in that range.
#pragma once

#include "osl/OSL_Shader.h"
#include "vaskel/params/vk_Params.h"

// Takes the value of a parameter from word number `at` on, and moves behind it. False
// and a message without file and line when it is none; `owner` has the parameter.
[[nodiscard]] bool vk_takeOslValue(const OSL_Parameter &parameter, const std::string &owner,
                                   const vk_Words &words, std::size_t &at, OSL_Value &value,
                                   std::string &error);
