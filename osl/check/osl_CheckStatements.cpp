#include "osl/check/osl_Checker.h"

namespace
{
constexpr int MOST_OVERLOADS = 500; // of a name

const struct {
    const char *name;
    osl_Type type;
} GLOBALS[] = {
    {"P", osl_Type::POINT},      {"I", osl_Type::VECTOR},    {"N", osl_Type::NORMAL},
    {"Ng", osl_Type::NORMAL},    {"dPdu", osl_Type::VECTOR}, {"dPdv", osl_Type::VECTOR},
    {"Ps", osl_Type::POINT},     {"u", osl_Type::FLOAT},     {"v", osl_Type::FLOAT},
    {"time", osl_Type::FLOAT},   {"dtime", osl_Type::FLOAT}, {"dPdtime", osl_Type::VECTOR},
    {"Ci", osl_Type::closure()},
};
} // namespace

osl_Checker::osl_Checker(osl_Tree &tree, osl_Messages &messages)
    : myTree(tree), myMessages(messages)
{
}

void osl_Checker::error(Stage stage, osl_Place place, std::string text)
{
    if (!isFull(stage))
        myLate[stage].push_back({true, place, std::move(text)});
}

void osl_Checker::warning(osl_Place place, std::string text)
{
    if (!isFull(TYPES))
        myLate[TYPES].push_back({false, place, std::move(text)});
}

void osl_Checker::flush(Stage stage)
{
    if (myMessages.errors() > 0)
        return;
    for (const Late &late : myLate[stage]) {
        if (late.isError)
            myMessages.error(late.place, late.text);
        else
            myMessages.warning(late.place, late.text);
    }
}

bool osl_Checker::run()
{
    declareGlobals();
    for (Node *node : myTree.declarations) {
        if (node->kind == Node::STRUCT)
            declareStruct(node);
        else if (node->kind == Node::FUNCTION)
            checkFunction(node);
        else
            checkShader(node);
    }
    findRecursion();
    for (const Stage stage : {NAMES, TYPES, CODE})
        flush(stage);
    return myMessages.errors() == 0;
}

void osl_Checker::declareGlobals()
{
    for (const auto &row : GLOBALS)
        mySymbols.declare(row.name, osl_Symbol::GLOBAL, row.type);
}

// ---- Declarations ---------------------------------------------------------

void osl_Checker::checkShader(Node *node)
{
    mySymbols.openScope();
    myFunction = nullptr;
    for (Node *parameter = node->a; parameter != nullptr; parameter = parameter->next) {
        if (parameter->a == nullptr)
            error(NAMES, parameter->place,
                  "shader parameter '" + std::string(parameter->name) + "' MUST be initialized");
        if (parameter->isOutput && parameter->type.array == osl_Type::UNSIZED)
            error(NAMES, parameter->place,
                  "shader output parameter '" + std::string(parameter->name) +
                      "' can't be unsized array");
        checkInitialiser(parameter);
        osl_Symbol *symbol = declareVariable(
            parameter, parameter->isOutput ? osl_Symbol::OUTPUT : osl_Symbol::PARAMETER);
        symbol->isReadOnly = !parameter->isOutput;
    }
    checkList(node->b != nullptr ? node->b->a : nullptr);
    mySymbols.closeScope();
}

void osl_Checker::declareStruct(Node *node)
{
    const std::string name = '"' + std::string(node->name) + '"';
    if (mySymbols.findInScope(node->name) != nullptr)
        error(NAMES, node->place, name + " already declared in this scope");
    if (node->name.substr(0, 3) == "___")
        error(NAMES, node->place, name + " : sorry, can't start with three underscores");
    for (const Node *field = node->a; field != nullptr; field = field->next) {
        for (const Node *other = node->a; other != field; other = other->next) {
            if (other->name == field->name) {
                error(NAMES, field->place,
                      "Field \"" + std::string(field->name) + "\" already exists in struct " +
                          name);
                break;
            }
        }
    }
    mySymbols.declare(node->name, osl_Symbol::TYPE, node->type)->node = node;
}

osl_Symbol *osl_Checker::declareVariable(Node *node, osl_Symbol::Kind kind)
{
    osl_Symbol *old = mySymbols.findInScope(node->name);
    // A variable may hide a function that is not of its own scope.
    if (old != nullptr && mySymbols.scope() > 0) {
        std::string text = "\"" + std::string(node->name) + "\" already declared in this scope";
        if (old->node != nullptr)
            text += "\n\t\tprevious declaration was at " +
                    std::string(myMessages.baseName(old->node->place.file)) + ":" +
                    std::to_string(old->node->place.line);
        error(NAMES, node->place, text);
    }
    if (node->name.substr(0, 3) == "___")
        error(NAMES, node->place,
              "\"" + std::string(node->name) + "\" : sorry, can't start with three underscores");
    if (node->type.isVoid())
        error(NAMES, node->place, "Cannot declare a variable of type void");
    node->symbol = mySymbols.declare(node->name, kind, node->type);
    node->symbol->node = node;
    return node->symbol;
}

