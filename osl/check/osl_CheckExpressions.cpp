#include "osl/check/osl_Checker.h"

namespace
{
const struct {
    const char *punct, *word;
} BINARY_WORDS[] = {{"*", "mul"}, {"/", "div"},    {"%", "mod"},  {"+", "add"},
                    {"-", "sub"}, {"<<", "shl"},   {">>", "shr"}, {"<", "lt"},
                    {"<=", "le"}, {">", "gt"},     {">=", "ge"},  {"==", "eq"},
                    {"!=", "ne"}, {"&", "bitand"}, {"^", "xor"},  {"|", "bitor"}};
const struct {
    const char *punct, *word;
} UNARY_WORDS[] = {{"-", "neg"}, {"~", "compl"}, {"!", "not"}};

std::string punctText(int punct)
{
    std::string text;
    for (; punct != 0; punct >>= 8)
        text += static_cast<char>(punct & 255);
    return text;
}

// How exact a type is: the larger one takes the other.
osl_Type higher(const osl_Type &a, const osl_Type &b)
{
    if (osl_isEquivalent(a, b))
        return a;
    return osl_isAssignable(a, b) ? a : b;
}

bool isShift(int punct)
{
    return punct == osl_punct("<<") || punct == osl_punct(">>");
}

bool isBitwise(int punct)
{
    return isShift(punct) || punct == osl_punct("&") || punct == osl_punct("|") ||
           punct == osl_punct("^") || punct == osl_punct("%");
}

bool isComparison(int punct)
{
    return punct == osl_punct("<") || punct == osl_punct("<=") || punct == osl_punct(">") ||
           punct == osl_punct(">=");
}
} // namespace

osl_Type osl_Checker::check(Node *node, const osl_Type &wanted)
{
    const osl_Type type = checkInside(node, wanted);
    node->type = type;
    return type;
}

osl_Type osl_Checker::checkInside(Node *node, const osl_Type &wanted)
{
    switch (node->kind) {
    case Node::INT:
    case Node::FLOAT:
    case Node::STRING:
        return node->type;
    case Node::VAR:
        return checkVariable(node);
    case Node::INDEX:
        return checkIndex(node, false);
    case Node::FIELD:
        return checkField(node);
    case Node::CALL:
        return checkCall(node, wanted);
    case Node::CONSTRUCT:
        return node->type.isStruct() ? checkStructConstructor(node) : checkConstructor(node);
    case Node::CAST:
        return checkCast(node);
    case Node::UNARY:
        return checkUnary(node, wanted);
    case Node::BINARY:
        return checkBinary(node, wanted);
    case Node::ASSIGN:
        return checkAssign(node);
    case Node::TERNARY:
        return checkTernary(node, wanted);
    case Node::PREFIX:
    case Node::POSTFIX:
        return checkStep(node);
    case Node::COMMA: {
        osl_Type type;
        for (Node *item = node->a; item != nullptr; item = item->next)
            type = check(item, item->next == nullptr ? wanted : osl_Type());
        return type;
    }
    case Node::COMPOUND:
        if (!wanted.isUnknown())
            resolveCompound(node, wanted, "");
        return node->type;
    default:
        return {};
    }
}

// ---- Variables and their parts --------------------------------------------

osl_Type osl_Checker::checkVariable(Node *node)
{
    osl_Symbol *symbol = mySymbols.find(node->name);
    const std::string name(node->name);
    if (symbol == nullptr && functionsOf(node->name) == nullptr)
        error(NAMES, node->place, "'" + name + "' was not declared in this scope");
    else if (symbol == nullptr || symbol->kind == osl_Symbol::FUNCTION)
        error(NAMES, node->place, "function '" + name + "' can't be used as a variable");
    else if (symbol->kind == osl_Symbol::TYPE)
        error(NAMES, node->place, "type name '" + name + "' can't be used as a variable");
    else
        return (node->symbol = symbol)->type;
    return {};
}

// a[b]; the row of a matrix only where its column follows.
osl_Type osl_Checker::checkIndex(Node *node, bool isInner)
{
    Node *base = node->a;
    osl_Type type =
        base->kind == Node::INDEX ? base->type = checkIndex(base, true) : check(base, osl_Type());
    const bool isElement =
        base->kind == Node::INDEX && base->a->type.isMatrix() && type.base == osl_Type::VOID;
    const osl_Type index = check(node->b, osl_Type::INT);
    if (!index.isInt() && !index.isUnknown())
        error(TYPES, node->place,
              std::string(type.isArray() ? "array" : "component") +
                  " index must be an integer, not a " + index.name());
    if (isElement)
        return osl_Type::FLOAT;
    if (type.isArray())
        return type.element();
    if (type.isTriple())
        return osl_Type::FLOAT;
    if (type.isMatrix() && isInner)
        return osl_Type::VOID; // a row
    if (!type.isUnknown() || base->kind != Node::VAR)
        error(NAMES, node->place, "indexing into non-array or non-component type");
    return {};
}

