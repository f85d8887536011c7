#include "CPP/lines/cpp_DirectiveWords.h"

using Word = cpp_DirectiveWord;

constexpr cpp_DirectiveWord CPP_DIRECTIVE_WORDS[CPP_NUM_DIRECTIVES] = {
    {CPP_DEFINE, "define", Word::IN_TEXT, Word::NONE, false},
    {CPP_ELIF, "elif", Word::EVERYWHERE, Word::BRANCHES, true},
    {CPP_ENDIF, "endif", Word::EVERYWHERE, Word::CLOSES, false},
    {CPP_IF, "if", Word::EVERYWHERE, Word::OPENS, true},
    {CPP_IFDEF, "ifdef", Word::EVERYWHERE, Word::OPENS, true},
    {CPP_IFNDEF, "ifndef", Word::EVERYWHERE, Word::OPENS, true},
    {CPP_ELSE, "else", Word::EVERYWHERE, Word::BRANCHES, false},
    {CPP_UNDEF, "undef", Word::IN_TEXT, Word::NONE, false},
    {CPP_INCLUDE, "include", Word::IN_TEXT, Word::NONE, true},
    {CPP_SINCLUDE, "sinclude", Word::IN_TEXT, Word::NONE, false},
    {CPP_LINE, "line", Word::IN_TEXT, Word::NONE, false},
    {CPP_PRAGMA, "pragma", Word::PASS_THROUGH, Word::NONE, false},
    {CPP_IDENT, "ident", Word::PASS_THROUGH, Word::NONE, false},
};
static_assert(cpp_isInOrder(CPP_DIRECTIVE_WORDS), "a row stands at its number");

constexpr bool conditionalsCountEverywhere()
{
    for (const Word &word : CPP_DIRECTIVE_WORDS) {
        if ((word.where == Word::EVERYWHERE) != (word.effect != Word::NONE))
            return false;
    }
    return true;
}
static_assert(conditionalsCountEverywhere(), "skipped text obeys what opens and closes it");

const cpp_DirectiveWord *findDirective(std::string_view word)
{
    for (const cpp_DirectiveWord &known : CPP_DIRECTIVE_WORDS) {
        // Most differ in their first character.
        if (!word.empty() && word[0] == known.text[0] && word == known.text)
            return &known;
    }
    return nullptr;
}