// Of a parameter or a variable, which it may not name yet.
void osl_Checker::checkInitialiser(Node *node)
{
    if (node->a == nullptr)
        return;
    const std::string name(node->name);
    if (node->a->kind == Node::COMPOUND) {
        resolveCompound(node->a, node->type, name);
        return;
    }
    check(node->a, node->type);
    warnComma(node->a, node->type);
    // "color c[2] = 0" sets the first one.
    const bool isSpread = node->type.isArray() && !node->a->type.isArray() &&
                          osl_isAssignable(node->type.element(), node->a->type);
    if (!isSpread)
        checkAssignable(node->place, "initialize", node->type, name, node->a);
}

void osl_Checker::warnRedefinition(const osl_Function &function, const osl_Function *earlier)
{
    if (isFull(TYPES)) // nobody would read it, and there may be thousands
        return;
    std::string places;
    for (; earlier != nullptr && earlier->scope == function.scope; earlier = earlier->next) {
        const bool isSame =
            isSameSignature(*earlier, function) && earlier->result == function.result;
        if (!isSame || earlier->node == nullptr || earlier->node->b == nullptr)
            continue;
        places += "\n    " + std::string(myMessages.baseName(earlier->node->place.file)) + ":" +
                  std::to_string(earlier->node->place.line);
    }
    if (!places.empty())
        warning(function.node->place, "Function '" + function.result.name() + " " +
                                          std::string(function.name) + " (" +
                                          function.parameterList() +
                                          ")' redefined in the same scope\n"
                                          "  Previous definitions:" +
                                          places);
}

// Calls of earlier declarations of the same form mean this one.
void osl_Checker::defineEarlier(osl_Function *function)
{
    for (osl_Function *earlier = function->next; earlier != nullptr; earlier = earlier->next) {
        if (earlier->node != nullptr && earlier->node->b == nullptr &&
            haveSameParameters(*earlier, *function) && earlier->result == function->result)
            earlier->definition = function;
    }
}

void osl_Checker::declareFunction(Node *node)
{
    osl_Symbol *symbol = mySymbols.find(node->name);
    const bool isFunction = symbol != nullptr && symbol->kind == osl_Symbol::FUNCTION;
    if (symbol != nullptr && !isFunction && symbol->scope == mySymbols.scope())
        error(NAMES, node->place,
              "\"" + std::string(node->name) + "\" already declared in this scope as a " +
                  symbol->type.name());
    myFunctions.emplace_back();
    osl_Function *function = &myFunctions.back();
    function->name = node->name;
    function->result = node->type;
    function->node = node;
    function->scope = mySymbols.scope();
    function->next = isFunction ? symbol->functions : nullptr;
    if (function->next != nullptr)
        function->overloads += function->next->overloads;
    if (function->overloads > MOST_OVERLOADS) { // each is held against all others
        error(NAMES, node->place,
              "too many functions are called '" + std::string(node->name) + "'");
        function->next = nullptr;
        function->overloads = 1;
    }
    for (const Node *formal = node->a; formal != nullptr; formal = formal->next)
        function->parameters.push_back({formal->type, formal->isOutput, false, false});
    if (node->b != nullptr) {
        warnRedefinition(*function, function->next);
        defineEarlier(function);
    }
    if (!isFunction || symbol->scope != mySymbols.scope())
        symbol = mySymbols.declare(node->name, osl_Symbol::FUNCTION, node->type);
    symbol->node = node;
    symbol->functions = function;
    node->function = function;
}

void osl_Checker::checkFunction(Node *node)
{
    // A header's word about a function that is built in: ours knows more about it.
    if (node->b == nullptr) {
        std::deque<osl_Function> closures;
        osl_findClosures(node->name, closures);
        if (osl_findBuiltin(node->name) != nullptr || osl_findPrelude(node->name) != nullptr ||
            !closures.empty())
            return;
    }
    declareFunction(node);
    if (node->b == nullptr) {
        if (node->type.isClosure) {
            node->function->tail = osl_Function::KEYWORDS;
            myClosures.push_back(osl_unknownClosure(*node->function));
            node->function->closure = myClosures.back().get();
        }
        return;
    }
    osl_Function *outer = myFunction;
    const int outerLoops = myLoops;
    myFunction = node->function;
    myLoops = 0;
    mySymbols.openScope();
    for (Node *formal = node->a; formal != nullptr; formal = formal->next) {
        if (formal->a != nullptr)
            error(NAMES, formal->place,
                  "function parameter '" + std::string(formal->name) +
                      "' may not have a default initializer.");
        declareVariable(formal, osl_Symbol::FORMAL)->isReadOnly = !formal->isOutput;
    }
    checkList(node->b->a);
    mySymbols.closeScope();
    myFunction = outer;
    myLoops = outerLoops;
}

