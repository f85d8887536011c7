// Any text splits into the words, and any pattern matches the text, that the plain
// twins say. A pattern is what follows the first newline.
#include "UT/UT_String.h"

#include "UT/UT_WordList.h"
#include "fuzz/fuzz.h"
#include "tests/support/PlainText.h"

void fuzz(const std::string &bytes)
{
    const std::string all = bytes.c_str();
    UT_String text(all.c_str(), true);
    UT_WordList words;
    std::string found;
    for (int i = 0, count = text.splitWords(words); i < count; ++i)
        found += std::string(words.getArg(i)) + '\n';
    std::string expected;
    for (const std::string &word : plainSplitWords(all))
        expected += word + '\n';
    fuzzExpectEqual(expected, found);

    const size_t newline = all.find('\n');
    if (newline == all.npos || bytes.size() > 24) // the twin tries every way
        return;
    const std::string name = all.substr(0, newline), pattern = all.substr(newline + 1);
    for (const bool caseSensitive : {false, true})
        fuzzExpectEqual(plainMatch(name.c_str(), pattern.c_str(), caseSensitive),
                        UT_String(name.c_str()).match(pattern.c_str(), caseSensitive));
}
