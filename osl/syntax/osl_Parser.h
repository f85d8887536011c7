// Reads tokens into a syntax tree, by recursive descent.
//
// How deep constructs may nest inside each other is bounded, so that no source
// can exhaust the stack: neither here nor in those who walk the tree.
#pragma once

#include "osl/syntax/osl_Node.h"

#include <algorithm>
#include <unordered_map>

class osl_Parser
{
public:
    // REQUIRES: the last token is END; tokens, tree and messages outlive this
    osl_Parser(const std::vector<osl_Token> &tokens, osl_Tree &tree, osl_Messages &messages);

    // False after a syntax error; the messages tell it.
    [[nodiscard]] bool parse();

private:
    static constexpr int MAX_DEPTH = 250;       // of nested brackets and statements
    static constexpr int MAX_TREE_DEPTH = 2000; // of a long chain a + b + c ...

    // Tokens
    const osl_Token &token(size_t ahead = 0) const
    {
        return myTokens[std::min(myNext + ahead, myTokens.size() - 1)];
    }
    bool accept(const char *punct)
    {
        const bool isIt = !isBroken && token().is(osl_punct(punct));
        myNext += isIt ? 1 : 0;
        return isIt;
    }
    bool acceptWord(std::string_view word);
    bool expect(const char *punct);
    std::string_view expectName();
    void fail(std::string_view what);
    void failWith(const std::string &message); // and not of syntax
    bool isUnknownStructAhead() const;
    osl_Node *make(osl_Node::Kind kind);
    osl_Node *finish(osl_Node *node); // with its depth
    template <class Parse>
    osl_Node *list(const char *end, Parse parse); // up to and with `end`

    // Declarations (osl_ParseDeclarations.cpp)
    void parseTopLevel();
    bool isShaderAhead() const;
    bool isTypeAhead(size_t ahead = 0) const;
    bool isDeclarationAhead() const;
    osl_Type parseType();
    int parseArray();
    void parseStruct();
    osl_Node *parseShader(std::string_view kind);
    osl_Node *parseFunction(const osl_Type &type, std::string_view name, osl_Place place);
    osl_Node *parseParameter(bool ofShader);
    osl_Node *parseMetadata();
    osl_Node *parseVariables(const osl_Type &type, std::string_view name, osl_Place place);
    osl_Node *parseDeclaration();
    osl_Node *parseInitialiser();

    // Statements
    osl_Node *parseStatement();
    osl_Node *parseStatementInside();
    osl_Node *parseBlock();
    osl_Node *parseIf();
    osl_Node *parseLoop(osl_Node::Loop kind);
    osl_Node *parseFor(osl_Node *node);
    osl_Node *parseReturn();

    // Expressions (osl_ParseExpressions.cpp)
    osl_Node *parseComma();
    osl_Node *parseExpression();
    osl_Node *parseTernary();
    osl_Node *parseBinary(int precedence);
    osl_Node *parseUnary();
    osl_Node *parsePostfix();
    osl_Node *parsePrimary();
    osl_Node *parseParenthesis();
    osl_Node *parseCompound();
    osl_Node *parseNumber();
    osl_Node *parseInteger(osl_Node *node, std::string_view text);
    osl_Node *parseText();
    osl_Node *parseNamed();

    const std::vector<osl_Token> &myTokens;
    osl_Tree &myTree;
    osl_Messages &myMessages;
    std::unordered_map<std::string_view, const osl_Struct *> myStructs;
    size_t myNext = 0;
    int myDepth = 0;
    bool isBroken = false;

    friend class osl_ParserLevel;
};

// Counts one level of nesting; false once it is too deep.
class osl_ParserLevel
{
public:
    explicit osl_ParserLevel(osl_Parser &parser) : myParser(parser) { ++parser.myDepth; }
    ~osl_ParserLevel() { --myParser.myDepth; }
    osl_ParserLevel(const osl_ParserLevel &) = delete;
    osl_ParserLevel &operator=(const osl_ParserLevel &) = delete;
    bool isGood()
    {
        if (myParser.myDepth <= osl_Parser::MAX_DEPTH)
            return true;
        myParser.fail("nested too deeply");
        return false;
    }

private:
    osl_Parser &myParser;
};

template <class Parse>
osl_Node *osl_Parser::list(const char *end, Parse parse)
{
    osl_Node *first = nullptr;
    osl_Node **last = &first;
    while (!isBroken && !accept(end)) {
        osl_Node *node = parse();
        if (isBroken)
            break;
        *last = node;
        last = &node->next;
        if (!accept(",")) {
            expect(end);
            break;
        }
    }
    return first;
}
