#include "osl/code/osl_Generator.h"

#include <algorithm>

namespace
{
struct Row {
    const char *punct;
    osl_Op ints;
    osl_Op floats;
    bool isComparison;
};
const Row OPERATORS[] = {
    {"+", OSL_ADDI, OSL_ADD, false},    {"-", OSL_SUBI, OSL_SUB, false},
    {"*", OSL_MULI, OSL_MUL, false},    {"/", OSL_DIVI, OSL_DIV, false},
    {"%", OSL_MODI, OSL_FMOD, false},   {"<<", OSL_SHL, OSL_SHL, false},
    {">>", OSL_SHR, OSL_SHR, false},    {"&", OSL_BITAND, OSL_BITAND, false},
    {"|", OSL_BITOR, OSL_BITOR, false}, {"^", OSL_XOR, OSL_XOR, false},
    {"==", OSL_EQI, OSL_EQ, true},      {"!=", OSL_NEI, OSL_NE, true},
    {"<", OSL_LTI, OSL_LT, true},       {"<=", OSL_LEI, OSL_LE, true},
    {">", OSL_GTI, OSL_GT, true},       {">=", OSL_GEI, OSL_GE, true},
};

const Row &rowOf(int punct)
{
    for (const Row &row : OPERATORS) {
        if (osl_punct(row.punct) == punct)
            return row;
    }
    return OPERATORS[0];
}
} // namespace

osl_Ref osl_Generator::value(const osl_Type &type, int reg) const
{
    osl_Ref ref;
    ref.type = type;
    ref.reg = reg;
    return ref;
}

osl_Ref osl_Generator::gen(const Node *node)
{
    if (node == myKnown)
        return myKnownValue;
    if (isOver())
        return zero(node->type.isUnknown() ? osl_Type(osl_Type::INT) : node->type);
    ++myDepth;
    isTooLarge = isTooLarge || myDepth > MAX_DEPTH;
    const osl_Ref ref = genInside(node);
    --myDepth;
    myPlace = node->place;
    return ref;
}

osl_Ref osl_Generator::genInside(const Node *node)
{
    switch (node->kind) {
    case Node::INT:
        return value(osl_Type::INT, myRegisters.intConstant(node->number));
    case Node::FLOAT:
        return value(osl_Type::FLOAT, myRegisters.floatConstant(node->real));
    case Node::STRING:
        return value(osl_Type::STRING, myRegisters.textConstant(node->text));
    case Node::VAR:
        return lookUp(node);
    case Node::INDEX:
    case Node::FIELD:
        return load(lvalue(node));
    case Node::CALL:
        return genCall(node);
    case Node::CONSTRUCT:
        return node->type.isStruct() ? genStruct(node) : genConstructor(node);
    case Node::COMPOUND:
        return genCompound(node, node->type);
    case Node::CAST:
        return convert(gen(node->a), node->type);
    case Node::UNARY:
        return genUnary(node);
    case Node::BINARY:
        return genBinary(node);
    case Node::ASSIGN:
        return genAssign(node);
    case Node::TERNARY:
        return genTernary(node);
    case Node::PREFIX:
        return genStep(node, true);
    case Node::POSTFIX:
        return genStep(node, false);
    case Node::COMMA: {
        osl_Ref ref;
        for (const Node *item = node->a; item != nullptr; item = item->next)
            ref = gen(item);
        return ref;
    }
    default:
        return zero(osl_Type::INT);
    }
}

osl_Ref osl_Generator::genAs(const Node *node, const osl_Type &type)
{
    if (node->kind == Node::COMPOUND)
        return genCompound(node, type);
    return convert(gen(node), type);
}

// ---- Conversions ----------------------------------------------------------

// One number in all components.
int osl_Generator::splat(int reg, const osl_Type &type)
{
    return myRegisters[reg].words == 1 && type.isTriple() ? emit(OSL_COPY, type, {reg}) : reg;
}

osl_Ref osl_Generator::convert(const osl_Ref &from, const osl_Type &type)
{
    if (from.type == type || from.isStruct() || type.isArray() || type.isUnknown())
        return from;
    osl_Ref ref = from;
    if (type.isClosure) { // only 0 becomes one
        return from.type.isClosure ? from : zero(type);
    }
    if (from.type.isInt() && (type.isFloatBased()))
        ref = value(osl_Type::FLOAT, emit(OSL_TO_FLOAT, osl_Type::FLOAT, {from.reg}));
    if (type.isInt() && from.type.isFloat())
        return value(type, emit(OSL_TO_INT, type, {from.reg}));
    if (type.isMatrix() && ref.type.isFloat())
        return value(type, emit(OSL_DIAGONAL, type, {ref.reg}));
    if (type.isTriple() && ref.type.isFloat())
        return value(type, splat(ref.reg, type));
    if (type.isTriple() && ref.type.isTriple())
        ref.type = type;
    return ref;
}

