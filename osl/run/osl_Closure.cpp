#include "osl/run/osl_Closure.h"

#include "osl/lib/osl_Format.h"
#include "osl/run/osl_Texts.h"

#include <cstring>

namespace
{
constexpr int MAX_TEXT_DEPTH = 20; // of closures that are parameters of closures
constexpr size_t MAX_TEXT = 1 << 20;

float asFloat(int word)
{
    float number;
    std::memcpy(&number, &word, sizeof number);
    return number;
}

std::string tripleText(const osl_Colour &c)
{
    return "(" + osl_floatText(c.x) + ", " + osl_floatText(c.y) + ", " + osl_floatText(c.z) + ")";
}
} // namespace

void osl_ClosureArena::clear()
{
    myNodes.clear();
    myWords.clear();
    myIsTooWide = false;
}

int osl_ClosureArena::add(const Node &node)
{
    myNodes.push_back(node);
    return static_cast<int>(myNodes.size());
}

int osl_ClosureArena::components(const osl_ClosureRow *row, int count)
{
    const int first = static_cast<int>(myNodes.size()) + 1;
    Node made;
    made.row = row;
    made.a = static_cast<int>(myWords.size());
    myWords.resize(myWords.size() + static_cast<size_t>(row->words * count) + 1);
    for (int i = 0; i < count; ++i, made.a += row->words)
        add(made);
    return first;
}

void osl_ClosureArena::countParameters(int component)
{
    Node &made = myNodes[static_cast<size_t>(component) - 1];
    for (const osl_ClosureParameter &parameter : made.row->parameters) {
        const int given = words(component)[parameter.at];
        if (parameter.type.isClosure && given != 0)
            made.components += node(given).components;
    }
    if (made.components > MAX_COMPONENTS) {
        myIsTooWide = true;
        made.components = 1; // bounded, whatever is added before the machine stops
    }
}

int osl_ClosureArena::sum(int a, int b)
{
    if (a == 0 || b == 0)
        return a + b;
    Node made;
    made.kind = Node::SUM;
    made.a = a;
    made.b = b;
    made.components = node(a).components + node(b).components;
    if (made.components > MAX_COMPONENTS) {
        myIsTooWide = true;
        return a;
    }
    return add(made);
}

int osl_ClosureArena::product(int closure, const osl_Colour &weight)
{
    if (closure == 0 || weight == osl_Colour{0, 0, 0})
        return 0;
    if (weight == osl_Colour{1, 1, 1})
        return closure;
    Node made = node(closure);
    if (made.kind == Node::SUM) {
        made.kind = Node::PRODUCT;
        made.a = closure;
    }
    made.weight = made.weight * weight;
    return add(made);
}

void osl_ClosureArena::flatten(int closure, std::vector<OSL_ClosureComponent> &components) const
{
    components.clear();
    if (closure == 0)
        return;
    myOpen.clear();
    std::pair<int, osl_Colour> next = {closure, {1, 1, 1}};
    for (;;) {
        const Node &at = node(next.first);
        const osl_Colour weight = next.second * at.weight;
        if (at.kind == Node::SUM)
            myOpen.emplace_back(at.b, weight);
        if (at.kind != Node::COMPONENT) {
            next = {at.a, weight};
            continue;
        }
        components.push_back({at.row, weight, &myWords[static_cast<size_t>(at.a)]});
        if (myOpen.empty())
            return;
        next = myOpen.back();
        myOpen.pop_back();
    }
}

std::string osl_ClosureArena::text(int closure, const osl_Texts &texts, int depth) const
{
    if (depth > MAX_TEXT_DEPTH)
        return "";
    std::vector<OSL_ClosureComponent> components;
    flatten(closure, components);
    std::string out;
    for (const OSL_ClosureComponent &component : components) {
        if (out.size() > MAX_TEXT)
            break;
        out += out.empty() ? "" : "\n\t+ ";
        out += tripleText(component.weight) + " * " + component.closure->name + " (";
        bool isFirst = true;
        for (const osl_ClosureParameter &parameter : component.closure->parameters) {
            const int32_t *word = component.words + parameter.at;
            out += isFirst ? "" : ", ";
            isFirst = false;
            if (parameter.isKeyword)
                out += "\"" + parameter.name + "\", ";
            if (parameter.type.isClosure)
                out += text(*word, texts, depth + 1);
            else if (parameter.type.isInt())
                out += std::to_string(*word);
            else if (parameter.type.isFloat())
                out += osl_floatText(asFloat(*word));
            else if (parameter.type.isString())
                (out += '"').append(texts[*word]) += '"';
            else
                out += tripleText({asFloat(word[0]), asFloat(word[1]), asFloat(word[2])});
        }
        out += ")";
    }
    return out;
}
