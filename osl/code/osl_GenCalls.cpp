#include "osl/code/osl_Generator.h"

#include "osl/code/osl_OpClass.h"
#include "osl/lib/osl_Noise.h"

#include <algorithm>

namespace
{
// The operation that does the same for ints.
osl_Op intOp(osl_Op op)
{
    switch (op) {
    case OSL_ABS:
        return OSL_ABSI;
    case OSL_MIN:
        return OSL_MINI;
    case OSL_MAX:
        return OSL_MAXI;
    case OSL_CLAMP:
        return OSL_CLAMPI;
    case OSL_FMOD:
        return OSL_MODI;
    case OSL_MOD:
        return OSL_FLOORMODI;
    case OSL_SELECT:
        return OSL_SELECTI;
    default:
        return op;
    }
}

// Whether a return stands anywhere but at the end.
bool returnsEarly(const osl_Node *list, bool isTop)
{
    using Node = osl_Node;
    for (; list != nullptr; list = list->next) {
        bool isEarly = false;
        switch (list->kind) {
        case Node::RETURN:
            isEarly = !isTop || list->next != nullptr;
            break;
        case Node::BLOCK:
            isEarly = returnsEarly(list->a, isTop && list->next == nullptr);
            break;
        case Node::IF:
            isEarly = returnsEarly(list->b, false) || returnsEarly(list->c, false);
            break;
        case Node::LOOP:
            isEarly = returnsEarly(list->d, false);
            break;
        default:
            break;
        }
        if (isEarly)
            return true;
    }
    return false;
}

osl_NoiseKind noiseKindOf(std::string_view function)
{
    if (function == "snoise" || function == "psnoise")
        return OSL_NOISE_PERLIN;
    if (function == "cellnoise")
        return OSL_NOISE_CELL;
    return function == "hashnoise" ? OSL_NOISE_HASH : OSL_NOISE_UPERLIN;
}
} // namespace

osl_Ref osl_Generator::genCall(const Node *node)
{
    const osl_Function *function = node->function;
    myPlace = node->place;
    if (function == nullptr)
        return zero(osl_Type::INT);
    if (function->closure != nullptr && function->definition == nullptr)
        return genClosure(node);
    return function->node != nullptr ? genUserCall(node) : genBuiltin(node);
}

// The function's body in the place of the call.
osl_Ref osl_Generator::genUserCall(const Node *node)
{
    const osl_Function *function = node->function;
    const Node *body = (function->definition != nullptr ? function->definition : function)->node;
    if (body->b == nullptr) { // only a header's word: a renderer's own function
        for (const Node *arg = node->a; arg != nullptr; arg = arg->next)
            gen(arg);
        return zero(body->type.isVoid() ? osl_Type(osl_Type::INT) : body->type);
    }
    struct Back {
        osl_Ref to, from;
    };
    std::vector<Back> back;
    std::vector<osl_Ref> values;
    const Node *formal = body->a;
    for (const Node *arg = node->a; arg != nullptr; arg = arg->next, formal = formal->next) {
        const osl_Type &type = formal->type;
        if (!formal->isOutput) {
            osl_Ref got = genCompound(arg, type);
            name(got);
            values.push_back(std::move(got));
            continue;
        }
        osl_Ref place = lvalue(arg);
        const bool isSame = place.type == type || (type.isArray() && place.type.isArray());
        const bool isPlain = place.isStruct()
                                 ? std::all_of(place.fields.begin(), place.fields.end(),
                                               [](const osl_Ref &f) { return f.steps.empty(); })
                                 : place.steps.empty() && !myRegisters.isConstant(place.reg);
        if (!isSame || !isPlain) {
            osl_Ref copied = variable(type.isArray() ? place.type : type, osl_Registers::VARIABLE);
            assign(copied, load(place));
            if (place.isStruct() || !place.steps.empty() || !myRegisters.isConstant(place.reg))
                back.push_back({place, copied});
            place = copied;
        }
        name(place);
        values.push_back(std::move(place));
    }
    size_t i = 0;
    for (formal = body->a; formal != nullptr && i < values.size(); formal = formal->next)
        myVariables[formal->symbol] = values[i++];

    Call call;
    call.isEarly = returnsEarly(body->b->a, true);
    if (!body->type.isVoid())
        call.result =
            variable(body->type, call.isEarly ? osl_Registers::VARIABLE : osl_Registers::TEMPORARY);
    myCalls.push_back(call);
    if (call.isEarly) {
        emitInto(OSL_CALL, -1, {});
        openRegion(osl_Region::CALL, -1);
    }
    const int start = here() - 1;
    genList(body->b->a);
    myPlace = node->place;
    if (call.isEarly) {
        closeRegion();
        emitInto(OSL_CALL_END, -1, {});
        aim(OSL_RETURN, start, here() - 1);
    }
    myCalls.pop_back();
    for (const Back &pair : back)
        assign(pair.to, pair.from);
    return body->type.isVoid() ? zero(osl_Type::INT) : call.result;
}

