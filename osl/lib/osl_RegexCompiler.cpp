#include "osl/lib/osl_RegexCompiler.h"

#include <cctype>

namespace
{
constexpr size_t LARGEST_PROGRAM = 10000;
constexpr int LARGEST_REPEAT = 1000;
constexpr int DEEPEST = 100;

using Set = std::bitset<256>;

struct Class {
    const char *name;
    char letter; // behind a backslash, 0 for none
    int (*holds)(int c);
};
const Class CLASSES[] = {
    {"digit", 'd', std::isdigit},
    {"word", 'w', [](int c) { return std::isalnum(c) != 0 || c == '_' ? 1 : 0; }},
    {"space", 's', std::isspace},
    {"alpha", 0, std::isalpha},
    {"alnum", 0, std::isalnum},
    {"upper", 0, std::isupper},
    {"lower", 0, std::islower},
    {"punct", 0, std::ispunct},
    {"xdigit", 0, std::isxdigit},
    {"blank", 0, [](int c) { return c == ' ' || c == '\t' ? 1 : 0; }},
    {"cntrl", 0, std::iscntrl},
    {"print", 0, std::isprint},
    {"graph", 0, std::isgraph},
};

// Of ASCII: the answers of other locales are left out.
Set setOf(const Class &kind)
{
    Set set;
    for (int c = 0; c < 128; ++c)
        set[static_cast<size_t>(c)] = kind.holds(c) != 0;
    return set;
}

// The classes of \d \w \s and, as capitals, what is not in them.
bool classByLetter(char letter, Set &set)
{
    for (const Class &kind : CLASSES) {
        if (kind.letter == 0 || kind.letter != std::tolower(letter))
            continue;
        set = letter == kind.letter ? setOf(kind) : ~setOf(kind);
        return true;
    }
    return false;
}

char escaped(char letter)
{
    constexpr std::string_view LETTERS = "tnrfv0", MEANT = {"\t\n\r\f\v\0", 6};
    const size_t found = LETTERS.find(letter);
    return found != std::string_view::npos ? MEANT[found] : letter;
}

int code(char c)
{
    return static_cast<unsigned char>(c);
}
} // namespace

osl_RegexCompiler::osl_RegexCompiler(std::string_view text, osl_Regex &regex)
    : myText(text), myRegex(regex)
{
}

void osl_RegexCompiler::compile()
{
    Code program = {{osl_Regex::SAVE, 0}};
    append(program, choice());
    append(program, {{osl_Regex::SAVE, 1}, {osl_Regex::DONE}});
    if (!isAtEnd())
        fail("a bracket ')' that closes nothing");
    if (!hasFailed())
        myRegex.myCode = std::move(program);
}

osl_RegexCompiler::Code osl_RegexCompiler::choice()
{
    Code code = sequence();
    while (!hasFailed() && take("|")) {
        const Code other = sequence();
        const int first = static_cast<int>(code.size()), second = static_cast<int>(other.size());
        Code both = {{osl_Regex::SPLIT, 1, first + 2}};
        append(both, code);
        append(both, {{osl_Regex::JUMP, second + 1}});
        append(both, other);
        code = std::move(both);
    }
    return code;
}

osl_RegexCompiler::Code osl_RegexCompiler::sequence()
{
    Code code;
    while (!hasFailed() && !isAtEnd() && next() != '|' && next() != ')') {
        const Code part = atom();
        Repeat repeat;
        if (takeRepeat(repeat))
            append(code, repeated(part, repeat, take("?")));
        else
            append(code, part);
    }
    return code;
}

osl_RegexCompiler::Code osl_RegexCompiler::atom()
{
    const char c = next();
    ++myAt;
    switch (c) {
    case '(':
        return group();
    case '[':
        return bracket();
    case '\\':
        return escape();
    case '.':
        return {{osl_Regex::ANY}};
    case '^':
        return {{osl_Regex::BEGIN}};
    case '$':
        return {{osl_Regex::END}};
    case '*':
    case '+':
    case '?':
        fail("nothing to repeat");
        return {};
    default:
        return {{osl_Regex::CHAR, code(c)}};
    }
}

// Behind the opening bracket.
osl_RegexCompiler::Code osl_RegexCompiler::group()
{
    const bool isNumbered = !take("?:");
    const int number = isNumbered ? ++myRegex.myGroups : 0;
    if (++myDepth > DEEPEST) {
        fail("too many groups inside each other");
        return {};
    }
    Code inside = choice();
    --myDepth;
    if (!take(")"))
        fail("a bracket '(' that is not closed");
    if (!isNumbered)
        return inside;
    Code whole = {{osl_Regex::SAVE, 2 * number}};
    append(whole, inside);
    append(whole, {{osl_Regex::SAVE, 2 * number + 1}});
    return whole;
}

