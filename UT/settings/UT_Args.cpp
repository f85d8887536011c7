#include "UT/UT_Args.h"

#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace
{
// The letter's place in the option list; null when it is no option.
const char *findLetter(const char *optionSpec, char letter)
{
    // strchr finds the list's NUL, too.
    const bool isAscii = static_cast<signed char>(letter) > 0;
    return isAscii ? std::strchr(optionSpec, letter) : nullptr;
}

bool isOptionWord(const char *word)
{
    return word != nullptr && word[0] == '-';
}
} // namespace

void UT_Args::initialize(int argc, char *argv[])
{
    myArgc = argc;
    myArgs.setArg(argc, nullptr); // an older, longer vector goes
    for (int i = argc - 1; i >= 0; --i)
        myArgs.setArg(i, argv[i]);
}

void UT_Args::appendArg(const char *value)
{
    ++myArgc;
    myArgs.setArg(myArgs.getArgc(), value);
}

void UT_Args::setArg(int index, const char *value)
{
    myArgs.setArg(index, value);
    myArgc = myArgs.getArgc();
}

void UT_Args::stripOptions(const char *optionSpec)
{
    std::fill(std::begin(myFound), std::end(myFound), static_cast<unsigned char>(0));
    for (auto &values : myValues)
        std::fill(std::begin(values), std::end(values), nullptr);
    if (optionSpec == nullptr || myArgc < 2)
        return;

    int position = 1;
    while (position < myArgc && isOptionWord(argv(position)) && scanWord(optionSpec, position)) {
    }
    if (myArgc > 0)
        removeWords(position);
}

bool UT_Args::scanWord(const char *optionSpec, int &position)
{
    const char *word = argv(position);
    if (std::strcmp(word, "-") == 0)
        return false;
    if (std::strcmp(word, "--") == 0) {
        ++position;
        return false;
    }
    for (const char *letter = word + 1; *letter != '\0'; ++letter) {
        // An unknown letter ends the options; the word stays an operand.
        const char *entry = findLetter(optionSpec, *letter);
        if (entry == nullptr)
            return false;
        const int index = *letter;
        // A byte holds the position; what matters is that it is not 0.
        myFound[index] = static_cast<unsigned char>(std::min(position, UCHAR_MAX));
        std::fill(std::begin(myValues[index]), std::end(myValues[index]), nullptr);
        const size_t colons = std::strspn(entry + 1, ":");
        if (colons > 0)
            return takeValues(index, std::min(static_cast<int>(colons), MAX_VALUES), letter + 1,
                              position);
    }
    ++position;
    return true;
}

bool UT_Args::takeValues(int letter, int count, const char *attached, int &position)
{
    int slot = 0;
    if (*attached != '\0')
        myValues[letter][slot++] = attached;
    for (; slot < count; ++slot) {
        if (++position >= myArgc) {
            // The caller sees that as a call that makes no sense at all, and prints its usage.
            myFound[letter] = 0;
            myArgc = -1;
            return false;
        }
        myValues[letter][slot] = argv(position);
    }
    ++position;
    return true;
}

void UT_Args::removeWords(int end)
{
    if (end == 1)
        return;
    int to = 1;
    for (int from = end; from < myArgc; ++from)
        myArgs.setArg(to++, argv(from));
    myArgs.setArg(to, nullptr);
    myArgc = to;
}

int UT_Args::found(char letter) const
{
    return letter < 0 ? 0 : myFound[static_cast<int>(letter)];
}

const char *UT_Args::getValue(char letter, int slot) const
{
    return letter < 0 ? nullptr : myValues[static_cast<int>(letter)][slot];
}

bool UT_Args::makeCommandLine(UT_ScratchBuffer &out, int firstArg, bool withOptions) const
{
    bool written = false;
    if (firstArg == 0 && myArgc > 0) {
        out.clear();
        out.append(argv(0));
        firstArg = 1;
        written = true;
    }
    for (int letter = 0; withOptions && letter < LETTERS; ++letter) {
        if (myFound[letter] == 0)
            continue;
        const char option[] = {'-', static_cast<char>(letter), '\0'};
        appendQuotedWord(out, option, true);
        for (const char *value : myValues[letter]) {
            if (value != nullptr)
                appendQuotedWord(out, value, true);
        }
        written = true;
    }
    for (int i = firstArg; i < myArgc; ++i) {
        appendQuotedWord(out, argv(i), written);
        written = true;
    }
    return true;
}

bool UT_Args::makeCommandLine(UT_String &out, int firstArg) const
{
    UT_ScratchBuffer line;
    makeCommandLine(line, firstArg, true);
    line.copyToString(out);
    return true;
}

void UT_Args::dumpOptions() const
{
    for (int letter = 0; letter < LETTERS; ++letter) {
        const char *value = myValues[letter][0];
        if (myFound[letter] != 0)
            std::printf("%c=%s\n", letter, value != nullptr ? value : "");
    }
}

void UT_Args::appendQuotedWord(UT_ScratchBuffer &out, const char *word, bool leadingSpace)
{
    if (leadingSpace)
        out.append(' ');
    // What a shell would change needs quotes; an empty word would vanish.
    if (*word != '\0' && std::strpbrk(word, " \t\"\\'$#=&<>|()") == nullptr) {
        out.append(word);
        return;
    }
    out.append('\'');
    for (; *word != '\0'; ++word) {
        if (*word == '\'')
            out.append('\\');
        out.append(*word);
    }
    out.append('\'');
}
