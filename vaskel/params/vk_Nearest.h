// What a message says about a word that is not known: the word made safe to
// print, and the known word that it resembles most.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// How many single changes (a character more, less or different, or two
// neighbours swapped) lead from one word to the other: the restricted
// Damerau-Levenshtein distance. Words count up to their 64th character.
int vk_distance(std::string_view a, std::string_view b);

// The known word with the least distance, the earlier one of equals; "" when
// none is known. Upper and lower case letters are half alike: of words at the
// same distance the one that differs in case only wins.
std::string_view vk_nearest(std::string_view word, const std::vector<std::string_view> &known);

// The word in single quotes, control characters as '?', cut to 40 bytes.
std::string vk_quoted(std::string_view word);

// A file's name in single quotes, control characters as '?', whole however long it is.
std::string vk_quotedName(std::string_view name);
