// An ordered list of texts that owns them.
//
// Elements are copies of the caller's texts, numbered from 0 to entries() - 1; a null
// text makes an unset element. Plain order is strcmp's, natural order that of
// UT_String::compareNatural ("file2" before "file10"); unset elements come first in
// both, and descending order swaps the operands.
#pragma once

#include "UT/UT_PtrArray.h"
#include "UT/UT_String.h"

#include <string>
#include <vector>

class UT_StringList
{
public:
    UT_StringList() = default;
    explicit UT_StringList(const char *const *texts); // ends with a null
    UT_StringList(const UT_StringList &other);
    ~UT_StringList();
    UT_StringList &operator=(const UT_StringList &other);

    // Both return the new element's index. An index behind the end fills the gap
    // with empty texts; a negative one gives -1 and changes nothing.
    int append(const char *text);            // amortised O(1)
    int insert(const char *text, int index); // O(n)

    // Deletes the element and closes the gap, O(n). An index outside the list gives
    // -1 and changes nothing.
    int remove(int index);
    void removeLast(); // nothing in an empty list
    void clear();

    // Deletes the elements from `count` on, or appends empty ones up to it.
    // REQUIRES: count >= 0
    void setEntries(int count);

    int entries() const { return static_cast<int>(myStrings.entries()); }

    // The element itself: stays valid until it is removed or the list ends. What
    // is assigned to it is copied. REQUIRES: 0 <= index < entries()
    UT_String &operator()(int index) const { return *myStrings(static_cast<unsigned>(index)); }
    UT_String &last() const { return (*this)(entries() - 1); }

    // Index of the first equal element, -1 when there is none. Null equals unset
    // elements only. O(n); in an ordered list sortedFind() needs O(log n).
    int find(const char *text) const;

    void sort(bool ascending, bool natural);

    // In a list that is in this order: inserts a copy in front of its equals and
    // gives its index; or the index of the first equal element, -1 without one.
    int sortedInsert(const char *text, bool ascending, bool natural);
    int sortedFind(const char *text, bool ascending, bool natural) const;

    // The same texts in the same order. An unset element equals none.
    bool operator==(const UT_StringList &other) const;
    bool operator!=(const UT_StringList &other) const { return !(*this == other); }

    // How many characters all elements begin with alike.
    int commonPrefixLength() const;

    // Unset elements become "".
    std::vector<std::string> toVector() const;
    void setFromVector(const std::vector<std::string> &texts);

private:
    void appendAll(const UT_StringList &other);
    int lowerBound(const char *text, bool ascending, bool natural) const;

    UT_PtrArray<UT_String *> myStrings; // we delete these
};
