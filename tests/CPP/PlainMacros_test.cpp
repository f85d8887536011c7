// Macros and conditions against their plain twins: all short texts, and longer
// ones at random.
#include "CPP/CPP_File.h"
#include "CPP/cpp_Condition.h"
#include "CPP/cpp_DefStream.h"
#include "CPP/cpp_Macro.h"
#include "tests/support/PlainMacros.h"
#include "tests/support/PlainText.h"
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
        const cpp_Macro *macro = myManager.findMacro(name);
        const PlainMacros::Macro *plain = myPlain.find(name);
        ASSERT_EQ(plain != nullptr, macro != nullptr) << name;
        if (plain != nullptr) {
            EXPECT_EQ(plain->body, macro->myBody);
            EXPECT_EQ(plain->numArgs, macro->myNumArgs);
        }
    }

    void expectSameExpansion(const std::string &text, const std::string &further = "",
                             int limit = 4)
    {
        UT_IStream in(further.data(), static_cast<int>(further.size()), false);
        auto *file = new CPP_File(new cpp_DefStream);
        file->getStream()->setStream(&in);
        UT_String result("");
        const bool isGood = myManager.expandLine(*file, text.c_str(), result, limit);

        myPlain.lineNumber = 0;
        myPlain.furtherLines.clear();
        for (size_t i = 0; i < further.size(); i = further.find('\n', i) + 1)
            myPlain.furtherLines.push_back(further.substr(i, further.find('\n', i) + 1 - i));
        std::string expected;
        EXPECT_EQ(myPlain.expand(text, limit, expected), isGood);
        EXPECT_EQ(expected, result.text());
        EXPECT_EQ(myPlain.lineNumber, file->getLineNumber());
        file->release();
    }

    void expectSameCondition(const std::string &text) const
    {
        EXPECT_EQ(myPlain.evaluate(text), evaluateCondition(myManager, text.c_str(), false));
    }

    mutable CPP_Manager myManager;
    PlainMacros myPlain;
};
} // namespace

TEST_F(BothMacros, ReadAllShortDefinitions)
{
    forEachString("(),= a#\n", 5, [this](const std::string &text) {
        for (const bool commandLineForm : {false, true}) {
            SCOPED_TRACE("F" + text);
            define("F" + text, commandLineForm);
            expectSameMacro("F");
        }
    });
}

TEST_F(BothMacros, CompileAllShortBodies)
{
    forEachString("ab#\"\\1 ", 5, [this](const std::string &body) {
        define("F(a,b1)" + body);
        SCOPED_TRACE(body);
        expectSameMacro("F");
        expectSameExpansion("F(x,\"y\")");
    });
}

TEST_F(BothMacros, ExpandAllShortTexts)
{
    define("A 1");
    define("F(x) [x#x]");
    define("G() F(A");
    define("H(x,y) y");
    for (const std::string before : {"", "F(", "H(", "G(),"}) {
        forEachString("AFG(),\\' ", before.empty() ? 5 : 4, [&](const std::string &text) {
            SCOPED_TRACE(before + text);
            expectSameExpansion(before + text, "',A) F\nA)\n");
        });
    }
}

TEST_F(BothMacros, AgreeAtRandom)
{
    const std::vector<std::string> pieces = {"A", "B",  "F",  "G",  "x",  "y",   "(",        ")",
                                             ",", "#",  "##", "\"", "'",  "\\",  " ",        "\t",
                                             "1", "#0", "#",  "F(", "G(", "A,B", "__LINE__", "é"};
    Random random;
    SCOPED_TRACE("VELDRIN_TEST_SEED=" + std::to_string(random.seed()));
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const std::string heads[] = {"A ", "B ", "F(x) ", "G(x,y)", "F()", "A(y,x) "};
        const std::string definition = heads[random.below(6)] + random.text(pieces, 8);
        const std::string text = random.text(pieces, 20);
        SCOPED_TRACE(definition + "\n" + text);
        define(definition, random.below(4) == 0);
        expectSameExpansion(text, random.text(pieces, 5) + " \n) A\n",
                            static_cast<int>(random.below(5) + 1));
    }
}

TEST_F(BothMacros, EvaluateAllShortConditions)
{
    forEachString("0-5!&|<=(*", 4, [this](const std::string &text) {
        SCOPED_TRACE(text);
        expectSameCondition(text);
        expectSameCondition("1 " + text + " ~2 )");
    });
}

TEST_F(BothMacros, EvaluateConditionsAtRandom)
{
    const std::vector<std::string> operators = {"&&", "||", "==", "!=", "<=", ">=", "&", "|",
                                                "^",  "<",  ">",  "+",  "-",  "*",  "/", "%"};
    const std::vector<std::string> operands = {
        "0",          "1",           "2",       "3",          "-7",
        "010",        "09",          "0x1F",    "0xffffffff", "2147483647",
        "-999999999", "99999999999", "A",       "B",          "unknown",
        "defined(A)", "defined (C)", "(1 - 4)", "~0",         "strcmp(\"A\" , C)"};
    const std::vector<std::string> noise = {"(", ")", "!", "~",   "-", "B ",
                                            "C", "$", "",  " \t", "\""};
    define("A 3");
    define("B \t-12x");
    define("D");
    Random random;
    SCOPED_TRACE("VELDRIN_TEST_SEED=" + std::to_string(random.seed()));
    for (int round = 0; round < 50000 && !HasFailure(); ++round) {
        std::string text;
        for (size_t terms = random.below(6) + 1; terms > 0; --terms) {
            text += random.below(40) == 0 ? random.text(noise, 2) : random.text({"!", "~", " "}, 2);
            text += random.text(operands, 1).substr(0, std::string::npos);
            text += terms > 1 ? " " + operators[random.below(operators.size())] + " " : "";
        }
        SCOPED_TRACE(text);
        expectSameCondition(text);
        expectSameCondition("(" + text + ") == " + operands[random.below(operands.size())]);
    }
}
