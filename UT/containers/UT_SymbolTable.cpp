#include "UT/UT_SymbolTable.h"

#include "UT/UT_Character.h"
#include "UT/UT_Memory.h"
#include "UT/UT_SmallObjectPool.h"

#include <algorithm>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

namespace
{
// Each step is about 1.2 times the one before.
constexpr int TABLE_SIZES[] = {
    5,         11,        17,        23,        29,        37,        47,        59,
    71,        89,        107,       131,       163,       197,       239,       293,
    353,       431,       521,       631,       761,       919,       1103,      1327,
    1597,      1931,      2333,      2801,      3371,      4049,      4861,      5839,
    7013,      8419,      10103,     12143,     14591,     17519,     21023,     25229,
    30293,     36353,     43627,     52361,     62851,     75431,     90523,     108631,
    130363,    156437,    187751,    225307,    270371,    324449,    389357,    467237,
    560689,    672827,    807403,    968897,    1162687,   1395263,   1674319,   2009191,
    2411033,   2893249,   3471899,   4166287,   4999559,   5999471,   7199369,   8639249,
    10367101,  12440537,  14928671,  17914409,  21497293,  25796759,  30956117,  37147349,
    44576837,  53492207,  64190669,  77028803,  92434613,  110921543, 133105859, 159727031,
    191672443, 230006941, 276008387, 331210079, 397452101, 476942527, 572331049, 686797261,
    824156741, 988988087, 1186785703};
static_assert(std::size(TABLE_SIZES) == 99, "the ladder of table sizes is complete");

constexpr bool ENTRY_POOL_TRACKS_PAGES = true;
constexpr unsigned ENTRIES_PER_PAGE = 1024;
constexpr unsigned ENTRY_POOL_MAX_SIZE = 128;

// Of the ladder, for which a growing table has buckets already.
constexpr int STEPS_AHEAD = 4;

// Buckets; entries lie all over the memory, and rebuilding would wait for each.
constexpr int FETCHED_AHEAD = 16;

// Shared by all tables; never destroyed, because static tables may outlive it.
UT_SmallObjectPool &entryPool()
{
    // Records are small: pages spare them the heap's overhead.
    static UT_SmallObjectPool *const pool = new UT_SmallObjectPool(
        ENTRY_POOL_TRACKS_PAGES, ENTRIES_PER_PAGE, ENTRY_POOL_MAX_SIZE, true);
    return *pool;
}

// The product is exact in a double, whatever the size.
double entriesAt(int tableSize, float loadFactor)
{
    return static_cast<double>(static_cast<float>(tableSize)) * static_cast<double>(loadFactor);
}

} // namespace

// A name as the lookups need it, with its hash,
//     h = 37 h + c  (modulo 2^32)
struct UT_SymbolTable::Name {
    explicit Name(const char *text) : Name(orEmpty(text), std::strlen(orEmpty(text))) {}
    Name(const char *text, size_t length)
        : myText(text), myLength(static_cast<uint32_t>(length)), myHash(hashOf(text, length))
    {
    }

    static const char *orEmpty(const char *text) { return text != nullptr ? text : ""; }

    // Characters count as signed bytes.
    static uint32_t valueOf(char c)
    {
        return static_cast<uint32_t>(int32_t{static_cast<signed char>(c)});
    }

    // Four characters a step: a product that waits for the one before takes longest.
    static uint32_t hashOf(const char *text, size_t length)
    {
        constexpr uint32_t SQUARE = 37 * 37, CUBE = SQUARE * 37;
        uint32_t hash = 0;
        size_t i = 0;
        for (; i + 4 <= length; i += 4)
            hash = hash * (CUBE * 37) + valueOf(text[i]) * CUBE + valueOf(text[i + 1]) * SQUARE +
                   valueOf(text[i + 2]) * 37 + valueOf(text[i + 3]);
        for (; i < length; ++i)
            hash = 37 * hash + valueOf(text[i]);
        return hash;
    }

    bool isNameOf(const Entry &entry) const
    {
        return entry.myHash == myHash && entry.myLength == myLength &&
               std::memcmp(entry.myName, myText, myLength) == 0;
    }

