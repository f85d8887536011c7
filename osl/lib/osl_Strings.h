// The functions of the language on texts.
//
// Characters are bytes, counted from 0. No function fails: what has no answer
// gives 0 or the empty text.
#pragma once

#include <string_view>
#include <vector>

bool osl_startsWith(std::string_view text, std::string_view prefix);
bool osl_endsWith(std::string_view text, std::string_view suffix);

// 0 to 255; 0 for an index outside the text.
int osl_getChar(std::string_view text, int index);

// A negative start counts from the end; both are limited to what is there. The result
// is a part of `text`.
std::string_view osl_substr(std::string_view text, int start, int length);

// The number at the beginning, behind white space: decimal, in the range of the type;
// 0 when there is none. A point is a point in every locale.
int osl_stoi(std::string_view text);
float osl_stof(std::string_view text);

// The words between separators, parts of `text`; without a separator, between white space,
// where no word is empty. At most `limit` words, the last with all the rest.
std::vector<std::string_view> osl_split(std::string_view text, std::string_view separator,
                                        int limit);
