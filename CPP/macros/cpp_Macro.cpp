// How a definition is read, and what is kept of it.
#include "CPP/cpp_Macro.h"

#include "CPP/cpp_Classes.h"

#include <cstring>
#include <unordered_map>
#include <vector>

namespace
{
// Whether a definition's name ends at the character.
bool endsName(char c, bool commandLineForm)
{
    return c == '\0' || UTisSpace(c) || c == '(' || (commandLineForm && c == '=');
}

// Empty when it is none: not a letter or '_' first, or other than those and digits behind.
std::string_view takeName(const char *&text, bool commandLineForm)
{
    const char *start = text;
    text = skipName(text);
    const bool isName = UTisNameStart(*start) && endsName(*text, commandLineForm);
    return isName ? std::string_view(start, static_cast<size_t>(text - start)) : std::string_view();
}

std::string takeParameter(const char *&text)
{
    const char *start = text;
    while (*text != '\0' && !UTisSpace(*text) && *text != ',' && *text != ')')
        ++text;
    return std::string(start, text);
}

struct ParameterList {
    std::vector<std::string> names;
    std::unordered_map<std::string, size_t> numbers; // the first of a name counts
};

// From behind the "(" to behind the ")", or to the end of the text.
ParameterList takeParameters(const char *&text)
{
    ParameterList parameters;
    text = skipSpace(text);
    while (*text != '\0' && !(parameters.names.empty() && *text == ')')) {
        parameters.names.push_back(takeParameter(text));
        parameters.numbers.emplace(parameters.names.back(), parameters.names.size() - 1);
        text = skipSpace(text);
        if (*text == ')')
            break;
        text = skipSpace(*text == ',' ? text + 1 : text);
    }
    if (*text == ')')
        ++text;
    return parameters;
}

// Copies a double-quoted string with its quotes; an open one goes on to the end.
const char *copyQuoted(const char *text, const char *end, std::string &body)
{
    const char *start = text++;
    while (text < end && (*text != '"' || text[-1] == '\\'))
        ++text;
    text = text < end ? text + 1 : end;
    body.append(start, text);
    return text;
}

std::string markOf(size_t argument)
{
    return "#" + std::to_string(argument) + "#";
}

// A word behind `hashes` '#' characters: a mark if it is a parameter.
const char *copyWord(const char *text, const std::string &word, size_t hashes,
                     const ParameterList &parameters, std::string &body)
{
    const auto found = parameters.numbers.find(word);
    if (word.empty() || found == parameters.numbers.end()) {
        body.append(hashes, '#');
        body += word;
        return text;
    }
    const std::string mark = markOf(found->second);
    body += hashes == 1 ? "\"" + mark + "\"" : mark;
    if (text[0] == '#' && text[1] == '#')
        return text + 2;
    if (text[0] != '#')
        return text;
    body += ' ';
    return text + 1;
}

// The rest of the definition's first line.
std::string compileBody(const char *text, const ParameterList &parameters)
{
    const char *end = text + std::strcspn(text, "\n");
    while (text < end && UTisSpace(*text))
        ++text;
    std::string body;
    while (text < end) {
        if (*text == '"') {
            text = copyQuoted(text, end, body);
            continue;
        }
        if (*text != '#' && !UTisNameStart(*text)) {
            body += *text++;
            continue;
        }
        const size_t hashes = std::strspn(text, "#");
        text += hashes;
        const char *start = text;
        while (UTisNameCharacter(*text))
            ++text;
        text = copyWord(text, std::string(start, text), hashes, parameters, body);
    }
    return body;
}

// White space at the end shrinks to one blank.
void assignTrimmed(std::string &body, const char *begin, const char *end)
{
    const char *trimmed = end;
    while (trimmed > begin && UTisSpace(trimmed[-1]))
        --trimmed;
    body.assign(begin, trimmed);
    if (trimmed != end)
        body += ' ';
}

// Behind the mark that begins at a '#', with its argument; or `begin` where that is text.
size_t skipMark(const std::string &body, size_t begin, size_t arguments, size_t &argument)
{
    size_t end = begin + 1;
    argument = 0;
    while (end < body.size() && UTisDigit(body[end]) && argument < arguments)
        argument = argument * 10 + static_cast<size_t>(body[end++] - '0');
    const bool isMark =
        end > begin + 1 && end < body.size() && body[end] == '#' && argument < arguments;
    return isMark ? end + 1 : begin;
}

std::vector<cpp_Macro::Piece> piecesOf(const std::string &body, size_t arguments)
{
    std::vector<cpp_Macro::Piece> pieces;
    size_t begin = 0;
    size_t next = 0;
    for (size_t i = body.find('#'); i != std::string::npos; i = body.find('#', next)) {
        size_t argument = 0;
        next = skipMark(body, i, arguments, argument);
        if (next == i) {
            ++next;
            continue;
        }
        pieces.push_back({begin, i - begin, argument});
        begin = next;
    }
    pieces.push_back({begin, body.size() - begin, cpp_Macro::Piece::NO_ARGUMENT});
    return pieces;
}

bool hasNothingToExpand(const std::string &body)
{
    const char *end = body.data() + body.size();
    return findOf(CPP_NAME_START | CPP_QUOTE | CPP_BACKSLASH, body.data(), end) == end;
}

// From behind the "(".
void parseParameters(cpp_Macro &macro, const char *text)
{
    ParameterList list = takeParameters(text);
    macro.myNumArgs = static_cast<int>(list.names.size());
    const std::string body = compileBody(text, list);
    assignTrimmed(macro.myBody, body.data(), body.data() + body.size());
    macro.isPlain = hasNothingToExpand(macro.myBody);
    if (macro.myNumArgs == 0)
        return;
    std::vector<cpp_Macro::Piece> pieces = piecesOf(macro.myBody, list.names.size());
    macro.myParameters.reset(new cpp_Macro::Parameters{std::move(list.names), std::move(pieces)});
}
} // namespace

