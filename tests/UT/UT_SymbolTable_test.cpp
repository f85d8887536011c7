#include "UT/UT_SymbolTable.h"

#include <cinttypes>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <string>

namespace
{
char storage[1000];

void *value(unsigned n)
{
    return storage + n;
}

void fill(UT_SymbolTable &table, unsigned names, const std::string &prefix = "name")
{
    for (unsigned i = 0; i < names; ++i)
        table.addSymbol((prefix + std::to_string(i)).c_str(), value(i));
}

std::string printed(const UT_SymbolTable &table, void (UT_SymbolTable::*print)(FILE *) const)
{
    char *text = nullptr;
    size_t length = 0;
    FILE *const stream = open_memstream(&text, &length);
    (table.*print)(stream);
    std::fclose(stream);
    const std::string result(text, length);
    std::free(text);
    return result;
}

std::string uniqueName(const UT_SymbolTable &table, const char *base)
{
    const std::unique_ptr<char, decltype(&std::free)> name(table.makeUniqueName(base), std::free);
    return name.get();
}
} // namespace

TEST(SymbolTable, AddReplacesInternKeeps)
{
    UT_SymbolTable table;
    void *found = nullptr;
    EXPECT_FALSE(table.findSymbol("a", &found));
    EXPECT_TRUE(table.addSymbol("a", value(1)));
    EXPECT_FALSE(table.addSymbol("a", value(2)));
    const char *const name = table.internName("a");
    EXPECT_STREQ("a", name);
    EXPECT_EQ(name, table.addSymbolGetName("a", value(3)));
    EXPECT_EQ(value(3), table.findOrAddSymbol("a"));
    EXPECT_EQ(nullptr, table.findOrAddSymbol("b"));
    table.findOrAddSymbol("b") = value(4);
    EXPECT_TRUE(table.findSymbol("b", &found));
    EXPECT_EQ(value(4), found);
    EXPECT_EQ(2u, table.entries());
    EXPECT_EQ(1, table.deleteSymbol(name)); // the table's own text
    EXPECT_EQ(0, table.deleteSymbol("a"));
}

TEST(SymbolTable, ANullNameIsTheEmptyOne)
{
    UT_SymbolTable table;
    EXPECT_TRUE(table.addSymbol(nullptr, value(1)));
    EXPECT_TRUE(table.findSymbol(""));
    EXPECT_TRUE(table.findSymbol("abc", 0, nullptr));
    EXPECT_EQ(1, table.deleteSymbol(nullptr));
}

// With 11 buckets (after a fifth insertion) a name's bucket tells its hash mod 11.
TEST(SymbolTable, BucketsFollowTheHashAndChainsAreInOrder)
{
    UT_SymbolTable table;
    table.addSymbol("AB", nullptr);   // 2471 = 11 * 224 + 7
    table.addSymbol("\xff", nullptr); // 4294967295 = 11 * 390451572 + 3
    table.addSymbol("", value(0));
    table.addSymbol("L", nullptr); // 76 = 11 * 6 + 10
    table.addSymbol("A", nullptr); // 65 = 11 * 5 + 10
    char expected[200];
    std::snprintf(expected, sizeof expected,
                  "[  0]:  \"\" = 0x%08" PRIXPTR "\n"
                  "[  3]:  \"\xff\" = 0x00000000\n"
                  "[  7]:  \"AB\" = 0x00000000\n"
                  "[ 10]:  \"A\" = 0x00000000\n \"L\" = 0x00000000\n",
                  reinterpret_cast<uintptr_t>(value(0)));
    EXPECT_EQ(expected, printed(table, &UT_SymbolTable::dumpTable));
    EXPECT_EQ("Table size: 11\n   Entries: 5\n  Coverage: 0.363636\nCollisions: 1\n"
              "   Lengths: [1-2] avg: 1.25\n Deviation: 1\n",
              printed(table, &UT_SymbolTable::outputStats));
    EXPECT_EQ("Table size: 0\n   Entries: 0\nCollisions: 0\n",
              printed(UT_SymbolTable(), &UT_SymbolTable::outputStats));
}

TEST(SymbolTable, GrowsBeforeAnInsertionThatFindsItFull)
{
    UT_SymbolTable table;
    EXPECT_EQ(0, table.tableSize());
    fill(table, 4);
    EXPECT_EQ(5, table.tableSize());
    EXPECT_FALSE(table.addSymbol("name0", value(0)));
    EXPECT_EQ(11, table.tableSize());
    fill(table, 9);
    EXPECT_EQ(11, table.tableSize());
    fill(table, 10);
    EXPECT_EQ(17, table.tableSize());
}

TEST(SymbolTable, ShrinksOneStepForEachRemovalThatLeavesItSparse)
{
    UT_SymbolTable table;
    fill(table, 50);
    EXPECT_EQ(71, table.tableSize());
    std::string sizes;
    for (unsigned i = 50; i-- > 0;) {
        table.deleteSymbol(("name" + std::to_string(i)).c_str());
        if (i <= 8)
            sizes += std::to_string(table.tableSize()) + " ";
    }
    EXPECT_EQ("71 59 59 47 37 29 23 17 11 ", sizes);
    EXPECT_EQ(0, table.deleteSymbol("name0"));
    EXPECT_EQ(11, table.tableSize());
}

