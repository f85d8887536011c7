#include "UT/UT_StringList.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{
const char *const ABC[] = {"a", "b", "c", nullptr};
} // namespace

TEST(StringList, InsertsAndRemovesByIndex)
{
    UT_StringList list(ABC);
    EXPECT_EQ(3, list.append("d"));
    EXPECT_EQ(1, list.insert(list(3), 1)); // a text of its own
    EXPECT_THAT(list.toVector(), ElementsAre("a", "d", "b", "c", "d"));
    EXPECT_EQ(0, list.remove(0));
    list.removeLast();
    EXPECT_THAT(list.toVector(), ElementsAre("d", "b", "c"));
    for (const int outside : {5, 3, -1})
        EXPECT_EQ(-1, list.remove(outside));
    EXPECT_EQ(-1, list.insert("x", -1));
    EXPECT_EQ(4, list.insert("x", 4));
    EXPECT_THAT(list.toVector(), ElementsAre("d", "b", "c", "", "x"));
    list.setEntries(1);
    list.setEntries(2);
    EXPECT_THAT(list.toVector(), ElementsAre("d", ""));
    list.clear();
    list.removeLast();
    EXPECT_EQ(0, list.entries());
}

TEST(StringList, OwnsCopiesOfEverything)
{
    char text[] = "text";
    UT_StringList list;
    list.append(text);
    list.append("other");
    list(1) = text;
    UT_StringList copy(list);
    UT_StringList assigned(ABC);
    assigned = list;
    text[0] = 'n';
    list(0) = "changed";
    EXPECT_STREQ("text", list.last());
    for (const UT_StringList *each : {&copy, &assigned})
        EXPECT_THAT(each->toVector(), ElementsAre("text", "text"));
    UT_StringList &same = copy;
    copy = same;
    EXPECT_EQ(2, copy.entries());
}

TEST(StringList, UnsetElementsEqualOnlyNullInASearch)
{
    UT_StringList list(ABC);
    EXPECT_EQ(-1, list.find(nullptr));
    list.append(nullptr);
    list.append("b");
    EXPECT_EQ(3, list.find(nullptr));
    EXPECT_EQ(1, list.find("b"));
    EXPECT_EQ(-1, list.find(""));
    EXPECT_TRUE(list != UT_StringList(list));
    EXPECT_TRUE(UT_StringList(ABC) == UT_StringList(ABC));
    EXPECT_TRUE(UT_StringList(ABC) != UT_StringList(ABC + 1));
}

TEST(StringList, SortedOperationsAgreeInEveryOrder)
{
    const std::vector<std::string> texts = {"file10", "file2", "b", "file1", "", "file2"};
    const struct {
        bool ascending, natural;
        std::vector<std::string> expected;
    } cases[] = {
        {true, false, {"", "b", "file1", "file10", "file2", "file2"}},
        {true, true, {"", "b", "file1", "file2", "file2", "file10"}},
        {false, false, {"file2", "file2", "file10", "file1", "b", ""}},
        {false, true, {"file10", "file2", "file2", "file1", "b", ""}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.expected));
        UT_StringList sorted, inserted;
        sorted.setFromVector(texts);
        sorted.sort(c.ascending, c.natural);
        EXPECT_THAT(sorted.toVector(), ElementsAreArray(c.expected));
        for (const std::string &text : texts)
            inserted.sortedInsert(text.c_str(), c.ascending, c.natural);
        EXPECT_TRUE(sorted == inserted);
        for (const std::string &text : texts)
            EXPECT_EQ(sorted.find(text.c_str()),
                      sorted.sortedFind(text.c_str(), c.ascending, c.natural));
        for (const char *absent : {"file", "zz", "file3"})
            EXPECT_EQ(-1, sorted.sortedFind(absent, c.ascending, c.natural)) << absent;
    }
}

TEST(StringList, PrefixIsWhatAllElementsShare)
{
    const struct {
        std::vector<std::string> texts;
        int expected;
    } cases[] = {
        {{}, 0}, {{"abc"}, 3}, {{"abc", "abd"}, 2}, {{"ab", "abc", "a"}, 1}, {{"x", "y"}, 0}};
    for (const auto &c : cases) {
        UT_StringList list;
        list.setFromVector(c.texts);
        EXPECT_EQ(c.expected, list.commonPrefixLength()) << testing::PrintToString(c.texts);
        list.append(nullptr);
        EXPECT_EQ(0, list.commonPrefixLength());
    }
}

TEST(NaturalOrder, NumbersCompareByValue)
{
    const struct {
        const char *a, *b;
        int sign;
    } cases[] = {
        {nullptr, nullptr, 0},
        {nullptr, "", -1},
        {"file2", "file10", -1},
        {"a007", "a7", 0},
        {"a007b", "a7a", 1},
        {"12", "1a", 1},
        {"a", "a1", -1},
        {"a1b2", "a1b10", -1},
        {"x99999999999999999998", "x99999999999999999999", -1},
        {"b", "a1", 1},
        {"\xc3", "a", -1}, // signed characters
        {"00", "0", 0},
        {"1.5", "1.25", -1},
    };
    const auto sign = [](int order) { return (order > 0) - (order < 0); };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.a ? c.a : "null") + " and " + (c.b ? c.b : "null"));
        EXPECT_EQ(c.sign, sign(UT_String::compareNatural(c.a, c.b)));
        EXPECT_EQ(-c.sign, sign(UT_String::compareNatural(c.b, c.a)));
    }
}