// Arguments as the overload wants them; -1 for none. Numbers may stay alone where
// three are wanted.
std::vector<int> osl_Generator::genArguments(const Node *node, bool keepsScalars)
{
    std::vector<int> arguments;
    const auto &parameters = node->function->parameters;
    size_t i = 0;
    for (const Node *arg = node->a; arg != nullptr; arg = arg->next, ++i) {
        const bool isMore = i >= parameters.size();
        const bool isAny =
            isMore ? node->function->tail != osl_Function::MORE : parameters[i].isAny;
        if (isAny) {
            arguments.push_back(load(lvalue(arg)).reg);
            continue;
        }
        const osl_Type type = parameters[std::min(i, parameters.size() - 1)].type;
        osl_Ref got = arg->kind == Node::COMPOUND ? genCompound(arg, type) : load(lvalue(arg));
        if (keepsScalars && type.isTriple() && got.type.isScalar())
            got = convert(got, osl_Type::FLOAT);
        else
            got = convert(got, type);
        arguments.push_back(got.reg);
    }
    return arguments;
}

osl_Ref osl_Generator::genBuiltin(const Node *node)
{
    osl_Op op = node->function->builtin->op;
    const osl_Type type = node->function->result;
    switch (op) {
    case OSL_NOISE:
        return genNoise(node);
    case OSL_TRANSFORM:
        return genTransform(node);
    case OSL_SPLINE:
    case OSL_SPLINEINVERSE:
        return genSpline(node);
    case OSL_SINCOS:
        return genSincos(node);
    case OSL_EXIT:
        emitInto(OSL_EXIT, -1, {});
        return zero(osl_Type::INT);
    case OSL_ARRAYLENGTH:
        return value(type, myRegisters.intConstant(lvalue(node->a).type.array));
    case OSL_ISCONSTANT: {
        const osl_Ref got = gen(node->a);
        const bool isConstant = got.reg >= 0 && myRegisters.isConstant(got.reg);
        return value(type, myRegisters.intConstant(isConstant ? 1 : 0));
    }
    case OSL_ISCONNECTED: {
        const int result = emit(OSL_ISCONNECTED, type, {});
        last().text = myRegisters.handle(node->a->name);
        return value(type, result);
    }
    case OSL_SPLIT:
    case OSL_REGEX_SEARCH:
    case OSL_REGEX_MATCH:
    case OSL_GETMATRIX:
    case OSL_GETATTRIBUTE:
    case OSL_GETMESSAGE:
    case OSL_TEXTUREINFO:
    case OSL_DICT_VALUE:
    case OSL_TEXTURE:
    case OSL_TEXTURE3D:
    case OSL_ENVIRONMENT:
    case OSL_POINTCLOUD:
        return genOutputs(node);
    default:
        break;
    }
    std::vector<int> arguments = genArguments(node, osl_isByComponent(op));
    if (op == OSL_LOG && arguments.size() == 2)
        op = OSL_LOGBASE;
    if (op == OSL_SELECT && node->function->parameters[2].type.isInt() && !type.isInt())
        op = OSL_SELECTB;
    if (op == OSL_SELECTB)
        arguments[2] = truth(value(osl_Type::INT, arguments[2]));
    if (type.isInt())
        op = intOp(op);
    if (op == OSL_HASHF) {
        const osl_Type &first = node->function->parameters[0].type;
        op = first.isInt() ? OSL_HASHI : first.isString() ? OSL_HASHS : op;
    }
    if (op == OSL_TRANSFORMC && arguments.size() == 2)
        arguments.insert(arguments.begin(), myRegisters.textConstant("rgb"));
    if (op == OSL_TRANSFORMU && arguments.size() == 2)
        arguments.insert(arguments.begin(), myRegisters.textConstant("common"));
    if (type.isVoid()) {
        emitInto(op, -1, arguments);
        return zero(osl_Type::INT);
    }
    const int result = emit(op, type, arguments);
    return value(type, result);
}

