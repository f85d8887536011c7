// Expressions.
#include "osl/syntax/osl_Parser.h"

#include <climits>
#include <cstdlib>
#include <locale>

namespace
{
// Binary operators from the weakest on.
struct Operator {
    int punct;
    int precedence;
};
constexpr int LOWEST = 1;
constexpr Operator OPERATORS[] = {
    {osl_punct("||"), 1}, {osl_punct("&&"), 2}, {osl_punct("|"), 3},  {osl_punct("^"), 4},
    {osl_punct("&"), 5},  {osl_punct("=="), 6}, {osl_punct("!="), 6}, {osl_punct("<"), 7},
    {osl_punct("<="), 7}, {osl_punct(">"), 7},  {osl_punct(">="), 7}, {osl_punct("<<"), 8},
    {osl_punct(">>"), 8}, {osl_punct("+"), 9},  {osl_punct("-"), 9},  {osl_punct("*"), 10},
    {osl_punct("/"), 10}, {osl_punct("%"), 10},
};

constexpr int ASSIGNMENTS[] = {osl_punct("="),  osl_punct("+="),  osl_punct("-="), osl_punct("*="),
                               osl_punct("/="), osl_punct("%="),  osl_punct("&="), osl_punct("|="),
                               osl_punct("^="), osl_punct("<<="), osl_punct(">>=")};

const struct {
    const char *word, *punct;
} OPERATOR_WORDS[] = {{"and", "&&"}, {"or", "||"}, {"not", "!"}};

int punctOf(const osl_Token &token)
{
    if (token.kind == osl_Token::PUNCT)
        return token.punct;
    for (const auto &row : OPERATOR_WORDS) {
        if (token.isName(row.word))
            return osl_punct(row.punct);
    }
    return 0;
}

int precedenceOf(int punct)
{
    for (const Operator &row : OPERATORS) {
        if (row.punct == punct)
            return row.precedence;
    }
    return 0;
}

bool isAssignment(int punct)
{
    for (const int assignment : ASSIGNMENTS) {
        if (assignment == punct)
            return true;
    }
    return false;
}

bool isPostfix(int punct)
{
    return punct == osl_punct("[") || punct == osl_punct(".") || punct == osl_punct("++") ||
           punct == osl_punct("--");
}

char unescape(char c)
{
    switch (c) {
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case 'v':
        return '\v';
    case 'f':
        return '\f';
    case 'b':
        return '\b';
    case 'a':
        return '\a';
    default:
        return c;
    }
}

// Without the quotes, escapes replaced; \101 is octal.
void appendUnescaped(std::string_view quoted, std::string &out)
{
    quoted.remove_prefix(1);
    if (!quoted.empty() && quoted.back() == '"')
        quoted.remove_suffix(1);
    for (size_t i = 0; i < quoted.size(); ++i) {
        if (quoted[i] != '\\' || i + 1 == quoted.size()) {
            out += quoted[i];
            continue;
        }
        ++i;
        int code = 0;
        size_t digits = 0;
        while (digits < 3 && i + digits < quoted.size() && quoted[i + digits] >= '0' &&
               quoted[i + digits] <= '7')
            code = code * 8 + (quoted[i + digits++] - '0');
        out += digits > 0 ? static_cast<char>(code) : unescape(quoted[i]);
        i += digits > 0 ? digits - 1 : 0;
    }
}
} // namespace

// expression, expression, ...
osl_Node *osl_Parser::parseComma()
{
    osl_Node *first = parseExpression();
    if (isBroken || !token().is(osl_punct(",")))
        return first;
    osl_Node *node = myTree.make(osl_Node::COMMA, first->place);
    node->a = first;
    osl_Node *last = first;
    while (accept(",")) {
        last->next = parseExpression();
        last = last->next;
    }
    return finish(node);
}

osl_Node *osl_Parser::parseExpression()
{
    osl_ParserLevel level(*this);
    if (!level.isGood())
        return make(osl_Node::EMPTY);
    if (token().is(osl_punct("{")))
        return parseCompound();
    osl_Node *left = parseTernary();
    const int punct = isBroken ? 0 : punctOf(token());
    if (!isAssignment(punct))
        return left;
    osl_Node *node = make(osl_Node::ASSIGN);
    node->place = left->place;
    ++myNext;
    node->punct = punct;
    node->a = left;
    node->b = parseExpression();
    return finish(node);
}

osl_Node *osl_Parser::parseTernary()
{
    osl_Node *condition = parseBinary(LOWEST);
    if (!accept("?"))
        return condition;
    osl_Node *node = myTree.make(osl_Node::TERNARY, condition->place);
    node->a = condition;
    node->b = parseExpression();
    expect(":");
    node->c = isBroken ? make(osl_Node::EMPTY) : parseExpression();
    return finish(node);
}

osl_Node *osl_Parser::parseBinary(int precedence)
{
    osl_Node *left = parseUnary();
    while (!isBroken) {
        const int punct = punctOf(token());
        const int found = precedenceOf(punct);
        if (found < precedence)
            return left;
        osl_Node *node = myTree.make(osl_Node::BINARY, left->place);
        ++myNext;
        node->punct = punct;
        node->a = left;
        node->b = parseBinary(found + 1);
        left = finish(node);
    }
    return left;
}

