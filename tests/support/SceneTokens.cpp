#include "tests/support/SceneTokens.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace
{
bool isIn(const char *set, char c)
{
    return c != '\0' && strchr(set, c) != nullptr;
}

bool isLetter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || isIn("_$", c);
}

// From a blank or a comment on to what follows them.
const char *skipBlanks(const char *at, int &line)
{
    for (; *at != '\0'; ++at) {
        if (*at == '#')
            at += strcspn(at, "\n");
        if (*at == '\0' || !std::isspace(static_cast<unsigned char>(*at)))
            break;
        line += *at == '\n';
    }
    return at;
}

// Behind the closing quote, or null.
const char *textEnd(const char *at)
{
    for (++at; *at != '"'; ++at) {
        if (*at == '\\')
            ++at;
        if (*at == '\0' || *at == '\n')
            return nullptr;
    }
    return at + 1;
}

SceneToken badToken(const char *&at, int line)
{
    const char *const from = at;
    while (*at != '\0' && !std::isspace(static_cast<unsigned char>(*at)))
        ++at;
    return {'!', std::string(from, at), line};
}

SceneToken takeText(const char *&at, int line)
{
    const char *const end = textEnd(at);
    if (end == nullptr)
        return badToken(at, line);
    const SceneToken token = {'s', std::string(at + 1, end - 1), line};
    at = end;
    return token;
}

SceneToken takeNumber(const char *&at, int line)
{
    const char *const end = at + strspn(at, "+-.0123456789eE");
    char *behind = nullptr;
    strtod(at, &behind);
    if (behind != end || isLetter(*end))
        return badToken(at, line);
    const std::string text(at, end);
    at = end;
    return {text.find_first_of(".eE") == std::string::npos ? 'i' : 'f', text, line};
}

// A word, or the name of an include file between angles.
SceneToken takeWord(const char *&at, int line)
{
    const char *const from = at++;
    while (*from == '<' ? at[-1] != '>' && !isIn("\n", *at) && *at != '\0' : isLetter(*at))
        ++at;
    return {'w', std::string(from, at), line};
}

SceneToken takeToken(const char *&at, int line)
{
    if (*at == '"')
        return takeText(at, line);
    if (isIn("+-.0123456789", *at))
        return takeNumber(at, line);
    if (*at == '<' || isLetter(*at))
        return takeWord(at, line);
    const char c = *at++;
    return {c, std::string(1, c), line};
}
} // namespace

std::vector<SceneToken> sceneTokens(const std::string &scene)
{
    std::vector<SceneToken> tokens;
    int line = 1;
    const char *at = scene.c_str();
    while (*(at = skipBlanks(at, line)) != '\0')
        tokens.push_back(takeToken(at, line));
    tokens.push_back({'e', "end of scene", line});
    return tokens;
}