osl_Type osl_Checker::checkField(Node *node)
{
    const osl_Type type = check(node->a, osl_Type());
    const std::string name(node->name);
    if (type.isUnknown())
        return {};
    if (type.isTriple()) {
        const char *names = type.base == osl_Type::COLOR ? "rgb" : "xyz";
        const char *found =
            name.size() == 1 ? std::char_traits<char>::find(names, 3, name[0]) : nullptr;
        if (found != nullptr) {
            node->number = static_cast<int>(found - names);
            return osl_Type::FLOAT;
        }
    }
    if (!type.isStruct()) {
        error(NAMES, node->place,
              "type '" + type.name() + "' does not have a member '" + name + "'");
        return {};
    }
    node->number = type.record->find(node->name);
    if (node->number < 0) {
        error(NAMES, node->place,
              "struct type '" + std::string(type.record->name) + "' does not have a member '" +
                  name + "'");
        return {};
    }
    const osl_Type field = type.record->fields[static_cast<size_t>(node->number)].type;
    return type.isArray() ? field.arrayOf(type.array) : field;
}

// ---- Constructors and casts -----------------------------------------------

osl_Type osl_Checker::checkConstructor(Node *node)
{
    const osl_Type type = node->type.element();
    const int count = osl_listLength(node->a);
    const bool isSingle = count == 1;
    osl_Type wanted = type.isTriple() && isSingle ? type : osl_Type(osl_Type::FLOAT);
    if (type.isClosure)
        wanted = type;
    if (type.isMatrix() && isSingle)
        wanted = osl_Type();
    if (type.isString() && isSingle)
        wanted = type;
    int texts = 0;
    bool isGood = count > 0;
    int numbers = 0;
    for (Node *arg = node->a; arg != nullptr; arg = arg->next) {
        const osl_Type got = check(arg, wanted);
        if (got.isString() && arg == node->a)
            wanted = osl_Type::FLOAT;
        texts += got.isString();
        numbers += got.isScalar();
        isGood = isGood && !got.isUnknown();
    }
    const osl_Type first = count > 0 ? node->a->type : osl_Type();
    const bool hasSpace = first.isString();
    if (type.isTriple())
        isGood =
            isGood &&
            ((isSingle && (first.isTriple() || first.isScalar())) || (numbers == 3 && count == 3) ||
             (hasSpace && texts == 1 && (numbers == 3 || numbers == 1) && count == numbers + 1));
    else if (type.isMatrix())
        isGood =
            isGood &&
            ((isSingle && (first.isMatrix() || first.isScalar())) ||
             (numbers == 16 && count == 16) || (texts == 2 && count == 2) ||
             (hasSpace && texts == 1 && (numbers == 16 || numbers == 1) && count == numbers + 1));
    else
        isGood = isGood && isSingle && (first == type || (type.isScalar() && first.isScalar()));
    if (!isGood)
        error(TYPES, node->place,
              "Cannot construct " + type.name() + " (" + argumentList(node->a) + ")");
    return type;
}

osl_Type osl_Checker::checkStructConstructor(Node *node)
{
    const osl_Struct &record = *node->type.record;
    const int wanted = static_cast<int>(record.fields.size());
    const int count = osl_listLength(node->a);
    // One value of the type itself is a copy.
    if (count == 1 && node->a->kind != Node::COMPOUND && check(node->a, osl_Type()) == node->type)
        return node->type;
    if (count != wanted)
        error(TYPES, node->place,
              "Constructor for '" + std::string(record.name) +
                  "' has the wrong number of arguments (expected " + std::to_string(wanted) +
                  ", got " + std::to_string(count) + ")");
    size_t i = 0;
    for (Node *arg = node->a; arg != nullptr && i < record.fields.size(); arg = arg->next, ++i) {
        const osl_Field &field = record.fields[i];
        if (arg->kind == Node::COMPOUND)
            resolveCompound(arg, field.type, std::string(field.name));
        else if (const osl_Type got = check(arg, field.type);
                 !osl_isAssignable(field.type, got) && !(field.type.isClosure && isZero(arg)))
            error(TYPES, node->place,
                  "Can't assign '" + field.type.name() + " " + std::string(record.name) + "." +
                      std::string(field.name) + "' = '" + got.name() + "'");
    }
    return node->type;
}

