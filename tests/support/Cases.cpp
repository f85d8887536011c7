#include "tests/support/Cases.h"

#include "tests/support/PlainText.h"

#include <cstring>
#include <fstream>
#include <regex>
#include <set>

namespace
{
std::string unescaped(const std::string &text)
{
    static const char LETTERS[] = "nrtvf\\", MEANINGS[] = "\n\r\t\v\f\\";
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
        } else if (text[++i] == 'x') {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else if (text[i] == '<') {
            const size_t start = text.find(':', i) + 1, end = text.find("\\>", start);
            const std::string part = unescaped(text.substr(start, end - start));
            out += repeated(part, std::stoi(text.substr(i + 1)));
            i = end + 1;
        } else {
            out += MEANINGS[std::strchr(LETTERS, text[i]) - LETTERS];
        }
    }
    return out;
}
} // namespace

void expectEach(const std::vector<std::string> &rows, const Show &show)
{
    static const std::string ARROW = " -> ";
    for (const std::string &row : rows) {
        const size_t arrow = row.find(ARROW);
        const std::string in = row.substr(0, arrow);
        const std::string out = show(in == "(null)" ? nullptr : in.c_str());
        EXPECT_EQ(row, in + ARROW + out);
    }
}

void expectTable(const std::string &file, const NamedShow &show)
{
    std::ifstream in(file);
    EXPECT_TRUE(in.is_open()) << file;
    for (std::string line, name; std::getline(in, line);) {
        SCOPED_TRACE(file + ": " + name);
        if (line[0] == '[' && line.back() == ']' && line.find(" ->") == line.npos)
            name = line.substr(1, line.size() - 2);
        else if (!line.empty() && line.compare(0, 2, "# ") != 0)
            expectEach({unescaped(std::regex_replace(line, std::regex(" ->$"), " -> "))},
                       [&](const char *text) { return show(name, text); });
    }
}

void expectTable(const std::string &file, const std::map<std::string, Show> &operations)
{
    std::set<std::string> seen;
    expectTable(file, [&](const std::string &name, const char *in) {
        seen.insert(name);
        return operations.at(name)(in);
    });
    EXPECT_EQ(operations.size(), seen.size()) << file;
}
