// White space, tabs and the characters of a set.
#include "UT/UT_String.h"

#include <cstring>

int UT_String::removeChars(const char *set)
{
    if (!isNonEmpty() || set == nullptr)
        return 0;
    makeOwned();
    char *write = myData;
    const char *read = myData;
    for (; *read != '\0'; ++read) {
        if (std::strchr(set, *read) == nullptr)
            *write++ = *read;
    }
    *write = '\0';
    return static_cast<int>(read - write);
}

void UT_String::trimSpace()
{
    if (!isNonEmpty())
        return;
    const char *start = myData + std::strspn(myData, WHITE_SPACE);
    size_t size = std::strlen(start);
    while (size > 0 && std::strchr(WHITE_SPACE, start[size - 1]) != nullptr)
        --size;
    // By way of a copy: the text may be borrowed, and a part of itself.
    assignCopy(std::string(start, size).c_str());
}

void UT_String::collapseSpace()
{
    if (!isNonEmpty())
        return;
    std::string result;
    const char *word = myData + std::strspn(myData, WHITE_SPACE);
    while (*word != '\0') {
        const size_t size = std::strcspn(word, WHITE_SPACE);
        result += result.empty() ? "" : " ";
        result.append(word, size);
        word += size;
        word += std::strspn(word, WHITE_SPACE);
    }
    assignCopy(result.c_str());
}

void UT_String::expandTabs(int tabSize)
{
    if (!isNonEmpty() || tabSize < 1)
        return;
    const size_t step = static_cast<size_t>(tabSize);
    std::string result;
    size_t lineStart = 0;
    for (const char *p = myData; *p != '\0'; ++p) {
        if (*p == '\t')
            result.append(step - (result.size() - lineStart) % step, ' ');
        else
            result += *p;
        // Tabs count from their own line's start.
        if (*p == '\n')
            lineStart = result.size();
    }
    assignCopy(result.c_str());
}