// 0 or 1 as an int.
int osl_Generator::truth(const osl_Ref &from)
{
    if (!myMade.instructions.empty() && isFresh(from.reg)) { // 0 or 1 already?
        const osl_Instruction &maker = last();
        const bool isTruth = (maker.op >= OSL_EQI && maker.op <= OSL_ORI) ||
                             (maker.op >= OSL_EQ && maker.op <= OSL_BOOL);
        if (isTruth && myMade.arguments[static_cast<size_t>(maker.first)] == from.reg)
            return from.reg;
    }
    if (from.type.isFloatBased())
        return emit(OSL_BOOL, osl_Type::INT, {from.reg});
    return emit(OSL_BOOLI, osl_Type::INT, {from.reg});
}

// ---- Constructors ---------------------------------------------------------

osl_Ref osl_Generator::genStruct(const Node *node)
{
    osl_Ref ref;
    ref.type = node->type.element();
    const auto &fields = node->type.record->fields;
    if (node->a != nullptr && node->a->next == nullptr && node->a->type == node->type &&
        node->a->kind != Node::COMPOUND)
        return gen(node->a);
    const Node *item = node->a;
    for (const osl_Field &field : fields) {
        osl_Ref part = item != nullptr ? genCompound(item, field.type) : zero(field.type);
        // What is read later must not change with what was read here.
        if (!part.isStruct() && !isFresh(part.reg) && !myRegisters.isConstant(part.reg)) {
            osl_Ref copied = variable(part.type, osl_Registers::TEMPORARY);
            copy(copied.reg, part.reg);
            part = copied;
        }
        ref.fields.push_back(part);
        item = item != nullptr ? item->next : nullptr;
    }
    return ref;
}

// A value for something of this type, from {...} or any expression.
osl_Ref osl_Generator::genCompound(const Node *node, const osl_Type &type)
{
    if (node->kind != Node::COMPOUND)
        return type.isArray() && !node->type.isArray() ? gen(node) : genAs(node, type);
    if (!type.isArray())
        return zero(type);
    osl_Type full = type;
    if (full.array == osl_Type::UNSIZED)
        full.array = std::max(osl_listLength(node->a), 1);
    std::vector<osl_Ref> items;
    bool isConstant = !full.isStruct();
    for (const Node *item = node->a; item != nullptr; item = item->next) {
        osl_Ref made = genCompound(item, full.element());
        isConstant = isConstant && made.reg >= 0 && myRegisters.isConstant(made.reg);
        // Effects of later ones come later.
        if (!made.isStruct() && !isFresh(made.reg) && !myRegisters.isConstant(made.reg)) {
            const osl_Ref copied = variable(made.type, osl_Registers::TEMPORARY);
            copy(copied.reg, made.reg);
            made = copied;
        }
        items.push_back(std::move(made));
    }
    if (isConstant) {
        std::vector<int> words;
        for (const osl_Ref &item : items) {
            const int *data = myRegisters.data(item.reg);
            words.insert(words.end(), data, data + myRegisters[item.reg].words);
        }
        words.resize(static_cast<size_t>(full.components() * full.array));
        return value(full, myRegisters.constant(full, words));
    }
    osl_Ref made = variable(full, osl_Registers::VARIABLE);
    assign(made, zero(full));
    for (size_t i = 0; i < items.size() && static_cast<int>(i) < full.array; ++i)
        assign(element(made, myRegisters.intConstant(static_cast<int>(i)), ""), items[i]);
    return made;
}

osl_Ref osl_Generator::genConstructor(const Node *node)
{
    const osl_Type type = node->type.element();
    if (node->a == nullptr)
        return zero(type);
    if (type.isTriple())
        return genTriple(type, node->a);
    if (type.isMatrix())
        return genMatrix(node->a);
    return convert(gen(node->a), type);
}

