#include "UT/UT_StringList.h"

#include <algorithm>
#include <cstring>

namespace
{
// An element copies whatever is assigned to it later, too.
UT_String *newElement(const char *text)
{
    return new UT_String(UT_String::ALWAYS_DEEP, text);
}

// strcmp with null in front of everything.
int comparePlain(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr)
        return (a != nullptr) - (b != nullptr);
    return std::strcmp(a, b);
}

bool isBefore(const char *a, const char *b, bool ascending, bool natural)
{
    if (!ascending)
        std::swap(a, b);
    return (natural ? UT_String::compareNatural(a, b) : comparePlain(a, b)) < 0;
}

// Unlike a search, which finds an unset element for null.
bool isEqual(const char *a, const char *b)
{
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0;
}

int commonLength(const char *a, const char *b, int limit)
{
    int length = 0;
    while (length < limit && a[length] == b[length])
        length++;
    return length;
}
} // namespace

UT_StringList::UT_StringList(const char *const *texts)
{
    for (; texts != nullptr && *texts != nullptr; texts++)
        append(*texts);
}

UT_StringList::UT_StringList(const UT_StringList &other)
{
    appendAll(other);
}

UT_StringList::~UT_StringList()
{
    clear();
}

UT_StringList &UT_StringList::operator=(const UT_StringList &other)
{
    if (this == &other)
        return *this;
    clear();
    appendAll(other);
    return *this;
}

int UT_StringList::append(const char *text)
{
    return static_cast<int>(myStrings.append(newElement(text)));
}

int UT_StringList::insert(const char *text, int index)
{
    if (index < 0)
        return -1;
    UT_String *element = newElement(text); // first: the text may be an element's
    if (index > entries())
        setEntries(index);
    return static_cast<int>(myStrings.insertAt(element, static_cast<unsigned>(index)));
}

int UT_StringList::remove(int index)
{
    if (index < 0 || index >= entries())
        return -1;
    UT_String *element = &(*this)(index);
    myStrings.removeIndex(static_cast<unsigned>(index));
    delete element;
    return index;
}

void UT_StringList::removeLast()
{
    remove(entries() - 1);
}

void UT_StringList::clear()
{
    setEntries(0);
}

void UT_StringList::setEntries(int count)
{
    while (entries() > count)
        removeLast();
    while (entries() < count)
        append("");
}

int UT_StringList::find(const char *text) const
{
    for (int i = 0; i < entries(); i++)
        if (comparePlain((*this)(i), text) == 0)
            return i;
    return -1;
}

void UT_StringList::sort(bool ascending, bool natural)
{
    std::stable_sort(myStrings.begin(), myStrings.end(),
                     [=](const UT_String *a, const UT_String *b) {
                         return isBefore(a->text(), b->text(), ascending, natural);
                     });
}

int UT_StringList::sortedInsert(const char *text, bool ascending, bool natural)
{
    return insert(text, lowerBound(text, ascending, natural));
}

int UT_StringList::sortedFind(const char *text, bool ascending, bool natural) const
{
    const int index = lowerBound(text, ascending, natural);
    if (index == entries() || isBefore(text, (*this)(index), ascending, natural))
        return -1;
    return index;
}

bool UT_StringList::operator==(const UT_StringList &other) const
{
    if (entries() != other.entries())
        return false;
    for (int i = 0; i < entries(); i++)
        if (!isEqual((*this)(i), other(i)))
            return false;
    return true;
}

int UT_StringList::commonPrefixLength() const
{
    if (entries() == 0)
        return 0;
    const char *first = (*this)(0);
    int length = (*this)(0).length();
    for (int i = 1; i < entries() && length != 0; i++) {
        const char *text = (*this)(i);
        length = text != nullptr ? commonLength(first, text, length) : 0;
    }
    return length;
}

std::vector<std::string> UT_StringList::toVector() const
{
    std::vector<std::string> texts;
    for (int i = 0; i < entries(); i++)
        texts.push_back((*this)(i).toStdString());
    return texts;
}

void UT_StringList::setFromVector(const std::vector<std::string> &texts)
{
    clear();
    for (const std::string &text : texts)
        append(text.c_str());
}

void UT_StringList::appendAll(const UT_StringList &other)
{
    for (int i = 0; i < other.entries(); i++)
        append(other(i));
}

// The first index whose element does not come before the text; entries() if all do.
int UT_StringList::lowerBound(const char *text, bool ascending, bool natural) const
{
    int low = 0;
    int high = entries();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (isBefore((*this)(middle), text, ascending, natural))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}