TEST(SymbolTable, LoadFactorsStayOnTheirSidesOfEachOther)
{
    const struct {
        float minimum, maximum; // set in this order; NAN: not set
        float resultingMinimum, resultingMaximum;
    } cases[] = {
        {NAN, 2, 0.1f, 2},        {NAN, 0, 0.1f, 0.75f},       {NAN, 0.1f, 0.1f, 0.75f},
        {0.5f, NAN, 0.5f, 0.75f}, {0, NAN, 0, 0.75f},          {-1, NAN, 0.375f, 0.75f},
        {0.6f, 0.5f, 0.6f, 1.2f}, {0.75f, NAN, 0.375f, 0.75f},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.minimum << ", " << c.maximum);
        UT_SymbolTable table;
        if (!std::isnan(c.minimum))
            table.setMinLoadFactor(c.minimum);
        if (!std::isnan(c.maximum))
            table.setMaxLoadFactor(c.maximum);
        EXPECT_EQ(c.resultingMinimum, table.minLoadFactor());
        EXPECT_EQ(c.resultingMaximum, table.maxLoadFactor());
    }
}

TEST(SymbolTable, ATraversalMayDeleteWhatItVisitsAndResizesAtItsEnd)
{
    UT_SymbolTable table;
    fill(table, 50);
    const auto deleteUntilOne = [](void **slot, const char *name, void *data) {
        auto &visited = *static_cast<UT_SymbolTable *>(data);
        *slot = nullptr;
        EXPECT_EQ(1, visited.deleteSymbol(name));
        EXPECT_EQ(71, visited.tableSize());
        return visited.entries() > 1 ? 1 : 0;
    };
    EXPECT_FALSE(table.traverseSymbols(deleteUntilOne, &table));
    EXPECT_EQ(1u, table.entries());
    EXPECT_EQ(59, table.tableSize());
    const auto goOn = [](void **, const char *, void *) { return 1; };
    EXPECT_TRUE(table.traverseSymbols(goOn, nullptr));
    EXPECT_EQ(47, table.tableSize());
}

TEST(SymbolTable, MergeReplacesCommonValues)
{
    UT_SymbolTable table, other;
    fill(table, 10);
    fill(other, 5);
    other.addSymbol("name3", value(30));
    other.addSymbol("more", value(40));
    table.mergeTable(other);
    table.mergeTable(table);
    void *found = nullptr;
    EXPECT_EQ(11u, table.entries());
    EXPECT_TRUE(table.findSymbol("name3", &found));
    EXPECT_EQ(value(30), found);
}

TEST(SymbolTable, UniqueNamesCountOnFromTheHighestNumber)
{
    UT_SymbolTable table;
    EXPECT_EQ("obj1", uniqueName(table, "obj3"));
    for (const char *const name :
         {"obj1", "obj7", "objx9", "ob12", "007", "big99999999999999999999"})
        table.addSymbol(name, nullptr);
    const struct {
        const char *base, *name;
    } cases[] = {{"obj", "obj8"}, {"obj3", "obj8"}, {"objx", "objx10"}, {"o", "o1"},
                 {"42", "8"},     {"", "8"},        {"a1b22", "a1b1"},  {"big", "big1"}};
    for (const auto &c : cases)
        EXPECT_EQ(c.name, uniqueName(table, c.base)) << c.base;
}

TEST(SymbolTable, MemoryUsageCountsBucketsEntriesAndNames)
{
    UT_SymbolTable table;
    const auto shallow = static_cast<int64_t>(sizeof table), word = int64_t{sizeof(void *)};
    EXPECT_EQ(shallow, table.getMemoryUsage(false));
    table.addSymbol("abc", nullptr);
    EXPECT_EQ(shallow, table.getMemoryUsage(true));
    EXPECT_EQ(shallow + 5 * word + 3 * word + 4, table.getMemoryUsage(false));
    table.clearTable();
    EXPECT_EQ(0, table.tableSize());
    EXPECT_EQ(shallow, table.getMemoryUsage(false));
}

TEST(SymbolTable, BehavesLikeAnOrderedMapUnderRandomUse)
{
    std::mt19937 random(3);
    UT_SymbolTable table;
    std::map<std::string, void *> twin;
    for (int step = 0; step < 20000; ++step) {
        std::string name;
        for (size_t length = random() % 4; name.size() < length;)
            name += "ab\x7f\x80\xff_0"[random() % 7];
        void *const fresh = value(static_cast<unsigned>(random() % 1000));
        void *found = nullptr, *counted = nullptr;
        const auto known = twin.find(name);
        const bool isKnown = known != twin.end();
        ASSERT_EQ(isKnown, table.findSymbol(name.c_str(), &found));
        ASSERT_EQ(isKnown, table.findSymbol((name + "a").c_str(), name.size(), &counted));
        ASSERT_EQ(isKnown ? known->second : nullptr, found);
        ASSERT_EQ(found, counted);
        if (random() % 1000 < (step < 10000 ? 600u : 200u)) {
            ASSERT_EQ(!isKnown, table.addSymbol(name.c_str(), fresh));
            twin[name] = fresh;
        } else {
            ASSERT_EQ(isKnown ? 1 : 0, table.deleteSymbol(name.c_str()));
            twin.erase(name);
        }
        ASSERT_EQ(twin.size(), table.entries());
    }
}

TEST(SymbolTable, ANameWithANulInsideIsNeverFound)
{
    UT_SymbolTable table;
    table.addSymbol("ab", nullptr);
    // "\0" adds nothing but a factor, so this looks into every bucket in turn.
    const std::string name("ab\0\0\0\0\0\0", 8);
    for (size_t length = 3; length <= name.size(); ++length)
        EXPECT_FALSE(table.findSymbol(name.c_str(), length, nullptr));
}