// ---- Recursion ------------------------------------------------------------

void osl_Checker::findRecursion()
{
    for (osl_Function &function : myFunctions) {
        if (function.state == 0 && isRecursive(&function))
            error(CODE, function.node->place,
                  "function '" + std::string(function.name) + "' calls itself");
    }
}

// Depth first, without recursion of our own. State: 0 new, 1 open, 2 done.
bool osl_Checker::isRecursive(osl_Function *function)
{
    std::vector<std::pair<osl_Function *, size_t>> path{{function, 0}};
    function->state = 1;
    bool found = false;
    while (!path.empty()) {
        auto &[at, next] = path.back();
        if (next == at->callees.size()) {
            at->state = 2;
            path.pop_back();
            continue;
        }
        osl_Function *callee = at->callees[next++];
        if (callee->definition != nullptr)
            callee = callee->definition;
        found = found || callee->state == 1;
        if (callee->state != 0)
            continue;
        callee->state = 1;
        path.emplace_back(callee, 0);
    }
    return found;
}

// ---- Statements -----------------------------------------------------------

void osl_Checker::checkList(Node *list)
{
    for (; list != nullptr; list = list->next)
        checkStatement(list);
}

void osl_Checker::checkBlock(Node *node)
{
    mySymbols.openScope();
    checkList(node->a);
    mySymbols.closeScope();
}

void osl_Checker::checkStatement(Node *node)
{
    switch (node->kind) {
    case Node::BLOCK:
        return checkBlock(node);
    case Node::IF:
        return checkIf(node);
    case Node::LOOP:
        return checkLoop(node);
    case Node::RETURN:
        return checkReturn(node);
    case Node::FUNCTION:
        return checkFunction(node);
    case Node::VARIABLE:
        checkInitialiser(node);
        declareVariable(node, osl_Symbol::LOCAL);
        return;
    case Node::BREAK:
    case Node::CONTINUE:
        if (myLoops == 0)
            error(TYPES, node->place,
                  std::string("Cannot '") + (node->kind == Node::BREAK ? "break" : "continue") +
                      "' here.");
        return;
    case Node::EMPTY:
        return;
    default:
        check(node, osl_Type());
    }
}

void osl_Checker::checkCondition(Node *node, const std::string &what)
{
    const osl_Type type = check(node, osl_Type::INT);
    if (type.isClosure)
        error(TYPES, node->place, "Cannot use a closure as " + what + " condition");
    else if (type.isStruct())
        error(TYPES, node->place, "Cannot use a struct as " + what + " condition");
    else if (type.isArray())
        error(TYPES, node->place, "Cannot use an array as " + what + " condition");
}

void osl_Checker::checkIf(Node *node)
{
    for (;;) {
        checkCondition(node->a, "an 'if'");
        mySymbols.openScope();
        checkStatement(node->b);
        mySymbols.closeScope();
        if (node->c == nullptr || node->c->kind != Node::IF)
            break;
        node = node->c;
    }
    if (node->c == nullptr)
        return;
    mySymbols.openScope();
    checkStatement(node->c);
    mySymbols.closeScope();
}

void osl_Checker::checkLoop(Node *node)
{
    static const char *const WORDS[] = {"an 'for'", "an 'while'", "an 'dowhile'"};
    mySymbols.openScope();
    checkList(node->a);
    ++myLoops;
    if (node->b != nullptr && node->punct != Node::DO)
        checkCondition(node->b, WORDS[node->punct]);
    if (node->c != nullptr)
        check(node->c, osl_Type());
    mySymbols.openScope();
    checkStatement(node->d);
    mySymbols.closeScope();
    if (node->b != nullptr && node->punct == Node::DO)
        checkCondition(node->b, WORDS[node->punct]);
    --myLoops;
    mySymbols.closeScope();
}

void osl_Checker::checkReturn(Node *node)
{
    if (myFunction == nullptr) {
        if (node->a != nullptr)
            error(TYPES, node->place, "Cannot return a value from a shader body");
        return;
    }
    const osl_Type &wanted = myFunction->result;
    const std::string name = std::string(myFunction->name) + "()'";
    myFunction->hasReturn = true;
    if (node->a == nullptr) {
        if (!wanted.isVoid())
            error(TYPES, node->place,
                  "You must return a '" + wanted.name() + "' from function '" +
                      std::string(myFunction->name) + "'");
        return;
    }
    if (node->a->kind == Node::COMPOUND)
        resolveCompound(node->a, wanted, std::string(myFunction->name));
    else if (const osl_Type type = check(node->a, wanted); wanted.isClosure && isZero(node->a))
        return;
    else if (!osl_isAssignable(wanted, type))
        error(TYPES, node->place,
              "Cannot return a '" + type.name() + "' from '" + wanted.name() + " " + name);
}
