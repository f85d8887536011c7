#include "UT/UT_String.h"

#include "UT/UT_Character.h"
#include "UT/UT_Memory.h"

#include <cctype>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace
{
char *copyOf(const char *text, size_t length)
{
    char *copy = static_cast<char *>(UTallocate(length + 1));
    // A shorter text leaves the rest zero.
    std::strncpy(copy, text != nullptr ? text : "", length);
    copy[length] = '\0';
    return copy;
}

// What may stand beside a word that findWord finds.
bool isBoundary(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return UTisSpace(c) || (std::ispunct(byte) != 0 && c != '_') || std::isprint(byte) == 0;
}

const char *skipSpaces(const char *p, bool allowed)
{
    while (allowed && UTisSpace(*p))
        ++p;
    return p;
}

const char *skipSign(const char *p)
{
    return *p == '+' || *p == '-' ? p + 1 : p;
}

const char *skipDigits(const char *p)
{
    while (UTisDigit(*p))
        ++p;
    return p;
}
} // namespace

UT_String::UT_String(const char *text, bool deep, int length)
    : myData(nullptr), isBorrowed(false), isAlwaysDeep(false)
{
    if (length >= 0) {
        myData = copyOf(text, static_cast<size_t>(length));
    } else if (deep) {
        myData = UTduplicate(text);
    } else {
        myData = const_cast<char *>(text); // never written while borrowed
        isBorrowed = true;
    }
}

UT_String::UT_String(AlwaysDeep, const char *text)
    : myData(UTduplicate(text)), isBorrowed(false), isAlwaysDeep(true)
{
}

UT_String::UT_String(const UT_String &other)
    : myData(nullptr), isBorrowed(true), isAlwaysDeep(other.isAlwaysDeep)
{
    *this = other;
}

UT_String::~UT_String()
{
    clear();
}

UT_String &UT_String::operator=(const UT_String &other)
{
    if (this == &other)
        return *this;
    if (myData == nullptr) // two unset texts: nothing below would note the borrowing
        isBorrowed = !isAlwaysDeep;
    return *this = other.myData;
}

UT_String &UT_String::operator=(const char *text)
{
    if (text == myData)
        return *this;
    // Copied before the old text goes: `text` may be a part of it.
    char *data = isAlwaysDeep ? UTduplicate(text) : const_cast<char *>(text);
    clear();
    myData = data;
    isBorrowed = !isAlwaysDeep;
    return *this;
}

void UT_String::makeOwned()
{
    if (isBorrowed)
        adopt(UTduplicate(myData != nullptr ? myData : ""));
}

void UT_String::assignCopy(const char *text, int length)
{
    if (text == nullptr)
        text = "";
    if (length >= 0) {
        adopt(copyOf(text, static_cast<size_t>(length)));
        return;
    }
    // An equal text keeps its buffer, and pointers into it.
    const bool same = !isBorrowed && myData != nullptr && std::strcmp(myData, text) == 0;
    if (!same)
        adopt(UTduplicate(text));
}

void UT_String::adopt(char *text)
{
    clear();
    myData = text;
    isBorrowed = false;
}

void UT_String::clear()
{
    if (!isBorrowed)
        std::free(myData);
    myData = nullptr;
}

void UT_String::swap(UT_String &other)
{
    std::swap(myData, other.myData);
    const bool borrowed = isBorrowed;
    isBorrowed = other.isBorrowed;
    other.isBorrowed = borrowed;
    // A borrowed text may have come to one that never borrows.
    for (UT_String *side : {this, &other}) {
        if (side->isAlwaysDeep)
            side->makeOwned();
    }
}

UT_String &UT_String::operator+=(const char *text)
{
    if (!isNonEmpty()) {
        assignCopy(text);
        return *this;
    }
    makeOwned();
    if (text == nullptr)
        return *this;
    const size_t oldLength = std::strlen(myData);
    const size_t added = std::strlen(text);
    // The text may be our own, which moves with the buffer.
    const auto offset = reinterpret_cast<uintptr_t>(text) - reinterpret_cast<uintptr_t>(myData);
    myData = static_cast<char *>(UTreallocate(myData, oldLength + added + 1));
    std::memcpy(myData + oldLength, offset <= oldLength ? myData + offset : text, added);
    myData[oldLength + added] = '\0';
    return *this;
}

int UT_String::sprintf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    char *text = nullptr;
    const int length = UTprint(text, format, args);
    va_end(args);
    adopt(text);
    return length;
}

