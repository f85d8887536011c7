// Function calls: which overload is meant, and whether it may be called so.
//
// Each argument scores: the same type most, then whole numbers for floats, arrays
// for arrays of any length, what can be converted, anything. The highest sum wins;
// of equals the one whose result suits best what is wanted, then the one whose
// result ranks first (float, int, color, vector, point, normal, matrix, string,
// closure, struct, void) with a warning.
#include "osl/check/osl_Checker.h"

#include "osl/lib/osl_Format.h"
#include "osl/syntax/osl_Parser.h"
#include "osl/text/osl_Lexer.h"

#include <algorithm>

namespace
{
enum Score { EXACT = 100, INT_TO_FLOAT = 77, ARRAY = 44, CONVERTIBLE = 23, ANY = 1, NONE = 0 };

int rankOf(const osl_Type &type)
{
    static const osl_Type::Base ORDER[] = {osl_Type::FLOAT,  osl_Type::INT,   osl_Type::COLOR,
                                           osl_Type::VECTOR, osl_Type::POINT, osl_Type::NORMAL,
                                           osl_Type::MATRIX, osl_Type::STRING};
    if (type.isClosure)
        return 8;
    for (int i = 0; i < 8; ++i) {
        if (type.base == ORDER[i])
            return i;
    }
    return type.isStruct() ? 9 : 10;
}

// Those that no header declares.
bool isInHeader(osl_Op op)
{
    switch (op) {
    case OSL_AREA:
    case OSL_ARRAYLENGTH:
    case OSL_CALCULATENORMAL:
    case OSL_NOISE:
    case OSL_DX:
    case OSL_DY:
    case OSL_DZ:
    case OSL_FILTERWIDTH:
    case OSL_PRINTF:
    case OSL_FORMAT:
    case OSL_ERROR:
    case OSL_WARNING:
    case OSL_FPRINTF:
    case OSL_SPLINE:
    case OSL_SPLINEINVERSE:
    case OSL_SINCOS:
    case OSL_SPLIT:
    case OSL_TEXTURE:
    case OSL_TEXTURE3D:
    case OSL_ENVIRONMENT:
    case OSL_TEXTUREINFO:
    case OSL_GETATTRIBUTE:
    case OSL_GETMESSAGE:
    case OSL_SETMESSAGE:
    case OSL_GETMATRIX:
    case OSL_REGEX_MATCH:
    case OSL_REGEX_SEARCH:
        return false;
    default:
        return true;
    }
}
} // namespace

// ---- Where functions come from --------------------------------------------

// All built-in overloads of a name, chained; null for unknown names.
osl_Function *osl_Checker::builtinsOf(std::string_view name)
{
    const auto found = myBuiltins.find(name);
    if (found != myBuiltins.end())
        return found->second;
    std::deque<osl_Function> rows;
    if (const osl_Builtin *builtin = osl_findBuiltin(name); builtin != nullptr)
        osl_expandBuiltin(*builtin, rows);
    osl_findClosures(name, rows);
    osl_Function *first = nullptr;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        myFunctions.push_back(std::move(*row));
        myFunctions.back().next = first;
        myFunctions.back().state = 2; // calls nobody
        first = &myFunctions.back();
    }
    myBuiltins[name] = first;
    return first;
}

// The user's functions of a name, then those written in the language.
osl_Function *osl_Checker::functionsOf(std::string_view name)
{
    osl_Function *first = builtinsOf(name);
    const char *source = osl_findPrelude(name);
    if (source != nullptr && myBuiltins.count(source) == 0) {
        myBuiltins[source] = nullptr; // read once
        readPrelude(source);
        first = builtinsOf(name);
    }
    const osl_Symbol *symbol = mySymbols.find(name);
    if (symbol == nullptr || symbol->kind != osl_Symbol::FUNCTION)
        return first;
    return symbol->functions;
}

