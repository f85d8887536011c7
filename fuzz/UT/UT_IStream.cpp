// Eight bytes say where the rest is cut into chunks, and in which order the readers
// read it: they find what their plain twins do.

#include "fuzz/fuzz.h"
#include "tests/support/PlainReader.h"
#include "tests/support/TrickleSource.h"

#include <cstring>

void fuzz(const std::string &bytes)
{
    uint64_t cuts = 0;
    if (bytes.size() < sizeof cuts)
        return;
    std::memcpy(&cuts, bytes.data(), sizeof cuts);
    const std::string text = bytes.substr(sizeof cuts);
    UT_IStream is(new TrickleSource(text, cuts), false);
    PlainReader plain{text};
    for (size_t reads = 0; reads <= text.size(); ++reads) {
        const auto reader = static_cast<size_t>((cuts >> reads % 60) % PlainReader::READERS);
        fuzzExpectEqual(plain.read(reader), readFrom(is, reader));
    }
}
