// The csh-style modifiers of a variable reference, such as ":t:r".
#include "UT/UT_String.h"

#include "UT/UT_Character.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>

namespace
{
// Each modifier edits `text`; `rest` is what follows its letter.
using Modify = void (*)(std::string &text, const char *rest, bool all);

// Position of the dot that starts the extension; npos without one.
size_t extensionDot(const std::string &text)
{
    const size_t dot = text.rfind('.');
    const size_t slash = text.rfind('/');
    const bool isExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return isExtension ? dot : std::string::npos;
}

void removeExtension(std::string &text, const char *, bool all)
{
    size_t dot;
    while ((dot = extensionDot(text)) != std::string::npos) {
        text.erase(dot);
        if (!all)
            return;
    }
}

void keepHead(std::string &text, const char *, bool all)
{
    const size_t slash = all ? text.find('/') : text.rfind('/');
    if (slash != std::string::npos)
        text.erase(slash);
}

void keepTail(std::string &text, const char *, bool)
{
    text.erase(0, text.rfind('/') + 1); // npos + 1 is 0
}

void keepExtension(std::string &text, const char *, bool)
{
    const size_t dot = extensionDot(text);
    if (dot != std::string::npos)
        text.erase(0, dot + 1);
}

template <int (*WRONG_CASE)(int), int (*CONVERT)(int)>
void changeCase(std::string &text, const char *, bool all)
{
    for (char &c : text) {
        const int byte = static_cast<unsigned char>(c);
        if (WRONG_CASE(byte) == 0)
            continue;
        c = static_cast<char>(CONVERT(byte));
        if (!all)
            return;
    }
}

void substitute(std::string &text, const char *rest, bool all)
{
    if (*rest != '/')
        return;
    const char *oldText = rest + 1;
    const char *oldEnd = oldText + std::strcspn(oldText, "/:");
    if (*oldEnd != '/')
        return;
    const char *newText = oldEnd + 1;
    const char *newEnd = newText + std::strcspn(newText, "/:");
    UT_String edited(text.c_str());
    edited.replaceText(std::string(oldText, oldEnd).c_str(), std::string(newText, newEnd).c_str(),
                       all);
    text = edited.toStdString();
}

// For any other letter. With 'g' its words are joined anew all the same.
void keepAll(std::string &, const char *, bool) {}

const struct {
    char letter;
    Modify modify;
} MODIFIERS[] = {
    {'r', removeExtension},
    {'h', keepHead},
    {'t', keepTail},
    {'e', keepExtension},
    {'u', changeCase<std::islower, std::toupper>},
    {'l', changeCase<std::isupper, std::tolower>},
    {'s', substitute},
};

void modifyWords(std::string &text, Modify modify, const char *rest, bool all)
{
    std::string result;
    auto p = std::find_if_not(text.begin(), text.end(), UTisSpace);
    while (p != text.end()) {
        const auto end = std::find_if(p, text.end(), UTisSpace);
        std::string word(p, end);
        modify(word, rest, all);
        result += word;
        if (end != text.end())
            result += ' ';
        p = std::find_if_not(end, text.end(), UTisSpace);
    }
    text = result;
}

// One modifier with its prefix letters.
void applyOne(std::string &text, const char *modifier)
{
    bool eachWord = false;
    bool all = false;
    for (; *modifier == 'g' || *modifier == 'a'; ++modifier)
        (*modifier == 'g' ? eachWord : all) = true;
    const auto *row = std::find_if(std::begin(MODIFIERS), std::end(MODIFIERS),
                                   [=](const auto &each) { return each.letter == *modifier; });
    const Modify modify = row != std::end(MODIFIERS) ? row->modify : keepAll;
    const char *rest = modifier + 1; // only looked at behind a letter of the table
    if (eachWord)
        modifyWords(text, modify, rest, all);
    else
        modify(text, rest, all);
}

} // namespace

bool UT_String::applyModifiers(const char *modifiers)
{
    if (!isNonEmpty() || modifiers == nullptr)
        return false;
    std::string text(myData);
    while (*modifiers == ':') {
        applyOne(text, modifiers + 1);
        ++modifiers;
        modifiers += std::strcspn(modifiers, ":");
    }
    if (text == myData)
        return false;
    assignCopy(text.c_str());
    return true;
}

int UT_String::modifierNameLength(const char *text)
{
    const char *p = text;
    int slashes = 0; // how many of s/old/new/ may still come
    for (; p != nullptr && *p != '\0'; ++p) {
        if (*p == ':') {
            if (!UTisAlphanumeric(p[1]))
                break;
            slashes = p[1] == 's' ? 3 : 0;
        } else if (*p == '/') {
            if (slashes-- <= 0)
                break;
        } else if (!UTisAlphanumeric(*p) && *p != '_') {
            break;
        }
    }
    return static_cast<int>(p - text);
}