osl_Ref osl_Generator::genTriple(const osl_Type &type, const Node *args)
{
    const bool hasSpace = args->type.isString();
    const int space = hasSpace ? gen(args).reg : -1;
    if (hasSpace)
        args = args->next;
    std::vector<int> parts;
    osl_Ref made;
    if (args->next == nullptr) {
        made = convert(gen(args), type);
    } else {
        for (; args != nullptr; args = args->next)
            parts.push_back(genAs(args, osl_Type::FLOAT).reg);
        made = value(type, emit(OSL_GATHER, type, parts));
    }
    if (!hasSpace)
        return made;
    if (type.base == osl_Type::COLOR)
        return value(
            type, emit(OSL_TRANSFORMC, type, {space, myRegisters.textConstant("rgb"), made.reg}));
    const int matrix = spaces(space, myRegisters.textConstant("common"));
    const osl_Op op = type.base == osl_Type::POINT    ? OSL_TRANSFORM_POINT
                      : type.base == osl_Type::VECTOR ? OSL_TRANSFORM_VECTOR
                                                      : OSL_TRANSFORM_NORMAL;
    return value(type, emit(op, type, {matrix, made.reg}));
}

osl_Ref osl_Generator::genMatrix(const Node *args)
{
    const osl_Type type = osl_Type::MATRIX;
    const bool hasSpace = args->type.isString();
    const int space = hasSpace ? gen(args).reg : -1;
    if (hasSpace)
        args = args->next;
    if (args->type.isString())
        return value(type, spaces(space, gen(args).reg));
    osl_Ref made;
    if (args->next == nullptr) {
        made = convert(gen(args), type);
    } else {
        std::vector<int> parts;
        for (; args != nullptr; args = args->next)
            parts.push_back(genAs(args, osl_Type::FLOAT).reg);
        made = value(type, emit(OSL_GATHER, type, parts));
    }
    if (!hasSpace)
        return made;
    const int matrix = spaces(space, myRegisters.textConstant("common"));
    return value(type, emit(OSL_MMUL, type, {matrix, made.reg}));
}

// ---- Operators ------------------------------------------------------------

osl_Ref osl_Generator::genUnary(const Node *node)
{
    const osl_Ref from = gen(node->a);
    switch (node->punct) {
    case osl_punct("!"):
        return value(osl_Type::INT, emit(OSL_NOT, osl_Type::INT, {truth(from)}));
    case osl_punct("~"):
        return value(osl_Type::INT, emit(OSL_COMPL, osl_Type::INT, {from.reg}));
    case osl_punct("+"):
        return from;
    default:
        break;
    }
    if (from.type.isClosure)
        return genClosureOperator(osl_punct("*"), from,
                                  value(osl_Type::FLOAT, myRegisters.floatConstant(-1)));
    const osl_Op op = from.type.isInt() ? OSL_NEGI : OSL_NEG;
    return value(from.type, emit(op, from.type, {from.reg}));
}

// ++a, --a, a++, a--
osl_Ref osl_Generator::genStep(const Node *node, bool isPrefix)
{
    const osl_Ref place = lvalue(node->a);
    osl_Ref before = load(place);
    if (!isPrefix && !isFresh(before.reg)) {
        const osl_Ref kept = variable(before.type, osl_Registers::TEMPORARY);
        emitInto(before.type.isFloatBased() ? OSL_COPY : OSL_COPYI, kept.reg, {before.reg});
        before = kept;
    }
    const bool isUp = node->punct == osl_punct("++");
    const bool isInt = before.type.isInt();
    const int one = isInt ? myRegisters.intConstant(1) : myRegisters.floatConstant(1);
    const osl_Op op = isInt ? (isUp ? OSL_ADDI : OSL_SUBI) : isUp ? OSL_ADD : OSL_SUB;
    const osl_Ref after = value(before.type, emit(op, before.type, {before.reg, one}));
    assign(place, after);
    return isPrefix ? load(place) : before;
}

