#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <regex>

namespace
{
std::string modified(const char *text, const char *modifiers)
{
    UT_String s(text);
    const bool changed = s.applyModifiers(modifiers);
    EXPECT_EQ(orNull(text) != orNull(s), changed) << modifiers;
    return orNull(s);
}
} // namespace

TEST(StringModifiers, TakeAwayWhatARegularExpressionFinds)
{
    const char *const cases[][2] = {{":r", "\\.[^/.]*$"},
                                    {":ar", "(\\.[^/.]*)+$"},
                                    {":h", "/[^/]*$"},
                                    {":ah", "/.*$"},
                                    {":t", "^.*/"},
                                    {":at", "^.*/"},
                                    {":e", "^.*\\.(?=[^/.]*$)"},
                                    {":ae", "^.*\\.(?=[^/.]*$)"},
                                    {":z:", "^$"}};
    for (const auto &[modifier, pattern] : cases)
        forEachString(
            "a./", 6, [modifier = modifier, away = std::regex(pattern)](const std::string &text) {
                ASSERT_EQ(std::regex_replace(text, away, ""), modified(text.c_str(), modifier))
                    << text << modifier;
            });
}

TEST(StringModifiers, ModifiersFollowOneAnother)
{
    expectEach({"/x/f.tar.gz:tail:r -> f.tar", "ABcdE:u -> ABCdE", "abCD:l -> abcD",
                "Abc d:au -> ABC D", "Abc D:al -> abc d", "aXa:s/a/b/ -> bXa", "aXa:as/a/b/ -> bXb",
                "aXa:s/a/b -> bXa", "aXa:s/a -> aXa", "aXa:s/a:l -> axa", "aXa:s/a/b:l -> bxa",
                "a/b  c/d:gt -> b d", " a/b c/d\t:gt -> b d ", "aa aa:gs/a/b/ -> ba ba",
                "aa aa:gas/a/b/ -> bb bb", "a.b.c d.e:agr -> a d", "a:t:zu:u -> A", ":u -> "},
               [](const std::string &in) {
                   const size_t colon = in.find(':');
                   return modified(in.substr(0, colon).c_str(), in.c_str() + colon);
               });
    EXPECT_EQ("(null)", modified(nullptr, ":u"));
    EXPECT_EQ("ab", modified("ab", "u"));
}

TEST(StringModifiers, ANameEndsBehindItsModifiers)
{
    for (const std::string in : {"N_1|/x", "N:t|/x", "N|: x", "N|:", ":t:r| x", "s|/x", ":gs|/x",
                                 "|", ":s/a/b/c|/d", ":s/a/b/:t|/", "N:s|.a", ":s/a/b/:s/c/d/|/"}) {
        const size_t end = in.find('|');
        const std::string text = in.substr(0, end) + in.substr(end + 1);
        EXPECT_EQ(static_cast<int>(end), UT_String::modifierNameLength(text.c_str())) << in;
    }
    EXPECT_EQ(0, UT_String::modifierNameLength(nullptr));
}
