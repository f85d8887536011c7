#include "UT/UT_RefArray.h"

#include <gmock/gmock.h>
#include <memory>
#include <string>

namespace
{
// A text that counts the objects alive and that sanitizers would see leak.
struct Counted {
    static int alive;
    std::unique_ptr<std::string> myText;

    Counted(const char *text = "") : myText(new std::string(text)) { ++alive; }
    Counted(const Counted &other) : myText(new std::string(*other.myText)) { ++alive; }
    Counted &operator=(const Counted &other)
    {
        *myText = *other.myText;
        return *this;
    }
    ~Counted() { --alive; }
    bool operator<(const Counted &other) const { return *myText < *other.myText; }
};
int Counted::alive = 0;

UT_RefArray<Counted> texts(const std::string &letters)
{
    UT_RefArray<Counted> array;
    for (const char letter : letters)
        array.append(Counted(std::string(1, letter).c_str()));
    return array;
}

std::string joined(const UT_RefArray<Counted> &array)
{
    std::string all;
    for (const Counted &element : array)
        all += element.myText->empty() ? "." : *element.myText;
    return all;
}
} // namespace

TEST(RefArray, EveryOperationConstructsAndDestroysAsManyElements)
{
    using Array = UT_RefArray<Counted>;
    const struct {
        const char *what;
        void (*edit)(Array &);
        const char *result; // from ACEG; a dot is a new element
    } cases[] = {
        {"append own element", [](Array &a) { a.append(a(0)); }, "ACEGA"},
        {"insert own element", [](Array &a) { a.insertAt(a(3), 1); }, "AGCEG"},
        {"insert far", [](Array &a) { a.insertAt("X", 6); }, "ACEG..X"},
        {"insert without value", [](Array &a) { a.insert(1); }, "A.CEG"},
        {"gap inside", [](Array &a) { a.insertGap(3, 3); }, "ACE...G"},
        {"gap outside", [](Array &a) { a.insertGap(5, 2); }, "ACEG..."},
        {"remove", [](Array &a) { a.removeIndex(1); }, "AEG"},
        {"shrink", [](Array &a) { a.setCapacity(2); }, "AC"},
        {"grow", [](Array &a) { a.setCapacity(200); }, "ACEG"},
        {"free", [](Array &a) { a.setCapacity(0); }, ""},
        {"concat", [](Array &a) { a.concat(texts("XY")); }, "ACEGXY"},
        {"assign less", [](Array &a) { a = texts("X"); }, "X"},
        {"assign more", [](Array &a) { a = texts("UVWXYZ"); }, "UVWXYZ"},
        {"reverse", [](Array &a) { a.reverse(); }, "GECA"},
        {"cycle", [](Array &a) { a.cycle(1); }, "GACE"},
        {"merge", [](Array &a) { a.merge(texts("BCG"), 1, false); }, "ABCCEGG"},
        {"unite", [](Array &a) { a.unite(texts("BCG")); }, "ABCEG"},
        {"intersect", [](Array &a) { a.intersect(texts("BCG")); }, "CG"},
        {"subtract", [](Array &a) { a.subtract(texts("BCG")); }, "AE"},
        {"sorted insert", [](Array &a) { a.sortedInsert("D"); }, "ACDEG"},
        {"heap", [](Array &a) { a.reverse(), a.heapPush("F"), a.heapPop(); }, "FECA"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        {
            Array array = texts("ACEG");
            c.edit(array);
            EXPECT_EQ(c.result, joined(array));
            EXPECT_EQ(static_cast<int>(array.entries()), Counted::alive);
        }
        EXPECT_EQ(0, Counted::alive);
    }
}

TEST(RefArray, GrowthCountsTheElementsThatAreThere)
{
    UT_RefArray<Counted> array = texts("ABCDE");
    EXPECT_EQ(8u, array.capacity());
    array.insertGap(1, 10);
    EXPECT_EQ(18u, array.capacity());
}
