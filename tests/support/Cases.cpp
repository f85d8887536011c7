#include "tests/support/Cases.h"

#include <cstring>
#include <fstream>
#include <regex>

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

void expectTable(const std::string &file, const std::map<std::string, Show> &operations)
{
    std::map<std::string, std::vector<std::string>> rows;
    std::ifstream in(file);
    std::string line, name;
    while (std::getline(in, line)) {
        if (line[0] == '[' && line.back() == ']' && line.find(" ->") == line.npos)
            name = line.substr(1, line.size() - 2);
        else if (!line.empty() && line.compare(0, 2, "# ") != 0)
            rows[name].push_back(unescaped(std::regex_replace(line, std::regex(" ->$"), " -> ")));
    }
    EXPECT_EQ(operations.size(), rows.size()) << file;
    for (const auto &[operation, show] : operations) {
        SCOPED_TRACE(file + ": " + operation);
        EXPECT_LT(0u, rows[operation].size());
        expectEach(rows[operation], show);
    }
}