osl_RegexCompiler::Code osl_RegexCompiler::escape()
{
    if (isAtEnd()) {
        fail("a backslash at the end");
        return {};
    }
    const char c = myText[myAt++];
    Set set;
    if (classByLetter(c, set))
        return oneOf(set);
    if (c == 'b' || c == 'B')
        return {{c == 'b' ? osl_Regex::EDGE : osl_Regex::NO_EDGE}};
    if (c >= '1' && c <= '9') {
        fail("a reference back, which is not supported");
        return {};
    }
    return {{osl_Regex::CHAR, code(escaped(c))}};
}

// Behind the opening bracket; a closing one that comes first is a character.
osl_RegexCompiler::Code osl_RegexCompiler::bracket()
{
    const bool isOpposite = take("^");
    Set set;
    do {
        if (isAtEnd() || !takeSetItem(set)) {
            fail("a set '[' that is not closed or has a bad range");
            return {};
        }
    } while (!take("]"));
    return oneOf(isOpposite ? ~set : set);
}

bool osl_RegexCompiler::takeSetItem(Set &set)
{
    if (takeNamedSet(set))
        return true;
    const int first = takeSetCharacter();
    int last = first;
    if (next() == '-' && myAt + 1 < myText.size() && myText[myAt + 1] != ']') {
        ++myAt;
        last = takeSetCharacter();
    }
    for (int c = first; c <= last; ++c)
        set.set(static_cast<size_t>(c));
    return first <= last;
}

bool osl_RegexCompiler::takeNamedSet(Set &set)
{
    Set named;
    if (next() == '\\' && myAt + 1 < myText.size() && classByLetter(myText[myAt + 1], named)) {
        myAt += 2;
        set |= named;
        return true;
    }
    for (const Class &kind : CLASSES) {
        if (take("[:" + std::string(kind.name) + ":]")) {
            set |= setOf(kind);
            return true;
        }
    }
    return false;
}

// REQUIRES: !isAtEnd()
int osl_RegexCompiler::takeSetCharacter()
{
    char c = myText[myAt++];
    if (c == '\\' && !isAtEnd())
        c = escaped(myText[myAt++]);
    return code(c);
}

osl_RegexCompiler::Code osl_RegexCompiler::oneOf(const Set &set)
{
    myRegex.mySets.push_back(set);
    return {{osl_Regex::SET, static_cast<int>(myRegex.mySets.size()) - 1}};
}

bool osl_RegexCompiler::takeRepeat(Repeat &repeat)
{
    constexpr struct {
        const char *sign;
        Repeat repeat;
    } SIGNS[] = {{"*", {0, -1}}, {"+", {1, -1}}, {"?", {0, 1}}};
    for (const auto &s : SIGNS) {
        if (take(s.sign)) {
            repeat = s.repeat;
            return true;
        }
    }
    return takeBraces(repeat);
}

// Braces that hold no repeat are characters.
bool osl_RegexCompiler::takeBraces(Repeat &repeat)
{
    const size_t first = myAt;
    bool isRepeat = take("{") && takeNumber(repeat.least);
    repeat.most = repeat.least;
    if (isRepeat && take(",") && !takeNumber(repeat.most))
        repeat.most = -1;
    isRepeat = isRepeat && take("}");
    if (!isRepeat)
        myAt = first;
    else if (repeat.most >= 0 && repeat.most < repeat.least)
        fail("a repeat that ends before it begins");
    return isRepeat;
}

bool osl_RegexCompiler::takeNumber(int &number)
{
    const size_t first = myAt;
    for (number = 0; next() >= '0' && next() <= '9'; ++myAt) {
        number = number * 10 + (next() - '0');
        if (number > LARGEST_REPEAT) {
            fail("a repeat of more than 1000");
            return false;
        }
    }
    return myAt > first;
}

osl_RegexCompiler::Code osl_RegexCompiler::repeated(const Code &code, const Repeat &repeat,
                                                    bool isLazy)
{
    const int size = static_cast<int>(code.size());
    const auto split = [isLazy](int enter, int leave) {
        return Code{{osl_Regex::SPLIT, isLazy ? leave : enter, isLazy ? enter : leave}};
    };
    Code all;
    for (int i = 0; i < repeat.least && !hasFailed(); ++i)
        append(all, code);
    if (repeat.most < 0) {
        append(all, split(1, size + 2));
        append(all, code);
        append(all, {{osl_Regex::JUMP, -size - 1}});
    }
    for (int i = repeat.least; i < repeat.most && !hasFailed(); ++i) {
        append(all, split(1, (size + 1) * (repeat.most - i)));
        append(all, code);
    }
    return all;
}

bool osl_RegexCompiler::take(std::string_view word)
{
    if (myText.substr(myAt, word.size()) != word)
        return false;
    myAt += word.size();
    return true;
}

void osl_RegexCompiler::append(Code &to, const Code &more)
{
    if (to.size() + more.size() > LARGEST_PROGRAM)
        return fail("too long an expression");
    to.insert(to.end(), more.begin(), more.end());
}

void osl_RegexCompiler::fail(const char *message)
{
    if (!hasFailed())
        myRegex.myError = message;
}
