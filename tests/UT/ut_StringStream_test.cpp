#include "UT/UT_ErrorManager.h"
#include "UT/UT_IStream.h"
#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <cerrno>
#include <fstream>
#include <sstream>

namespace
{
std::string saved(const UT_String &text, bool binary)
{
    std::ostringstream os;
    errno = 0;
    EXPECT_TRUE(text.save(os, binary));
    return os.str();
}

std::string loaded(const std::string &bytes, bool binary)
{
    UT_IStream is(bytes.data(), static_cast<int>(bytes.size()), binary);
    UT_String text("old");
    EXPECT_TRUE(text.load(is));
    return text.toStdString();
}
} // namespace

TEST(StringStream, WhatIsSavedIsLoadedAgain)
{
    forEachString("a\"\\ \t", 5, [](const std::string &text) {
        for (const bool binary : {false, true})
            if (binary || text[0] != '\\' || UT_String(text.c_str()).hasWhitespace()) {
                ASSERT_EQ(text, loaded(saved(text.c_str(), binary), binary));
            }
    });
    const std::string longText(65535, 'x');
    for (const bool binary : {false, true})
        EXPECT_EQ(longText, loaded(saved(longText.c_str(), binary), binary));
    EXPECT_EQ(std::string("\xff\xff\0\0\xff\xff", 6) + longText, saved(longText.c_str(), true));
    EXPECT_EQ(std::string("\0\4word", 6), saved("word", true));
    EXPECT_EQ(std::string(2, '\0'), saved(nullptr, true));
    expectEach({"hello world -> \"hello world\"", "a\"b -> a\\\"b", "a\\ b -> \"a\\\\ b\"",
                "a\vb -> \"a\vb\"", " -> \"\"", "(null) -> \"\""},
               [](const char *in) { return saved(in, false); });
    UT_IStream nothing(" ", 1, false);
    UT_String unset("old");
    EXPECT_FALSE(unset.load(nothing));
    EXPECT_EQ(nullptr, unset.text());
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
