#include "UT/UT_WordList.h"

#include "UT/UT_Memory.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

UT_WordList::UT_WordList() : myArgv(myInline), myArgc(0), myCapacity(INLINE_SLOTS)
{
    myInline[0] = nullptr;
}

UT_WordList::~UT_WordList()
{
    if (myArgv != myInline)
        std::free(myArgv);
}

void UT_WordList::grow(int slots)
{
    if (slots <= myCapacity)
        return;
    while (myCapacity < slots)
        myCapacity = myCapacity > INT_MAX / 2 ? INT_MAX : myCapacity * 2;
    const size_t bytes = static_cast<size_t>(myCapacity) * sizeof(char *);
    if (myArgv != myInline) {
        myArgv = static_cast<char **>(UTreallocate(myArgv, bytes));
        return;
    }
    myArgv = static_cast<char **>(UTallocate(bytes));
    std::memcpy(myArgv, myInline, sizeof myInline);
}

void UT_WordList::setArg(int index, const char *value)
{
    // Words are handed out as char *, as main's are; nothing here writes to them.
    char *word = const_cast<char *>(value);
    if (index < myArgc) {
        myArgv[index] = word;
        if (word == nullptr)
            myArgc = index;
        return;
    }
    grow(index + 2);
    std::fill(myArgv + myArgc, myArgv + index, nullptr);
    myArgv[index] = word;
    myArgv[index + 1] = nullptr;
    myArgc = word == nullptr ? index : index + 1;
}
