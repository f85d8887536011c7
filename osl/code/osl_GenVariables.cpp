// Variables and their parts.
#include "osl/code/osl_Generator.h"

#include "osl/code/osl_OpClass.h"

#include <algorithm>

// Registers for a variable; `multiple` for the fields of an array of structs.
osl_Ref osl_Generator::variable(const osl_Type &type, osl_Registers::Kind kind, int multiple)
{
    osl_Ref ref;
    ref.type = type;
    const long long wide = static_cast<long long>(std::max(type.array, 1)) * multiple;
    isTooLarge = isTooLarge || wide > MAX_WORDS;
    const int length = isTooLarge ? 1 : static_cast<int>(wide);
    if (!type.isStruct()) {
        ref.reg = myRegisters.make(kind, type, type.components() * length);
        return ref;
    }
    for (const osl_Field &field : type.record->fields)
        ref.fields.push_back(variable(field.type, kind, length));
    return ref;
}

osl_Ref &osl_Generator::lookUp(const Node *node)
{
    const osl_Symbol *symbol = node->symbol;
    if (symbol->kind != osl_Symbol::GLOBAL)
        return myVariables[symbol];
    // A function of ours has its own symbols for the same globals.
    for (size_t i = 0; i < myMade.globals.size(); ++i) {
        if (symbol->name != OSL_GLOBALS[i])
            continue;
        osl_Ref &ref = myVariables[symbol];
        int &reg = myMade.globals[i];
        if (reg < 0)
            reg = myRegisters.make(osl_Registers::GLOBAL, symbol->type, symbol->type.components());
        myMade.areWritten[i] = myMade.areWritten[i] || symbol->isWritten;
        ref.type = symbol->type;
        ref.reg = reg;
        return ref;
    }
    return myVariables[symbol];
}

// A register that nobody else refers to.
bool osl_Generator::isFresh(int reg) const
{
    return myRegisters[reg].kind == osl_Registers::TEMPORARY && myRegisters[reg].parent < 0 &&
           !myRegisters[reg].isNamed;
}

osl_Ref osl_Generator::withStep(osl_Ref ref, const osl_Ref::Step &step, int index)
{
    for (osl_Ref &field : ref.fields)
        field = withStep(std::move(field), step, index);
    if (ref.isStruct())
        return ref;
    if (index < 0 || !ref.steps.empty()) {
        ref.steps.push_back(step);
        return ref;
    }
    const int words = myRegisters[ref.reg].words / step.count;
    ref.reg = myRegisters.part(ref.reg, index * words, ref.type, words);
    return ref;
}

// Element `index` of an array, a component or a row of a matrix.
osl_Ref osl_Generator::element(const osl_Ref &base, int index, std::string_view name)
{
    osl_Ref ref = base;
    osl_Ref::Step step;
    step.index = index;
    step.name = name;
    if (base.type.isArray()) {
        step.count = base.type.array;
        ref.type = base.type.element();
    } else if (base.type.isMatrix()) {
        step.count = 4;
        ref.type = osl_Type(osl_Type::FLOAT, 4);
    } else {
        step.count = 3;
        ref.type = osl_Type::FLOAT;
    }
    const int known = myRegisters.isConstant(index) ? *myRegisters.data(index) : -1;
    return withStep(std::move(ref), step, known < step.count ? known : -1);
}

osl_Ref osl_Generator::lvalue(const Node *node)
{
    switch (node->kind) {
    case Node::VAR:
        return lookUp(node);
    case Node::INDEX: {
        const osl_Ref base = lvalue(node->a);
        const osl_Ref index = genAs(node->b, osl_Type::INT);
        const Node *name = node->a;
        while (name->kind == Node::INDEX || name->kind == Node::FIELD)
            name = name->a;
        myPlace = node->place;
        return element(base, index.reg, name->name.empty() ? "array" : name->name);
    }
    case Node::FIELD: {
        const osl_Ref base = lvalue(node->a);
        if (!base.isStruct())
            return element(base, myRegisters.intConstant(node->number), node->name);
        osl_Ref field = base.fields[static_cast<size_t>(node->number)];
        if (base.type.isArray()) // not indexed yet
            field.type = field.type.arrayOf(base.type.array);
        return field;
    }
    default:
        return gen(node);
    }
}

// One step from a register to an element in a register of its own.
int osl_Generator::loadStep(int reg, const osl_Ref::Step &step, const osl_Type &type)
{
    const int words = myRegisters[reg].words / step.count;
    const int result = myRegisters.make(osl_Registers::TEMPORARY, type, words);
    emitInto(type.isFloatBased() ? OSL_ELEMENT : OSL_ELEMENTI, result, {reg, step.index});
    last().number = step.count;
    last().text = myRegisters.handle(step.name);
    return result;
}

