// Macros and conditions against their plain twins: all short texts, and longer
// ones at random.
#include "tests/support/PlainMacros.h"

#include "CPP/CPP_File.h"
#include "CPP/cpp_Macro.h"
#include "CPP/files/cpp_DefStream.h"
#include "CPP/macros/cpp_Condition.h"
#include "tests/support/Random.h"
#include "tests/support/preprocessed.h"

#include <gtest/gtest.h>

namespace
{
// A manager and its twin, told the same.
class BothMacros : public testing::Test
{
protected:
    void define(const std::string &definition, bool commandLineForm = false)
    {
        UT_String result;
        myManager.defineMacro(definition.c_str(), result, commandLineForm);
        EXPECT_EQ(myPlain.define(definition, commandLineForm), std::string(result.text()) != "\n")
            << definition;
    }

    void expectSameMacro(const char *name) const
    {
        const cpp_Macro *macro = myManager.macros().find(name);
        const PlainMacros::Macro *plain = myPlain.find(name);
        ASSERT_EQ(plain != nullptr, macro != nullptr) << name;
        EXPECT_TRUE(!plain || (plain->body == macro->myBody && plain->numArgs == macro->myNumArgs));
    }

    // A macro is what its written definition makes, too.
    void expectSameFromDefinition(const char *name) const
    {
        const std::string text = myManager.macros().find(name)->toDefinition();
        cpp_Macro again;
        EXPECT_EQ(name, again.parse(text.c_str() + 8, false));
        EXPECT_TRUE(again.isSameAs(*myManager.macros().find(name))) << text;
    }

    void expectSameExpansion(const std::string &text, const std::string &further, int limit = 4)
    {
        UT_IStream in = streamOver(further);
        auto *file = new CPP_File(new cpp_DefStream);
        file->getStream()->setStream(&in);
        UT_String result("");
        const bool isGood = myManager.expandLine(*file, text.c_str(), result, limit);

        myPlain.lineNumber = 0;
        myPlain.furtherLines = further;
        std::string expected;
        EXPECT_EQ(myPlain.expand(text, limit, expected), isGood);
        EXPECT_EQ(expected, result.text());
        EXPECT_EQ(myPlain.lineNumber, file->getLineNumber());
        file->release();
    }

    void expectSameCondition(const std::string &text)
    {
        SCOPED_TRACE(text);
        const cpp_MacroTable &macros = myManager.macros();
        cpp_ConditionFault fault;
        const int value = evaluateCondition(macros, text.c_str(), &fault);
        EXPECT_EQ(myPlain.evaluate(text), value);
        const std::string line = text + '\n';
        const bool isPlain = plainConditionEnd(macros, line.data(), line.data() + line.size());
        EXPECT_FALSE(isPlain && (value < 0 || fault.oddMacro != nullptr));
    }

    CPP_Manager myManager;
    PlainMacros myPlain;
    Random myRandom;
    testing::ScopedTrace mySeed{__FILE__, __LINE__, myRandom.seed()};
};
} // namespace

TEST_F(BothMacros, ReadAllShortDefinitions)
{
    forEachString("(),= a#\n", 5, [this](const std::string &text) {
        for (const bool commandLineForm : {false, true}) {
            SCOPED_TRACE("F" + text);
            define("F" + text, commandLineForm);
            expectSameMacro("F");
            if (text.find('\n') == text.npos)
                expectSameFromDefinition("F");
        }
    });
}

TEST_F(BothMacros, CompileAllShortBodies)
{
    forEachString("ab#\"\\01 ", 5, [this](const std::string &body) {
        define("F(a,b1)" + body);
        SCOPED_TRACE(body);
        expectSameMacro("F");
        expectSameFromDefinition("F");
        expectSameExpansion("F(x,\"y\")", "");
    });
}

TEST_F(BothMacros, ExpandAllShortTexts)
{
    for (const char *definition : {"A 1", "F(x) [x#x]", "G() F(A", "H(x,y) y"})
        define(definition);
    for (const std::string before : {"", "F(", "H(", "G(),"})
        forEachString("AFG(),\\' ", before.empty() ? 5 : 4, [&](const std::string &text) {
            SCOPED_TRACE(before + text);
            expectSameExpansion(before + text, "',A) F\nA)\n");
        });
}

TEST_F(BothMacros, AgreeAtRandom)
{
    const std::vector<std::string> heads = {"A ", "B ", "F(x) ", "G(x,y)", "F()", "A(y,x) "},
                                   pieces = plainSplitWords("A B F G x y ( ) , # ## '\"' \"'\" \\ "
                                                            "' ' '\t' 1 #0 # F( G( A,B __LINE__ é");
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const std::string definition = myRandom.oneOf(heads) + myRandom.text(pieces, 8);
        const std::string text = myRandom.text(pieces, 20);
        SCOPED_TRACE(definition + "\n" + text);
        define(definition, myRandom.below(4) == 0);
        expectSameExpansion(text, myRandom.text(pieces, 5) + " \n) A\n",
                            static_cast<int>(myRandom.below(5) + 1));
    }
}

TEST_F(BothMacros, EvaluateAllShortConditions)
{
    forEachString("0-5!&|<=(*", 4, [this](const std::string &text) {
        expectSameCondition(text);
        expectSameCondition("1 " + text + " ~2 )");
    });
}

TEST_F(BothMacros, EvaluateConditionsAtRandom)
{
    const auto operators = plainSplitWords("&& || == != <= >= & | ^ < > + - * / %"),
               operands = plainSplitWords(
                   "0 1 2 3 -7 010 09 0x1F 0xffffffff 2147483647 -999999999 99999999999 A B "
                   "unknown defined(A) 'defined (C)' '(1 - 4)' ~0 'strcmp(\"A\" , C)' !2 '! 0' "
                   "'~ !B ' ( 1) C $ '' '\"' ' \t'");
    for (const char *definition : {"A 3", "B \t-12x", "D"})
        define(definition);
    for (int round = 0; round < 50000 && !HasFailure(); ++round) {
        std::string text = myRandom.oneOf(operands);
        for (size_t terms = myRandom.below(6); terms > 0; --terms)
            text += " " + myRandom.oneOf(operators) + " " + myRandom.oneOf(operands);
        expectSameCondition(text);
        expectSameCondition("(" + text + ") == " + myRandom.oneOf(operands));
    }
}
