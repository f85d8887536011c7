// Dictionaries.
#include "osl/run/osl_Machine.h"

#include <charconv>
#include <cstdlib>

namespace
{
bool isText(std::string_view dictionary)
{
    const size_t first = dictionary.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && dictionary[first] == '<';
}

// The pieces between blanks and commas.
std::vector<std::string> piecesOf(std::string_view text)
{
    constexpr const char *SEPARATORS = " \t\r\n,";
    std::vector<std::string> pieces;
    for (size_t at = text.find_first_not_of(SEPARATORS); at != std::string_view::npos;) {
        const size_t end = std::min(text.find_first_of(SEPARATORS, at), text.size());
        pieces.emplace_back(text.substr(at, end - at));
        at = text.find_first_not_of(SEPARATORS, end);
    }
    return pieces;
}

bool parseInt(const std::string &piece, int &number)
{
    const char *first = piece.data() + (piece[0] == '+' ? 1 : 0);
    const char *end = piece.data() + piece.size();
    const auto [stop, error] = std::from_chars(first, end, number);
    return error == std::errc() && stop == end;
}

bool parseFloat(const std::string &piece, float &number)
{
    const char *first = piece.data() + (piece[0] == '+' ? 1 : 0);
    const char *end = piece.data() + piece.size();
    const auto [stop, error] = std::from_chars(first, end, number);
    return error == std::errc() && stop == end;
}

// The text as a value of the type; false when it does not look like one.
bool parseValue(std::string_view text, OSL_Value &value)
{
    if (value.type.isString()) {
        value.strings = {std::string(text)};
        return true;
    }
    const bool isInt = value.type.base == osl_Type::INT;
    if (!isInt && !value.type.isFloatBased())
        return false;
    const std::vector<std::string> pieces = piecesOf(text);
    const auto wanted =
        static_cast<size_t>(value.type.components() * std::max(value.type.array, 1));
    if (pieces.size() != wanted)
        return false;
    value.ints.resize(isInt ? wanted : 0);
    value.floats.resize(isInt ? 0 : wanted);
    for (size_t i = 0; i < wanted; ++i) {
        if (isInt ? !parseInt(pieces[i], value.ints[i]) : !parseFloat(pieces[i], value.floats[i]))
            return false;
    }
    return true;
}
} // namespace

osl_Dictionaries &osl_Machine::dictionaries()
{
    if (myDictionaries == nullptr)
        myDictionaries = std::make_unique<osl_Dictionaries>();
    return *myDictionaries;
}

// Operands: result, dictionary or node, query.
void osl_Machine::dictFind(In in)
{
    const osl_Operand *o = operands(in);
    osl_Dictionaries &all = dictionaries();
    const unsigned long long before = all.cost();
    const bool isByNode = typeOf(o[1]).isInt();
    forLanes(in, [&](int lane) {
        const std::string_view query = textAt(o[2], lane);
        if (isByNode)
            return setInt(o[0], lane, all.find(intAt(o[1], lane), query));
        const std::string_view name = textAt(o[1], lane);
        std::string content;
        if (isText(name))
            content = name;
        else if (!all.isKnown(name) && !myRenderer.dictionary(name, content))
            content.clear();
        setInt(o[0], lane, all.find(name, content, query));
    });
    myExtraCost += all.cost() - before;
}

void osl_Machine::dictNext(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setInt(o[0], lane, dictionaries().next(intAt(o[1], lane))); });
}

// Operands: result, node, attribute, destination.
void osl_Machine::dictValue(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Operand &to = o[3];
    forLanes(in, [&](int lane) {
        std::string_view text;
        setInt(o[0], lane, 0);
        if (to.reg < 0 || !dictionaries().value(intAt(o[1], lane), textAt(o[2], lane), text))
            return;
        OSL_Value value;
        value.type = typeOf(to);
        myExtraCost += text.size() >> 4;
        if (!parseValue(text, value))
            return;
        setValue(to, lane, value);
        setInt(o[0], lane, 1);
    });
}
