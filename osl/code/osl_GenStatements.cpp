#include "osl/code/osl_Generator.h"

#include "osl/code/osl_Fold.h"

#include <algorithm>

osl_Generator::osl_Generator(const osl_Tree &tree, const osl_Messages &messages,
                             const std::vector<OSL_Binding> &bindings)
    : myTree(tree), myMessages(messages), myBindings(bindings)
{
    myMade.globals.fill(-1);
    myMade.tree.push_back({});
}

std::unique_ptr<osl_Code> osl_Generator::run(std::string &error)
{
    const Node *shader = myTree.shader;
    genParameters();
    genList(shader->b->a);
    emitInto(OSL_END, -1, {});
    if (isOver()) {
        error = "the shader is too large";
        return nullptr;
    }
    for (size_t i = 0; i < myMade.globals.size(); ++i) {
        const int reg = myMade.globals[i];
        if (reg >= 0 && myMade.areWritten[i])
            myMade.outputs.push_back({OSL_GLOBALS[i], myRegisters[reg].type, reg});
    }
    std::unique_ptr<osl_Code> code = osl_finish(myMade, myRegisters);
    code->shader = shader->name;
    for (int i = 0; i < myMessages.files(); ++i)
        code->files.push_back(myMessages.fileName(i));
    return code;
}

// ---- Instructions ---------------------------------------------------------

bool osl_Generator::isOver() const
{
    return isTooLarge || myMade.instructions.size() >= MAX_INSTRUCTIONS ||
           myRegisters.totalWords() > MAX_WORDS;
}

int osl_Generator::emitInto(osl_Op op, int result, const std::vector<int> &arguments)
{
    osl_Instruction made;
    made.op = op;
    made.first = static_cast<int>(myMade.arguments.size());
    made.count = static_cast<int>(arguments.size()) + 1;
    made.words = result >= 0 ? myRegisters[result].words : 0;
    made.place = myPlace;
    myMade.arguments.push_back(result);
    myMade.arguments.insert(myMade.arguments.end(), arguments.begin(), arguments.end());
    isTooLarge = isTooLarge || isOver();
    if (isTooLarge && !myMade.instructions.empty()) // dropped: there will be an error
        myMade.instructions.pop_back();
    myMade.instructions.push_back(made);
    myMade.regions.resize(myMade.instructions.size());
    myMade.regions.back() = myRegion;
    return result;
}

int osl_Generator::emit(osl_Op op, const osl_Type &type, const std::vector<int> &arguments)
{
    if (OSL_OP_ROWS[op].kind == osl_OpRow::PURE && !arguments.empty() &&
        std::all_of(arguments.begin(), arguments.end(),
                    [this](int reg) { return myRegisters.isConstant(reg); })) {
        const int folded = fold(op, type, arguments);
        if (folded >= 0)
            return folded;
    }
    const int words = type.components() * std::max(type.array, 1);
    return emitInto(op, myRegisters.make(osl_Registers::TEMPORARY, type, words), arguments);
}

// The result of an operation on constants; -1 when it cannot be had here.
int osl_Generator::fold(osl_Op op, const osl_Type &type, const std::vector<int> &arguments)
{
    const int words = type.components() * std::max(type.array, 1);
    std::vector<std::pair<const int *, int>> data;
    for (const int reg : arguments)
        data.emplace_back(myRegisters.data(reg), myRegisters[reg].words);
    std::vector<int> result(static_cast<size_t>(words));
    if (!osl_fold(op, data, result))
        return -1;
    return myRegisters.constant(type, result);
}

int osl_Generator::openRegion(osl_Region::Kind kind, int condition)
{
    osl_Region region;
    region.kind = kind;
    region.parent = myRegion;
    region.condition = condition;
    region.first = here();
    myMade.tree.push_back(region);
    myRegion = static_cast<int>(myMade.tree.size()) - 1;
    return myRegion;
}

void osl_Generator::closeRegion()
{
    osl_Region &region = myMade.tree[static_cast<size_t>(myRegion)];
    region.last = here() - 1;
    myRegion = region.parent;
}

// ---- Parameters -----------------------------------------------------------

const OSL_Value *osl_Generator::findBinding(const std::string &name) const
{
    const OSL_Value *found = nullptr;
    for (const OSL_Binding &binding : myBindings)
        found = binding.first == name ? &binding.second : found;
    return found;
}

bool osl_Generator::isInterpolated(const Node *node)
{
    for (const Node *item = node->c; item != nullptr; item = item->next) {
        if (item->name == "lockgeom" && item->a != nullptr)
            return item->a->kind == Node::INT && item->a->number == 0;
    }
    return false;
}

void osl_Generator::genParameters()
{
    for (const Node *node = myTree.shader->a; node != nullptr; node = node->next) {
        myPlace = node->place;
        genParameter(node);
    }
}

