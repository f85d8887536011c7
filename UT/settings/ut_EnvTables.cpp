#include "UT/settings/ut_EnvTables.h"

constexpr ut_ToggleRow ut_theToggles[] = {
#define UT_TOGGLE(name, standard, oldName) {ENV_##name, #name, standard, oldName},
#include "UT/ut_EnvSettings.def"
    {UT_NUM_INT_CONTROLS, nullptr, 0, nullptr}};

constexpr ut_IntegerRow ut_theIntegers[] = {
#define UT_INTEGER(name, standard, minimum, maximum, oldName)                                      \
    {ENV_##name, #name, standard, minimum, maximum, oldName},
#include "UT/ut_EnvSettings.def"
    {UT_NUM_INT_CONTROLS, nullptr, 0, 0, 0, nullptr}};

constexpr ut_FloatRow ut_theFloats[] = {
#define UT_FLOAT(name, standard, minimum, maximum, oldName)                                        \
    {ENV_##name, #name, standard, minimum, maximum, oldName},
#include "UT/ut_EnvSettings.def"
    {UT_NUM_FLOAT_CONTROLS, nullptr, 0.0f, 0.0f, 0.0f, nullptr}};

ut_StringRow ut_theStrings[] = {
#define UT_STRING(name, standard, oldName) {ENV_##name, #name, standard, oldName},
#include "UT/ut_EnvSettings.def"
    {UT_NUM_STR_CONTROLS, nullptr, nullptr, nullptr}};

namespace
{
// The number behind the last row's, or -1 when the rows are not numbered in sequence.
template <class Row>
constexpr int numberedFrom(const Row *rows, int first)
{
    for (; rows->name != nullptr; rows++)
        if (rows->setting != first++)
            return -1;
    return first;
}

constexpr bool togglesAreBinary()
{
    for (const ut_ToggleRow &row : ut_theToggles)
        if (row.standard != 0 && row.standard != 1)
            return false;
    return true;
}

template <class Row>
constexpr bool rangesAreOrdered(const Row *rows)
{
    for (; rows->name != nullptr; rows++)
        if (rows->maximum < rows->minimum)
            return false;
    return true;
}

constexpr int AFTER_TOGGLES = numberedFrom(ut_theToggles, 0);
static_assert(numberedFrom(ut_theIntegers, AFTER_TOGGLES) == UT_NUM_INT_CONTROLS,
              "toggles and integers fill their enumeration");
static_assert(numberedFrom(ut_theFloats, 0) == UT_NUM_FLOAT_CONTROLS, "a row for each float");
static_assert(sizeof ut_theStrings / sizeof *ut_theStrings == UT_NUM_STR_CONTROLS + 1,
              "a row for each string");
static_assert(togglesAreBinary(), "a toggle is 0 or 1");
static_assert(rangesAreOrdered(ut_theIntegers) && rangesAreOrdered(ut_theFloats),
              "a range begins with its minimum");
} // namespace
