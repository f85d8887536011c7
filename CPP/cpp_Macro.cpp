// How a definition is read, and what is kept of it.
#include "CPP/cpp_Macro.h"

#include "CPP/CPP_Manager.h"
#include "CPP/cpp_Text.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace
{
constexpr size_t MAX_UNDEFINED_NAME = 1024;

bool isValidName(const std::string &name)
{
    return !name.empty() && isNameStart(name[0]) &&
           std::all_of(name.begin(), name.end(), isNameCharacter);
}

// Takes the characters up to white space or one of `delimiters`.
std::string takeUpTo(const char *&text, const char *delimiters)
{
    const char *start = text;
    while (*text != '\0' && !isSpace(*text) && std::strchr(delimiters, *text) == nullptr)
        ++text;
    return std::string(start, text);
}

struct Parameters {
    std::vector<std::string> names;
    std::unordered_map<std::string, size_t> numbers; // the first of a name counts
};

// From behind the "(" to behind the ")", or to the end of the text.
Parameters takeParameters(const char *&text)
{
    Parameters parameters;
    text = skipSpace(text);
    while (*text != '\0' && !(parameters.names.empty() && *text == ')')) {
        parameters.names.push_back(takeUpTo(text, ",)"));
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
                     const Parameters &parameters, std::string &body)
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
std::string compileBody(const char *text, const Parameters &parameters)
{
    const char *end = text + std::strcspn(text, "\n");
    while (text < end && isSpace(*text))
        ++text;
    std::string body;
    while (text < end) {
        if (*text == '"') {
            text = copyQuoted(text, end, body);
            continue;
        }
        if (*text != '#' && !isNameStart(*text)) {
            body += *text++;
            continue;
        }
        const size_t hashes = std::strspn(text, "#");
        text += hashes;
        const char *start = text;
        while (isNameCharacter(*text))
            ++text;
        text = copyWord(text, std::string(start, text), hashes, parameters, body);
    }
    return body;
}

// White space at the end shrinks to one blank.
void trimEnd(std::string &body)
{
    const size_t size = body.size();
    while (!body.empty() && isSpace(body.back()))
        body.pop_back();
    if (body.size() != size)
        body += ' ';
}

// Behind the mark that begins at a '#', with its argument; or `begin` where that is text.
size_t skipMark(const std::string &body, size_t begin, size_t arguments, size_t &argument)
{
    size_t end = begin + 1;
    argument = 0;
    while (end < body.size() && isDigit(body[end]) && argument < arguments)
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
    return std::none_of(body.begin(), body.end(), [](char c) {
        return isNameStart(c) || c == '"' || c == '\'' || c == '\\';
    });
}
} // namespace

cpp_Macro *cpp_Macro::parse(const char *definition, bool commandLineForm)
{
    static unsigned ourIllegalNames = 0;

    const char *text = skipSpace(definition);
    auto *macro = new cpp_Macro;
    macro->myName = takeUpTo(text, commandLineForm ? "(=" : "(");
    if (!isValidName(macro->myName)) {
        macro->myName = "#illegal" + std::to_string(ourIllegalNames++) + "#";
        return macro;
    }
    if (commandLineForm && *text == '=')
        ++text;
    if (*text == '(') {
        ++text;
        Parameters parameters = takeParameters(text);
        macro->myNumArgs = static_cast<int>(parameters.names.size());
        macro->myBody = compileBody(text, parameters);
        macro->myParameters = std::move(parameters.names);
    } else {
        macro->myBody = skipSpace(text);
        while (!macro->myBody.empty() &&
               (macro->myBody.back() == '\n' || macro->myBody.back() == '\r'))
            macro->myBody.pop_back();
    }
    trimEnd(macro->myBody);
    if (macro->myNumArgs > 0)
        macro->myPieces = piecesOf(macro->myBody, static_cast<size_t>(macro->myNumArgs));
    macro->isPlain = hasNothingToExpand(macro->myBody);
    return macro;
}

cpp_Macro *cpp_Macro::makeBuiltin(Builtin builtin)
{
    auto *macro = new cpp_Macro;
    macro->myBuiltin = builtin;
    return macro;
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
                             !(end < myBody.size() && isDigit(myBody[end]));
        if (!isPlain || lastIs([](char c) { return c == '#'; }))
            return false;
        if (isBehindName || (!isQuoted && lastIs([](char c) { return isNameCharacter(c); })))
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
        if (isBehindName && (isNameCharacter(*here) || *here == '#'))
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
    std::string text = "#define " + myName;
    if (myNumArgs == 1 && myParameters[0].empty())
        return text + "(,"; // such a list never ends
    if (myNumArgs >= 0)
        text += "(" + joinNames(myParameters) + ")";
    return myBody.empty() ? text : text + " " + BodyWriter(myBody, myParameters).write();
}

// ---- The manager's table ---------------------------------------------------

const cpp_Macro *CPP_Manager::findMacro(const char *name) const
{
    return findMacro(name, std::strlen(name));
}

const cpp_Macro *CPP_Manager::findMacro(const char *name, size_t length) const
{
    const bool mayBe = length > 0 && myMacroFilter.mayHold({name, length});
    void *value = nullptr;
    return mayBe && myMacros.findSymbol(name, length, &value) ? static_cast<cpp_Macro *>(value)
                                                              : nullptr;
}

void CPP_Manager::listMacros(UT_StringList &lines)
{
    std::vector<std::string> found;
    const auto collect = [](void **value, const char *name, void *data) {
        const auto *macro = static_cast<const cpp_Macro *>(*value);
        if (macro->myBuiltin == cpp_Macro::NONE && isNameStart(*name))
            static_cast<std::vector<std::string> *>(data)->push_back(macro->toDefinition());
        return 1;
    };
    myMacros.traverseSymbols(collect, &found);
    std::sort(found.begin(), found.end());
    for (const std::string &line : found)
        lines.append(line.c_str());
}

bool CPP_Manager::isMacroDefined(const char *name) const
{
    return findMacro(name) != nullptr;
}

void CPP_Manager::storeMacro(const char *name, cpp_Macro *macro)
{
    void *&stored = myMacros.findOrAddSymbol(name);
    delete static_cast<cpp_Macro *>(stored);
    stored = macro;
    myMacroFilter.add(name);
}

bool CPP_Manager::defineMacro(const char *definition, UT_String &result, bool commandLineForm)
{
    result = "\n";
    cpp_Macro *macro = cpp_Macro::parse(definition, commandLineForm);
    const cpp_Macro *old = findMacro(macro->myName.c_str());
    if (old != nullptr && !old->isSameAs(*macro))
        diagnose(result, WARNING, "Macro \"%s\" redefined.  %s", macro->myName.c_str(),
                 "Using later definition");
    storeMacro(macro->myName.c_str(), macro);
    return true;
}

bool CPP_Manager::defineMacroValue(const char *name, const char *value)
{
    UT_String result;
    defineMacro((std::string(name) + " " + value).c_str(), result, false);
    return std::strcmp(result, "\n") == 0;
}

bool CPP_Manager::undefineMacro(const char *text, UT_String &result)
{
    result = "\n";
    text = skipSpace(text);
    const std::string name = takeUpTo(text, "").substr(0, MAX_UNDEFINED_NAME);
    const cpp_Macro *macro = findMacro(name.c_str());
    myMacros.deleteSymbol(name.c_str());
    delete macro;
    return true;
}