std::string_view cpp_Macro::parse(const char *definition, bool commandLineForm)
{
    const char *text = skipSpace(definition);
    const std::string_view name = takeName(text, commandLineForm);
    if (name.empty())
        return name;
    if (commandLineForm && *text == '=')
        ++text;
    if (*text == '(')
        parseParameters(*this, text + 1);
    else
        parseBody(text, text + std::strlen(text));
    return name;
}

void cpp_Macro::parseBody(const char *text, const char *end, bool isPadded)
{
    text = skipBlanks(text, end);
    while (end > text && (end[-1] == '\n' || end[-1] == '\r'))
        --end;
    assignTrimmed(myBody, text, end);
    if (isPadded && !myBody.empty() && myBody.back() != ' ')
        myBody += ' ';
    isPlain = hasNothingToExpand(myBody);
}

bool cpp_Macro::isSameAs(const cpp_Macro &other) const
{
    return myBuiltin == NONE && other.myBuiltin == NONE && myBody == other.myBody &&
           myNumArgs == other.myNumArgs;
}

namespace
{
std::string joinNames(const std::vector<std::string> &names)
{
    std::string list;
    for (const std::string &name : names)
        (list += &name == names.data() ? "" : ",") += name;
    return list;
}

// Turns a compiled body back into one that compiles to it. "##" divides a parameter from
// a neighbour that would otherwise belong to its name or its '#'.
class BodyWriter
{
public:
    BodyWriter(const std::string &body, const std::vector<std::string> &parameters)
        : myBody(body), myParameters(parameters)
    {
    }

    std::string write()
    {
        while (myNext < myBody.size())
            if (!takeReference())
                takeText();
        return myText;
    }

private:
    bool lastIs(bool (*test)(char)) const { return !myText.empty() && test(myText.back()); }

    // A mark behind a lone '#', in front of a digit or with zeros of its own stays a mark:
    // it means the same.
    bool takeReference()
    {
        const bool isQuoted = myBody.compare(myNext, 2, "\"#") == 0;
        const size_t begin = myNext + (isQuoted ? 1 : 0);
        size_t argument = 0;
        const size_t end =
            myBody[begin] == '#' ? skipMark(myBody, begin, myParameters.size(), argument) : begin;
        const bool isClosed = !isQuoted || myBody.compare(end, 1, "\"") == 0;
        const bool isPlain = end == begin + markOf(argument).size() && isClosed &&
                             !(end < myBody.size() && UTisDigit(myBody[end]));
        if (!isPlain || lastIs([](char c) { return c == '#'; }))
            return false;
        if (isBehindName || (!isQuoted && lastIs([](char c) { return UTisNameCharacter(c); })))
            myText += "##";
        (myText += isQuoted ? "#" : "") += myParameters[argument];
        myNext = end + (isQuoted ? 1 : 0);
        isBehindName = true;
        return true;
    }

    // A character, or a string as it is.
    void takeText()
    {
        const char *const here = myBody.data() + myNext;
        if (isBehindName && (UTisNameCharacter(*here) || *here == '#'))
            myText += "##";
        isBehindName = false;
        const char *const end = myBody.data() + myBody.size();
        if (*here == '"')
            myNext += static_cast<size_t>(copyQuoted(here, end, myText) - here);
        else
            myText += myBody[myNext++];
    }

    const std::string &myBody;
    const std::vector<std::string> &myParameters;
    size_t myNext = 0;
    std::string myText;
    bool isBehindName = false; // of a parameter
};
} // namespace

std::string cpp_Macro::toDefinition() const
{
    static const std::vector<std::string> NO_NAMES;
    const auto &names = myParameters != nullptr ? myParameters->names : NO_NAMES;
    std::string text = "#define " + std::string(myName);
    if (myNumArgs == 1 && names[0].empty())
        return text + "(,"; // such a list never ends
    if (myNumArgs >= 0)
        text += "(" + joinNames(names) + ")";
    return myBody.empty() ? text : text + " " + BodyWriter(myBody, names).write();
}
