#include "UT/UT_StringList.h"

#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

#include <algorithm>

namespace
{
const char *const ABC[] = {"a", "b", "c", nullptr};

std::string shown(const UT_StringList &list)
{
    return joined(list.toVector());
}
} // namespace

TEST(StringList, InsertsAndRemovesByIndex)
{
    UT_StringList list(ABC);
    EXPECT_EQ(3, list.append("d"));
    EXPECT_EQ(1, list.insert(list(3), 1)); // a text of its own
    EXPECT_EQ("a|d|b|c|d|", shown(list));
    EXPECT_EQ(0, list.remove(0));
    list.removeLast();
    for (const int outside : {5, 3, -1})
        EXPECT_EQ(-1, list.remove(outside));
    EXPECT_EQ("d|b|c|", shown(list));
    EXPECT_EQ(-1, list.insert("x", -1));
    EXPECT_EQ(4, list.insert("x", 4));
    EXPECT_EQ("d|b|c||x|", shown(list));
    list.setEntries(1);
    list.setEntries(2);
    EXPECT_EQ("d||", shown(list));
    list.clear();
    list.removeLast();
    EXPECT_EQ(0, list.entries());
}

TEST(StringList, OwnsCopiesOfEverything)
{
    char text[] = "text";
    UT_StringList list, assigned(ABC);
    list.append(text);
    list.append("other");
    list(1) = text;
    const UT_StringList copy(list);
    assigned = list;
    assigned = *&assigned;
    text[0] = 'n';
    list(0) = "changed";
    EXPECT_EQ("changed|text|text|text|text|text|", shown(list) + shown(copy) + shown(assigned));
}

TEST(StringList, UnsetElementsEqualOnlyNullInASearch)
{
    UT_StringList list(ABC);
    EXPECT_TRUE(list == UT_StringList(ABC) && list != UT_StringList(ABC + 1));
    EXPECT_EQ(-1, list.find(nullptr));
    list.append(nullptr);
    list.append("b");
    EXPECT_EQ(3, list.find(nullptr));
    EXPECT_EQ(0, list.find("b") + list.find("")); // 1 and -1
    EXPECT_TRUE(list != UT_StringList(list));
}

TEST(StringList, SortedOperationsAgreeInEveryOrder)
{
    const std::vector<std::string> texts = {"f10", "f2", "b", "f1", "", "f2"};
    const struct {
        bool ascending, natural;
        const char *expected;
    } cases[] = {{true, false, "|b|f1|f10|f2|f2|"},
                 {true, true, "|b|f1|f2|f2|f10|"},
                 {false, false, "f2|f2|f10|f1|b||"},
                 {false, true, "f10|f2|f2|f1|b||"}};
    for (const auto &[ascending, natural, expected] : cases) {
        UT_StringList sorted, inserted;
        sorted.append("gone");
        sorted.setFromVector(texts);
        sorted.sort(ascending, natural);
        EXPECT_EQ(expected, shown(sorted));
        for (const std::string &text : texts) {
            const int index = inserted.sortedInsert(text.c_str(), ascending, natural);
            EXPECT_EQ(inserted.find(text.c_str()), index) << "in front of its equals";
        }
        EXPECT_EQ(expected, shown(inserted));
        for (const char *text : {"f10", "f2", "b", "", "f", "zz", "f3"})
            EXPECT_EQ(sorted.find(text), sorted.sortedFind(text, ascending, natural)) << text;
    }
}

TEST(StringList, PrefixIsWhatAllElementsShare)
{
    expectEach({" -> 0", "abc -> 3", "abc abd -> 2", "ab abc a -> 1", "x y x -> 0",
                "ab (null) -> 0", "(null) ab -> 0"},
               [](const char *in) {
                   UT_StringList list;
                   for (const std::string &text : plainSplitWords(orNull(in)))
                       list.append(text == "(null)" ? nullptr : text.c_str());
                   return std::to_string(list.commonPrefixLength());
               });
}

TEST(NaturalOrder, NumbersCompareByValue)
{
    expectEach({"file2 file10 -> <", "a007 a7 -> =", "a007b a7a -> >", "12 1a -> >", "a a1 -> <",
                "a1b2 a1b10 -> <", "x99999999999999999998 x99999999999999999999 -> <", "b a1 -> >",
                "\xc3 a -> <" /* signed */, "00 0 -> =", "1.5 1.25 -> <", "a1 a1b -> <",
                "01a 1 -> >"},
               [](const char *in) {
                   const std::vector<std::string> texts = plainSplitWords(in);
                   const char *a = texts[0].c_str(), *b = texts[1].c_str();
                   const int order = UT_String::compareNatural(a, b);
                   const int reverse = UT_String::compareNatural(b, a);
                   EXPECT_TRUE((order > 0) == (reverse < 0) && (order < 0) == (reverse > 0));
                   return order < 0 ? "<" : order > 0 ? ">" : "=";
               });
    EXPECT_GT(0, UT_String::compareNatural(nullptr, ""));
    EXPECT_LT(0, UT_String::compareNatural("", nullptr));
    EXPECT_EQ(0, UT_String::compareNatural(nullptr, nullptr));
}
