#include "UT/UT_SymbolTable.h"

#include "tests/support/Cases.h"
#include "tests/support/Random.h"

#include <cstring>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>

namespace
{
char storage[100]; // what values point to

// All table sizes up to a million, from that of a table that never held anything.
std::vector<int> tableSizes()
{
    std::ifstream file(TEST_DATA "/data/table_sizes");
    return {std::istream_iterator<int>(file), {}};
}

std::string printed(const UT_SymbolTable &table, void (UT_SymbolTable::*print)(FILE *) const)
{
    char text[100000] = "";
    FILE *const stream = fmemopen(text, sizeof text, "w");
    (table.*print)(stream);
    std::fclose(stream);
    return text;
}

// What a table holds, and its size by the rules.
struct PlainTable : std::map<std::string, void *> {
    const std::vector<int> mySizes = tableSizes();
    const int *mySize = mySizes.data();

    void grow() { mySize += static_cast<double>(size()) >= *mySize * 0.75; }
    void shrink() { mySize -= *mySize > 5 && *mySize * double{0.1f} > static_cast<double>(size()); }

    // By bucket, in the order of unsigned bytes inside each.
    std::string dump() const
    {
        std::map<uint32_t, std::ostringstream> chains;
        for (const auto &[name, value] : *this) {
            uint32_t hash = 0;
            for (const char c : name)
                hash = 37 * hash + static_cast<uint32_t>(static_cast<signed char>(c));
            std::ostream &chain = chains[hash % static_cast<uint32_t>(*mySize)];
            chain << " \"" << name << "\" = 0x" << std::hex << std::uppercase << std::setfill('0')
                  << std::setw(8) << reinterpret_cast<uintptr_t>(value) << '\n';
        }
        std::ostringstream all;
        for (const auto &[bucket, lines] : chains)
            all << '[' << std::setw(3) << bucket << "]: " << lines.str();
        return all.str();
    }
    size_t bytes() const
    {
        size_t all = sizeof(UT_SymbolTable) + static_cast<size_t>(*mySize) * sizeof(void *);
        for (const auto &entry : *this)
            all += 3 * sizeof(void *) + 2 * sizeof(uint32_t) + entry.first.size() + 1;
        return all;
    }
};
} // namespace

TEST(SymbolTable, BehavesLikeAnOrderedMapWithBuckets)
{
    Random random;
    SCOPED_TRACE(random.seed());
    UT_SymbolTable table;
    PlainTable plain;
    for (int step = 0; step < 30000 && !testing::Test::HasFailure(); ++step) {
        const std::string name = random.text({"a", "b", "\x7f", "\x80", "\xff", "_", "0"}, 3);
        const char *const text = name.c_str();
        void *const fresh = storage + random.below(100), *found = nullptr, *counted = nullptr;
        const bool isKnown = plain.count(name) > 0;
        void *const value = isKnown ? plain[name] : nullptr;
        ASSERT_EQ(isKnown, table.findSymbol(text, &found));
        ASSERT_EQ(isKnown, table.findSymbol((name + "a").c_str(), name.size(), &counted));
        ASSERT_TRUE(value == found && value == counted);
        if (random.below(100) < (step / 5000 % 2 == 0 ? 60 : 30)) {
            const size_t kind = random.below(4);
            plain.grow();
            if (kind == 0)
                ASSERT_EQ(!isKnown, table.addSymbol(text, fresh));
            else if (kind == 3)
                ASSERT_EQ(value, table.findOrAddSymbol(text));
            else
                ASSERT_EQ(name,
                          kind == 1 ? table.addSymbolGetName(text, fresh) : table.internName(text));
            plain[name] = kind < 2 ? fresh : value;
        } else {
            const bool byOwnName = isKnown && random.below(2) == 0;
            byOwnName ? plain.grow() : void();
            ASSERT_EQ(isKnown, table.deleteSymbol(byOwnName ? table.internName(text) : text));
            plain.erase(name);
            isKnown ? plain.shrink() : void();
        }
        if (step % 100 == 0) {
            ASSERT_EQ(plain.dump(), printed(table, &UT_SymbolTable::dumpTable));
            ASSERT_EQ(plain.bytes(), static_cast<size_t>(table.getMemoryUsage(false)));
        }
        ASSERT_EQ(*plain.mySize, table.tableSize());
        ASSERT_EQ(plain.size(), table.entries());
    }
    table.clearTable();
    EXPECT_EQ(0, table.tableSize());
    EXPECT_EQ(int64_t{sizeof table}, table.getMemoryUsage(true));
    EXPECT_FALSE(table.findSymbol("") || table.deleteSymbol(""));
}

