// A hash table from names to pointers.
//
// The table owns copies of the names. The values are the caller's: the table neither
// copies nor frees what they point to, and a caller that stores objects deletes them
// with one traversal before the table ends. A null name counts as the empty one.
//
//     buckets -> | 0 | 1 | ... |                    a prime number of chains
//                  |
//                  v  ascending by strcmp
//                 {value, name, next, hash, length} -> {...} -> null
//
// Two names of a chain are compared only where their hashes agree, or where one is put
// in order: names lie all over the memory, and the entries tell most of them apart.
//
// Table sizes are primes from a fixed ladder, each about 1.2 times the one before.
// An insertion that finds entries >= tableSize * maximum load factor (0.75) first
// moves one step up, whether or not the name is there; a removal that leaves
// entries < tableSize * minimum load factor (0.1) moves one step down, never below
// 5. All operations on one name are O(1) on average.
//
// There are more buckets than that while a table grows: steps are short, and each would
// move every entry. Whoever wants to see the entries in order finds as many as there
// should be.
//
// Entries do not move in memory: names and value slots that the table returns stay
// valid until their entry is removed. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

class UT_SymbolTable
{
public:
    // Gets the entry's value slot, its name and the caller's data; 0 stops the
    // traversal.
    using Callback = int (*)(void **value, const char *name, void *data);

    UT_SymbolTable() = default;
    virtual ~UT_SymbolTable();
    UT_SymbolTable(const UT_SymbolTable &) = delete;
    UT_SymbolTable &operator=(const UT_SymbolTable &) = delete;

    unsigned entries() const { return myEntries; }
    int tableSize() const { return myTableSize; } // 0 before the first insertion

    // True for a new entry, false when the value of an existing one was replaced.
    bool addSymbol(const char *name, void *value);

    // The same; returns the table's own copy of the name.
    const char *addSymbolGetName(const char *name, void *value);

    // Adds a missing name with the value null, keeps the value of an existing
    // one. Returns the table's own copy of the name, or the entry's value slot.
    const char *internName(const char *name);
    void *&findOrAddSymbol(const char *name);

    // The latter for the first `length` characters of a text that may go on, with the
    // table's own copy of the name. REQUIRES: no NUL among them
    void *&findOrAddSymbol(const char *text, size_t length, const char *&name);

    // True, and the value in *out unless `out` is null, if the name is there. The
    // second form takes the first `length` characters of a text that may go on.
    bool findSymbol(const char *name, void **out = nullptr) const;
    bool findSymbol(const char *name, size_t length, void **out) const;

    // Returns the number of entries removed, 0 or 1. The name may be the table's
    // own copy.
    int deleteSymbol(const char *name);

    // Visits all entries by bucket and by name inside a bucket; false when a
    // callback stopped it. The callback may delete the entry that it was given
    // and add others (which may or may not be visited); the table is not resized
    // meanwhile.
    bool traverseSymbols(Callback callback, void *data);

    // Adds every entry of the other table; values of common names are replaced.
    void mergeTable(const UT_SymbolTable &other);

    // `base` without its trailing digits, followed by the smallest number from 1
    // on that is above all numbers which follow that prefix in the table: with
    // "obj1" and "obj7" there, both "obj" and "obj3" give "obj8". O(entries).
    // Returns a malloc'd text that the caller frees.
    [[nodiscard]] char *makeUniqueName(const char *base) const;

    // Removes all entries and the buckets; the load factors stay.
    void clearTable();

    // Entries per bucket; neither changes the table at once. A maximum that is not
    // positive or not above the minimum becomes the greater of 0.75 and twice the
    // minimum; a minimum that is negative or not below the maximum becomes half
    // the maximum.
    void setMaxLoadFactor(float factor);
    void setMinLoadFactor(float factor);
    float maxLoadFactor() const { return myMaxLoadFactor; }
    float minLoadFactor() const { return myMinLoadFactor; }

    // Bytes of the object itself, and unless `shallow` of buckets, entries and
    // names.
    int64_t getMemoryUsage(bool shallow) const;

    // Statistics of the chains' lengths, and all entries by bucket, as text.
    void outputStats(FILE *stream) const;
    void dumpTable(FILE *stream) const;

private:
    struct Entry {
        void *myValue;
        char *myName; // from malloc
        Entry *myNext;
        uint32_t myHash;
        uint32_t myLength; // of the name
    };
    struct Name; // a text, its length and its hash

    Entry **chainOf(uint32_t hash) const;
    Entry **locate(const Name &name) const;
    static Entry **placeIn(Entry **chain, const char *name, uint32_t length);
    Entry *findOrInsert(const Name &name, bool &isNew);
    bool lookUp(const Name &name, void **out) const;

    void growIfFull();
    void shrinkIfSparse();
    void rebuild(int bucketCount) const;
    void settle() const;
    void releaseEntry(Entry *entry);

    template <class Visit>
    void visitAll(Visit visit) const;

    // How many chains hold the entries shows in nothing but their order.
    mutable Entry **myBuckets = nullptr;
    mutable int myBucketCount = 0; // myTableSize or more
    int myTableSize = 0;
    unsigned myEntries = 0;
    float myMaxLoadFactor = 0.75f;
    float myMinLoadFactor = 0.1f;
    bool isResizeSuspended = false;
};
