// The texts of one run: those of the code, and those that shaders make.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class osl_Texts
{
public:
    explicit osl_Texts(const std::vector<std::string> &constants);

    // Empty for what is no handle: in a struct that nobody filled may be anything.
    std::string_view operator[](int handle) const
    {
        const auto at = static_cast<size_t>(handle);
        return at < myTexts.size() ? std::string_view(myTexts[at]) : std::string_view();
    }

    // The same text has the same handle. -1 when there are too many of them.
    int handle(std::string_view text);

    // Forgets texts that were made, when they are many.
    void tidy();

private:
    static constexpr size_t MAX_BYTES = size_t(64) << 20;
    static constexpr size_t KEPT_BYTES = size_t(1) << 20;

    std::deque<std::string> myTexts;
    std::unordered_map<std::string_view, int> myHandles;
    size_t myConstants;
    size_t myBytes = 0; // of those that were made
};