    const char *myText;
    uint32_t myLength;
    uint32_t myHash;
};

UT_SymbolTable::~UT_SymbolTable()
{
    clearTable();
}

// REQUIRES: there are buckets
UT_SymbolTable::Entry **UT_SymbolTable::chainOf(uint32_t hash) const
{
    return &myBuckets[hash % static_cast<uint32_t>(myBucketCount)];
}

// The link to the name's entry, or to null. REQUIRES: there are buckets
UT_SymbolTable::Entry **UT_SymbolTable::locate(const Name &name) const
{
    Entry **link = chainOf(name.myHash);
    while (*link != nullptr && !name.isNameOf(**link))
        link = &(*link)->myNext;
    return link;
}

// Where a name that is not there belongs, from the head of its chain on.
UT_SymbolTable::Entry **UT_SymbolTable::placeIn(Entry **link, const char *name, uint32_t length)
{
    while (*link != nullptr) {
        const Entry &entry = **link;
        const int order = std::memcmp(entry.myName, name, std::min(entry.myLength, length));
        if (order > 0 || (order == 0 && entry.myLength > length))
            break;
        link = &(*link)->myNext;
    }
    return link;
}

UT_SymbolTable::Entry *UT_SymbolTable::findOrInsert(const Name &name, bool &isNew)
{
    growIfFull();
    Entry **const chain = chainOf(name.myHash);
    for (Entry *entry = *chain; entry != nullptr; entry = entry->myNext) {
        if (name.isNameOf(*entry)) {
            isNew = false;
            return entry;
        }
    }
    isNew = true;
    void *const block = entryPool().allocate(sizeof(Entry));
    Entry **const link = placeIn(chain, name.myText, name.myLength);
    *link = new (block)
        Entry{nullptr, UTduplicate(name.myText, name.myLength), *link, name.myHash, name.myLength};
    ++myEntries;
    return *link;
}

bool UT_SymbolTable::addSymbol(const char *name, void *value)
{
    bool isNew = false;
    findOrInsert(Name(name), isNew)->myValue = value;
    return isNew;
}

const char *UT_SymbolTable::addSymbolGetName(const char *name, void *value)
{
    bool isNew = false;
    Entry *const entry = findOrInsert(Name(name), isNew);
    entry->myValue = value;
    return entry->myName;
}

const char *UT_SymbolTable::internName(const char *name)
{
    bool isNew = false;
    return findOrInsert(Name(name), isNew)->myName;
}

void *&UT_SymbolTable::findOrAddSymbol(const char *name)
{
    bool isNew = false;
    return findOrInsert(Name(name), isNew)->myValue;
}

void *&UT_SymbolTable::findOrAddSymbol(const char *text, size_t length, const char *&name)
{
    bool isNew = false;
    Entry *const entry = findOrInsert(Name(text, length), isNew);
    name = entry->myName;
    return entry->myValue;
}

bool UT_SymbolTable::lookUp(const Name &name, void **out) const
{
    const Entry *const entry = *locate(name);
    if (entry != nullptr && out != nullptr)
        *out = entry->myValue;
    return entry != nullptr;
}

bool UT_SymbolTable::findSymbol(const char *name, void **out) const
{
    return myBuckets != nullptr && lookUp(Name(name), out);
}

bool UT_SymbolTable::findSymbol(const char *name, size_t length, void **out) const
{
    return myBuckets != nullptr && lookUp(Name(name, length), out);
}

int UT_SymbolTable::deleteSymbol(const char *name)
{
    if (myBuckets == nullptr)
        return 0;
    Entry **const link = locate(Name(name));
    if (*link == nullptr)
        return 0;
    // The caller's name may be the entry's, so it goes after the last comparison.
    releaseEntry(std::exchange(*link, (*link)->myNext));
    --myEntries;
    shrinkIfSparse();
    return 1;
}

void UT_SymbolTable::releaseEntry(Entry *entry)
{
    std::free(entry->myName);
    entryPool().release(entry, sizeof(Entry));
}