osl_Type osl_Checker::checkCast(Node *node)
{
    const osl_Type to = node->type;
    const osl_Type wanted = to.isInt() ? osl_Type(osl_Type::FLOAT) : to;
    const osl_Type from = check(node->a, wanted);
    const bool isGood = osl_isAssignable(to, from) || (to.isScalar() && from.isScalar()) ||
                        (to.isTriple() && from.isTriple());
    if (!isGood && !(to.isClosure && isZero(node->a)))
        error(TYPES, node->place, "Cannot cast '" + from.name() + "' to '" + to.name() + "'");
    return to;
}

// ---- Operators ------------------------------------------------------------

osl_Type osl_Checker::checkUnary(Node *node, const osl_Type &wanted)
{
    const osl_Type type =
        check(node->a, node->punct == osl_punct("!") ? osl_Type(osl_Type::INT) : wanted);
    const std::string text = punctText(node->punct);
    for (const auto &row : UNARY_WORDS) {
        if (type.isStruct() && text == row.punct && checkOverloadedOperator(node, row.word))
            return node->type;
    }
    const bool isSign = text == "-" || text == "+";
    const bool isBad = type.isStruct() || type.isArray() || (type.isString() && text != "!") ||
                       (type.isClosure && !isSign) || type.isVoid();
    if (isBad)
        error(TYPES, node->place, "Can't do '" + text + "' to a " + type.name() + ".");
    else if (text == "~" && !type.isInt())
        error(TYPES, node->place, "Operator '~' can only be done to an int");
    return text == "!" ? osl_Type(osl_Type::INT) : isBad ? osl_Type() : type;
}

osl_Type osl_Checker::checkStep(Node *node)
{
    const osl_Type type = check(node->a, osl_Type());
    checkWritable(node->a);
    if (!type.isNumeric() && !type.isUnknown())
        error(TYPES, node->place,
              "Can't do '" + punctText(node->punct) + "' to a " + type.name() + ".");
    return type;
}

bool osl_Checker::checkOverloadedOperator(Node *node, const char *word)
{
    const std::string_view name = myTree.keep("__operator__" + std::string(word) + "__");
    osl_Symbol *symbol = mySymbols.find(name);
    if (symbol == nullptr && std::string_view(word) == "ne")
        return checkOverloadedOperator(node, "neq");
    if (symbol == nullptr || symbol->kind != osl_Symbol::FUNCTION)
        return false;
    Node *args = node->a;
    args->next = node->b;
    std::vector<Candidate> found = candidates(symbol->functions, args, osl_Type());
    if (found.empty())
        return args->next = nullptr, false;
    node->kind = Node::CALL;
    node->name = name;
    node->b = nullptr;
    node->function = best(node, found);
    node->type = node->function->result;
    finishCall(node);
    return true;
}

osl_Type osl_Checker::checkBinary(Node *node, const osl_Type &wanted)
{
    // A chain a + b + c ... leans to the left: it is walked, not called down.
    std::vector<Node *> chain;
    for (Node *at = node; at->kind == Node::BINARY; at = at->a)
        chain.push_back(at);
    const auto wantedOf = [&](const Node *at) {
        const bool isTruth = at->punct == osl_punct("&&") || at->punct == osl_punct("||") ||
                             at->punct == osl_punct("==") || at->punct == osl_punct("!=") ||
                             isComparison(at->punct);
        return isTruth ? osl_Type(osl_Type::FLOAT) : wanted;
    };
    check(chain.back()->a, wantedOf(chain.back()));
    while (!chain.empty()) {
        Node *at = chain.back();
        chain.pop_back();
        check(at->b, wantedOf(at));
        at->type = binaryType(at);
    }
    return node->type;
}

osl_Type osl_Checker::closureType(Node *node, const osl_Type &l, const osl_Type &r)
{
    const bool isSum = node->punct == osl_punct("+") && l.isClosure && r.isClosure;
    const auto isWeight = [](const osl_Type &type) {
        return type.isScalar() || (type.isTriple() && type.base == osl_Type::COLOR);
    };
    const bool isProduct = node->punct == osl_punct("*") &&
                           ((l.isClosure && isWeight(r)) || (r.isClosure && isWeight(l)));
    const bool isTruth = node->punct == osl_punct("&&") || node->punct == osl_punct("||");
    return isSum || isProduct ? osl_Type::closure()
           : isTruth          ? osl_Type(osl_Type::INT)
                              : osl_Type();
}