// Declares functions behind the built-in ones of their names, as if they stood in a
// header in front of everything.
void osl_Checker::readPrelude(const char *source)
{
    if (myPreludeFile < 0)
        myPreludeFile = myMessages.fileNumber("stdosl.h");
    std::vector<osl_Token> tokens;
    osl_appendTokens(source, {myPreludeFile, 1}, tokens);
    tokens.emplace_back();
    osl_Node *shader = myTree.shader;
    std::vector<osl_Node *> declarations;
    declarations.swap(myTree.declarations);
    osl_Parser parser(tokens, myTree, myMessages);
    const bool isGood = parser.parse();
    declarations.swap(myTree.declarations);
    myTree.shader = shader;
    for (osl_Node *node : declarations) {
        if (!isGood)
            break;
        // Checked in a world of its own: no name of the shader is seen there.
        myWorlds.emplace_back();
        osl_Symbols &world = myWorlds.back();
        std::swap(world, mySymbols);
        declareGlobals();
        osl_Function *outer = myFunction;
        const int loops = myLoops;
        for (osl_Node *other : declarations) {
            if (other == node)
                break;
            osl_Symbol *symbol = mySymbols.find(other->name);
            if (symbol == nullptr)
                symbol = mySymbols.declare(other->name, osl_Symbol::FUNCTION, other->type);
            symbol->functions = other->function;
        }
        checkFunction(node);
        myFunction = outer;
        myLoops = loops;
        std::swap(world, mySymbols);
    }
    for (osl_Node *node : declarations)
        addBuiltin(node->function);
}

void osl_Checker::addBuiltin(osl_Function *function)
{
    function->next = nullptr;
    osl_Function *last = builtinsOf(function->name);
    if (last == nullptr) {
        myBuiltins[function->name] = function;
        return;
    }
    while (last->next != nullptr)
        last = last->next;
    last->next = function;
}

// ---- Overloads ------------------------------------------------------------

int osl_Checker::typeScore(const osl_Type &to, const osl_Type &from)
{
    if (to == from)
        return EXACT;
    if (to.isFloat() && from.isInt())
        return INT_TO_FLOAT;
    if (to.array == osl_Type::UNSIZED && from.isArray() && to.element() == from.element())
        return ARRAY;
    return osl_isAssignable(to, from) ? CONVERTIBLE : NONE;
}

// The sum over the arguments; -1 when one does not fit.
int osl_Checker::argumentScore(const osl_Function &function, Node *args)
{
    int sum = 0;
    Node *arg = args;
    for (const osl_Function::Parameter &parameter : function.parameters) {
        if (arg == nullptr)
            return -1;
        int score = NONE;
        if (parameter.isNoStruct && arg->type.isStruct())
            score = NONE;
        else if (parameter.isAny)
            score = !parameter.type.isArray() || arg->type.isArray() ? ANY : NONE;
        else if (arg->kind == Node::COMPOUND)
            score = compoundFits(arg, parameter.type) ? CONVERTIBLE : NONE;
        else if (parameter.type.isClosure && !parameter.type.isArray() && isZero(arg))
            score = CONVERTIBLE;
        else
            score = typeScore(parameter.type, arg->type);
        if (score == NONE)
            return -1;
        sum += score;
        arg = arg->next;
    }
    if (arg == nullptr)
        return sum;
    switch (function.tail) {
    case osl_Function::NO_MORE:
        return -1;
    case osl_Function::KEYWORDS: // they begin with a name
        return arg->type.isString() && osl_listLength(arg) % 2 == 0 ? sum : -1;
    case osl_Function::ANYTHING:
        return sum;
    case osl_Function::MORE:
        for (; arg != nullptr; arg = arg->next) {
            if (!osl_isAssignable(function.parameters.back().type, arg->type))
                return -1;
        }
        return sum;
    }
    return sum;
}

bool osl_Checker::isSameSignature(const osl_Function &a, const osl_Function &b)
{
    return a.tail == b.tail && haveSameParameters(a, b);
}

bool osl_Checker::haveSameParameters(const osl_Function &a, const osl_Function &b)
{
    return a.parameters.size() == b.parameters.size() &&
           std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(),
                      [](const auto &l, const auto &r) { return l.type == r.type; });
}

