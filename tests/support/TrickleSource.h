// A source that gives out its text in small chunks, so that readers meet a chunk's
// end at every place.
#pragma once

#include "UT/UT_IStreamBuf.h"

#include <string>
#include <vector>

class TrickleSource : public UT_IStreamBuf
{
public:
    // Bit i of `cuts` ends a chunk behind each byte whose number is i modulo 64.
    explicit TrickleSource(const std::string &text, uint64_t cuts = UINT64_MAX)
        : myText(text), myCuts(cuts)
    {
    }

    int read(void *dst, int n) override;
    int peekChar() override;
    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override { return static_cast<int64_t>(myPosition); }
    bool seek(int64_t, int) override { return false; }
    bool isEof() override { return myPosition == myText.size(); }

private:
    std::string myText;
    uint64_t myCuts;
    size_t myPosition = 0;
    std::vector<char> myChunk; // of just its size, so that sanitizers see who goes beyond
};
