// The words of directives, once for all who have to know them: those who obey them, those
// who skip them, and those who tell what was meant.
#pragma once

#include <string_view>

enum cpp_DirectiveNumber {
    CPP_DEFINE, // most lines of headers, so it is looked at first
    CPP_ELIF,   // some have long lists of these
    CPP_ENDIF,
    CPP_IF,
    CPP_IFDEF,
    CPP_IFNDEF,
    CPP_ELSE,
    CPP_UNDEF,
    CPP_INCLUDE,
    CPP_SINCLUDE,
    CPP_LINE,
    CPP_PRAGMA,
    CPP_IDENT,
    CPP_NUM_DIRECTIVES
};

struct cpp_DirectiveWord {
    // What a directive does to the open conditionals where the text is skipped.
    enum Effect { NONE, OPENS, BRANCHES, CLOSES };
    enum Where {
        EVERYWHERE,  // also in skipped text
        IN_TEXT,     // ignored in skipped text
        PASS_THROUGH // the same, and unknown where '#' starts comments
    };

    cpp_DirectiveNumber number; // of its row
    std::string_view text;
    Where where;
    Effect effect;
    bool mayTouch; // other preprocessors want no blank in front of '(', '<', '"' or '!'
};
extern const cpp_DirectiveWord CPP_DIRECTIVE_WORDS[CPP_NUM_DIRECTIVES];

// Whether the rows of a table for each directive stand at their numbers.
template <class Row>
constexpr bool cpp_isInOrder(const Row (&rows)[CPP_NUM_DIRECTIVES])
{
    for (int i = 0; i < CPP_NUM_DIRECTIVES; ++i) {
        if (rows[i].number != i)
            return false;
    }
    return true;
}

// The directive that a word is, exactly; null when it is none.
const cpp_DirectiveWord *findDirective(std::string_view word);