// Functions with outputs: an output that is an element goes by way of a variable.
osl_Ref osl_Generator::genOutputs(const Node *node)
{
    const osl_Op op = node->function->builtin->op;
    const osl_Type type = node->function->result;
    struct Back {
        osl_Ref to, from;
    };
    std::vector<Back> back;
    std::vector<int> arguments;
    const auto &parameters = node->function->parameters;
    size_t i = 0;
    const Node *keyword = nullptr;
    for (const Node *arg = node->a; arg != nullptr; arg = arg->next, ++i) {
        const bool isKeyword = i >= parameters.size() && keyword == nullptr;
        const bool isLvalue =
            arg->kind == Node::VAR || arg->kind == Node::INDEX || arg->kind == Node::FIELD;
        const bool isResult =
            keyword != nullptr && keyword->kind == Node::STRING &&
            (keyword->text == "alpha" || keyword->text == "errormessage" || op == OSL_POINTCLOUD);
        const bool isOutput = i < parameters.size() ? parameters[i].isOutput : isResult && isLvalue;
        keyword = isKeyword ? arg : nullptr;
        if (!isOutput) {
            osl_Ref got = load(lvalue(arg));
            if (i < parameters.size() && !parameters[i].isAny)
                got = convert(got, parameters[i].type);
            else if (got.type.isInt() && op != OSL_POINTCLOUD && isResult)
                got = convert(got, osl_Type::FLOAT);
            arguments.push_back(got.reg);
            continue;
        }
        osl_Ref place = lvalue(arg);
        if (place.isStruct()) {
            arguments.push_back(-1);
            continue;
        }
        if (!place.steps.empty() || myRegisters.isConstant(place.reg)) {
            osl_Ref copied = variable(place.type, osl_Registers::VARIABLE);
            assign(copied, load(place));
            if (!place.steps.empty())
                back.push_back({place, copied});
            place = copied;
        }
        arguments.push_back(place.reg);
    }
    // The result may be written where lanes are off: it is a variable.
    const int result = myRegisters.make(osl_Registers::TEMPORARY, type, type.components());
    emitInto(op, result, arguments);
    last().number = static_cast<int>(parameters.size());
    for (const Back &pair : back)
        assign(pair.to, pair.from);
    return value(type, result);
}

// ---- Closures -------------------------------------------------------------

// Operands: the values of all parameters in the order of the closure's row.
osl_Ref osl_Generator::genClosure(const Node *node)
{
    const osl_ClosureRow &row = *node->function->closure;
    const osl_Type type = osl_Type::closure();
    std::vector<int> arguments;
    const Node *arg = node->a;
    for (const osl_ClosureParameter &parameter : row.parameters) {
        if (parameter.isKeyword) {
            arguments.push_back(zero(parameter.type).reg);
            continue;
        }
        arguments.push_back(genAs(arg, parameter.type).reg);
        arg = arg->next;
    }
    for (; arg != nullptr && arg->next != nullptr; arg = arg->next->next) {
        const osl_Ref got = gen(arg->next);
        for (size_t i = 0; i < row.parameters.size(); ++i) {
            const osl_ClosureParameter &parameter = row.parameters[i];
            if (parameter.isKeyword && arg->kind == Node::STRING && parameter.name == arg->text)
                arguments[i] = convert(got, parameter.type).reg;
        }
    }
    if (!row.isKnown)
        return zero(type);
    const int result = emit(OSL_CLOSURE, type, arguments);
    last().number = static_cast<int>(myMade.closures.size());
    myMade.closures.push_back(&row);
    return value(type, result);
}

// ---- Patterns -------------------------------------------------------------