// A bound value as a constant; `reg` is -1 when there is none.
osl_Ref osl_Generator::boundParameter(const osl_Type &type, const std::string &name)
{
    osl_Ref ref;
    ref.type = type;
    const OSL_Value *bound = type.isStruct() ? nullptr : findBinding(name);
    if (bound == nullptr)
        return ref;
    OSL_Value value = *bound;
    if (!value.convertTo(type)) // link() has said so
        return ref;
    std::vector<int> words = value.ints;
    for (const float number : value.floats)
        words.push_back(*myRegisters.data(myRegisters.floatConstant(number)));
    for (const std::string &text : value.strings)
        words.push_back(myRegisters.handle(text));
    ref.type = value.type;
    ref.reg = myRegisters.constant(value.type, words);
    return ref;
}

// A struct's value with the fields that are bound.
osl_Ref osl_Generator::bindFields(const osl_Ref &value, const std::string &name)
{
    if (!value.isStruct()) {
        const osl_Ref bound = boundParameter(value.type, name);
        return bound.reg >= 0 ? bound : value;
    }
    osl_Ref result = value;
    for (size_t i = 0; i < result.fields.size(); ++i)
        result.fields[i] = bindFields(result.fields[i],
                                      name + "." + std::string(value.type.record->fields[i].name));
    return result;
}

void osl_Generator::addOutputs(const osl_Ref &ref, const std::string &name)
{
    if (!ref.isStruct())
        myMade.outputs.push_back({name, ref.type, ref.reg});
    for (size_t i = 0; i < ref.fields.size(); ++i)
        addOutputs(ref.fields[i], name + "." + std::string(ref.type.record->fields[i].name));
}

void osl_Generator::genUserdata(const osl_Ref &ref, const std::string &name)
{
    if (ref.isStruct() || ref.type.isClosure)
        return;
    emitInto(OSL_USERDATA, ref.reg, {});
    last().text = myRegisters.handle(name);
}

void osl_Generator::genParameter(const Node *node)
{
    const std::string name(node->name);
    osl_Type type = node->type;
    osl_Ref value = boundParameter(type, name);
    if (value.reg < 0) {
        value = node->a->kind == Node::COMPOUND || node->a->kind == Node::CONSTRUCT
                    ? genCompound(node->a, type)
                    : gen(node->a);
        value = bindFields(value, name);
        // "float a = 1" is as known as "float a = 1.0"; one value fills an array.
        const bool isSingle =
            !value.isStruct() && !type.isStruct() && !type.isClosure && !value.type.isArray();
        if (isSingle)
            value = type.isArray() ? filled(value, type) : convert(value, type);
    }
    if (type.array == osl_Type::UNSIZED)
        type.array = std::max(value.type.array, 1);
    const bool isVariable = node->isOutput || isInterpolated(node) ||
                            (node->symbol != nullptr && node->symbol->isWritten);
    osl_Ref &ref = myVariables[node->symbol];
    if (!isVariable && value.type == type) {
        const bool isMade =
            value.isStruct() || isFresh(value.reg) || myRegisters.isConstant(value.reg);
        if (isMade) {
            ref = value;
            this->name(ref);
            return;
        }
    }
    osl_Ref made = variable(type, osl_Registers::VARIABLE);
    assign(made, value);
    if (isInterpolated(node))
        genUserdata(made, name);
    if (node->isOutput)
        addOutputs(made, name);
    myVariables[node->symbol] = std::move(made);
}

// ---- Statements -----------------------------------------------------------

void osl_Generator::name(const osl_Ref &ref)
{
    for (const osl_Ref &field : ref.fields)
        name(field);
    if (ref.reg >= 0 && isFresh(ref.reg))
        myRegisters[ref.reg].isNamed = true;
}

void osl_Generator::genList(const Node *list)
{
    ++myDepth;
    isTooLarge = isTooLarge || myDepth > MAX_DEPTH;
    for (; list != nullptr && !isOver(); list = list->next)
        genStatement(list);
    --myDepth;
}

void osl_Generator::genStatement(const Node *node)
{
    myPlace = node->place;
    switch (node->kind) {
    case Node::BLOCK:
        return genList(node->a);
    case Node::VARIABLE:
        return genVariable(node);
    case Node::IF:
        return genIf(node);
    case Node::LOOP:
        return genLoop(node);
    case Node::RETURN:
        return genReturn(node);
    case Node::BREAK:
    case Node::CONTINUE:
        emitInto(node->kind == Node::BREAK ? OSL_BREAK : OSL_CONTINUE, -1, {});
        return;
    case Node::FUNCTION:
    case Node::EMPTY:
    case Node::STRUCT:
        return;
    default:
        genEffect(node);
    }
}

// An expression whose value nobody wants: i++ needs no copy of the old value.
void osl_Generator::genEffect(const Node *node)
{
    if (node->kind == Node::POSTFIX)
        genStep(node, true);
    else
        gen(node);
}

