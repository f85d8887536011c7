// Gives names their meaning and expressions their types, and says what is wrong.
//
// Errors come in stages, as everybody's compiler has them: as long as names are wrong,
// nothing is said about types; and only of correct code, what calls need.
#pragma once

#include "osl/check/osl_Builtins.h"
#include "osl/check/osl_Closures.h"
#include "osl/check/osl_Symbol.h"

#include <memory>

class osl_Checker
{
public:
    osl_Checker(osl_Tree &tree, osl_Messages &messages);

    // The whole source. False when there were errors.
    [[nodiscard]] bool run();

    int symbols() const { return mySymbols.count(); }
    osl_Symbol *global(std::string_view name) const { return mySymbols.find(name); }

private:
    using Node = osl_Node;

    enum Stage { NAMES, TYPES, CODE };
    struct Late {
        bool isError;
        osl_Place place;
        std::string text;
    };
    struct Candidate {
        osl_Function *function;
        int score;       // of the arguments
        int resultScore; // of the result, against what is wanted
    };

    void error(Stage stage, osl_Place place, std::string text);
    bool isFull(Stage stage) const { return myLate[stage].size() >= 500; } // no more is kept
    void warning(osl_Place place, std::string text);
    void flush(Stage stage);

    // Declarations and statements (osl_CheckStatements.cpp)
    void declareGlobals();
    void checkShader(Node *node);
    void checkFunction(Node *node);
    void declareFunction(Node *node);
    void warnRedefinition(const osl_Function &function, const osl_Function *earlier);
    static void defineEarlier(osl_Function *function);
    void declareStruct(Node *node);
    osl_Symbol *declareVariable(Node *node, osl_Symbol::Kind kind);
    void checkInitialiser(Node *node);
    void checkList(Node *list);
    void checkBlock(Node *node);
    void checkStatement(Node *node);
    void checkIf(Node *node);
    void checkLoop(Node *node);
    void checkReturn(Node *node);
    void checkCondition(Node *node, const std::string &what);
    void findRecursion();
    bool isRecursive(osl_Function *function);

    // Expressions (osl_CheckExpressions.cpp)
    osl_Type check(Node *node, const osl_Type &wanted);
    osl_Type checkInside(Node *node, const osl_Type &wanted);
    osl_Type checkVariable(Node *node);
    osl_Type checkIndex(Node *node, bool isInner);
    osl_Type checkField(Node *node);
    osl_Type checkConstructor(Node *node);
    osl_Type checkStructConstructor(Node *node);
    osl_Type checkCast(Node *node);
    osl_Type checkUnary(Node *node, const osl_Type &wanted);
    osl_Type checkStep(Node *node);
    osl_Type checkBinary(Node *node, const osl_Type &wanted);
    osl_Type binaryType(Node *node);
    osl_Type arithmeticType(int punct, const osl_Type &l, const osl_Type &r);
    osl_Type closureType(Node *node, const osl_Type &l, const osl_Type &r);
    osl_Type checkAssign(Node *node);
    osl_Type checkTernary(Node *node, const osl_Type &wanted);
    bool checkOverloadedOperator(Node *node, const char *word);
    void checkAssignable(osl_Place place, const char *verb, const osl_Type &to,
                         const std::string &name, Node *value);
    void checkWritable(Node *node);
    void warnComma(const Node *node, const osl_Type &type);
    // Makes {...} what `type` wants; `name` is for messages.
    void resolveCompound(Node *node, const osl_Type &type, const std::string &name);
    void resolveStruct(Node *node, const osl_Type &type, const std::string &name);
    static bool compoundFits(const Node *node, const osl_Type &type);
    static bool isZero(const Node *node);
    static std::string variableName(const Node *node);

    // Calls (osl_CheckCalls.cpp)
    osl_Type checkCall(Node *node, const osl_Type &wanted);
    osl_Function *functionsOf(std::string_view name); // null for unknown ones
    osl_Function *builtinsOf(std::string_view name);
    void readPrelude(const char *source);
    void addBuiltin(osl_Function *function);
    osl_Function *choose(Node *node, osl_Function *first, const osl_Type &wanted);
    std::vector<Candidate> candidates(osl_Function *first, Node *args, const osl_Type &wanted);
    osl_Function *best(Node *node, std::vector<Candidate> &found);
    static int argumentScore(const osl_Function &function, Node *args);
    static int typeScore(const osl_Type &to, const osl_Type &from);
    static bool haveSameParameters(const osl_Function &a, const osl_Function &b);
    static bool isSameSignature(const osl_Function &a, const osl_Function &b);
    std::string describe(const osl_Function &function) const;
    static std::string argumentList(const Node *args);
    void checkOutput(const Node *call, const Node *arg, const osl_Type &wanted, int number);
    void finishCall(Node *node);
    void checkFormat(Node *node, int formatArgument);

    osl_Tree &myTree;
    osl_Messages &myMessages;
    osl_Symbols mySymbols;
    std::deque<osl_Symbols> myWorlds; // of functions that are written in the language
    std::deque<osl_Function> myFunctions;
    std::vector<std::unique_ptr<osl_ClosureRow>> myClosures;
    std::unordered_map<std::string_view, osl_Function *> myBuiltins;
    std::vector<Late> myLate[3];
    osl_Function *myFunction = nullptr; // whose body is checked; null in a shader
    int myLoops = 0;
    int myPreludeFile = -1;
};
