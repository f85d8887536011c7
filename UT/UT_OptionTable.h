// A program's options as a table: its rows read the command line, and print the help.
//
//     constexpr UT_Option<Options> ROWS[] = {
//         {"-j", nullptr, "N", takeJobs, "pictures at a time"},
//         {"--help", "-h", nullptr, takeHelp, "print this text and end"},
//     };
//     const UT_OptionTable<Options> TABLE = ROWS;
//
// A value stands behind its option, or in the same word: -j 4, -j4, --size 64, --size=64.
#pragma once

#include "UT/UT_Process.h"

#include <algorithm>
#include <string>
#include <vector>

// A line of a program's help: `what` begins in that column, or a blank behind a longer `left`.
inline std::string UThelpLine(std::string left, const std::string &what, size_t column)
{
    left.resize(std::max(left.size() + 1, column), ' ');
    return left + what + "\n";
}

template <class Options>
struct UT_Option {
    // Takes the value, "" for an option without one. False when it is not what was expected,
    // with a message of its own or none.
    using Handler = bool (*)(Options &, const std::string &value, std::string &error);

    const char *name;
    const char *other; // name; null: none
    const char *value; // what stands behind it, for the help; null: nothing
    Handler handler;
    const char *what;
};

template <class Options>
class UT_OptionTable
{
public:
    using Row = UT_Option<Options>;

    template <size_t COUNT>
    constexpr UT_OptionTable(const Row (&rows)[COUNT]) : myBegin(rows), myEnd(rows + COUNT)
    {
    }

    // Whether the word is one, known or not; "-" stands for a file.
    static bool isOption(const std::string &word) { return word.size() > 1 && word[0] == '-'; }

    // Takes the option words[at]; afterwards `at` is its last word. False and a message that
    // says what was expected. REQUIRES: isOption(words[at])
    [[nodiscard]] bool take(const std::vector<std::string> &words, size_t &at, Options &options,
                            std::string &error) const
    {
        std::string value;
        if (const Row *const row = findWithValue(words[at], value))
            return takeValue(*row, value, options, error);
        const Row *const row = find(words[at]);
        if (row == nullptr)
            return fail("unknown option " + quoted(words[at]), error);
        if (row->value == nullptr)
            return row->handler(options, "", error);
        if (++at < words.size())
            return takeValue(*row, words[at], options, error);
        return fail(std::string(row->name) + " expected " + row->value + " behind it", error);
    }

    // A line for each; what they are for begins in that column, or a blank behind a longer
    // option.
    std::string help(size_t column) const
    {
        std::string text;
        for (const Row *row = myBegin; row != myEnd; ++row) {
            std::string left = "  ";
            if (row->other != nullptr)
                left += std::string(row->other) + ", ";
            left += row->name;
            if (row->value != nullptr)
                left += std::string(" ") + row->value;
            text += UThelpLine(left, row->what, column);
        }
        return text;
    }

private:
    const Row *find(const std::string &word) const
    {
        for (const Row *row = myBegin; row != myEnd; ++row)
            if (word == row->name || (row->other != nullptr && word == row->other))
                return row;
        return nullptr;
    }

    // The option that has its value in its own word; null when there is none.
    const Row *findWithValue(const std::string &word, std::string &value) const
    {
        const bool isLong = word[1] == '-';
        const size_t end = isLong ? word.find('=') : 2;
        if (end >= word.size())
            return nullptr;
        const Row *const row = find(word.substr(0, end));
        value = word.substr(isLong ? end + 1 : end);
        return row != nullptr && row->value != nullptr ? row : nullptr;
    }

    static bool takeValue(const Row &row, const std::string &value, Options &options,
                          std::string &error)
    {
        if (row.handler(options, value, error))
            return true;
        if (!error.empty())
            return false;
        return fail(std::string(row.name) + " expected " + row.value + " (" + row.what +
                        "), found " + quoted(value),
                    error);
    }

    static bool fail(const std::string &message, std::string &error)
    {
        error = message;
        return false;
    }

    static std::string quoted(std::string word)
    {
        UTmakePrintable(word.data(), word.size());
        return "'" + word + "'";
    }

    const Row *myBegin, *myEnd;
};