osl_Type osl_Checker::arithmeticType(int punct, const osl_Type &l, const osl_Type &r)
{
    const bool isSum = punct == osl_punct("+") || punct == osl_punct("-");
    const bool isProduct = punct == osl_punct("*") || punct == osl_punct("/");
    if (!(isSum || isProduct) || !l.isNumeric() || !r.isNumeric())
        return {};
    if (l.isMatrix() || r.isMatrix())
        return isProduct && (l.isMatrix() || l.isScalar()) && (r.isMatrix() || r.isScalar())
                   ? osl_Type(osl_Type::MATRIX)
                   : osl_Type();
    if (punct == osl_punct("-") && l.isPointLike() && r.isPointLike())
        return osl_Type::VECTOR;
    return higher(l, r);
}

osl_Type osl_Checker::binaryType(Node *node)
{
    const osl_Type l = node->a->type;
    const osl_Type r = node->b->type;
    const int punct = node->punct;
    const std::string text = punctText(punct);
    if (l.isStruct() || r.isStruct()) {
        for (const auto &row : BINARY_WORDS) {
            if (text == row.punct && checkOverloadedOperator(node, row.word))
                return node->type;
        }
    }
    osl_Type type;
    const bool isPlain = !l.isStruct() && !r.isStruct() && !l.isArray() && !r.isArray() &&
                         !l.isUnknown() && !r.isUnknown() && !l.isVoid() && !r.isVoid();
    const bool isEqual = punct == osl_punct("==") || punct == osl_punct("!=");
    if (!isPlain)
        type = osl_Type();
    else if (l.isClosure || r.isClosure)
        type = closureType(node, l, r);
    else if (punct == osl_punct("&&") || punct == osl_punct("||"))
        type = osl_Type::INT;
    else if (isBitwise(punct))
        type = l.isInt() && r.isInt() ? osl_Type(osl_Type::INT) : osl_Type();
    else if (isComparison(punct))
        type = l.isScalar() && r.isScalar() ? osl_Type(osl_Type::INT) : osl_Type();
    else if (isEqual && (osl_isEquivalent(l, r) || (l.isNumeric() && r.isScalar()) ||
                         (l.isScalar() && r.isNumeric())))
        type = osl_Type::INT;
    else if (!isEqual)
        type = arithmeticType(punct, l, r);
    if (type.isUnknown())
        error(TYPES, node->place, "Not allowed: '" + l.name() + " " + text + " " + r.name() + "'");
    return type;
}

osl_Type osl_Checker::checkTernary(Node *node, const osl_Type &wanted)
{
    checkCondition(node->a, "a");
    const osl_Type t = check(node->b, wanted);
    const osl_Type f = check(node->c, wanted);
    if (t.isClosure && isZero(node->c))
        return t;
    if (f.isClosure && isZero(node->b))
        return f;
    const bool isGood =
        !t.isArray() && !f.isArray() && (osl_isAssignable(t, f) || osl_isAssignable(f, t));
    if (!isGood) {
        error(TYPES, node->place,
              "Not allowed: '" + node->a->type.name() + " ? " + t.name() + " : " + f.name() + "'");
        return {};
    }
    return higher(t, f);
}

// ---- Assignment -----------------------------------------------------------

bool osl_Checker::isZero(const Node *node)
{
    return (node->kind == Node::INT && node->number == 0) ||
           (node->kind == Node::FLOAT && node->real == 0);
}

std::string osl_Checker::variableName(const Node *node)
{
    if (node->kind == Node::FIELD)
        return variableName(node->a) + "." + std::string(node->name);
    if (node->kind == Node::INDEX)
        return variableName(node->a);
    return std::string(node->name);
}

void osl_Checker::checkWritable(Node *node)
{
    while (node->kind == Node::INDEX || node->kind == Node::FIELD)
        node = node->a;
    if (node->kind != Node::VAR)
        error(TYPES, node->place, "Can't assign via = to something that isn't an lvalue");
    else if (node->symbol != nullptr && node->symbol->isReadOnly)
        error(TYPES, node->place,
              "cannot write to non-output parameter \"" + std::string(node->name) + "\"");
    else if (node->symbol != nullptr)
        node->symbol->isWritten = true;
}

