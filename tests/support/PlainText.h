// Slow, obvious versions of the text algorithms, to check the fast ones against.
#pragma once

#include "UT/UT_StringList.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

// What UT_String::splitWords finds in `text`.
std::vector<std::string> plainSplitWords(const std::string &text);

// What UT_String::match answers.
bool plainMatch(const char *text, const char *pattern, bool caseSensitive);

// What stripComments leaves of `line`; `isOpen` is its argument and its result.
std::string plainStripComments(const std::string &line, bool bySlash, bool byHash, bool &isOpen);

// What UTexpandVariables makes of a text when it looks names up in `variables`, `home`
// is HOME, no user is known and a command's output is "<command>". Recursive.
struct PlainExpansion {
    std::map<std::string, std::string> variables;
    std::string home;
    bool runsCommands = false;
    bool inComments = true;
    int count = 0; // of replacements so far

    std::string of(const std::string &text, bool isNested = false);

private:
    std::string valueOf(const std::string &name, const std::string &modifiers);
};

// The words with a '|' behind each.
std::string joined(const std::vector<std::string> &words);
inline std::string shown(const UT_StringList &list)
{
    return joined(list.toVector());
}

// As an argument vector or an environment: with a null behind them.
std::vector<char *> pointersTo(std::vector<std::string> &texts);

std::string repeated(const std::string &text, int times);

// Calls `visit` with every string over `alphabet` of at most `longest` characters.
void forEachString(const std::string &alphabet, size_t longest,
                   const std::function<void(const std::string &)> &visit);
