// Tells at a glance that a word is no macro's name: most words of a text are none.
#pragma once

#include <bitset>
#include <string_view>

class cpp_NameFilter
{
public:
    void add(std::string_view name) { myHeld.set(slot(name)); }

    // False only for names that were never added.
    bool mayHold(std::string_view name) const { return myHeld[slot(name)]; }

private:
    // Six bits of the first and of the last character, four of the length.
    static size_t slot(std::string_view name)
    {
        if (name.empty())
            return 0;
        const auto first = static_cast<unsigned char>(name.front());
        const auto last = static_cast<unsigned char>(name.back());
        return (first & 63u) << 10 | (last & 63u) << 4 | (name.size() & 15u);
    }

    std::bitset<1 << 16> myHeld;
};
