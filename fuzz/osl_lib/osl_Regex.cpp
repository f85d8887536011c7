// Any expression meets any text without harm, and what it finds lies in the text; a whole
// match is one that a search finds at the begin of the text too.
#include "osl/lib/osl_Regex.h"

#include "fuzz/fuzz.h"

void fuzz(const std::string &bytes)
{
    const size_t line = std::min(bytes.find('\n'), bytes.size());
    const std::string text = bytes.substr(std::min(line + 1, bytes.size()));
    const osl_Regex regex(bytes.substr(0, line));
    std::vector<int> found(12, -1), whole(2, -1);
    if (!regex.search(text, found))
        found.assign(12, -1);
    for (size_t i = 0; i < found.size(); i += 2) {
        const bool isInside =
            found[i] <= found[i + 1] && found[i + 1] <= static_cast<int>(text.size());
        fuzzExpectEqual(true, isInside || found[i] == -1 || found[i + 1] == -1);
    }
    if (text.size() < 100 && regex.match(text, whole))
        fuzzExpectEqual(0, found[0]);
}
