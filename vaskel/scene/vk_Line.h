// One line of a scene as words.
#pragma once

#include "vaskel/params/vk_Params.h"

#include <string>
#include <string_view>

// Splits a line at blanks. Single or double quotes hold blanks together, inside
// a word too; a comment (`#` as the first character that is no blank, or `//`
// where a word could begin) ends the line. False and a message for a quote
// that nothing closes, with the words up to it, and for a zero byte, with none.
[[nodiscard]] bool vk_splitLine(std::string_view line, vk_Words &words, std::string &error);

// The file name behind the statement's word: up to the line's last double quote
// when it begins with one, so that the name itself may hold any character; else
// the one word that is left. False and a message when there is no name or
// something behind it.
[[nodiscard]] bool vk_fileName(std::string_view line, std::string &name, std::string &error);
