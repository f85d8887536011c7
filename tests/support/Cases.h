// Tables of inputs and of what comes of them, one row "input -> output" each, in which
// "(null)" is an unset text.
#pragma once

#include "UT/UT_String.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

inline std::string orNull(const char *text)
{
    return text != nullptr ? text : "(null)";
}

// Gives the output for an input.
using Show = std::function<std::string(const char *)>;

// Holds the rows against what `show` gives; nothing is written into the input.
void expectEach(const std::vector<std::string> &rows, const Show &show);

// The same for a file: a line "[name]" begins the rows of the operation of that name, which
// `show` is told. Empty lines and those that begin with "# " do not count. A row's text has
// escapes as in C, but each \x with two digits, and "\<3:ab\>" for "ababab", and may end
// behind the arrow.
using NamedShow = std::function<std::string(const std::string &name, const char *in)>;
void expectTable(const std::string &file, const NamedShow &show);

// With one `show` for each operation, all of which have rows.
void expectTable(const std::string &file, const std::map<std::string, Show> &operations);

// edit(string), for a string that borrows the input, answers and leaves what the output
// tells, such as "1 text"; without an answer, "text".
template <class Edit>
Show editing(Edit edit)
{
    return [edit](const char *in) {
        UT_String s(in);
        if constexpr (std::is_void_v<decltype(edit(s))>) {
            edit(s);
            return orNull(s);
        } else {
            const std::string answer = std::to_string(edit(s));
            return answer + ' ' + orNull(s);
        }
    };
}