void UT_SymbolTable::clearTable()
{
    for (int bucket = 0; bucket < myBucketCount; ++bucket)
        while (Entry *const entry = myBuckets[bucket]) {
            myBuckets[bucket] = entry->myNext;
            releaseEntry(entry);
        }
    std::free(std::exchange(myBuckets, nullptr));
    myBucketCount = 0;
    myTableSize = 0;
    myEntries = 0;
}

// ---- Table size ------------------------------------------------------------

void UT_SymbolTable::growIfFull()
{
    // Without buckets there is no place to insert, whatever the load factor.
    const bool isFull = myEntries >= entriesAt(myTableSize, myMaxLoadFactor);
    if (myBuckets != nullptr && (isResizeSuspended || !isFull))
        return;
    const int *const next =
        std::upper_bound(std::begin(TABLE_SIZES), std::end(TABLE_SIZES), myTableSize);
    if (next == std::end(TABLE_SIZES))
        return;
    myTableSize = *next;
    if (myTableSize > myBucketCount)
        rebuild(*std::min(next + STEPS_AHEAD, std::end(TABLE_SIZES) - 1));
}

void UT_SymbolTable::shrinkIfSparse()
{
    if (isResizeSuspended || !(entriesAt(myTableSize, myMinLoadFactor) > myEntries))
        return;
    // One step only: a table that empties will come here again.
    const int *const size =
        std::lower_bound(std::begin(TABLE_SIZES), std::end(TABLE_SIZES), myTableSize);
    if (size == std::begin(TABLE_SIZES))
        return;
    myTableSize = size[-1];
    if (size + STEPS_AHEAD < std::end(TABLE_SIZES) && myBucketCount > size[STEPS_AHEAD])
        rebuild(myTableSize);
}

// For those who see the entries in order.
void UT_SymbolTable::settle() const
{
    if (myBucketCount != myTableSize)
        rebuild(myTableSize);
}

// Moves every entry to its place among `bucketCount` buckets.
void UT_SymbolTable::rebuild(int bucketCount) const
{
    const auto count = static_cast<size_t>(bucketCount);
    const size_t bytes = count > SIZE_MAX / sizeof(Entry *) ? SIZE_MAX : count * sizeof(Entry *);
    Entry **const oldBuckets = myBuckets;
    const int oldCount = myBucketCount;
    myBuckets = static_cast<Entry **>(UTallocate(bytes));
    myBucketCount = bucketCount;
    std::fill_n(myBuckets, bucketCount, nullptr);

    for (int bucket = 0; bucket < oldCount; ++bucket) {
        if (bucket + FETCHED_AHEAD < oldCount)
            __builtin_prefetch(oldBuckets[bucket + FETCHED_AHEAD]);
        while (Entry *const entry = oldBuckets[bucket]) {
            oldBuckets[bucket] = entry->myNext;
            Entry **const link = placeIn(chainOf(entry->myHash), entry->myName, entry->myLength);
            entry->myNext = *link;
            *link = entry;
        }
    }
    std::free(oldBuckets);
}

void UT_SymbolTable::setMaxLoadFactor(float factor)
{
    myMaxLoadFactor = factor;
    if (factor <= 0 || factor <= myMinLoadFactor)
        myMaxLoadFactor = std::max(0.75f, 2 * myMinLoadFactor);
}

void UT_SymbolTable::setMinLoadFactor(float factor)
{
    myMinLoadFactor = factor;
    if (factor < 0 || factor >= myMaxLoadFactor)
        myMinLoadFactor = myMaxLoadFactor / 2;
}

// ---- Whole table -----------------------------------------------------------

// Visits all entries in order until visit(entry) is false; the entry may be gone
// after that.
template <class Visit>
void UT_SymbolTable::visitAll(Visit visit) const
{
    settle();
    for (int bucket = 0; bucket < myTableSize; ++bucket)
        for (Entry *entry = myBuckets[bucket]; entry != nullptr;) {
            Entry *const next = entry->myNext;
            if (!visit(*entry))
                return;
            entry = next;
        }
}