void osl_Checker::warnComma(const Node *node, const osl_Type &type)
{
    if (node->kind == Node::COMMA && (type.isTriple() || type.isMatrix()))
        warning(node->place, "Comma operator inside parenthesis is probably an error -- it is "
                             "not a vector/color.");
}

void osl_Checker::checkAssignable(osl_Place place, const char *verb, const osl_Type &to,
                                  const std::string &name, Node *value)
{
    const osl_Type from = value->type;
    if (to.isClosure && !to.isArray() && isZero(value))
        return;
    if (osl_isAssignable(to, from))
        return;
    const std::string what = to.name() + " " + name + " = " + from.name();
    if (to.isInt() && from.isFloat())
        warning(place, "Assignment may lose precision: " + what);
    else
        error(TYPES, place, std::string("Cannot ") + verb + " " + what);
}

osl_Type osl_Checker::checkAssign(Node *node)
{
    const osl_Type type = check(node->a, osl_Type());
    checkWritable(node->a);
    if (node->b->kind == Node::COMPOUND) {
        resolveCompound(node->b, type, variableName(node->a));
        return type;
    }
    check(node->b, type);
    warnComma(node->b, type);
    if (node->punct == osl_punct("=")) {
        checkAssignable(node->place, "assign", type, variableName(node->a), node->b);
        return type;
    }
    // a += b is a = a + b with a looked for once; the sum is our third child.
    Node *sum = myTree.make(Node::BINARY, node->place);
    sum->punct = node->punct & (node->punct > 0xffff ? 0xffff : 0xff);
    sum->a = node->a;
    sum->b = node->b;
    sum->type = binaryType(sum);
    node->c = sum;
    checkAssignable(node->place, "assign", type, variableName(node->a), sum);
    return type;
}

// ---- Compound initialisers ------------------------------------------------

bool osl_Checker::compoundFits(const Node *node, const osl_Type &type)
{
    const int count = osl_listLength(node->a);
    if (node->kind != Node::COMPOUND)
        return osl_isAssignable(type, node->type);
    if (type.isArray() || type.isStruct()) {
        const int room = type.isArray() ? type.array : static_cast<int>(type.record->fields.size());
        if (room != osl_Type::UNSIZED && (count > room || (type.isStruct() && count != room)))
            return false;
        size_t i = 0;
        for (const Node *item = node->a; item != nullptr; item = item->next, ++i) {
            if (!compoundFits(item, type.isArray() ? type.element() : type.record->fields[i].type))
                return false;
        }
        return true;
    }
    if (type.isTriple())
        return count == 1 || count == 3 || count == 4;
    return type.isMatrix() ? count == 1 || count >= 16 : count == 1 && type.isScalar();
}

void osl_Checker::resolveStruct(Node *node, const osl_Type &type, const std::string &name)
{
    const osl_Struct &record = *type.record;
    size_t i = 0;
    for (Node *item = node->a; item != nullptr; item = item->next, ++i) {
        if (i == record.fields.size()) {
            error(TYPES, node->place,
                  "Too many initializers for struct '" + std::string(record.name) + "'");
            break;
        }
        const osl_Field &field = record.fields[i];
        const std::string fieldName = name + "." + std::string(field.name);
        if (item->kind == Node::COMPOUND)
            resolveCompound(item, field.type, fieldName);
        else if (const osl_Type got = check(item, field.type);
                 !osl_isAssignable(field.type, got) && !(field.type.isClosure && isZero(item)) &&
                 !(field.type.isInt() && got.isFloat()))
            error(TYPES, node->place,
                  "Can't assign '" + field.type.name() + " " + fieldName + "' = '" + got.name() +
                      "'");
    }
}

void osl_Checker::resolveCompound(Node *node, const osl_Type &type, const std::string &name)
{
    node->type = type;
    if (type.isArray()) {
        const int count = osl_listLength(node->a);
        if (type.array == osl_Type::UNSIZED)
            node->type.array = std::max(count, 1);
        else if (count > type.array)
            error(TYPES, node->place, "Too many initializers for a '" + type.name() + "'");
        for (Node *item = node->a; item != nullptr; item = item->next) {
            if (item->kind == Node::COMPOUND) {
                resolveCompound(item, type.element(), name);
            } else {
                check(item, type.element());
                checkAssignable(node->place, "assign", type.element(), name, item);
            }
        }
    } else if (type.isStruct()) {
        resolveStruct(node, type, name);
        node->kind = Node::CONSTRUCT;
    } else if (node->a != nullptr) {
        node->kind = Node::CONSTRUCT;
        checkConstructor(node);
    }
}
