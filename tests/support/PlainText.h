// Slow, obvious versions of the text algorithms, to check the fast ones against.
#pragma once

#include <functional>
#include <string>
#include <vector>

// What UT_String::splitWords finds in `text`.
std::vector<std::string> plainSplitWords(const std::string &text);

// What UT_String::match answers.
bool plainMatch(const char *text, const char *pattern, bool caseSensitive);

// The words with a '|' behind each.
std::string joined(const std::vector<std::string> &words);

// Calls `visit` with every string over `alphabet` of at most `longest` characters.
void forEachString(const std::string &alphabet, size_t longest,
                   const std::function<void(const std::string &)> &visit);