bool UT_SymbolTable::traverseSymbols(Callback callback, void *data)
{
    // Resizing would reorder what is still to be visited. A traversal inside another must leave the
    // table alone until both end.
    const bool wasSuspended = std::exchange(isResizeSuspended, true);
    bool goesOn = true;
    visitAll([&](Entry &entry) {
        goesOn = callback(&entry.myValue, entry.myName, data) != 0;
        return goesOn;
    });
    isResizeSuspended = wasSuspended;
    shrinkIfSparse();
    return goesOn;
}

void UT_SymbolTable::mergeTable(const UT_SymbolTable &other)
{
    if (this == &other) // it could grow under its own traversal
        return;
    other.visitAll([this](const Entry &entry) {
        addSymbol(entry.myName, entry.myValue);
        return true;
    });
}

char *UT_SymbolTable::makeUniqueName(const char *base) const
{
    const char *const text = base != nullptr ? base : "";
    size_t length = std::strlen(text);
    while (length > 0 && UTisDigit(text[length - 1]))
        --length;

    uint64_t counter = 1;
    visitAll([&](const Entry &entry) {
        const char *const key = entry.myName;
        if (std::strncmp(key, text, length) == 0 && UTisDigit(key[length])) {
            const uint64_t number = std::strtoull(key + length, nullptr, 10);
            // A number beyond all counters does not move this one.
            if (counter <= number && number != UINT64_MAX)
                counter = number + 1;
        }
        return true;
    });

    // An int's digits as "%d" would print them, and more where it takes more.
    const size_t bytes = length + 21; // 20 digits and the NUL
    char *const name = static_cast<char *>(UTallocate(bytes));
    std::memcpy(name, text, length);
    std::snprintf(name + length, bytes - length, "%" PRIu64, counter);
    return name;
}

int64_t UT_SymbolTable::getMemoryUsage(bool shallow) const
{
    size_t bytes = sizeof *this;
    if (!shallow) {
        bytes += static_cast<size_t>(myTableSize) * sizeof(Entry *);
        visitAll([&](const Entry &entry) {
            bytes += sizeof(Entry) + std::strlen(entry.myName) + 1;
            return true;
        });
    }
    return static_cast<int64_t>(bytes);
}

void UT_SymbolTable::outputStats(FILE *stream) const
{
    settle();
    int used = 0, entries = 0, collisions = 0, shortest = 0, longest = 0;
    for (int bucket = 0; bucket < myTableSize; ++bucket) {
        int length = 0;
        for (const Entry *entry = myBuckets[bucket]; entry != nullptr; entry = entry->myNext)
            ++length;
        if (length == 0)
            continue;
        shortest = used == 0 ? length : std::min(shortest, length);
        longest = std::max(longest, length);
        ++used;
        entries += length;
        collisions += length - 1;
    }

    std::fprintf(stream, "Table size: %d\n", myTableSize);
    std::fprintf(stream, "   Entries: %d\n", entries);
    if (myTableSize != 0)
        std::fprintf(stream, "  Coverage: %g\n", static_cast<double>(used) / myTableSize);
    std::fprintf(stream, "Collisions: %d\n", collisions);
    if (used == 0)
        return;
    std::fprintf(stream, "   Lengths: [%d-%d] avg: %g\n", shortest, longest,
                 static_cast<double>(entries) / used);
    std::fprintf(stream, " Deviation: %g\n", static_cast<double>(longest - shortest) / shortest);
}

void UT_SymbolTable::dumpTable(FILE *stream) const
{
    settle();
    for (int bucket = 0; bucket < myTableSize; ++bucket) {
        if (myBuckets[bucket] == nullptr)
            continue;
        std::fprintf(stream, "[%3d]: ", bucket);
        for (const Entry *entry = myBuckets[bucket]; entry != nullptr; entry = entry->myNext)
            std::fprintf(stream, " \"%s\" = 0x%08" PRIXPTR "\n", entry->myName,
                         reinterpret_cast<uintptr_t>(entry->myValue));
    }
}
