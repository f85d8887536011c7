// Any expression has the value that its plain twin gives it, and a plain one has a value.
#include "CPP/macros/cpp_Condition.h"

#include "fuzz/fuzz.h"
#include "tests/support/PlainMacros.h"
#include "tests/support/preprocessed.h"

void fuzz(const std::string &bytes)
{
    static CPP_Manager manager;
    static PlainMacros plain;
    static const bool isPrepared = [] {
        for (const char *definition : {"A 3", "B  -2x", "C", "D \"A\"", "E(x) A"}) {
            UT_String ignored;
            manager.defineMacro(definition, ignored, false);
            plain.define(definition, false);
        }
        return true;
    }();
    const std::string text = isPrepared ? bytes.c_str() : "";
    cpp_ConditionFault fault;
    const std::string line = text.substr(0, text.find('\n')) + '\n';
    if (plainConditionEnd(manager.macros(), line.data(), line.data() + line.size()) != nullptr)
        fuzzExpectEqual(true, evaluateCondition(manager.macros(), line.c_str(), &fault) >= 0 &&
                                  fault.oddMacro == nullptr);
    // The twin calls itself for each parenthesis; home folders take long to find.
    if (bytes.size() < 300 && (text.find("access") == text.npos || text.find('~') == text.npos))
        fuzzExpectEqual(plain.evaluate(text), evaluateCondition(manager.macros(), text.c_str()));
}