osl_Ref osl_Generator::genBinary(const Node *node)
{
    if (node->punct == osl_punct("&&") || node->punct == osl_punct("||"))
        return genLogical(node);
    // Chains lean to the left: from the bottom up, without recursion.
    std::vector<const Node *> chain;
    const Node *at = node;
    while (at->kind == Node::BINARY && at != myKnown && at->punct != osl_punct("&&") &&
           at->punct != osl_punct("||")) {
        chain.push_back(at);
        at = at->a;
    }
    osl_Ref left = gen(at);
    while (!chain.empty()) {
        at = chain.back();
        chain.pop_back();
        // The right side may change the variable on the left.
        if (!isSimple(at->b) && left.reg >= 0 && !isFresh(left.reg) &&
            !myRegisters.isConstant(left.reg) &&
            myRegisters[left.reg].kind == osl_Registers::VARIABLE) {
            const osl_Ref kept = variable(left.type, osl_Registers::TEMPORARY);
            emitInto(left.type.isFloatBased() ? OSL_COPY : OSL_COPYI, kept.reg, {left.reg});
            left = kept;
        }
        const osl_Ref right = gen(at->b);
        myPlace = at->place;
        left = genOperator(at, left, right);
    }
    return left;
}

osl_Ref osl_Generator::genOperator(const Node *node, const osl_Ref &l, const osl_Ref &r)
{
    const Row &row = rowOf(node->punct);
    osl_Ref left = l;
    osl_Ref right = r;
    if (left.type.isClosure || right.type.isClosure)
        return genClosureOperator(node->punct, left, right);
    const bool areInts = !left.type.isFloatBased() && !right.type.isFloatBased();
    if (areInts)
        return value(osl_Type::INT, emit(row.ints, osl_Type::INT, {left.reg, right.reg}));
    left = convert(left, left.type.isInt() ? osl_Type(osl_Type::FLOAT) : left.type);
    right = convert(right, right.type.isInt() ? osl_Type(osl_Type::FLOAT) : right.type);
    if (left.type.isMatrix() || right.type.isMatrix())
        return genMatrixOperator(node->punct, left, right);
    osl_Type type = node->type;
    if (row.isComparison)
        type = osl_Type::INT;
    // A single number stands for three; what is computed has the larger size.
    if (row.floats == OSL_ADD || row.floats == OSL_SUB)
        return value(type, emitSum(row.floats, type, left.reg, right.reg));
    return value(type, emit(row.floats, type, {left.reg, right.reg}));
}

// Whether the last instruction made this product, and nobody else reads it.
bool osl_Generator::isNewProduct(int reg, int words) const
{
    if (myMade.instructions.empty() || !isFresh(reg) || myRegisters[reg].words != words)
        return false;
    const osl_Instruction &maker = myMade.instructions.back();
    return maker.op == OSL_MUL && myMade.arguments[static_cast<size_t>(maker.first)] == reg;
}

// A sum or difference; with a product in it, all in one instruction.
int osl_Generator::emitSum(osl_Op op, const osl_Type &type, int left, int right)
{
    const bool isRight = isNewProduct(right, type.components());
    if (!isRight && !isNewProduct(left, type.components()))
        return emit(op, type, {left, right});
    const int *factors = &myMade.arguments[static_cast<size_t>(last().first) + 1];
    const std::vector<int> arguments{factors[0], factors[1], isRight ? left : right};
    myMade.instructions.pop_back();
    const osl_Op with = op == OSL_ADD ? OSL_MULADD : isRight ? OSL_SUBMUL : OSL_MULSUB;
    return emit(with, type, arguments);
}

osl_Ref osl_Generator::genMatrixOperator(int punct, osl_Ref left, osl_Ref right)
{
    const osl_Type type = osl_Type::MATRIX;
    if (rowOf(punct).isComparison) {
        left = convert(left, type);
        right = convert(right, type);
        return value(osl_Type::INT,
                     emit(rowOf(punct).floats, osl_Type::INT, {left.reg, right.reg}));
    }
    const bool areBoth = left.type.isMatrix() && right.type.isMatrix();
    if (punct == osl_punct("*")) {
        if (areBoth)
            return value(type, emit(OSL_MMUL, type, {left.reg, right.reg}));
        if (!left.type.isMatrix())
            std::swap(left, right);
        return value(type, emit(OSL_MSCALE, type, {left.reg, right.reg}));
    }
    if (!right.type.isMatrix())
        return value(type, emit(OSL_MDIVF, type, {left.reg, right.reg}));
    return value(type, emit(OSL_MDIV, type, {convert(left, type).reg, right.reg}));
}

osl_Ref osl_Generator::genClosureOperator(int punct, osl_Ref left, osl_Ref right)
{
    const osl_Type type = osl_Type::closure();
    if (punct == osl_punct("+"))
        return value(type, emit(OSL_CLOSURE_ADD, type, {left.reg, right.reg}));
    if (!left.type.isClosure)
        std::swap(left, right);
    right = convert(right, right.type.isInt() ? osl_Type(osl_Type::FLOAT) : right.type);
    return value(type, emit(OSL_CLOSURE_MUL, type, {left.reg, right.reg}));
}

