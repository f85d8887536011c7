// Random test data that can be had again.
#pragma once

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

// Starts from a fixed number, or from the one in VELDRIN_TEST_SEED. Tests trace
// seed() so that a failure names it.
class Random
{
public:
    explicit Random(unsigned seed = chosenSeed()) : mySeed(seed) {}

    unsigned seed() const { return mySeed; }
    size_t below(size_t limit)
    {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(myBits);
    }

    const std::string &oneOf(const std::vector<std::string> &texts)
    {
        return texts[below(texts.size())];
    }

    // Up to `most` of the pieces, joined.
    std::string text(const std::vector<std::string> &pieces, size_t most)
    {
        std::string all;
        for (size_t count = below(most + 1); count > 0; --count)
            all += oneOf(pieces);
        return all;
    }

private:
    static unsigned chosenSeed()
    {
        const char *text = std::getenv("VELDRIN_TEST_SEED");
        return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : 1u;
    }

    const unsigned mySeed;
    std::mt19937 myBits{mySeed};
};
