// Any text may be a variable's value: an integer is what its digits say, as far as the
// range allows; a float lies in its range and is the same when it is written out; a
// string only loses its backslashes.

#include "fuzz/fuzz.h"
#include "tests/support/ScopedVariable.h"

#include <algorithm>
#include <regex>

void fuzz(const std::string &bytes)
{
    const UT_EnvControl &settings = UT_EnvControl::instance();
    std::string text = bytes.c_str();
    std::smatch digits;
    std::regex_search(text, digits, std::regex("^[ \\t\\n\\v\\f\\r]*([-+]?[0-9]+)"));
    const double whole = digits.empty() ? 0 : std::strtod(digits.str(1).c_str(), nullptr);
    const ScopedVariable threads("VELDRIN_MAXTHREADS", text.c_str());
    fuzzExpectEqual(static_cast<int>(std::clamp(whole, -1.0, 100.0)),
                    settings.getInt(ENV_VELDRIN_MAXTHREADS));

    ScopedVariable gauss("VELDRIN_GAUSS_EXP", text.c_str());
    const float number = settings.getFloat(ENV_VELDRIN_GAUSS_EXP);
    const bool isNumber = number >= -20 && number <= -0.1f;
    fuzzExpectEqual(true, isNumber || number != number); // "nan" stays what it is
    char written[50];
    std::snprintf(written, sizeof written, "%.9g", static_cast<double>(number));
    gauss.set(written);
    fuzzExpectEqual(true, !isNumber || number == settings.getFloat(ENV_VELDRIN_GAUSS_EXP));

    const ScopedVariable matte("VELDRIN_ZEL_DEFAULT_MATTE", text.c_str());
    std::replace(text.begin(), text.end(), '\\', '/');
    fuzzExpectEqual(text, settings.getString(ENV_VELDRIN_ZEL_DEFAULT_MATTE));
    fuzzExpectEqual(text, UTgetenv("VELDRIN_ZEL_DEFAULT_MATTE"));
}
