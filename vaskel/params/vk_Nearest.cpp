#include "vaskel/params/vk_Nearest.h"

#include "UT/UT_Process.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>

namespace
{
// Time grows with the square, and a palette's word may be a million bytes long.
constexpr std::size_t LONGEST = 64;
using Row = std::array<int, LONGEST + 1>;

std::string lowered(std::string_view word)
{
    std::string lower(word.substr(0, LONGEST));
    // ASCII only: tolower() would go by the locale, and words of the language are English.
    for (char &c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

bool swapped(std::string_view a, std::string_view b, std::size_t i, std::size_t j)
{
    return i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
}
} // namespace

// Three rows of the usual table suffice: a swap looks two back.
int vk_distance(std::string_view a, std::string_view b)
{
    a = a.substr(0, LONGEST);
    b = b.substr(0, LONGEST);
    Row before{}, last{}, now{};
    for (std::size_t j = 0; j <= b.size(); ++j)
        last[j] = static_cast<int>(j);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        now[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            now[j] = std::min({last[j] + 1, now[j - 1] + 1, changed});
            if (swapped(a, b, i, j))
                // Two letters swapped are one slip of the fingers, not two.
                now[j] = std::min(now[j], before[j - 2] + 1);
        }
        before = last;
        last = now;
    }
    return last[b.size()];
}

std::string_view vk_nearest(std::string_view word, const std::vector<std::string_view> &known)
{
    const std::string lower = lowered(word);
    std::string_view best;
    int least = INT_MAX;
    for (const std::string_view candidate : known) {
        // Letters of another case count half: «Gold» is nearer to "gold" than to "Bold".
        const int distance = vk_distance(word, candidate) + vk_distance(lower, lowered(candidate));
        // Equals do not replace: the first row of a table is the one to begin with.
        if (distance < least) {
            least = distance;
            best = candidate;
        }
    }
    return best;
}

std::string vk_quoted(std::string_view word)
{
    constexpr std::size_t SHOWN = 40;

    // A cut in the middle of a letter of UTF-8 would not be printable, so it is cut first.
    const std::string text = vk_quotedName(word.substr(0, SHOWN));
    return word.size() > SHOWN ? text.substr(0, text.size() - 1) + "...'" : text;
}

std::string vk_quotedName(std::string_view name)
{
    // Not cut: who looks for a file needs all of its name.
    std::string text(name);
    UTmakePrintable(text.data(), text.size());
    return "'" + text + "'";
}
