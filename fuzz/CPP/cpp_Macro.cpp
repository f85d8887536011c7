// Lines of definitions, an empty line, then text: the definitions are read and
// the text is expanded as the plain twin does it.
#include "fuzz/fuzz.h"
#include "tests/support/PlainMacros.h"
#include "tests/support/preprocessed.h"

void fuzz(const std::string &bytes)
{
    const std::string text = bytes.c_str();
    const size_t gap = text.find("\n\n");
    CPP_Manager manager;
    UT_IStream in = streamOver("");
    // The twin has no clock, and no version.
    parseOptions(manager, "-P -ULINUX -U__DATE__ -U__TIME__ -U__zel -U__zel_major -U__zel_minor");
    if (bytes.size() > 300 || gap == std::string::npos || !manager.openStream(&in, "in"))
        return;
    PlainMacros plain;
    UT_String result;
    for (size_t i = 0, end; i <= gap; i = end + 1) {
        end = text.find('\n', i);
        const std::string definition = text.substr(i, end - i);
        manager.defineMacro(definition.c_str(), result, bytes.size() % 2 != 0);
        fuzzExpectEqual(plain.define(definition, bytes.size() % 2 != 0),
                        std::string(result.text()) != "\n");
    }
    result.assignCopy("");
    std::string expected;
    const bool isGood = plain.expand(text.substr(gap + 2), 4, expected);
    fuzzExpectEqual(isGood,
                    manager.expandLine(*manager.currentFile(), text.c_str() + gap + 2, result, 4));
    fuzzExpectEqual(expected, result.text());
}
