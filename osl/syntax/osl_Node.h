// The syntax tree. The parser makes it, the checker writes types and meanings into it,
// the generator reads it.
#pragma once

#include "osl/syntax/osl_Type.h"
#include "osl/text/osl_Token.h"

#include <deque>

struct osl_Function;
struct osl_Symbol;

struct osl_Node {
    enum Kind : uint8_t {
        // Declarations            name, then a, b, c, d
        SHADER,   // kind of shader in `text`; a parameters, b body, c metadata
        FUNCTION, // type result; a parameters, b body (null for none), c metadata
        STRUCT,   // a fields as variables
        VARIABLE, // a initialiser, c metadata

        // Statements
        BLOCK, // a statements
        IF,    // a condition, b then, c else
        LOOP,  // punct FOR, WHILE or DO; a start, b condition, c step, d body
        BREAK,
        CONTINUE,
        RETURN, // a value
        EMPTY,

        // Expressions
        INT,       // number
        FLOAT,     // real
        STRING,    // text
        VAR,       // name
        INDEX,     // a [b]
        FIELD,     // a.name; number is the field or component
        CALL,      // name (a)
        CONSTRUCT, // type (a)
        CAST,      // (type) a
        UNARY,     // punct; a
        BINARY,    // punct; a, b
        ASSIGN,    // punct; a, b
        TERNARY,   // a ? b : c
        PREFIX,    // ++ or --; a
        POSTFIX,
        COMPOUND, // {a}
        COMMA     // (a, ...)
    };
    enum Loop { FOR, WHILE, DO };

    Kind kind = EMPTY;
    bool isOutput = false;
    bool isParameter = false; // of a shader
    int punct = 0;
    int number = 0;
    float real = 0;
    int depth = 0; // of the tree below
    osl_Type type;
    osl_Place place;
    std::string_view name;
    std::string_view text;
    osl_Node *a = nullptr;
    osl_Node *b = nullptr;
    osl_Node *c = nullptr;
    osl_Node *d = nullptr;
    osl_Node *next = nullptr; // in a list

    osl_Symbol *symbol = nullptr;     // of VAR and VARIABLE
    osl_Function *function = nullptr; // of CALL and FUNCTION
};

// Nodes, structs and texts of one source; they live as long as this.
struct osl_Tree {
    std::deque<osl_Node> nodes;
    std::deque<osl_Struct> structs;
    std::deque<std::string> texts;

    std::vector<osl_Node *> declarations; // functions, structs and shaders, in order
    osl_Node *shader = nullptr;           // the last one

    osl_Node *make(osl_Node::Kind kind, osl_Place place)
    {
        nodes.emplace_back();
        nodes.back().kind = kind;
        nodes.back().place = place;
        return &nodes.back();
    }
    std::string_view keep(std::string text)
    {
        texts.push_back(std::move(text));
        return texts.back();
    }
};

inline int osl_listLength(const osl_Node *list)
{
    int length = 0;
    for (; list != nullptr; list = list->next)
        ++length;
    return length;
}
