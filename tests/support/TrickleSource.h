// A source that gives out its text in chunks of one byte, so that every reader
// meets a chunk's end at every place.
#pragma once

#include "UT/UT_IStreamBuf.h"

#include <string>

class TrickleSource : public UT_IStreamBuf
{
public:
    explicit TrickleSource(const std::string &text) : myText(text) {}

    int read(void *dst, int n) override;
    int peekChar() override;
    const char *fillBuffer(int &start, int &end) override;
    int64_t tell() override { return static_cast<int64_t>(myPosition); }
    bool seek(int64_t, int) override { return false; }
    bool isEof() override { return myPosition == myText.size(); }

private:
    std::string myText;
    size_t myPosition = 0;
    char myChunk[1] = {};
};
