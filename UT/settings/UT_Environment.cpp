#include "UT/UT_Environment.h"

#include "UT/UT_Memory.h"
#include "UT/UT_ScratchBuffer.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace
{
//     environ -> | "A=1" | "B=" | "PATH=/bin" | null |     one block from malloc
//                   |       |        |                      each text another
//
// Ascending by strcmp. The block grows by one slot for each new variable: programs set
// few, and children are started with the block as it is.
class ut_EnvStore
{
public:
    const char *get(const char *name) const;
    void set(const char *name, const char *value);
    void unset(const char *name);
    void refresh();
    char **entries() const { return myEntries; }

private:
    int find(const char *name) const;
    void insert(char *entry);

    char **myEntries = nullptr; // sorted; a null at myCount. environ points here.
    int myCount = 0;
    UT_ScratchBuffer myEntry; // for composing "NAME=value"
};

// Kept for the life of the process, as `environ` points into it.
ut_EnvStore &freshStore()
{
    static ut_EnvStore *theStore = new ut_EnvStore;
    theStore->refresh();
    return *theStore;
}

char **newArray(int entries)
{
    const size_t slots = static_cast<size_t>(entries) + 1;
    return static_cast<char **>(UTallocate(slots * sizeof(char *)));
}

int compareBytes(char a, char b)
{
    return static_cast<unsigned char>(a) - static_cast<unsigned char>(b);
}

// The end of the name stands for '=', so this agrees with the order of entries.
int compareName(const char *name, const char *entry)
{
    while (*name != '\0' && *name == *entry) {
        name++;
        entry++;
    }
    return compareBytes(*name != '\0' ? *name : '=', *entry);
}

int compareEntries(const void *a, const void *b)
{
    return std::strcmp(*static_cast<char *const *>(a), *static_cast<char *const *>(b));
}

void freeEntries(char **entries, int count)
{
    for (int i = 0; i < count; i++)
        std::free(entries[i]);
    std::free(entries);
}

void ut_EnvStore::refresh()
{
    // The pointer alone tells that nobody has replaced the environment; looking at
    // every entry would cost more than the bisection saves.
    if (myEntries != nullptr && environ == myEntries)
        return;
    char **const foreign = environ; // null after clearenv
    int total = 0;
    while (foreign != nullptr && foreign[total] != nullptr)
        total++;
    char **const copies = newArray(total);
    int count = 0;
    for (int i = 0; i < total; i++)
        if (std::strchr(foreign[i], '=') != nullptr)
            copies[count++] = UTduplicate(foreign[i]);
    copies[count] = nullptr;
    std::qsort(copies, static_cast<size_t>(count), sizeof *copies, compareEntries);
    environ = copies;
    freeEntries(myEntries, myCount); // last: the foreign array may share our texts
    myEntries = copies;
    myCount = count;
}

int ut_EnvStore::find(const char *name) const
{
    if (myCount == 0)
        return -1;
    int low = 0;
    int high = myCount - 1;
    // Both ends first, so that the loop may leave them out.
    if (compareName(name, myEntries[low]) == 0)
        return low;
    if (compareName(name, myEntries[high]) == 0)
        return high;
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        const int order = compareName(name, myEntries[middle]);
        if (order == 0)
            return middle;
        (order < 0 ? high : low) = middle;
    }
    return -1;
}

const char *ut_EnvStore::get(const char *name) const
{
    const int index = find(name);
    return index < 0 ? nullptr : myEntries[index] + std::strlen(name) + 1;
}

void ut_EnvStore::set(const char *name, const char *value)
{
    // Composed before anything is freed: the value may be a part of the old entry.
    myEntry.clear();
    myEntry.append(name);
    myEntry.append('=');
    myEntry.append(value);
    char *const entry = UTduplicate(myEntry.buffer());
    const int index = find(name);
    if (index < 0)
        return insert(entry);
    std::free(myEntries[index]);
    myEntries[index] = entry;
}

void ut_EnvStore::insert(char *entry)
{
    const size_t slots = static_cast<size_t>(myCount) + 2;
    myEntries = static_cast<char **>(UTreallocate(myEntries, slots * sizeof(char *)));
    environ = myEntries;
    // The rest is in order, so moving the greater ones up is all the sorting needed.
    int place = myCount++;
    myEntries[myCount] = nullptr;
    for (; place > 0 && std::strcmp(entry, myEntries[place - 1]) < 0; place--)
        myEntries[place] = myEntries[place - 1];
    myEntries[place] = entry;
}

void ut_EnvStore::unset(const char *name)
{
    const int index = find(name);
    if (index < 0)
        return;
    std::free(myEntries[index]);
    const size_t behind = static_cast<size_t>(myCount - index); // with the null
    std::memmove(myEntries + index, myEntries + index + 1, behind * sizeof(char *));
    myCount--;
}
} // namespace

const char *UTgetenv(const char *name)
{
    return freshStore().get(name);
}

void UTsetenv(const char *name, const char *value)
{
    freshStore().set(name, value);
}

void UTputenv(const char *text)
{
    const char *equals = std::strchr(text, '=');
    if (equals == nullptr)
        return;
    char *name = UTduplicate(text);
    name[equals - text] = '\0';
    UTsetenv(name, equals + 1);
    std::free(name);
}

void UTunsetenv(const char *name)
{
    freshStore().unset(name);
}

char **UTgetEnvironment()
{
    return freshStore().entries();
}