TEST(SymbolTable, ATraversalMayDeleteWhatItVisitsAndResizesAtItsEnd)
{
    UT_SymbolTable table;
    for (char name[] = "A"; *name < 'A' + 50; ++*name)
        table.findOrAddSymbol(name) = storage;
    const auto deleteUntilOne = [](void **slot, const char *name, void *data) {
        auto &visited = *static_cast<UT_SymbolTable *>(data);
        EXPECT_EQ(storage, *slot);
        EXPECT_EQ(1, visited.deleteSymbol(name));
        EXPECT_EQ(71, visited.tableSize());
        return visited.entries() > 1 ? 1 : 0;
    };
    EXPECT_FALSE(table.traverseSymbols(deleteUntilOne, &table));
    EXPECT_EQ(1u, table.entries());
    EXPECT_EQ(59, table.tableSize());
}

// A tiny maximum makes every insertion grow.
TEST(SymbolTable, SizesGoUpAFixedLadder)
{
    UT_SymbolTable table;
    table.setMinLoadFactor(0);
    table.setMaxLoadFactor(1e-9f);
    for (const int size : tableSizes()) {
        EXPECT_EQ(size, table.tableSize());
        table.addSymbol("a", nullptr);
    }
}

TEST(SymbolTable, LoadFactorsStayOnTheirSidesOfEachOther)
{
    expectTable(TEST_DATA "/data/loads",
                {{"minimum first", [](const char *in) {
                      UT_SymbolTable table;
                      table.setMinLoadFactor(std::strtof(in, nullptr));
                      table.setMaxLoadFactor(std::strtof(std::strchr(in, ' '), nullptr));
                      std::ostringstream out;
                      out << table.minLoadFactor() << ' ' << table.maxLoadFactor();
                      return out.str();
                  }}});
}

TEST(SymbolTable, StatisticsAreThoseOfTheChainsLengths)
{
    UT_SymbolTable table;
    EXPECT_EQ("Table size: 0\n   Entries: 0\nCollisions: 0\n",
              printed(table, &UT_SymbolTable::outputStats));
    for (const char *const name : {"AB", "\xff", "", "L", "A"}) // buckets 7, 3, 0, 10, 10
        table.addSymbol(name, nullptr);
    EXPECT_EQ("Table size: 11\n   Entries: 5\n  Coverage: 0.363636\nCollisions: 1\n"
              "   Lengths: [1-2] avg: 1.25\n Deviation: 1\n",
              printed(table, &UT_SymbolTable::outputStats));
}

TEST(SymbolTable, UniqueNamesCountOnFromTheHighestNumber)
{
    UT_SymbolTable table, merged;
    for (const char *const name :
         {"obj1", "obj7", "objx9", "ob12", "007", "big99999999999999999999"})
        table.addSymbol(name, storage);
    merged.addSymbol("obj7", nullptr);
    merged.mergeTable(table);
    merged.mergeTable(merged);
    EXPECT_EQ(storage, merged.findOrAddSymbol("obj7"));
    EXPECT_FALSE(merged.findSymbol(nullptr));
    EXPECT_TRUE(merged.addSymbol(nullptr, nullptr) && merged.findSymbol(""));
    const auto uniqueName = [&](const char *base) {
        UT_String name;
        name.adopt(merged.makeUniqueName(base));
        return name.toStdString();
    };
    expectEach({"obj -> obj8", "obj3 -> obj8", "objx -> objx10", "o -> o1", "42 -> 8",
                "(null) -> 8", "a1b22 -> a1b1", "big -> big1"},
               uniqueName);
}
