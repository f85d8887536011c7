// Every function of the language, with every list of arguments that it takes: a call
// compiles without a word.
#include "Shading.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{
const char *const ANY_TYPES[] = {"int",    "float",     "color",    "point",
                                 "vector", "normal",    "matrix",   "string",
                                 "int[2]", "float[16]", "color[3]", "string[2]"};
const char *const TRIPLES_AND_FLOAT[] = {"float", "color", "point", "vector", "normal"};

// A text with a whole word replaced by another.
std::string with(const std::string &text, const std::string &word, const std::string &other)
{
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const bool isWord = text.compare(at, word.size(), word) == 0 &&
                            (at == 0 || std::isalnum(text[at - 1]) == 0) &&
                            std::isalnum(text.c_str()[at + word.size()]) == 0;
        result += isWord ? other : std::string(1, text[at]);
        at += isWord ? word.size() : 1;
    }
    return result;
}

// The signatures that one stands for.
std::vector<std::string> meant(const std::string &signature)
{
    std::vector<std::string> all;
    if (with(signature, "ANY", "") != signature) {
        for (const char *type : ANY_TYPES)
            all.push_back(with(signature, "ANY", type));
    } else if (with(signature, "T", "") != signature) {
        for (const char *type : TRIPLES_AND_FLOAT)
            all.push_back(with(signature, "T", type));
    } else if (with(signature, "P", "") != signature) {
        for (const char *type : {"point", "vector", "normal"})
            all.push_back(with(signature, "P", type));
    } else {
        all.push_back(signature);
    }
    return all;
}

std::string declaration(const std::string &type, const std::string &name)
{
    const size_t bracket = type.find('[');
    return type.substr(0, bracket) + " " + name +
           (bracket == std::string::npos ? "" : type.substr(bracket)) + "; ";
}

// Shaders that call a function, with the arguments that may be left out and without.
std::vector<std::string> callers(const std::string &signature)
{
    const size_t open = signature.find('(');
    const size_t blank = signature.rfind(' ', open);
    const std::string result = signature.substr(0, blank);
    std::string variables = result == "void" ? "" : declaration(result, "r");
    std::string call = (result == "void" ? "" : "r = ") + signature.substr(blank + 1, open - blank);
    std::vector<std::string> all;
    std::istringstream arguments(signature.substr(open + 1, signature.size() - open - 2));
    std::string argument;
    for (int i = 0; std::getline(arguments, argument, ','); ++i) {
        argument.erase(0, argument.find_first_not_of(' '));
        if (argument[0] == '?')
            all.push_back("displacement t() { " + variables + call + "); }");
        argument.erase(0, argument[0] == '?' ? 1 : 0);
        const std::string name = "a" + std::to_string(i);
        call += i > 0 ? ", " : "";
        if (argument[0] == '\'') {
            call += '"' + argument.substr(1, argument.size() - 2) + '"';
            continue;
        }
        variables += declaration(argument, name);
        call += name;
    }
    all.push_back("displacement t() { " + variables + call + "); }");
    return all;
}
} // namespace

TEST(Signatures, AreAllThere)
{
    std::ifstream table(TEST_DATA "/signatures");
    int rows = 0;
    for (std::string row; std::getline(table, row);) {
        if (row.empty() || row[0] == '#')
            continue;
        ++rows;
        for (const std::string &signature : meant(row)) {
            for (const std::string &source : callers(signature))
                EXPECT_EQ("", compilerSays(source)) << signature << "\n" << source;
        }
    }
    EXPECT_GT(rows, 240);
}