// Operands: the name or none, four coordinates, four periods, then options.
osl_Ref osl_Generator::genNoise(const Node *node)
{
    const osl_Type type = node->function->result;
    const auto &parameters = node->function->parameters;
    const bool isNamed = parameters[0].type.isString();
    const bool isPeriodic = node->function->name[0] == 'p';
    const Node *arg = node->a;
    int kind = noiseKindOf(node->function->name);
    std::vector<int> arguments(9, -1);
    if (isNamed) {
        arguments[0] = gen(arg).reg;
        arg = arg->next;
        if (myRegisters.isConstant(arguments[0]))
            kind = osl_noiseKind(myRegisters.text(arguments[0]));
        else
            kind = -1;
    }
    const size_t first = isNamed ? 1 : 0;
    const size_t given = parameters.size() - first;
    const size_t coordinates = isPeriodic ? given / 2 : given;
    size_t at = 1;
    for (size_t i = 0; i < given; ++i, arg = arg->next) {
        if (i == coordinates)
            at = 5;
        const osl_Type &wanted = parameters[first + i].type;
        const int reg = genAs(arg, wanted).reg;
        for (int c = 0; c < wanted.components(); ++c)
            arguments[at++] = myRegisters.part(reg, c, osl_Type::FLOAT, 1);
    }
    for (; arg != nullptr; arg = arg->next)
        arguments.push_back(gen(arg).reg);
    const int result = emit(OSL_NOISE, type, arguments);
    last().number = kind;
    return value(type, result);
}

int osl_Generator::spaces(int from, int to)
{
    return emit(OSL_SPACES, osl_Type::MATRIX, {from, to});
}

osl_Ref osl_Generator::genTransform(const Node *node)
{
    const auto &parameters = node->function->parameters;
    const osl_Type type = node->function->result;
    std::vector<int> arguments = genArguments(node, false);
    int matrix = arguments[0];
    if (parameters[0].type.isString())
        matrix = arguments.size() == 2 ? spaces(myRegisters.textConstant("common"), arguments[0])
                                       : spaces(arguments[0], arguments[1]);
    const osl_Op op = type.base == osl_Type::POINT    ? OSL_TRANSFORM_POINT
                      : type.base == osl_Type::VECTOR ? OSL_TRANSFORM_VECTOR
                                                      : OSL_TRANSFORM_NORMAL;
    return value(type, emit(op, type, {matrix, arguments.back()}));
}

// Operands: basis, x, number of knots (or none), knots as an array.
osl_Ref osl_Generator::genSpline(const Node *node)
{
    const osl_Type type = node->function->result;
    std::vector<int> arguments = genArguments(node, false);
    std::vector<int> operands{arguments[0], arguments[1], -1};
    if (node->function->tail == osl_Function::MORE) {
        const osl_Type element = node->function->parameters.back().type;
        const int length = static_cast<int>(arguments.size()) - 2;
        osl_Ref knots = variable(element.arrayOf(length), osl_Registers::VARIABLE);
        for (int i = 0; i < length; ++i)
            copy(element.components() > 0 ? myRegisters.part(knots.reg, i * element.components(),
                                                             element, element.components())
                                          : knots.reg,
                 arguments[static_cast<size_t>(i) + 2]);
        operands.push_back(knots.reg);
    } else {
        if (arguments.size() == 4)
            operands[2] = arguments[2];
        operands.push_back(arguments.back());
    }
    return value(type, emit(node->function->builtin->op, type, operands));
}

osl_Ref osl_Generator::genSincos(const Node *node)
{
    const osl_Type type = node->function->parameters[0].type;
    osl_Ref angle = genAs(node->a, type);
    if (!isFresh(angle.reg) && !myRegisters.isConstant(angle.reg)) {
        const osl_Ref kept = variable(type, osl_Registers::TEMPORARY);
        emitInto(OSL_COPY, kept.reg, {angle.reg});
        angle = kept;
    }
    name(angle);
    const osl_Ref sine = lvalue(node->a->next);
    const osl_Ref cosine = lvalue(node->a->next->next);
    assign(sine, value(type, emit(OSL_SIN, type, {angle.reg})));
    assign(cosine, value(type, emit(OSL_COS, type, {angle.reg})));
    return zero(osl_Type::INT);
}