// Those with the best arguments.
std::vector<osl_Checker::Candidate> osl_Checker::candidates(osl_Function *first, Node *args,
                                                            const osl_Type &wanted)
{
    std::vector<Candidate> found;
    const auto consider = [&](osl_Function *function) {
        const int score = argumentScore(*function, args);
        if (score < 0 || (!found.empty() && score < found[0].score))
            return;
        if (!found.empty() && score > found[0].score)
            found.clear();
        // A function hides an earlier one of the same form.
        for (const Candidate &other : found) {
            if (isSameSignature(*other.function, *function) &&
                (other.function->result == function->result ||
                 (other.function->node != nullptr && function->node == nullptr)))
                return;
        }
        found.push_back({function, score, typeScore(wanted, function->result)});
    };
    for (osl_Function *function = first; function != nullptr; function = function->next)
        consider(function);
    osl_Function *builtin = builtinsOf(first->name);
    if (first == builtin)
        return found;
    for (osl_Function *function = builtin; function != nullptr; function = function->next)
        consider(function);
    return found;
}

std::string osl_Checker::argumentList(const Node *args)
{
    std::string text;
    for (; args != nullptr; args = args->next) {
        text += text.empty() ? "" : ", ";
        text += args->kind == Node::COMPOUND ? "init-list" : args->type.name();
    }
    return text;
}

// One line of a list of candidates.
std::string osl_Checker::describe(const osl_Function &function) const
{
    std::string text = "\n    ";
    if (function.node != nullptr)
        text += std::string(myMessages.baseName(function.node->place.file)) + ":" +
                std::to_string(function.node->place.line);
    else if (function.builtin == nullptr || isInHeader(function.builtin->op))
        text += "stdosl.h:1";
    else
        text += "built-in";
    return text + "\t" + function.result.name() + " " + std::string(function.name) + " (" +
           function.parameterList() + ")";
}

osl_Function *osl_Checker::best(Node *node, std::vector<Candidate> &found)
{
    const auto score = [](const Candidate &candidate) { return candidate.resultScore; };
    int most = -1;
    for (const Candidate &candidate : found)
        most = std::max(most, score(candidate));
    std::vector<Candidate> equals;
    for (const Candidate &candidate : found) {
        if (score(candidate) == most)
            equals.push_back(candidate);
    }
    if (equals.size() == 1)
        return equals[0].function;
    const bool isOurs =
        std::all_of(equals.begin(), equals.end(), [this](const Candidate &candidate) {
            const Node *declaration = candidate.function->node;
            return declaration == nullptr || declaration->place.file == myPreludeFile;
        });
    std::stable_sort(equals.begin(), equals.end(), [](const Candidate &a, const Candidate &b) {
        return rankOf(a.function->result) < rankOf(b.function->result);
    });
    if (isOurs) // noise() and its like: nothing was declared that could be meant otherwise
        return equals[0].function;
    std::string text =
        "Ambiguous call to '" + std::string(node->name) + " (" + argumentList(node->a) +
        ")'\n  Chosen function is:" + describe(*equals[0].function) + "\n  Other candidates are:";
    for (size_t i = 1; i < equals.size(); ++i)
        text += describe(*equals[i].function);
    warning(node->place, text);
    return equals[0].function;
}

osl_Function *osl_Checker::choose(Node *node, osl_Function *first, const osl_Type &wanted)
{
    std::vector<Candidate> found = candidates(first, node->a, wanted);
    if (!found.empty())
        return best(node, found);
    for (const Node *arg = node->a; arg != nullptr; arg = arg->next) {
        if (arg->type.isUnknown() && arg->kind != Node::COMPOUND && !myLate[NAMES].empty())
            return nullptr; // its own error counts
    }
    if (isFull(TYPES))
        return nullptr;
    std::string text = "No matching function call to '" + std::string(node->name) + " (" +
                       argumentList(node->a) + ")'\n  Candidates are:";
    for (const osl_Function *function = first; function != nullptr; function = function->next)
        text += describe(*function);
    if (first != builtinsOf(first->name)) {
        for (const osl_Function *function = builtinsOf(first->name); function != nullptr;
             function = function->next)
            text += describe(*function);
    }
    error(TYPES, node->place, text);
    return nullptr;
}

// ---- Calls ----------------------------------------------------------------

