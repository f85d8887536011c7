// Makes code from a checked tree.
//
// Calls of the shader's own functions are replaced by the functions' bodies, so an
// argument is the caller's variable itself, as the language wants it. Structs are
// taken apart into a register for each field. An operation whose arguments are all
// known is done here (osl_Fold.h).
//
// Afterwards osl_Analysis finds out what varies from point to point, what needs
// derivatives, and where each register lies.
#pragma once

#include "osl/OSL_Shader.h"
#include "osl/check/osl_Checker.h"
#include "osl/code/osl_Registers.h"

// A stretch of code that runs only for some points: the branch of a condition, a loop, a
// function that is left early, or all of it.
struct osl_Region {
    enum Kind : uint8_t { MAIN, BRANCH, LOOP, CALL };
    Kind kind = MAIN;
    bool isVarying = false; // its points are not those of the region around it
    int parent = -1;
    int condition = -1; // register
    int first = 0;      // instructions
    int last = 0;
};

// What an expression or a variable stands for.
struct osl_Ref {
    // An element or component that is known only at run time.
    struct Step {
        int index = -1; // register
        int count = 0;  // of elements
        std::string_view name;
    };

    osl_Type type;
    int reg = -1;                // of all but structs
    std::vector<osl_Ref> fields; // of structs
    std::vector<Step> steps;

    bool isStruct() const { return type.isStruct(); }
};

struct osl_Made {
    std::vector<osl_Instruction> instructions;
    std::vector<int> arguments; // registers, -1 for none
    std::vector<int> regions;   // of each instruction
    std::vector<osl_Region> tree;
    std::vector<const osl_ClosureRow *> closures;
    std::array<int, 13> globals{};
    std::array<bool, 13> areWritten{}; // of the globals
    std::vector<osl_CodeOutput> outputs;
};

class osl_Generator
{
public:
    osl_Generator(const osl_Tree &tree, const osl_Messages &messages,
                  const std::vector<OSL_Binding> &bindings);

    // Null, and `error` says why, when the code would be too large.
    std::unique_ptr<osl_Code> run(std::string &error);

private:
    using Node = osl_Node;

    struct Call {
        osl_Ref result;
        bool isEarly = false; // has a return that is not its last statement
    };

    static constexpr size_t MAX_INSTRUCTIONS = 400000;
    static constexpr long long MAX_WORDS = 1 << 20;
    static constexpr int MAX_DEPTH = 3000; // of expressions and lists inside each other, with
                                           // those of the functions that are called

    // Parameters and statements (osl_GenStatements.cpp)
    void genParameters();
    void genParameter(const Node *node);
    osl_Ref boundParameter(const osl_Type &type, const std::string &name);
    osl_Ref bindFields(const osl_Ref &value, const std::string &name);
    const OSL_Value *findBinding(const std::string &name) const;
    static bool isInterpolated(const Node *node);
    void addOutputs(const osl_Ref &ref, const std::string &name);
    void genUserdata(const osl_Ref &ref, const std::string &name);
    void genList(const Node *list);
    void genStatement(const Node *node);
    void genEffect(const Node *node);
    void genVariable(const Node *node);
    void genIf(const Node *node);
    void genLoop(const Node *node);
    void genReturn(const Node *node);

    // Variables (osl_GenVariables.cpp)
    osl_Ref variable(const osl_Type &type, osl_Registers::Kind kind, int multiple = 1);
    osl_Ref &lookUp(const Node *node);
    osl_Ref lvalue(const Node *node);
    osl_Ref element(const osl_Ref &base, int index, std::string_view name);
    osl_Ref withStep(osl_Ref ref, const osl_Ref::Step &step, int index);
    osl_Ref load(const osl_Ref &ref);
    int loadStep(int reg, const osl_Ref::Step &step, const osl_Type &type);
    void store(const osl_Ref &to, int value);
    void assign(const osl_Ref &to, const osl_Ref &value);
    void copy(int to, int from);
    bool retarget(int to, int from);
    osl_Ref zero(const osl_Type &type);
    osl_Ref filled(const osl_Ref &value, const osl_Type &array);
    bool isFresh(int reg) const;
    void name(const osl_Ref &ref); // what is fresh in it becomes a variable

    // Expressions (osl_GenExpressions.cpp)
    osl_Ref gen(const Node *node);
    osl_Ref genInside(const Node *node);
    osl_Ref genAs(const Node *node, const osl_Type &type); // converted
    osl_Ref genCompound(const Node *node, const osl_Type &type);
    osl_Ref genStruct(const Node *node);
    osl_Ref genConstructor(const Node *node);
    osl_Ref genTriple(const osl_Type &type, const Node *args);
    osl_Ref genMatrix(const Node *args);
    osl_Ref genUnary(const Node *node);
    osl_Ref genStep(const Node *node, bool isPrefix);
    osl_Ref genBinary(const Node *node);
    osl_Ref genOperator(const Node *node, const osl_Ref &left, const osl_Ref &right);
    int emitSum(osl_Op op, const osl_Type &type, int left, int right);
    bool isNewProduct(int reg, int words) const;
    osl_Ref genMatrixOperator(int punct, osl_Ref left, osl_Ref right);
    osl_Ref genClosureOperator(int punct, osl_Ref left, osl_Ref right);
    osl_Ref genLogical(const Node *node);
    osl_Ref genAssign(const Node *node);
    osl_Ref genTernary(const Node *node);
    osl_Ref convert(const osl_Ref &value, const osl_Type &type);
    int splat(int reg, const osl_Type &type);
    int truth(const osl_Ref &value);
    static bool isSimple(const Node *node); // cheap and without effect

    // Calls (osl_GenCalls.cpp)
    osl_Ref genCall(const Node *node);
    osl_Ref genUserCall(const Node *node);
    osl_Ref genBuiltin(const Node *node);
    osl_Ref genClosure(const Node *node);
    osl_Ref genNoise(const Node *node);
    osl_Ref genTransform(const Node *node);
    osl_Ref genSpline(const Node *node);
    osl_Ref genSincos(const Node *node);
    osl_Ref genOutputs(const Node *node); // of functions that write arguments
    std::vector<int> genArguments(const Node *node, bool keepsScalars);
    int spaces(int from, int to); // the matrix between two named spaces
    osl_Ref value(const osl_Type &type, int reg) const;

    // Instructions
    int emit(osl_Op op, const osl_Type &type, const std::vector<int> &arguments);
    int emitInto(osl_Op op, int result, const std::vector<int> &arguments);
    int fold(osl_Op op, const osl_Type &type, const std::vector<int> &arguments);
    int openRegion(osl_Region::Kind kind, int condition);
    void closeRegion();
    void aim(osl_Op op, int start, int target);
    bool isLeftWithin(int start) const;
    osl_Instruction &last() { return myMade.instructions.back(); }
    int here() const { return static_cast<int>(myMade.instructions.size()); }
    bool isOver() const;

    const osl_Tree &myTree;
    const osl_Messages &myMessages;
    const std::vector<OSL_Binding> &myBindings;
    osl_Registers myRegisters;
    osl_Made myMade;
    std::unordered_map<const osl_Symbol *, osl_Ref> myVariables;
    std::vector<Call> myCalls;
    int myRegion = 0;
    int myDepth = 0;
    bool isTooLarge = false;
    osl_Place myPlace;
    const Node *myKnown = nullptr; // an lvalue that has been read already, and its value
    osl_Ref myKnownValue;
};

// Completes the code: osl_Analysis.cpp.
std::unique_ptr<osl_Code> osl_finish(osl_Made &made, osl_Registers &registers);
