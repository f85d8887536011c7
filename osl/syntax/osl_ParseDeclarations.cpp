// Declarations and statements.
#include "osl/syntax/osl_Parser.h"

#include <algorithm>

namespace
{
constexpr std::string_view SHADER_KINDS[] = {"shader", "surface", "displacement", "volume",
                                             "light"};

constexpr std::string_view KEYWORDS[] = {"break",  "closure", "continue", "do",
                                         "else",   "for",     "if",       "output",
                                         "public", "return",  "struct",   "while"};
constexpr std::string_view RESERVED[] = {
    "bool",   "case",     "catch",   "char",      "class",   "const",  "delete",  "default",
    "double", "enum",     "extern",  "false",     "friend",  "goto",   "inline",  "long",
    "new",    "operator", "private", "protected", "short",   "signed", "sizeof",  "static",
    "switch", "template", "this",    "throw",     "true",    "try",    "typedef", "uniform",
    "union",  "unsigned", "varying", "virtual",   "volatile"};

template <size_t N>
bool isOneOf(const std::string_view (&words)[N], std::string_view word)
{
    return std::find(words, words + N, word) != words + N;
}
} // namespace

osl_Parser::osl_Parser(const std::vector<osl_Token> &tokens, osl_Tree &tree, osl_Messages &messages)
    : myTokens(tokens), myTree(tree), myMessages(messages)
{
}

// ---- Tokens ---------------------------------------------------------------

bool osl_Parser::acceptWord(std::string_view word)
{
    if (isBroken || !token().isName(word))
        return false;
    ++myNext;
    return true;
}

bool osl_Parser::expect(const char *punct)
{
    if (accept(punct))
        return true;
    fail("syntax error");
    return false;
}

std::string_view osl_Parser::expectName()
{
    const std::string_view name = token().text;
    if (token().kind != osl_Token::NAME || osl_typeByName(name) != osl_Type::UNKNOWN) {
        fail("syntax error");
        return "";
    }
    if (isOneOf(RESERVED, name))
        myMessages.error(token().place, "'" + std::string(name) + "' is a reserved word");
    ++myNext;
    return name;
}

// The first failure counts; nothing is read behind it.
void osl_Parser::failWith(const std::string &message)
{
    if (!isBroken)
        myMessages.error(token().place, message);
    isBroken = true;
}

void osl_Parser::fail(std::string_view what)
{
    failWith("Syntax error: " + std::string(what));
}

osl_Node *osl_Parser::make(osl_Node::Kind kind)
{
    return myTree.make(kind, token().place);
}

osl_Node *osl_Parser::finish(osl_Node *node)
{
    for (const osl_Node *child : {node->a, node->b, node->c, node->d}) {
        for (; child != nullptr; child = child->next)
            node->depth = std::max(node->depth, child->depth + 1);
    }
    if (node->depth > MAX_TREE_DEPTH)
        fail("expression too long");
    return node;
}

// ---- Declarations ---------------------------------------------------------

bool osl_Parser::parse()
{
    while (!isBroken && token().kind != osl_Token::END)
        parseTopLevel();
    return !isBroken;
}

void osl_Parser::parseTopLevel()
{
    if (isShaderAhead()) {
        const std::string_view kind = token().text;
        if (!isOneOf(SHADER_KINDS, kind))
            myMessages.error(token().place, "Unknown shader type: " + std::string(kind));
        ++myNext;
        if (myTree.shader != nullptr)
            fail("Only one shader is allowed per file.");
        myTree.shader = parseShader(kind);
        myTree.declarations.push_back(myTree.shader);
    } else if (acceptWord("struct")) {
        parseStruct();
    } else if (isTypeAhead()) {
        const osl_Type type = parseType();
        const osl_Place place = token().place;
        const std::string_view name = expectName();
        if (expect("("))
            myTree.declarations.push_back(parseFunction(type, name, place));
    } else if (!accept(";")) {
        fail("syntax error");
    }
}

// Two words, the first of which is no type.
bool osl_Parser::isShaderAhead() const
{
    return token().kind == osl_Token::NAME && token(1).kind == osl_Token::NAME &&
           !token().isName("struct") && !isTypeAhead();
}

bool osl_Parser::isTypeAhead(size_t ahead) const
{
    const osl_Token &word = token(ahead);
    if (word.kind != osl_Token::NAME)
        return false;
    return word.text == "closure" || osl_typeByName(word.text) != osl_Type::UNKNOWN ||
           myStructs.count(word.text) > 0;
}

// A type and a name; a type alone may begin an expression.
bool osl_Parser::isDeclarationAhead() const
{
    if (token().isName("closure"))
        return true;
    return isTypeAhead() && token(1).kind == osl_Token::NAME;
}

