// Any bytes are a catalogue with the messages that its plain reading gives.
#include "UT/errors/ut_ErrorCatalogue.h"

#include "fuzz/fuzz.h"
#include "tests/support/PlainReader.h"
#include "tests/support/ScratchDirectory.h"

static std::string plainMessage(std::string text)
{
    text.erase(text.find_last_not_of("\r\n\v\f") + 1);
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        const size_t known = std::string("nt\\").find(text[i + 1]);
        if (text[i] == '\\' && known < 3)
            text.replace(i, 2, 1, "\n\t\\"[known]);
    }
    return text;
}

void fuzz(const std::string &bytes)
{
    static const std::regex great("(^|[^0-9])0*[1-9][0-9]{4,5}([^0-9]|$)");
    if (std::regex_search(bytes, great)) // catalogues stay in memory for good
        return;
    std::map<int, std::string> messages;
    PlainReader reader{bytes};
    for (std::string line; reader.getNonCommentLine(line, '#') > 0;) {
        const std::string text = line.c_str();
        const size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
        const double code = end > 0 ? std::strtod(text.substr(0, end).c_str(), nullptr) : 1e9;
        if (code <= ut_ErrorCatalogue::MAX_CODE)
            messages[static_cast<int>(code)] +=
                plainMessage(text.substr(std::min(end + 1, text.size())));
    }
    static const ScratchDirectory scratch;
    static int count = 0;
    const std::string table = scratch.write(std::to_string(++count), bytes);
    const int greatest = messages.empty() ? -1 : messages.rbegin()->first;
    for (int code = 0; code <= greatest; ++code)
        fuzzExpectEqual(messages[code], ut_ErrorCatalogue::find(table.c_str(), code));
    for (const int code : {-1, greatest + 1})
        fuzzExpectEqual(true, ut_ErrorCatalogue::find(table.c_str(), code) == nullptr);
    std::remove(table.c_str());
}