void osl_Generator::genVariable(const Node *node)
{
    osl_Ref value;
    if (node->a != nullptr)
        value = node->a->kind == Node::COMPOUND || node->a->kind == Node::CONSTRUCT
                    ? genCompound(node->a, node->type)
                    : gen(node->a);
    osl_Type type = node->type;
    if (type.array == osl_Type::UNSIZED)
        type.array = std::max(value.type.array, 1);
    const bool isOnlyHere = node->a != nullptr && !node->symbol->isWritten && !type.isStruct();
    if (isOnlyHere && value.type == type &&
        (isFresh(value.reg) || myRegisters.isConstant(value.reg))) {
        name(value);
        myVariables[node->symbol] = std::move(value);
        return;
    }
    osl_Ref made = variable(type, osl_Registers::VARIABLE);
    if (node->a != nullptr) {
        const bool isSpread = type.isArray() && !value.type.isArray();
        assign(isSpread ? element(made, myRegisters.intConstant(0), "") : made, value);
    } else if (type.base == osl_Type::STRING || (type.isClosure && !type.isStruct())) {
        assign(made, zero(type)); // what other values left in its place is no handle
    }
    myVariables[node->symbol] = std::move(made);
}

void osl_Generator::genIf(const Node *node)
{
    const int condition = truth(gen(node->a));
    if (myRegisters.isConstant(condition)) {
        const Node *taken = *myRegisters.data(condition) != 0 ? node->b : node->c;
        if (taken != nullptr)
            genStatement(taken);
        return;
    }
    emitInto(OSL_IF, -1, {condition});
    const int start = here() - 1;
    openRegion(osl_Region::BRANCH, condition);
    genStatement(node->b);
    closeRegion();
    const int middle = here();
    if (node->c != nullptr) {
        emitInto(OSL_ELSE, -1, {condition});
        openRegion(osl_Region::BRANCH, condition);
        genStatement(node->c);
        closeRegion();
    }
    emitInto(OSL_ENDIF, -1, {condition});
    if (isOver())
        return;
    // To the ENDIF itself where there is nothing else.
    myMade.instructions[static_cast<size_t>(start)].target = middle;
    myMade.instructions[static_cast<size_t>(middle)].target = here() - 1;
}

// LOOP, body, [LOOP_STEP (where `continue` goes on)], step, [test, LOOP_TEST], LOOP_END.
// LOOP goes to the test where that comes first, LOOP_TEST back to the body.
void osl_Generator::genLoop(const Node *node)
{
    genList(node->a);
    emitInto(OSL_LOOP, -1, {});
    const int start = here() - 1;
    openRegion(osl_Region::LOOP, -1);
    genStatement(node->d);
    const int step = here();
    if (isLeftWithin(start)) // else all come to the end of the body
        emitInto(OSL_LOOP_STEP, -1, {});
    if (node->c != nullptr)
        genEffect(node->c);
    const int test = here();
    if (node->b != nullptr) {
        const int condition = truth(gen(node->b));
        myMade.tree[static_cast<size_t>(myRegion)].condition = condition;
        emitInto(OSL_LOOP_TEST, -1, {condition});
        last().target = start + 1;
    }
    emitInto(OSL_LOOP_END, -1, {});
    const int end = here() - 1;
    last().target = start + 1;
    closeRegion();
    if (isOver())
        return;
    const bool isTestedFirst = node->punct != Node::DO && node->b != nullptr;
    myMade.instructions[static_cast<size_t>(start)].target = isTestedFirst ? test : start + 1;
    if (myMade.instructions[static_cast<size_t>(step)].op == OSL_LOOP_STEP)
        myMade.instructions[static_cast<size_t>(step)].target = end;
    aim(OSL_BREAK, start, step);
    aim(OSL_CONTINUE, start, step);
}

// Whether points may leave the stretch of code from `start` on before its end.
bool osl_Generator::isLeftWithin(int start) const
{
    return std::any_of(myMade.instructions.begin() + start, myMade.instructions.end(),
                       [](const osl_Instruction &in) {
                           return in.op == OSL_BREAK || in.op == OSL_CONTINUE ||
                                  in.op == OSL_RETURN || in.op == OSL_EXIT;
                       });
}

// Sets the targets of an operation from `start` on; inner ones have theirs already.
void osl_Generator::aim(osl_Op op, int start, int target)
{
    for (int at = start; at < here(); ++at) {
        osl_Instruction &in = myMade.instructions[static_cast<size_t>(at)];
        if (in.op == op && in.target == 0)
            in.target = target;
    }
}

void osl_Generator::genReturn(const Node *node)
{
    if (myCalls.empty()) {
        emitInto(OSL_EXIT, -1, {});
        return;
    }
    if (node->a != nullptr) {
        const osl_Type type = myCalls.back().result.type;
        const osl_Ref value = node->a->kind == Node::COMPOUND || node->a->kind == Node::CONSTRUCT
                                  ? genCompound(node->a, type)
                                  : gen(node->a);
        assign(myCalls.back().result, value);
    }
    if (myCalls.back().isEarly)
        emitInto(OSL_RETURN, -1, {});
}