osl_Type osl_Checker::checkCall(Node *node, const osl_Type &wanted)
{
    osl_Symbol *symbol = mySymbols.find(node->name);
    const std::string name(node->name);
    osl_Function *first = functionsOf(node->name);
    for (Node *arg = node->a; arg != nullptr; arg = arg->next) {
        if (arg->kind != Node::COMPOUND)
            check(arg, osl_Type());
    }
    if (symbol != nullptr && symbol->kind != osl_Symbol::FUNCTION) {
        error(NAMES, node->place, "'" + name + "' is not a function");
        return {};
    }
    if (first == nullptr) {
        error(NAMES, node->place, "function '" + name + "' was not declared in this scope");
        return {};
    }
    node->function = choose(node, first, wanted);
    if (node->function == nullptr)
        return {};
    finishCall(node);
    return node->function->result;
}

// What a function writes, it writes in place: nothing is converted.
void osl_Checker::checkOutput(const Node *call, const Node *arg, const osl_Type &wanted, int number)
{
    const osl_Type &got = arg->type;
    const bool isSame = got.base == wanted.base || (got.isTripleBased() && wanted.isTripleBased());
    if ((isSame && got.isClosure == wanted.isClosure) || got.isUnknown())
        return;
    const std::string name = arg->kind == Node::VAR ? " " + std::string(arg->name) : "";
    error(TYPES, call->place,
          "Cannot pass '" + got.name() + name + "' as argument " + std::to_string(number) + " to " +
              std::string(call->name) + "\n\tbecause it is an output parameter that must be a " +
              wanted.name());
}

// What follows from the choice of a function.
void osl_Checker::finishCall(Node *node)
{
    osl_Function &function = *node->function;
    if (myFunction != nullptr && function.node != nullptr)
        myFunction->callees.push_back(&function);
    Node *arg = node->a;
    int number = 0;
    for (const osl_Function::Parameter &parameter : function.parameters) {
        if (arg == nullptr)
            break;
        ++number;
        if (parameter.isOutput && function.builtin == nullptr)
            checkOutput(node, arg, parameter.type, number);
        if (arg->kind == Node::COMPOUND)
            resolveCompound(arg, parameter.type, "");
        else if (parameter.isOutput &&
                 (arg->kind == Node::VAR || arg->kind == Node::INDEX || arg->kind == Node::FIELD))
            checkWritable(arg);
        arg = arg->next;
    }
    const bool isBodyRead = function.node != nullptr && function.node->b != nullptr;
    if (isBodyRead && !function.result.isVoid() && !function.hasReturn && &function != myFunction)
        error(CODE, node->place,
              "non-void function \"" + std::string(function.name) +
                  "\" had no 'return' statement.");
    if (function.builtin == nullptr)
        return;
    const osl_Op op = function.builtin->op;
    if (op == OSL_PRINTF || op == OSL_FORMAT || op == OSL_ERROR || op == OSL_WARNING)
        checkFormat(node, 0);
    else if (op == OSL_FPRINTF)
        checkFormat(node, 1);
}

// Whether the arguments are what a constant format asks for.
void osl_Checker::checkFormat(Node *node, int formatArgument)
{
    const Node *format = node->a;
    for (int i = 0; i < formatArgument; ++i)
        format = format->next;
    const std::string name(node->name);
    if (format->kind != Node::STRING) {
        warning(node->place, name + "() uses a format string that is not a constant.");
        return;
    }
    const std::string intro = name + " has mismatched format string and arguments (";
    const osl_Format conversions(format->text);
    int number = formatArgument + 2;
    const Node *arg = format->next;
    for (int i = 0; i < conversions.conversions(); ++i, ++number, arg = arg->next) {
        if (arg == nullptr)
            return error(TYPES, node->place, intro + "not enough args)");
        if (arg->type.isUnknown())
            return;
        const bool isText = arg->type.base == osl_Type::STRING || arg->type.isClosure;
        const auto got = isText                            ? osl_FormatArg::STRING
                         : arg->type.base == osl_Type::INT ? osl_FormatArg::INT
                                                           : osl_FormatArg::FLOAT;
        if (arg->type.isStruct())
            return error(TYPES, node->place,
                         "struct '" + std::string(arg->type.record->name) +
                             "' is not a valid argument");
        if (!conversions.suits(i, got))
            return error(TYPES, node->place,
                         intro + "arg " + std::to_string(number) + " needs " +
                             osl_Format::conversionsFor(got) + ")");
    }
    if (arg != nullptr)
        error(TYPES, node->place, intro + "too many args)");
}
