// A growable, null-terminated vector of words that it does not own.
//
// Laid out like main's argv: getArgv()[getArgc()] is null after every setArg.
// The first 256 slots live inside the object, so a list of ordinary length
// needs no heap; after that the capacity doubles.
#pragma once

class UT_WordList
{
public:
    UT_WordList();
    ~UT_WordList();
    UT_WordList(const UT_WordList &) = delete;
    UT_WordList &operator=(const UT_WordList &) = delete;

    // Stores `value` (borrowed) at `index`, growing the list as needed; skipped
    // slots become null. A null value cuts the list to `index` words.
    // REQUIRES: index >= 0
    void setArg(int index, const char *value);

    int getArgc() const { return myArgc; }
    char *getArg(int index) const { return myArgv[index]; }
    char **getArgv() const { return myArgv; }

private:
    static constexpr int INLINE_SLOTS = 256;

    void grow(int slots);

    char **myArgv; // myInline until more than INLINE_SLOTS slots are needed
    int myArgc;
    int myCapacity;
    char *myInline[INLINE_SLOTS];
};
