// Tables of inputs and of what comes of them, one row "input -> output" each, in which
// "(null)" is an unset text.
#pragma once

#include "UT/UT_String.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <type_traits>

inline std::string orNull(const char *text)
{
    return text != nullptr ? text : "(null)";
}

// show(input) gives the output, and nothing is written into the input.
template <class Show>
void expectEach(std::initializer_list<const char *> rows, Show show)
{
    static const std::string ARROW = " -> ";
    for (const std::string row : rows) {
        const size_t arrow = row.find(ARROW);
        const std::string in = row.substr(0, arrow);
        const std::string out = show(in == "(null)" ? nullptr : in.c_str());
        EXPECT_EQ(row, in + ARROW + out);
    }
}

// edit(string), for a string that borrows the input, answers and leaves what the output
// tells, such as "1 text"; without an answer, "text".
template <class Edit>
void expectEdits(std::initializer_list<const char *> rows, Edit edit)
{
    expectEach(rows, [&edit](const char *in) {
        UT_String s(in);
        if constexpr (std::is_void_v<decltype(edit(s))>) {
            edit(s);
            return orNull(s);
        } else {
            const std::string answer = std::to_string(edit(s));
            return answer + ' ' + orNull(s);
        }
    });
}