void UT_String::setInteger(int32_t value)
{
    sprintf("%lld", static_cast<long long>(value));
}

void UT_String::setInteger(uint32_t value)
{
    sprintf("%lld", static_cast<long long>(value));
}

void UT_String::setGroupedInteger(int64_t value)
{
    const std::string digits = std::to_string(value);
    const size_t sign = value < 0 ? 1 : 0;
    std::string grouped;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > sign && (digits.size() - i) % 3 == 0)
            grouped += ',';
        grouped += digits[i];
    }
    assignCopy(grouped.c_str());
}

int UT_String::length() const
{
    return myData == nullptr ? 0 : static_cast<int>(std::strlen(myData));
}

bool UT_String::startsWith(const char *prefix) const
{
    if (!isNonEmpty() || prefix == nullptr || *prefix == '\0')
        return false;
    return std::strncmp(myData, prefix, std::strlen(prefix)) == 0;
}

bool UT_String::endsWith(const char *suffix) const
{
    if (!isNonEmpty() || suffix == nullptr || *suffix == '\0')
        return false;
    const size_t ours = std::strlen(myData);
    const size_t theirs = std::strlen(suffix);
    // A text is not its own suffix.
    return ours > theirs && std::strcmp(myData + ours - theirs, suffix) == 0;
}

int UT_String::countChar(char c) const
{
    int count = 0;
    for (const char *p = myData; p != nullptr && *p != '\0'; ++p)
        count += *p == c;
    return count;
}

const char *UT_String::nextWord(const char *text, const char *from, const char *word)
{
    const size_t length = std::strlen(word);
    for (const char *p = std::strstr(from, word); p != nullptr; p = std::strstr(p + 1, word)) {
        const bool starts = p == text || isBoundary(p[-1]);
        if (starts && isBoundary(p[length]))
            return p;
    }
    return nullptr;
}

const char *UT_String::findWord(const char *word) const
{
    if (!isNonEmpty() || word == nullptr || *word == '\0')
        return nullptr;
    return nextWord(myData, myData, word);
}

bool UT_String::contains(const char *text, bool wholeWord, bool asPattern) const
{
    if (myData == nullptr || text == nullptr)
        return false;
    if (wholeWord)
        return findWord(text) != nullptr;
    if (asPattern)
        return match((std::string("*") + text + "*").c_str());
    return std::strstr(myData, text) != nullptr;
}

bool UT_String::isInteger(bool allowSpace) const
{
    if (!isNonEmpty())
        return false;
    const char *digits = skipSign(skipSpaces(myData, allowSpace));
    const char *end = skipDigits(digits);
    return end != digits && *skipSpaces(end, allowSpace) == '\0';
}

bool UT_String::isNumber(bool allowSpace, bool noDigitsIsNumber) const
{
    if (!isNonEmpty())
        return false;
    const char *start = skipSpaces(myData, allowSpace);
    // Signs or a point alone are what the caller says: a field that is being typed in.
    const size_t marks = std::strspn(start, "+-.");
    if (marks > 0 && *skipSpaces(start + marks, allowSpace) == '\0')
        return noDigitsIsNumber;
    const char *whole = skipSign(start);
    const char *end = skipDigits(whole);
    bool hasDigits = end != whole;
    if (*end == '.') {
        const char *fraction = ++end;
        end = skipDigits(fraction);
        hasDigits = hasDigits || end != fraction;
    }
    if (hasDigits && (*end == 'e' || *end == 'E')) {
        const char *exponent = skipSign(end + 1);
        end = skipDigits(exponent);
        hasDigits = end != exponent;
    }
    return hasDigits && *skipSpaces(end, allowSpace) == '\0';
}

bool UT_String::hasWhitespace() const
{
    return myData != nullptr && std::strpbrk(myData, WHITE_SPACE) != nullptr;
}

bool UT_String::hasWildcards(const char *text)
{
    return text != nullptr && std::strpbrk(text, " ,?*[") != nullptr;
}

int UT_String::toInt() const
{
    if (myData == nullptr)
        return 0;
    const long value = std::strtol(myData, nullptr, 10);
    if (value > INT_MAX)
        return INT_MAX;
    return value < INT_MIN ? INT_MIN : static_cast<int>(value);
}

double UT_String::toFloat() const
{
    return myData == nullptr ? 0.0 : std::strtod(myData, nullptr);
}

std::string UT_String::toStdString() const
{
    return myData == nullptr ? std::string() : std::string(myData);
}
