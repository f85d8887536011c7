// What names mean: variables, types and functions, by scope.
#pragma once

#include "osl/syntax/osl_Node.h"

#include <deque>
#include <unordered_map>
#include <vector>

struct osl_Builtin;
struct osl_ClosureRow;

// One function of a name: the user's, or one overload of a built-in one.
struct osl_Function {
    struct Parameter {
        osl_Type type;
        bool isOutput = false;
        bool isAny = false;      // of any type
        bool isNoStruct = false; // but that
    };
    enum Tail : uint8_t {
        NO_MORE,
        KEYWORDS, // pairs of a text and a value
        ANYTHING, // arguments of any type
        MORE      // like the last parameter
    };

    std::string_view name;
    osl_Type result;
    std::vector<Parameter> parameters;
    Tail tail = NO_MORE;
    int scope = 0;
    osl_Node *node = nullptr;             // of the user's
    const osl_Builtin *builtin = nullptr; // of ours
    const osl_ClosureRow *closure = nullptr;
    osl_Function *next = nullptr;       // of the same name, declared earlier
    int overloads = 1;                  // of that name so far
    osl_Function *definition = nullptr; // where this is only a declaration

    bool hasReturn = false;
    int state = 0; // of the search for recursion
    std::vector<osl_Function *> callees;

    std::string parameterList() const; // "float, string, ..."
};

struct osl_Symbol {
    enum Kind : uint8_t { PARAMETER, OUTPUT, LOCAL, GLOBAL, FORMAL, FUNCTION, TYPE };

    std::string_view name;
    Kind kind = LOCAL;
    osl_Type type;
    int scope = 0;
    int number = -1;                   // of all symbols, in order
    osl_Node *node = nullptr;          // of the declaration
    osl_Function *functions = nullptr; // the last one declared
    bool isWritten = false;
    bool isReadOnly = false;

    bool isVariable() const { return kind < FUNCTION; }
};

class osl_Symbols
{
public:
    osl_Symbol *find(std::string_view name) const;        // innermost; null when unknown
    osl_Symbol *findInScope(std::string_view name) const; // of the current scope only
    osl_Symbol *declare(std::string_view name, osl_Symbol::Kind kind, const osl_Type &type);

    void openScope() { myScopes.emplace_back(); }
    void closeScope();
    int scope() const { return static_cast<int>(myScopes.size()); } // 0: global
    int count() const { return static_cast<int>(mySymbols.size()); }

private:
    std::deque<osl_Symbol> mySymbols;
    std::unordered_map<std::string_view, osl_Symbol *> myNames;
    // What the names of a scope meant before.
    std::vector<std::vector<std::pair<std::string_view, osl_Symbol *>>> myScopes;
};
