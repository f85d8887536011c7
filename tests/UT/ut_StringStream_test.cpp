#include "UT/UT_ErrorManager.h"
#include "UT/UT_IStream.h"
#include "UT/UT_String.h"

#include <cerrno>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace
{

std::string saved(const UT_String &text, bool binary)
{
    std::ostringstream os;
    errno = 0;
    EXPECT_TRUE(text.save(os, binary));
    return os.str();
}

} // namespace

TEST(StringStream, WhatIsSavedIsLoadedAgain)
{
    const std::string longText(65535, 'x');
    const struct {
        const char *what;
        std::string text, asText, asBinary;
    } cases[] = {
        {"word", "word", "word", std::string("\0\4word", 6)},
        {"words", "hello world", "\"hello world\"", std::string("\0\13", 2) + "hello world"},
        {"quote", "a\"b", "a\\\"b", std::string("\0\3a\"b", 5)},
        {"quotes and space", "a\\ \"b", "\"a\\\\ \\\"b\"", std::string("\0\5a\\ \"b", 7)},
        {"quote in front", "\"a", "\\\"a", std::string("\0\2\"a", 4)},
        {"empty", "", "\"\"", std::string(2, '\0')},
        {"long", longText, longText, std::string("\xff\xff\0\0\xff\xff", 6) + longText},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        for (const bool binary : {false, true}) {
            const std::string bytes = saved(c.text.c_str(), binary);
            EXPECT_EQ(binary ? c.asBinary : c.asText, bytes);
            UT_IStream is(bytes.data(), static_cast<int>(bytes.size()), binary);
            UT_String loaded;
            EXPECT_TRUE(loaded.load(is));
            EXPECT_EQ(c.text, loaded.toStdString());
        }
    }
    EXPECT_EQ("\"\"", saved(nullptr, false));
    EXPECT_EQ(std::string(2, '\0'), saved(nullptr, true));
}

TEST(StringStream, AFullDeviceIsPosted)
{
    std::ofstream os;
    os.rdbuf()->pubsetbuf(nullptr, 0);
    os.open("/dev/full");
    UT_ErrorManager::pushManager();
    errno = 0;
    EXPECT_FALSE(UT_String("text").save(os, false));
    EXPECT_EQ(0, UTfindError("Common", UT_COMMON_SAVE_FAILED));
    UT_ErrorManager::popManager();
}
