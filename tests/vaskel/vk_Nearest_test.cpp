#include "vaskel/params/vk_Nearest.h"

#include "tests/support/Cases.h"

TEST(Nearest, WordsFollowTheirTable)
{
    const auto distance = [](const char *in) {
        const std::string words = in, a = words.substr(0, words.find(' ')),
                          b = words.substr(a.size() + 1);
        EXPECT_EQ(vk_distance(a, b), vk_distance(b, a)) << in;
        return std::to_string(vk_distance(a, b));
    };
    const auto nearest = [](const char *in) {
        return std::string(vk_nearest(in, {"fog", "eight", "light", "floor", "end"}));
    };
    expectTable(TEST_DATA "/data/words",
                {{"distance", distance}, {"nearest", nearest}, {"quoted", vk_quoted}});
    EXPECT_EQ("", vk_nearest("fog", {}));
    EXPECT_EQ("end", vk_nearest(std::string(100000, 'x'), {"end"}));
}
