#include "UT/UT_MakeRule.h"

#include <gtest/gtest.h>

namespace
{
using Names = std::vector<std::string>;

TEST(MakeRule, ReadsBackTheNamesThatItWrote)
{
    const Names files = {
        "plain",     "two words", "back\\ slash",       "a\\b",    "#1 $x", "$$",
        "tab\there", "Grün:x:",   std::string(80, 'l'), "c:\\d e", "e\\",   "h\\#.h"};
    const std::string one = UTmakeRule(UTquoteForMake("the target: x"), files);
    EXPECT_EQ(UTfilesOfMakeRules(one), files) << one;
    EXPECT_EQ(UTfilesOfMakeRules("a b:\n" + UTmakeRule("t", {"x"}) + "u: \\\n y\\\n z"),
              (Names{"x", "y", "z"}))
        << "several rules, one without files and one that is broken off";
}
TEST(MakeRule, EscapesWhatMakeTakesForItsOwn)
{
    EXPECT_EQ(UTmakeRule("t", {"a b", "c#d", "e$f", "g\\ h", "i\\j", "k\\#", "l\\"}),
              "t: a\\ b c\\#d e$$f g\\\\\\ h i\\j k\\\\\\# l\\\\ \n");
}
} // namespace