osl_Type osl_Parser::parseType()
{
    const bool isClosure = acceptWord("closure");
    const std::string_view word = token().text;
    osl_Type type(osl_typeByName(word));
    const auto found = myStructs.find(word);
    if (found != myStructs.end()) {
        type.base = osl_Type::STRUCT;
        type.record = found->second;
    }
    if (type.isUnknown() && isUnknownStructAhead())
        failWith("Unknown struct name: " + std::string(word));
    else if (type.isUnknown())
        fail("syntax error");
    ++myNext;
    type.isClosure = isClosure;
    return type;
}

// "Name name" where the first is no type: a forgotten header, mostly.
bool osl_Parser::isUnknownStructAhead() const
{
    return token().kind == osl_Token::NAME && !isTypeAhead() && !isOneOf(KEYWORDS, token().text) &&
           !isOneOf(RESERVED, token().text) && token(1).kind == osl_Token::NAME;
}

// [3], [], or nothing.
int osl_Parser::parseArray()
{
    if (!accept("["))
        return 0;
    if (accept("]"))
        return osl_Type::UNSIZED;
    const osl_Place place = token().place;
    const osl_Node *length = token().kind == osl_Token::NUMBER ? parseNumber() : nullptr;
    if (length == nullptr || length->kind != osl_Node::INT || !expect("]")) {
        fail("syntax error");
        return 0;
    }
    constexpr int MAX_LENGTH = 1 << 20;
    if (length->number < 1 || length->number > MAX_LENGTH) {
        myMessages.error(place,
                         "Invalid array length for an array of " + std::to_string(length->number));
        return 1;
    }
    return length->number;
}

void osl_Parser::parseStruct()
{
    osl_Node *node = make(osl_Node::STRUCT);
    node->name = expectName();
    expect("{");
    myTree.structs.emplace_back();
    osl_Struct &record = myTree.structs.back();
    record.name = node->name;
    osl_Node **last = &node->a;
    while (!isBroken && !accept("}")) {
        const osl_Type type = parseType();
        do {
            osl_Node *field = make(osl_Node::VARIABLE);
            field->name = expectName();
            field->type = type.arrayOf(parseArray());
            record.fields.push_back({field->name, field->type});
            *last = field;
            last = &field->next;
        } while (accept(","));
        expect(";");
    }
    accept(";");
    if (!record.measure())
        fail("struct too large");
    node->type.base = osl_Type::STRUCT;
    node->type.record = &record;
    myStructs[node->name] = &record;
    myTree.declarations.push_back(node);
}

osl_Node *osl_Parser::parseShader(std::string_view kind)
{
    osl_Node *node = make(osl_Node::SHADER);
    node->text = kind;
    node->name = expectName();
    node->c = parseMetadata();
    if (expect("("))
        node->a = list(")", [this] { return parseParameter(true); });
    if (osl_Node *more = parseMetadata(); more != nullptr)
        node->c = more;
    if (!isBroken)
        node->b = parseBlock();
    return node;
}

// Behind "type name (".
osl_Node *osl_Parser::parseFunction(const osl_Type &type, std::string_view name, osl_Place place)
{
    osl_Node *node = myTree.make(osl_Node::FUNCTION, place);
    node->type = type;
    node->name = name;
    node->a = list(")", [this] { return parseParameter(false); });
    node->c = parseMetadata();
    // A renderer's words for functions that it has itself.
    const bool isBuiltin = acceptWord("BUILTIN") || acceptWord("BUILTIN_DERIV");
    if (isBuiltin || token().is(osl_punct(";"))) {
        expect(";");
        return node;
    }
    node->b = parseBlock();
    return finish(node);
}

osl_Node *osl_Parser::parseParameter(bool ofShader)
{
    osl_Node *node = make(osl_Node::VARIABLE);
    node->isOutput = acceptWord("output");
    if (isBroken || !isTypeAhead()) {
        fail("syntax error");
        return node;
    }
    node->type = parseType();
    node->place = token().place;
    node->name = expectName();
    node->type.array = parseArray();
    node->isParameter = ofShader;
    if (accept("="))
        node->a = parseInitialiser();
    node->c = parseMetadata();
    return finish(node);
}

osl_Node *osl_Parser::parseInitialiser()
{
    return token().is(osl_punct("{")) ? parseCompound() : parseExpression();
}

// [[ type name = value, ... ]]
osl_Node *osl_Parser::parseMetadata()
{
    if (!token().is(osl_punct("[")) || !token(1).is(osl_punct("[")))
        return nullptr;
    myNext += 2;
    osl_Node *first = list("]", [this] {
        osl_Node *node = make(osl_Node::VARIABLE);
        if (!isTypeAhead())
            fail("syntax error");
        node->type = isBroken ? osl_Type() : parseType();
        node->name = token().text;
        ++myNext;
        node->type.array = parseArray();
        if (expect("="))
            node->a = parseInitialiser();
        return node;
    });
    expect("]");
    return first;
}

