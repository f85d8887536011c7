#include "CPP/lines/cpp_Comments.h"

#include "UT/UT_ScratchBuffer.h"
#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>

TEST(Comments, AreStrippedAsByThePlainTwin)
{
    UT_ScratchBuffer fast;
    const auto compare = [&](const std::string &line, bool bySlash, bool byHash, bool isOpen) {
        bool endsOpen = isOpen;
        const std::string plain = plainStripComments(line, bySlash, byHash, endsOpen);
        fast.clear();
        fast.append(line.c_str());
        const bool fastEndsOpen = stripComments(fast, bySlash, byHash, isOpen);
        ASSERT_EQ(std::pair(plain, endsOpen), std::pair(std::string(fast.buffer()), fastEndsOpen))
            << line << " slash " << bySlash << " hash " << byHash << " open " << isOpen;
    };
    forEachString("a/*\"'\\# ", 6, [&](const std::string &text) {
        for (unsigned mode = 0; mode < 6 && !HasFailure(); ++mode)
            compare(text + "\n", mode < 4, mode % 2 != 0, mode >= 2 && mode < 5);
    });
    compare("a/*", true, false, false); // a line that two backslashes ended
}
