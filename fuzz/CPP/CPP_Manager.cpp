// Any text: without diagnostics there are as many lines out as in. Text that
// nothing in the language touches comes out as it went in.
#include "CPP/cpp_DefStream.h"
#include "fuzz/fuzz.h"
#include "tests/support/preprocessed.h"

#include <algorithm>

struct NoFiles : CPP_Manager {
    struct Stream : cpp_DefStream {
        bool open(const char *) override { return false; }
    };
    CPP_Stream *newStream() override { return new Stream; }
};

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string text = fuzzText(data, size) + '\n';
    NoFiles manager;
    parseOptions(manager, "-P");
    UT_IStream in(text.data(), static_cast<int>(text.size()), false);
    const bool isOpen = manager.openStream(&in, "in");
    const std::string out = isOpen ? allLines(manager) : "";
    if (out.find("# ") == std::string::npos && text.find("\\\\") == std::string::npos)
        fuzzExpectEqual(std::count(text.begin(), text.end(), '\n'),
                        std::count(out.begin(), out.end(), '\n'));

    const std::string special("#\"'\\\r\t\v\f _/\0", 12);
    for (size_t i; (i = text.find_first_of(special)) != std::string::npos;)
        text[i] = 'x';
    fuzzExpectEqual(text, preprocessed("-P -ULINUX", text));
    return 0;
}
