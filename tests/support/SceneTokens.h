// The words of a scene in RIB or MI, one after the other.
#pragma once

#include <string>
#include <vector>

struct SceneToken {
    // 'i' and 'f': a number without and with point or exponent, 's': a text in double
    // quotes, 'w': a word, 'e': the end; anything else is the character itself.
    char kind = 'e';
    std::string text; // without quotes
    int line = 0;

    bool isNumber() const { return kind == 'i' || kind == 'f'; }
    bool isWord(const char *word) const { return kind == 'w' && text == word; }
    double number() const { return std::stod(text); }
};

// All of them, and one of kind 'e' behind them. A '#' begins a comment. A text that its
// line does not end, and a number that runs into letters, are of kind '!'.
std::vector<SceneToken> sceneTokens(const std::string &scene);
