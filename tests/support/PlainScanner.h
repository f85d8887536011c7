// A short text that is read from its front on, by regular expressions.
#pragma once

#include <map>
#include <regex>
#include <string>

struct PlainScanner {
    std::string text;
    size_t at = 0;

    bool isAtEnd() const { return at == text.size(); }
    char next() const { return text[at]; }

    // Reads what matches here, "" when nothing does; whether that was anything.
    std::string take(const char *form)
    {
        static std::map<std::string, std::regex> theForms;
        std::smatch match;
        const auto from = text.cbegin() + static_cast<std::string::difference_type>(at);
        std::regex_search(from, text.cend(), match, theForms.try_emplace(form, form).first->second,
                          std::regex_constants::match_continuous);
        at += match.str().size();
        return match.str();
    }
    bool took(const char *form) { return !take(form).empty(); }
};