// Behind the first name of a declaration, up to and with the ";".
osl_Node *osl_Parser::parseVariables(const osl_Type &type, std::string_view name, osl_Place place)
{
    osl_Node *first = nullptr;
    osl_Node **last = &first;
    for (;;) {
        osl_Node *node = myTree.make(osl_Node::VARIABLE, place);
        node->name = name;
        node->type = type.arrayOf(parseArray());
        if (accept("="))
            node->a = parseInitialiser();
        *last = finish(node);
        last = &node->next;
        if (!accept(","))
            break;
        place = token().place;
        name = expectName();
    }
    expect(";");
    return first;
}

osl_Node *osl_Parser::parseDeclaration()
{
    const osl_Type type = parseType();
    const osl_Place place = token().place;
    const std::string_view name = expectName();
    if (accept("("))
        return parseFunction(type, name, place);
    return parseVariables(type, name, place);
}

// ---- Statements -----------------------------------------------------------

osl_Node *osl_Parser::parseBlock()
{
    osl_Node *node = make(osl_Node::BLOCK);
    expect("{");
    osl_Node **last = &node->a;
    while (!isBroken && !accept("}")) {
        if (token().kind == osl_Token::END) {
            fail("syntax error");
            break;
        }
        *last = parseStatement();
        while (*last != nullptr)
            last = &(*last)->next;
    }
    return finish(node);
}

// One statement; a declaration of several variables gives a list.
osl_Node *osl_Parser::parseStatement()
{
    osl_ParserLevel level(*this);
    osl_Node *node = level.isGood() ? parseStatementInside() : nullptr;
    return node != nullptr ? node : make(osl_Node::EMPTY);
}

osl_Node *osl_Parser::parseStatementInside()
{
    if (token().is(osl_punct("{")))
        return parseBlock();
    if (accept(";"))
        return make(osl_Node::EMPTY);
    if (token().isName("if"))
        return parseIf();
    if (token().isName("for"))
        return parseLoop(osl_Node::FOR);
    if (token().isName("while"))
        return parseLoop(osl_Node::WHILE);
    if (token().isName("do"))
        return parseLoop(osl_Node::DO);
    if (token().isName("return"))
        return parseReturn();
    for (const osl_Node::Kind kind : {osl_Node::BREAK, osl_Node::CONTINUE}) {
        osl_Node *node = make(kind);
        if (acceptWord(kind == osl_Node::BREAK ? "break" : "continue")) {
            expect(";");
            return node;
        }
    }
    if (acceptWord("struct")) {
        parseStruct();
        return nullptr;
    }
    if (isDeclarationAhead() || isUnknownStructAhead())
        return parseDeclaration();
    osl_Node *node = parseComma();
    expect(";");
    return node;
}

osl_Node *osl_Parser::parseIf()
{
    // A chain of "else if" is read by a loop, but nests all the same.
    osl_Node *first = nullptr;
    osl_Node **place = &first;
    int length = 0;
    while (acceptWord("if")) {
        osl_Node *node = make(osl_Node::IF);
        *place = node;
        if (expect("("))
            node->a = parseComma();
        expect(")");
        node->b = isBroken ? nullptr : parseStatement();
        if (isBroken || !acceptWord("else"))
            break;
        place = &node->c;
        if (!token().isName("if")) {
            node->c = parseStatement();
            break;
        }
        if (++length > MAX_TREE_DEPTH / 2)
            fail("nested too deeply");
    }
    return first;
}

osl_Node *osl_Parser::parseLoop(osl_Node::Loop kind)
{
    osl_Node *node = make(osl_Node::LOOP);
    node->punct = kind;
    ++myNext;
    if (kind == osl_Node::FOR)
        return parseFor(node);
    if (kind == osl_Node::DO) {
        node->d = parseStatement();
        if (!acceptWord("while"))
            fail("syntax error");
    }
    if (expect("("))
        node->b = parseComma();
    expect(")");
    if (kind == osl_Node::DO)
        expect(";");
    else if (!isBroken)
        node->d = parseStatement();
    return finish(node);
}

osl_Node *osl_Parser::parseFor(osl_Node *node)
{
    expect("(");
    if (!isBroken && isDeclarationAhead()) {
        node->a = parseDeclaration();
    } else if (!accept(";")) {
        node->a = parseComma();
        expect(";");
    }
    if (!accept(";")) {
        node->b = parseComma();
        expect(";");
    }
    if (!accept(")")) {
        node->c = parseComma();
        expect(")");
    }
    if (!isBroken)
        node->d = parseStatement();
    return finish(node);
}

osl_Node *osl_Parser::parseReturn()
{
    osl_Node *node = make(osl_Node::RETURN);
    ++myNext;
    if (accept(";"))
        return node;
    node->a = parseInitialiser();
    expect(";");
    return finish(node);
}
