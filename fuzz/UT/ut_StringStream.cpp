// Any bytes are read as the binary string that their plain reading gives, and any text
// is loaded as it was saved, in both forms.
#include "UT/UT_String.h"
#include "fuzz/fuzz.h"
#include "tests/support/PlainReader.h"

#include <cstring>
#include <sstream>

// "unread" when something is missing. Up to 8 bytes of length, of all ones but the last.
static std::string plainBinaryString(const std::string &bytes, size_t width)
{
    for (size_t at = 0; at + width <= bytes.size(); width *= 2) {
        uint64_t length = 0;
        for (const size_t end = at + width; at < end; ++at)
            length = length << 8 | static_cast<unsigned char>(bytes[at]);
        if (width < 8 && length == (uint64_t{1} << 8 * width) - 1)
            continue;
        if (length > bytes.size() - at)
            break;
        return bytes.substr(at, static_cast<size_t>(length)).c_str();
    }
    return "unread";
}

void fuzz(const std::string &bytes)
{
    for (const int width : {1, 2, 4, 8}) {
        UT_IStream is = streamOver(bytes, true);
        UT_String found("unread");
        const bool isRead = is.readBinaryString(found, 8 * width);
        fuzzExpectEqual(plainBinaryString(bytes, static_cast<size_t>(width)), found.text());
        fuzzExpectEqual(true, isRead || found.toStdString() == "unread");
    }
    const UT_String text(bytes.c_str());
    for (const bool binary : {false, true}) {
        std::ostringstream os;
        const bool isSaved = text.save(os, binary);
        const std::string saved = os.str();
        UT_IStream is = streamOver(saved, binary);
        UT_String loaded;
        const bool isLoaded = loaded.load(is);
        // A leading backslash and carriage returns are only kept by quotes.
        if (binary || text.hasWhitespace() ||
            (text[0] != '\\' && std::strchr(text, '\r') == nullptr))
            fuzzExpectEqual(text.text(), isSaved && isLoaded ? loaded.text() : "not loaded");
    }
}
