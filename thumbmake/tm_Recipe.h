// What pictures are made with, apart from their palettes.
#pragma once

#include <string>
#include <vector>

struct tm_Options;

struct tm_Recipe {
    std::vector<std::string> thumbrender; // its options but for -r
    std::string renderer;                 // the name behind -r; empty: none
    std::vector<std::string> vaskel;      // its options but for -o
    bool hasOutput = false;               // pictures do not lie beside the palettes

    // Of the programs' bytes, the templates found and the settings that choose them. Another
    // fingerprint means that pictures may look different.
    std::string fingerprint;
};

// What a recipe's fingerprint would be here and now.
std::string tm_fingerprint();

tm_Recipe tm_makeRecipe(const tm_Options &options);

// As lines of text and back; false for a text that is none.
std::string tm_recipeText(const tm_Recipe &recipe);
[[nodiscard]] bool tm_parseRecipe(const std::string &text, tm_Recipe &recipe);

// A program of ours: beside this one, or else on PATH; its bare name when it is nowhere.
std::string tm_findProgram(const std::string &name);
