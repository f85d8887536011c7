// Any argument vector: the answer is the same twice, lies inside the vector, and
// leaves the manager able to read and getopt where it was.
#include "fuzz/fuzz.h"
#include "tests/support/preprocessed.h"

#include <unistd.h>

void fuzz(const std::string &bytes)
{
    std::string text = bytes + '\0';
    std::vector<char *> words;
    for (size_t i = 0; i < text.size(); i = text.find('\0', i) + 1)
        words.push_back(&text[i]);
    const int count = static_cast<int>(words.size());
    words.push_back(nullptr);

    CPP_Manager manager;
    optind = 7;
    opterr = 0;
    const int first = manager.parseOptions(count, words.data());
    fuzzExpectEqual(true, first >= 0 && first <= count);
    fuzzExpectEqual(first, CPP_Manager().parseOptions(count, words.data()));
    fuzzExpectEqual(7, optind);
    UT_IStream in = streamOver("1 + 2\n");
    const bool isOpen = manager.openStream(&in, "in");
    const std::string out = isOpen ? allLines(manager) : "";
    fuzzExpectEqual("1 + 2\n", out.substr(out.size() < 6 ? 0 : out.size() - 6));
}
