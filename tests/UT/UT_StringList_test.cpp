#include "UT/UT_StringList.h"

#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"

static const char *const ABC[] = {"a", "b", "c", nullptr};

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

TEST(StringList, OwnsCopiesAndFindsNullInUnsetOnesOnly)
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
    list = UT_StringList(ABC);
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
    const char *const orders[2][2] = {{"f2|f2|f10|f1|b||", "f10|f2|f2|f1|b||"},
                                      {"|b|f1|f10|f2|f2|", "|b|f1|f2|f2|f10|"}};
    for (const bool ascending : {false, true})
        for (const bool natural : {false, true}) {
            UT_StringList sorted, inserted;
            sorted.append("gone");
            sorted.setFromVector(texts);
            sorted.sort(ascending, natural);
            for (const std::string &text : texts) {
                const int index = inserted.sortedInsert(text.c_str(), ascending, natural);
                EXPECT_EQ(inserted.find(text.c_str()), index) << "in front of its equals";
            }
            for (const UT_StringList *list : {&sorted, &inserted})
                EXPECT_EQ(orders[ascending][natural], shown(*list));
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
    const auto ascending = plainSplitWords("\xc3 '' 01 1.5 1.25 1a 12 a a1 a1b2 a1b10 a7a a007b b "
                                           "x99999999999999999998 x99999999999999999999");
    for (size_t i = 0; i < ascending.size(); ++i)
        for (size_t j = 0; j < ascending.size(); ++j) {
            const int order = UT_String::compareNatural(ascending[i].c_str(), ascending[j].c_str());
            EXPECT_EQ((i > j) - (i < j), (order > 0) - (order < 0))
                << ascending[i] << ' ' << ascending[j];
        }
    EXPECT_EQ(0, UT_String::compareNatural("a007b00", "a7b0"));
    EXPECT_EQ(0, UT_String::compareNatural(nullptr, nullptr));
    EXPECT_GT(0, UT_String::compareNatural(nullptr, "\xc3"));
    EXPECT_LT(0, UT_String::compareNatural("\xc3", nullptr));
}
