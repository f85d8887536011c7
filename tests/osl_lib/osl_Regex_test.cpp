#include "osl/lib/osl_Regex.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>
#include <regex>

namespace
{
// "0-3 1-2" for a match and its groups, "-" for no match.
std::string found(const std::string &expression, const std::string &text, bool isWhole = false)
{
    const osl_Regex regex(expression);
    if (!regex.error().empty())
        return "! " + regex.error();
    std::vector<int> places(static_cast<size_t>(2 * (regex.groups() + 1)));
    if (!(isWhole ? regex.match(text, places) : regex.search(text, places)))
        return "-";
    std::string shown;
    for (size_t i = 0; i < places.size(); i += 2)
        shown +=
            (i > 0 ? " " : "") + std::to_string(places[i]) + "," + std::to_string(places[i + 1]);
    return shown;
}

std::string foundBySlowTwin(const std::string &expression, const std::string &text)
{
    std::smatch match;
    if (!std::regex_search(text, match, std::regex(expression)))
        return "-";
    return std::to_string(match.position(0)) + "," +
           std::to_string(match.position(0) + match.length(0));
}
} // namespace

TEST(Regex, FindsThePlaces)
{
    const struct {
        const char *expression, *text, *places;
    } cases[] = {
        {"bar", "foobar.baz", "3,6"},
        {"[Oo]{2}", "foobar.baz", "1,3"},
        {"(f[Oo]{2}).*(.az)", "foobar.baz", "0,10 0,3 7,10"},
        {"bark", "foobar.baz", "-"},
        {"", "abc", "0,0"},
        {"a|ab|abc", "xabc", "1,2"},
        {"(a)|(b)", "b", "0,1 -1,-1 0,1"},
        {"a*", "baaa", "0,0"},
        {"a+", "baaab", "1,4"},
        {"a+?", "baaab", "1,2"},
        {"<.*?>", "x<a><b>", "1,4"},
        {"a{2,3}", "aaaa", "0,3"},
        {"a{2,}b", "aaab", "0,4"},
        {"a{0}b", "ab", "1,2"},
        {"x{a}", "x{a}", "0,4"},
        {"^b|c$", "abc", "2,3"},
        {"\\bcat\\b", "concat cat", "7,10"},
        {"\\d+\\.\\w*", "v12.x_3-", "1,7"},
        {"[^[:space:]]+", "  two words", "2,5"},
        {"[]a]+", "x]a", "1,3"},
        {"[a-c-]+", "x-ab", "1,4"},
        {"[\\d\\-]+", "a-1", "1,3"},
        {"(?:ab)+(c)", "ababc", "0,5 4,5"},
        {"((a*)*)*b", "aab", "0,3 0,2 0,2"},
        {".", "\n", "-"},
        {"\xe4+", "a\xe4\xe4", "1,3"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.places, found(c.expression, c.text)) << c.expression;
}

TEST(Regex, MatchesTheWholeText)
{
    EXPECT_EQ("0,3", found("a|abc", "abc", true));
    EXPECT_EQ("-", found("b", "abc", true));
    EXPECT_EQ("0,0", found("a*?", "", true));
    EXPECT_EQ("0,3", found("a*?", "aaa", true));
}

TEST(Regex, FillsOnlyThePlacesThereAre)
{
    std::vector<int> places(3, 7);
    EXPECT_TRUE(osl_Regex("(a)(b)").search("xab", places));
    EXPECT_EQ((std::vector<int>{1, 3, 1}), places);
    places.assign(8, 7);
    EXPECT_TRUE(osl_Regex("(a)(b)").search("xab", places));
    EXPECT_EQ((std::vector<int>{1, 3, 1, 2, 2, 3, -1, -1}), places);
    EXPECT_FALSE(osl_Regex("z").search("xab", places));
    EXPECT_EQ(1, places[0]);
}

TEST(Regex, TellsWhatIsWrong)
{
    const struct {
        const char *expression, *message;
    } cases[] = {
        {"(a", "! a bracket '(' that is not closed"},
        {"a)", "! a bracket ')' that closes nothing"},
        {"[a", "! a set '[' that is not closed or has a bad range"},
        {"[z-a]", "! a set '[' that is not closed or has a bad range"},
        {"[", "! a set '[' that is not closed or has a bad range"},
        {"*", "! nothing to repeat"},
        {"a**", "! nothing to repeat"},
        {"a\\", "! a backslash at the end"},
        {"(a)\\1", "! a reference back, which is not supported"},
        {"a{3,2}", "! a repeat that ends before it begins"},
        {"a{1001}", "! a repeat of more than 1000"},
        {"a{99999999999}", "! a repeat of more than 1000"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.message, found(c.expression, "aaa")) << c.expression;
}

TEST(Regex, TakesHostileExpressionsAndTexts)
{
    const std::string as(5000, 'a');
    EXPECT_EQ("-", found("(a*)*b", as));
    EXPECT_EQ("-", found("(a|aa)+$b", as));
    EXPECT_EQ("0,5000", found("(?:a?){500}a*", as));
    EXPECT_EQ("! too many groups inside each other", found(std::string(100000, '('), ""));
    EXPECT_EQ("! too long an expression", found("((a{100}){100}){100}", ""));
    EXPECT_EQ("! too long an expression", found(as + as + as, ""));
    EXPECT_EQ("-", found("(a{1000}){9}x", as)) << "stops after enough steps";
}

TEST(Regex, AgreesWithASlowTwin)
{
    Random random;
    const std::vector<std::string> pieces = {"a",     "b",      "c",  ".",  "[ab]", "[^a]",
                                             "(a|b)", "(?:b|)", "a*", "b+", "c?",   "a{1,2}",
                                             "b*?",   "^",      "$",  "|"};
    for (int i = 0; i < 3000; ++i) {
        const std::string expression = random.text(pieces, 6);
        const std::string text = random.text({"a", "b", "c", "ab"}, 8);
        const std::string ours = found(expression, text);
        ASSERT_EQ(foundBySlowTwin(expression, text), ours.substr(0, ours.find(' ')))
            << random.seed() << ": " << expression << " in " << text;
    }
}
