// Any text expands without harm; one with nothing to expand stays as it is.
#include "UT/UT_ExpandVariables.h"

#include "UT/UT_ScratchBuffer.h"
#include "fuzz/fuzz.h"

#include <cstring>

static const char *lookUp(const char *name, void *)
{
    return std::strchr(name, 'x') == nullptr ? name : nullptr;
}

void fuzz(const std::string &bytes)
{
    const std::string text = bytes.c_str();
    UT_ScratchBuffer out;
    for (const bool inComments : {false, true}) {
        const int count = UTexpandVariables(out, text.c_str(), lookUp, nullptr, false, inComments);
        fuzzExpectEqual(true, count >= 0 && out.length() == static_cast<int>(strlen(out.buffer())));
    }
    if (text.find_first_of("$'\\") == text.npos)
        fuzzExpectEqual(text, out.buffer());
}
