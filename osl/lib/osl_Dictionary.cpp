#include "osl/lib/osl_Dictionary.h"

#ifdef OSL_HAS_DICTIONARIES

#include <cmath>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include <pugixml.hpp>

namespace
{
constexpr size_t MAX_TEXT = size_t(4) << 20;
constexpr size_t MAX_TEXTS = 200;
constexpr size_t MAX_TOTAL = size_t(16) << 20;
constexpr double READ_VISITS = 10000; // of the smallest text
constexpr size_t MAX_QUERY = 1000;
constexpr size_t MAX_NODES = 100000;
constexpr double MAX_VISITS = 1e8; // of nodes, by one query
constexpr double VISITS_AT_ONCE = 4;

struct Document {
    pugi::xml_document tree;
    bool isGood = false;
    double size = 0; // elements and attributes
};

// How often a query may have to look at all nodes for each of all nodes: paths that
// lead far away count inside brackets, where they are taken anew for each node.
int farSteps(std::string_view query)
{
    static const char *const WORDS[] = {"//",        "/*",        "..",      "descendant",
                                        "following", "preceding", "ancestor"};
    int depth = 0;
    int inside = 0;
    bool isOutside = false;
    for (size_t i = 0; i < query.size(); ++i) {
        depth += (query[i] == '[' || query[i] == '(') - (query[i] == ']' || query[i] == ')');
        inside += query[i] == '[' && depth > 1;
        for (const std::string_view word : WORDS) {
            if (query.compare(i, word.size(), word) != 0)
                continue;
            inside += depth > 0;
            isOutside = true;
        }
    }
    return inside + (isOutside ? 1 : 0);
}
} // namespace

struct osl_Dictionaries::Data {
    struct Node {
        const Document *document;
        pugi::xml_node node;
        int next; // that the same query found
    };
    std::map<std::string, Document, std::less<>> documents;
    std::map<std::string, int, std::less<>> answers[2]; // of dictionaries and of nodes
    std::deque<Node> nodes{1};
    double visits = 0;
    size_t total = 0; // bytes of all texts

    const Document &read(std::string_view name, std::string_view content);
    int ask(const Document &document, pugi::xml_node from, std::string_view query);
    int answer(const Document &document, pugi::xml_node from, const pugi::xpath_query &query);
    bool has(int node) const { return node > 0 && static_cast<size_t>(node) < nodes.size(); }
};

const Document &osl_Dictionaries::Data::read(std::string_view name, std::string_view content)
{
    static const Document NONE;
    total += content.size();
    if (documents.size() >= MAX_TEXTS || total > MAX_TOTAL)
        return NONE;
    Document &made = documents[std::string(name)];
    if (content.size() > MAX_TEXT)
        return made;
    const unsigned options = pugi::parse_default | pugi::parse_trim_pcdata;
    made.isGood =
        !content.empty() &&
        made.tree.load_buffer(content.data(), content.size(), options).status == pugi::status_ok;
    for (const char c : content)
        made.size += c == '<' || c == '=';
    visits += READ_VISITS + static_cast<double>(content.size());
    return made;
}

int osl_Dictionaries::Data::answer(const Document &document, pugi::xml_node from,
                                   const pugi::xpath_query &query)
{
    if (!query || query.return_type() != pugi::xpath_type_node_set)
        return INVALID;
    int first = NOT_FOUND;
    pugi::xpath_node_set matches = query.evaluate_node_set(from);
    matches.sort();
    for (const pugi::xpath_node &found : matches) {
        if (found.node().empty() || nodes.size() >= MAX_NODES)
            continue;
        const int number = static_cast<int>(nodes.size());
        if (first == NOT_FOUND)
            first = number;
        else
            nodes.back().next = number;
        nodes.push_back({&document, found.node(), 0});
    }
    return first;
}

int osl_Dictionaries::Data::ask(const Document &document, pugi::xml_node from,
                                std::string_view query)
{
    if (!document.isGood || query.size() > MAX_QUERY)
        return INVALID;
    const double all = document.size * (1 + static_cast<double>(query.size()) / 16) *
                       std::pow(document.size, farSteps(query));
    if (all > MAX_VISITS)
        return NOT_FOUND;
    visits += all;
    // The library throws what its return values cannot say.
    try {
        return answer(document, from, pugi::xpath_query(std::string(query).c_str()));
    } catch (const std::exception &) {
        return INVALID;
    }
}

osl_Dictionaries::osl_Dictionaries() : myData(std::make_unique<Data>()) {}
osl_Dictionaries::~osl_Dictionaries() = default;

bool osl_Dictionaries::isKnown(std::string_view dictionary) const
{
    return myData->documents.find(dictionary) != myData->documents.end();
}

int osl_Dictionaries::find(std::string_view dictionary, std::string_view content,
                           std::string_view query)
{
    std::string key(query);
    (key += '\0') += dictionary;
    const auto known = myData->answers[0].find(key);
    if (known != myData->answers[0].end())
        return known->second;
    const auto document = myData->documents.find(dictionary);
    const Document &from =
        document != myData->documents.end() ? document->second : myData->read(dictionary, content);
    const int found = myData->ask(from, from.tree, query);
    if (myData->answers[0].size() < MAX_NODES)
        myData->answers[0].emplace(std::move(key), found);
    return found;
}

int osl_Dictionaries::find(int node, std::string_view query)
{
    if (!myData->has(node))
        return NOT_FOUND;
    const std::string key = std::to_string(node) + ' ' + std::string(query);
    const auto known = myData->answers[1].find(key);
    if (known != myData->answers[1].end())
        return known->second;
    const Data::Node from = myData->nodes[static_cast<size_t>(node)];
    const int found = myData->ask(*from.document, from.node, query);
    if (myData->answers[1].size() < MAX_NODES)
        myData->answers[1].emplace(key, found);
    return found;
}

int osl_Dictionaries::next(int node) const
{
    return myData->has(node) ? myData->nodes[static_cast<size_t>(node)].next : NOT_FOUND;
}

bool osl_Dictionaries::value(int node, std::string_view attribute, std::string_view &text) const
{
    if (!myData->has(node))
        return false;
    const pugi::xml_node from = myData->nodes[static_cast<size_t>(node)].node;
    if (attribute.empty()) {
        text = *from.value() != '\0' ? from.value() : from.child_value();
        return true;
    }
    for (const pugi::xml_attribute &found : from.attributes()) {
        if (attribute != found.name())
            continue;
        text = found.value();
        return true;
    }
    return false;
}

unsigned long long osl_Dictionaries::cost() const
{
    return static_cast<unsigned long long>(myData->visits / VISITS_AT_ONCE);
}

#else

// Without the library for XML nothing is one.
struct osl_Dictionaries::Data {
};

osl_Dictionaries::osl_Dictionaries() = default;
osl_Dictionaries::~osl_Dictionaries() = default;

bool osl_Dictionaries::isKnown(std::string_view) const
{
    return true;
}

int osl_Dictionaries::find(std::string_view, std::string_view, std::string_view)
{
    return INVALID;
}

int osl_Dictionaries::find(int, std::string_view)
{
    return NOT_FOUND;
}

int osl_Dictionaries::next(int) const
{
    return NOT_FOUND;
}

bool osl_Dictionaries::value(int, std::string_view, std::string_view &) const
{
    return false;
}

unsigned long long osl_Dictionaries::cost() const
{
    return 0;
}

#endif