// Worth doing for all points rather than jumping over it: nothing but values.
bool osl_Generator::isSimple(const Node *node)
{
    if (node->depth > 6)
        return false;
    switch (node->kind) {
    case Node::INT:
    case Node::FLOAT:
    case Node::STRING:
    case Node::VAR:
        return true;
    case Node::FIELD:
    case Node::UNARY:
    case Node::CAST:
        return isSimple(node->a);
    case Node::BINARY:
        return isSimple(node->a) && isSimple(node->b);
    case Node::CONSTRUCT:
        if (node->type.isStruct())
            return false;
        for (const Node *arg = node->a; arg != nullptr; arg = arg->next) {
            if (arg->type.isString() || !isSimple(arg))
                return false;
        }
        return true;
    default:
        return false;
    }
}

osl_Ref osl_Generator::genLogical(const Node *node)
{
    const osl_Type type = osl_Type::INT;
    const bool isAnd = node->punct == osl_punct("&&");
    const int left = truth(gen(node->a));
    if (myRegisters.isConstant(left)) {
        const bool isLeft = *myRegisters.data(left) != 0;
        return isLeft == isAnd ? value(type, truth(gen(node->b))) : value(type, left);
    }
    if (isSimple(node->b)) {
        const int right = truth(gen(node->b));
        return value(type, emit(isAnd ? OSL_ANDI : OSL_ORI, type, {left, right}));
    }
    const int result = myRegisters.make(osl_Registers::VARIABLE, type, 1);
    emitInto(OSL_COPYI, result, {left});
    const int condition = isAnd ? left : emit(OSL_NOT, type, {left});
    emitInto(OSL_IF, -1, {condition});
    const int start = here() - 1;
    openRegion(osl_Region::BRANCH, condition);
    copy(result, truth(gen(node->b)));
    closeRegion();
    emitInto(OSL_ENDIF, -1, {condition});
    if (!isOver())
        myMade.instructions[static_cast<size_t>(start)].target = here() - 1;
    return value(type, result);
}

osl_Ref osl_Generator::genAssign(const Node *node)
{
    if (node->c == nullptr) {
        osl_Ref from = genCompound(node->b, node->a->type);
        const osl_Ref to = lvalue(node->a);
        assign(to, from);
        return load(to);
    }
    const osl_Ref to = lvalue(node->a);
    const osl_Ref before = load(to);
    const Node *outerKnown = myKnown;
    const osl_Ref outerValue = myKnownValue;
    osl_Ref sum;
    if (node->c->kind == Node::CALL) { // an operator of the shader's own
        myKnown = node->a;
        myKnownValue = before;
        sum = gen(node->c);
        myKnown = outerKnown;
        myKnownValue = outerValue;
    } else {
        const osl_Ref right = gen(node->b);
        sum = genOperator(node->c, before, right);
    }
    assign(to, sum);
    return load(to);
}

osl_Ref osl_Generator::genTernary(const Node *node)
{
    const int condition = truth(gen(node->a));
    const osl_Type type = node->type;
    if (myRegisters.isConstant(condition))
        return genAs(*myRegisters.data(condition) != 0 ? node->b : node->c, type);
    if (isSimple(node->b) && isSimple(node->c) && !type.isStruct() && type.isFloatBased() &&
        !type.isMatrix()) {
        const int yes = convert(gen(node->b), type).reg;
        const int no = convert(gen(node->c), type).reg;
        return value(type, emit(OSL_SELECTB, type, {no, yes, condition}));
    }
    const osl_Ref result = variable(type, osl_Registers::VARIABLE);
    emitInto(OSL_IF, -1, {condition});
    const int start = here() - 1;
    openRegion(osl_Region::BRANCH, condition);
    assign(result, genAs(node->b, type));
    closeRegion();
    const int middle = here();
    emitInto(OSL_ELSE, -1, {condition});
    openRegion(osl_Region::BRANCH, condition);
    assign(result, genAs(node->c, type));
    closeRegion();
    emitInto(OSL_ENDIF, -1, {condition});
    if (isOver())
        return result;
    myMade.instructions[static_cast<size_t>(start)].target = middle;
    myMade.instructions[static_cast<size_t>(middle)].target = here() - 1;
    return result;
}
