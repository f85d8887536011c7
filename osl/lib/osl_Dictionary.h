// Dictionaries: XML texts that shaders ask by XPath.
//
// Each text is read once and each query answered once; nodes are known by numbers from 1
// on. Questions that could take long (a query that looks everywhere from everywhere, in a
// large text) are not answered.
#pragma once

#include <memory>
#include <string_view>

class osl_Dictionaries
{
public:
    static constexpr int NOT_FOUND = 0;
    static constexpr int INVALID = -1; // no XML, or no XPath

    osl_Dictionaries();
    ~osl_Dictionaries();
    osl_Dictionaries(const osl_Dictionaries &) = delete;
    osl_Dictionaries &operator=(const osl_Dictionaries &) = delete;

    // Whether a text is already there: find() then needs no `content`.
    bool isKnown(std::string_view dictionary) const;

    // The first node that a query finds in a dictionary; `dictionary` is its name or its text,
    // `content` its text. NOT_FOUND or INVALID otherwise.
    int find(std::string_view dictionary, std::string_view content, std::string_view query);
    int find(int node, std::string_view query); // from a node on

    // The next node that the same query found.
    int next(int node) const;

    // An attribute of a node or, for "", the node's own value. False when it has none.
    // The text lives as long as the dictionaries.
    bool value(int node, std::string_view attribute, std::string_view &text) const;

    // The work of all questions so far, in about the time of a short instruction each.
    unsigned long long cost() const;

private:
    struct Data;
    std::unique_ptr<Data> myData;
};