osl_Node *osl_Parser::parseUnary()
{
    osl_ParserLevel level(*this);
    if (!level.isGood())
        return make(osl_Node::EMPTY);
    const int punct = punctOf(token());
    const bool isStep = punct == osl_punct("++") || punct == osl_punct("--");
    const bool isSign = punct == osl_punct("-") || punct == osl_punct("+") ||
                        punct == osl_punct("!") || punct == osl_punct("~");
    if (!isStep && !isSign)
        return parsePostfix();
    osl_Node *node = make(isStep ? osl_Node::PREFIX : osl_Node::UNARY);
    ++myNext;
    node->punct = punct;
    node->a = parseUnary();
    return finish(node);
}

osl_Node *osl_Parser::parsePostfix()
{
    osl_Node *left = parsePrimary();
    while (!isBroken) {
        if (!isPostfix(token().punct) ||
            (token().is(osl_punct("[")) && token(1).is(osl_punct("[")))) // metadata
            return left;
        osl_Node *node = myTree.make(osl_Node::EMPTY, left->place);
        node->a = left;
        node->punct = token().punct;
        if (accept("[")) {
            node->kind = osl_Node::INDEX;
            node->b = parseComma();
            expect("]");
        } else if (accept(".")) {
            node->kind = osl_Node::FIELD;
            node->name = expectName();
        } else {
            ++myNext;
            node->kind = osl_Node::POSTFIX;
        }
        left = finish(node);
    }
    return left;
}

osl_Node *osl_Parser::parsePrimary()
{
    switch (token().kind) {
    case osl_Token::NUMBER:
        return parseNumber();
    case osl_Token::STRING:
        return parseText();
    case osl_Token::NAME:
        return parseNamed();
    default:
        if (token().is(osl_punct("(")))
            return parseParenthesis();
        fail("syntax error");
        return make(osl_Node::EMPTY);
    }
}

// (expression) or (type) expression
osl_Node *osl_Parser::parseParenthesis()
{
    const bool isCast = isTypeAhead(1) && token(2).is(osl_punct(")"));
    osl_Node *node = make(osl_Node::CAST);
    ++myNext;
    if (isCast) {
        node->type = parseType();
        ++myNext;
        node->a = parseUnary();
        return finish(node);
    }
    osl_Node *inner = parseComma();
    expect(")");
    return inner;
}

osl_Node *osl_Parser::parseCompound()
{
    osl_ParserLevel level(*this);
    osl_Node *node = make(osl_Node::COMPOUND);
    if (level.isGood() && expect("{"))
        node->a = list("}", [this] { return parseInitialiser(); });
    return finish(node);
}

osl_Node *osl_Parser::parseNumber()
{
    const std::string text(token().text);
    const bool isHex = text.size() > 1 && (text[1] == 'x' || text[1] == 'X');
    const bool isReal = !isHex && text.find_first_of(".eE") != std::string::npos;
    osl_Node *node = make(isReal ? osl_Node::FLOAT : osl_Node::INT);
    if (!isReal)
        return parseInteger(node, text);
    char *end;
    node->real = std::strtof(text.c_str(), &end);
    if (*end != '\0' && !((*end == 'f' || *end == 'F') && end[1] == '\0'))
        fail("syntax error");
    node->type = osl_Type::FLOAT;
    ++myNext;
    return node;
}

osl_Node *osl_Parser::parseInteger(osl_Node *node, std::string_view digits)
{
    const std::string text(digits);
    const bool isHex = text.size() > 1 && (text[1] == 'x' || text[1] == 'X');
    char *end;
    const unsigned long long value = std::strtoull(text.c_str(), &end, isHex ? 16 : 10);
    // A minus sign may stand in front, so one more than the largest number is good.
    const unsigned long long limit = isHex ? 0xffffffffULL : 1ULL + INT_MAX;
    if (*end != '\0')
        fail("syntax error");
    else if (value > limit)
        myMessages.error(token().place,
                         "integer overflow, value must be between -2147483648 and 2147483647.");
    node->number = static_cast<int>(static_cast<unsigned>(value));
    node->type = osl_Type::INT;
    ++myNext;
    return node;
}

// Literals that stand side by side are one.
osl_Node *osl_Parser::parseText()
{
    osl_Node *node = make(osl_Node::STRING);
    std::string text;
    while (token().kind == osl_Token::STRING) {
        if (token().text.size() < 2 || token().text.back() != '"')
            fail("syntax error");
        appendUnescaped(token().text, text);
        ++myNext;
    }
    node->text = myTree.keep(std::move(text));
    node->type = osl_Type::STRING;
    return node;
}

// A variable, a call or a constructor.
osl_Node *osl_Parser::parseNamed()
{
    osl_Node *node = make(osl_Node::VAR);
    if (isTypeAhead()) {
        const std::string_view word = token().text;
        const bool isName =
            osl_typeByName(word) == osl_Type::UNKNOWN && !token(1).is(osl_punct("("));
        node->type = parseType();
        if (isName) { // the checker says that it is a type
            node->name = word;
            return node;
        }
        node->kind = osl_Node::CONSTRUCT;
        node->name = word;
        if (expect("("))
            node->a = list(")", [this] { return parseExpression(); });
        return finish(node);
    }
    node->name = expectName();
    if (accept("(")) {
        node->kind = osl_Node::CALL;
        node->a = list(")", [this] { return parseExpression(); });
    }
    return finish(node);
}
