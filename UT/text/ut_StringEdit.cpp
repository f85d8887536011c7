// Editing: suffixes, replacement, paths, quotes and identifiers.
#include "UT/UT_String.h"

#include "UT/UT_Character.h"

#include <cstring>
#include <ostream>

namespace
{
// With a backslash in front of each `quote` and each backslash.
std::string escaped(const char *text, char quote)
{
    std::string result;
    for (; text != nullptr && *text != '\0'; ++text) {
        if (*text == quote || *text == '\\')
            result += '\\';
        result += *text;
    }
    return result;
}
} // namespace

bool UT_String::changeSuffix(const char *oldSuffix, const char *newSuffix)
{
    if (myData == nullptr || oldSuffix == nullptr || newSuffix == nullptr)
        return false;
    const size_t ours = std::strlen(myData);
    const size_t theirs = std::strlen(oldSuffix);
    if (ours < theirs || std::strcmp(myData + ours - theirs, oldSuffix) != 0)
        return false;
    assignCopy((std::string(myData, ours - theirs) + newSuffix).c_str());
    return true;
}

int UT_String::replaceFound(Finder next, const char *find, const char *replacement, bool all)
{
    if (!isNonEmpty() || find == nullptr || replacement == nullptr || *find == '\0')
        return 0;
    const size_t length = std::strlen(find);
    const char *rest = myData;
    std::string result;
    int count = 0;
    for (const char *hit; (all || count == 0) && (hit = next(myData, rest, find)) != nullptr;) {
        result.append(rest, hit);
        result += replacement;
        rest = hit + length;
        ++count;
    }
    if (count == 0)
        return 0;
    assignCopy((result + rest).c_str());
    return count;
}

int UT_String::replaceText(const char *find, const char *replacement, bool all)
{
    const Finder next = [](const char *, const char *from, const char *text) -> const char * {
        return std::strstr(from, text);
    };
    return replaceFound(next, find, replacement, all);
}

int UT_String::replaceWord(const char *find, const char *replacement, bool all)
{
    return replaceFound(nextWord, find, replacement, all);
}

bool UT_String::collapseAbsolutePath()
{
    if (myData == nullptr || *myData != '/')
        return false;
    makeOwned();
    char *write = myData; // the kept components, each with its '/' in front
    const char *read = myData;
    while (*(read += std::strspn(read, "/")) != '\0') {
        const size_t length = std::strcspn(read, "/");
        const bool isParent = length == 2 && read[0] == '.' && read[1] == '.';
        const bool isHere = length == 1 && read[0] == '.';
        if (isParent) {
            if (write == myData)
                return false;
            while (*--write != '/') {
            }
        } else if (!isHere) {
            *write++ = '/';
            std::memmove(write, read, length);
            write += length;
        }
        read += length;
    }
    if (write == myData)
        *write++ = '/';
    *write = '\0';
    return true;
}

bool UT_String::makeRelativePath(const char *from, const char *to)
{
    UT_String start(from), goal(to);
    if (!start.collapseAbsolutePath() || !goal.collapseAbsolutePath())
        return false;
    // Each component with a '/' in front; the root has none.
    const char *a = start[1] != '\0' ? start.text() : "";
    const char *b = goal[1] != '\0' ? goal.text() : "";
    for (;;) {
        const size_t componentA = *a == '\0' ? 0 : 1 + std::strcspn(a + 1, "/");
        const size_t componentB = *b == '\0' ? 0 : 1 + std::strcspn(b + 1, "/");
        if (componentA == 0 || componentA != componentB || std::strncmp(a, b, componentA) != 0)
            break;
        a += componentA;
        b += componentB;
    }
    std::string path;
    for (; *a != '\0'; ++a)
        path += *a == '/' ? "/.." : "";
    path += b;
    assignCopy(path.empty() ? "." : path.c_str() + 1);
    return true;
}

void UT_String::quoteIfSpaced()
{
    if (!hasWhitespace())
        return;
    const size_t size = std::strlen(myData);
    if (size >= 2 && myData[0] == '"' && myData[size - 1] == '"')
        return;
    assignCopy(('"' + escaped(myData, '"') + '"').c_str());
}

void UT_String::writeText(std::ostream &os) const
{
    const char *quote = !isNonEmpty() || hasWhitespace() ? "\"" : "";
    os << quote + escaped(myData, '"') + quote; // at once: a width set on `os` holds for all
}

UT_String UT_String::makeQuoted(char quote) const
{
    const bool hasSingle = countChar('\'') > 0;
    const bool hasDouble = countChar('"') > 0;
    if (quote == '\'' && hasSingle && !hasDouble)
        quote = '"';
    else if (quote == '"' && hasDouble && !hasSingle)
        quote = '\'';
    return UT_String(ALWAYS_DEEP, (quote + escaped(myData, quote) + quote).c_str());
}

void UT_String::decodeEscapes()
{
    if (!isNonEmpty())
        return;
    makeOwned();
    char *write = myData;
    for (const char *read = myData; *read != '\0'; ++read) {
        char c = *read;
        if (c == '\\' && read[1] != '\0') {
            c = *++read;
            c = c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
        }
        *write++ = c;
    }
    *write = '\0';
}

int UT_String::makeIdentifier(const char *allowed)
{
    if (!isNonEmpty())
        return 0;
    const auto isAllowed = [allowed](char c) {
        return allowed != nullptr && std::strchr(allowed, c) != nullptr;
    };
    makeOwned();
    int changes = 0;
    for (char *p = myData; *p != '\0'; ++p) {
        if (UTisNameCharacter(*p) || isAllowed(*p))
            continue;
        *p = '_';
        ++changes;
    }
    if (UTisDigit(*myData) || isAllowed(*myData)) {
        assignCopy((std::string("_") + myData).c_str());
        ++changes;
    }
    return changes;
}
