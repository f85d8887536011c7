// Regular expressions, in time that grows with the text only linearly.
//
// The syntax is that of POSIX extended expressions with the usual additions:
//
//   .  [abc] [^a-z] [[:alpha:]]      one character (not the newline for .)
//   \d \w \s \D \W \S \t \n \r \.    classes, control characters, the character itself
//   * + ? {2} {2,} {2,5}             repeats; a ? behind makes them as short as can be
//   ab  a|b  (a)  (?:a)              sequence, choice, group, group without number
//   ^  $  \b  \B                     begin and end of the text, of a word
//
// Of several matches that begin first, the one counts that the expression prefers:
// earlier choices, longer repeats. There are no references back.
//
// An expression is made into a program that runs all its choices side by side
// (Thompson 1968, Pike 1987), so no text makes it slow. Bounds: 10000 instructions,
// 100 groups inside each other, repeats up to 1000; a run that takes more than 10
// million steps finds nothing.
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class osl_Regex
{
public:
    explicit osl_Regex(std::string_view expression);

    // Empty for a good expression, else what is wrong with it; it then matches nothing.
    const std::string &error() const { return myError; }

    int groups() const { return myGroups; }

    // Whether a part of the text matches; `places` then holds begin and end (one past)
    // of the match and of each group, as many as fit into its size, -1 for groups
    // that took no part and for what is left over. The rest of the time it stays.
    bool search(std::string_view text, std::vector<int> &places) const;

    // The whole text.
    bool match(std::string_view text, std::vector<int> &places) const;

private:
    friend class osl_RegexCompiler;
    friend class osl_RegexRun;

    // SPLIT goes on at both places, a preferred; JUMP and SPLIT count from themselves.
    enum Op : uint8_t { CHAR, ANY, SET, SPLIT, JUMP, SAVE, BEGIN, END, EDGE, NO_EDGE, DONE };
    struct Instruction {
        Op op;
        int a = 0; // character, set, place to save at, or where to go on
        int b = 0;
    };
    using Code = std::vector<Instruction>;
    using Set = std::bitset<256>;

    bool run(std::string_view text, std::vector<int> &places, bool isWhole) const;

    Code myCode;
    std::vector<Set> mySets;
    int myGroups = 0;
    std::string myError;
};