osl_Ref osl_Generator::load(const osl_Ref &ref)
{
    osl_Ref loaded = ref;
    for (osl_Ref &field : loaded.fields)
        field = load(field);
    for (const osl_Ref::Step &step : ref.steps)
        loaded.reg = loadStep(loaded.reg, step, ref.type);
    loaded.steps.clear();
    return loaded;
}

// Through the steps of `to`: outer elements are read, changed and written back.
void osl_Generator::store(const osl_Ref &to, int value)
{
    std::vector<int> path{to.reg};
    for (size_t i = 0; i + 1 < to.steps.size(); ++i)
        path.push_back(loadStep(path.back(), to.steps[i], to.type));
    for (size_t i = to.steps.size(); i-- > 0; value = path[i]) {
        emitInto(to.type.isFloatBased() ? OSL_SET_ELEMENT : OSL_SET_ELEMENTI, path[i],
                 {to.steps[i].index, value});
        last().number = to.steps[i].count;
        last().text = myRegisters.handle(to.steps[i].name);
    }
}

// Lets the last instruction write to `to` at once.
bool osl_Generator::retarget(int to, int from)
{
    if (myMade.instructions.empty() || !isFresh(from) ||
        myRegisters[to].words != myRegisters[from].words)
        return false;
    osl_Instruction &maker = last();
    int *arguments = &myMade.arguments[static_cast<size_t>(maker.first)];
    if (arguments[0] != from || !osl_hasOneResult(maker.op))
        return false;
    const int root = myRegisters.root(to);
    for (int i = 1; i < maker.count; ++i) {
        const bool isSame = arguments[i] >= 0 && myRegisters.root(arguments[i]) == root;
        if (isSame && !(arguments[i] == to && osl_isByComponent(maker.op)))
            return false;
    }
    arguments[0] = to;
    return true;
}

void osl_Generator::copy(int to, int from)
{
    if (to == from || retarget(to, from))
        return;
    const int words = std::min(myRegisters[to].words, myRegisters[from].words);
    const int part =
        myRegisters[from].words == 1 ? to : myRegisters.part(to, 0, myRegisters[to].type, words);
    emitInto(myRegisters[to].type.isFloatBased() ? OSL_COPY : OSL_COPYI, part, {from});
}

void osl_Generator::assign(const osl_Ref &to, const osl_Ref &value)
{
    for (size_t i = 0; i < to.fields.size() && i < value.fields.size(); ++i)
        assign(to.fields[i], value.fields[i]);
    if (to.isStruct())
        return;
    const bool isScalar = value.type.isScalar() && to.type.isTriple();
    const osl_Ref converted = isScalar ? convert(value, osl_Type::FLOAT) : convert(value, to.type);
    if (to.steps.empty())
        copy(to.reg, converted.reg);
    else
        store(to, isScalar ? splat(converted.reg, to.type) : converted.reg);
}

osl_Ref osl_Generator::zero(const osl_Type &type)
{
    osl_Ref ref;
    ref.type = type;
    if (!type.isStruct()) {
        const int words = type.components() * std::max(type.array, 1);
        ref.reg = myRegisters.constant(type, std::vector<int>(static_cast<size_t>(words)));
        return ref;
    }
    for (const osl_Field &field : type.record->fields) {
        const int length = std::max(type.array, 1) * std::max(field.type.array, 1);
        osl_Ref part = field.type.isStruct() ? zero(field.type) : osl_Ref();
        if (!field.type.isStruct()) {
            part.type = field.type;
            part.reg = myRegisters.constant(
                length > 1 ? field.type.arrayOf(length) : field.type,
                std::vector<int>(static_cast<size_t>(field.type.components() * length)));
        }
        ref.fields.push_back(std::move(part));
    }
    return ref;
}

// An array whose elements all have one value.
osl_Ref osl_Generator::filled(const osl_Ref &from, const osl_Type &array)
{
    const osl_Type type = array.arrayOf(std::max(array.array, 1));
    const osl_Ref item = convert(from, type.element());
    const int words = type.components();
    if (!myRegisters.isConstant(item.reg) || type.array > MAX_WORDS / words) {
        osl_Ref made = variable(type, osl_Registers::VARIABLE);
        for (int i = 0; i < type.array && !isOver(); ++i)
            assign(element(made, myRegisters.intConstant(i), ""), item);
        return made;
    }
    std::vector<int> all;
    for (int i = 0; i < type.array; ++i) {
        const int *data = myRegisters.data(item.reg);
        all.insert(all.end(), data, data + words);
    }
    return value(type, myRegisters.constant(type, all));
}
