// Splitting a text into words and fields, in place.
#include "UT/UT_String.h"

#include "UT/UT_Character.h"
#include "UT/UT_WordList.h"

#include <algorithm>
#include <cstring>

namespace
{
bool isQuote(char c)
{
    return c == '"' || c == '\'';
}

// Moves one word from `read` down to `write` without its quotes. Both end behind
// what they handled; `write` never passes `read`.
void takeWord(const char *&read, char *&write)
{
    char previous = '\0';
    while (*read != '\0' && !UTisSpace(*read)) {
        const char c = *read++;
        if (!isQuote(c)) {
            *write++ = previous = c;
            continue;
        }
        if (previous == '\\') {
            write[-1] = previous = c;
            continue;
        }
        bool escaped = false;
        for (; *read != '\0' && (*read != c || escaped); ++read) {
            escaped = *read == '\\';
            *write++ = *read;
        }
        if (*read == c)
            ++read;
        previous = c;
    }
}

bool isIn(const char *set, char c)
{
    return set != nullptr && c != '\0' && std::strchr(set, c) != nullptr;
}

// takeWord by the caller's rules.
void takeToken(const char *&read, char *&write, const UT_String::TokenRules &rules)
{
    char quote = '\0';
    for (; *read != '\0' && (quote != '\0' || !isIn(rules.separators, *read)); ++read) {
        if (*read == rules.escape && read[1] != '\0')
            *write++ = *++read;
        else if (quote != '\0' ? *read == quote : isIn(rules.quotes, *read))
            quote = quote != '\0' ? '\0' : *read;
        else
            *write++ = *read;
    }
}

// Hands at most maxArgs - 1 words on, with a null behind them.
int copyWords(const UT_WordList &words, char *argv[], int maxArgs)
{
    if (maxArgs <= 0)
        return 0;
    const int count = std::min(words.getArgc(), maxArgs - 1);
    std::copy_n(words.getArgv(), count, argv);
    argv[count] = nullptr;
    return count;
}
} // namespace

int UT_String::splitWords(UT_WordList &words)
{
    words.setArg(0, nullptr);
    if (!isNonEmpty())
        return 0;
    makeOwned();
    const char *read = myData;
    char *write = myData;
    for (;;) {
        while (UTisSpace(*read))
            ++read;
        if (*read == '\0')
            return words.getArgc();
        words.setArg(words.getArgc(), write);
        takeWord(read, write);
        // Step over the separator first: the NUL may take its place.
        if (*read != '\0')
            ++read;
        *write++ = '\0';
    }
}

int UT_String::splitWordsInto(char *argv[], int maxArgs)
{
    UT_WordList words;
    splitWords(words);
    return copyWords(words, argv, maxArgs);
}

int UT_String::splitAt(UT_WordList &words, const char *delimiters)
{
    if (!isNonEmpty() || delimiters == nullptr)
        return 0;
    makeOwned();
    words.setArg(0, nullptr);
    char *rest = nullptr;
    for (char *field = strtok_r(myData, delimiters, &rest); field != nullptr;
         field = strtok_r(nullptr, delimiters, &rest))
        words.setArg(words.getArgc(), field);
    return words.getArgc();
}

int UT_String::splitAt(char *argv[], int maxArgs, const char *delimiters)
{
    UT_WordList words;
    splitAt(words, delimiters);
    return copyWords(words, argv, maxArgs);
}

int UT_String::splitAtChar(UT_WordList &words, char separator)
{
    if (!isNonEmpty())
        return 0;
    makeOwned();
    words.setArg(0, nullptr);
    for (char *field = myData; *field != '\0';) {
        words.setArg(words.getArgc(), field);
        char *end = std::strchr(field, separator);
        if (end == nullptr || separator == '\0')
            break;
        *end = '\0';
        field = end + 1;
    }
    return words.getArgc();
}

int UT_String::splitAtChar(char *argv[], int maxArgs, char separator)
{
    UT_WordList words;
    splitAtChar(words, separator);
    return copyWords(words, argv, maxArgs);
}

int UT_String::tokenize(UT_WordList &words, const TokenRules &rules)
{
    words.setArg(0, nullptr);
    if (!isNonEmpty())
        return 0;
    makeOwned();
    const char *read = myData;
    char *write = myData;
    while (*read != '\0') {
        if (!rules.keepEmpty && isIn(rules.separators, *read)) {
            ++read;
            continue;
        }
        words.setArg(words.getArgc(), write);
        takeToken(read, write, rules);
        if (*read != '\0')
            ++read;
        *write++ = '\0';
    }
    return words.getArgc();
}
