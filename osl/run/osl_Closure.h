// Closures of one run: trees of sums and products over components, by handle.
#pragma once

#include "osl/OSL_Context.h"
#include "osl/check/osl_Closures.h"

#include <string>
#include <vector>

class osl_Texts;

class osl_ClosureArena
{
public:
    void clear();
    bool isFull() const { return myNodes.size() > MAX_NODES || myIsTooWide; }

    // The first of so many, whose handles follow each other, and so do the words of their
    // parameters, which are for the caller to fill.
    int components(const osl_ClosureRow *row, int count);
    int *words(int component) { return &myWords[static_cast<size_t>(node(component).a)]; }
    // Once they are filled: takes in what closures among the parameters are made of.
    void countParameters(int component);
    int sum(int a, int b);
    int product(int closure, const osl_Colour &weight);

    void flatten(int closure, std::vector<OSL_ClosureComponent> &components) const;

    // As "%s" prints it: "(1, 1, 1) * name (parameters)", sums on lines of their own.
    std::string text(int closure, const osl_Texts &texts, int depth = 0) const;

private:
    static constexpr size_t MAX_NODES = 1 << 20;
    static constexpr int MAX_COMPONENTS = 1 << 16; // of one closure

    struct Node {
        enum Kind : uint8_t { COMPONENT, SUM, PRODUCT };
        Kind kind = COMPONENT;
        int a = 0; // closure, or the first word of the parameters
        int b = 0;
        int components = 1;
        osl_Colour weight = {1, 1, 1};
        const osl_ClosureRow *row = nullptr;
    };
    const Node &node(int handle) const { return myNodes[static_cast<size_t>(handle) - 1]; }
    int add(const Node &node);

    std::vector<Node> myNodes; // by handle, from 1
    std::vector<int> myWords;
    bool myIsTooWide = false; // a closure: sums of sums need few nodes
    mutable std::vector<std::pair<int, osl_Colour>> myOpen; // of flatten(), kept for its memory
};
