#include "UT/UT_EnvControl.h"

#include "UT/UT_Environment.h"
#include "UT/UT_Memory.h"
#include "UT/UT_String.h"
#include "UT/UT_TempDir.h"
#include "UT/settings/ut_EnvDefaults.h"
#include "UT/settings/ut_EnvTables.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{
// What a slot holds that no table row has filled.
constexpr int MISSING_INT = -399128;
constexpr float MISSING_FLOAT = -399128.0f;
char MISSING_STRING[] = "";

constexpr UT_StrControl EXPORTED[] = {ENV_USER, ENV_HOME, ENV_VELDRIN_TEMP_DIR,
                                      ENV_VELDRIN_DESKTOP_DIR};

// The tables are walked up to the row without a name. Names are asked for in messages
// only, so a scan is fast enough.
template <class Row, class Control>
const Row *findRow(const Row *rows, Control setting)
{
    for (const Row *row = rows; row->name != nullptr; row++)
        if (row->setting == setting)
            return row;
    return nullptr;
}

// The member of the setting's row, or null without a row.
template <class Row, class Control>
const char *rowText(const Row *rows, Control setting, const char *Row::*member)
{
    const Row *row = findRow(rows, setting);
    return row != nullptr ? row->*member : nullptr;
}

// Calls visit(row, value) for each row whose variable is set.
template <class Row, class Visit>
void forEachSet(const Row *rows, Visit visit)
{
    for (const Row *row = rows; row->name != nullptr; row++)
        if (const char *value = UTgetenv(row->name))
            visit(*row, value);
}

template <class Row>
void addNames(const Row *rows, UT_SymbolTable &names)
{
    for (const Row *row = rows; row->name != nullptr; row++)
        names.addSymbol(row->name, nullptr);
}

template <class Number>
Number clamped(Number value, Number minimum, Number maximum)
{
    if (value < minimum)
        return minimum;
    return value > maximum ? maximum : value; // so that "nan" stays what it is
}

int toggleValue(const ut_ToggleRow &row, const char *text)
{
    if (std::strcmp(text, "0") == 0)
        return 0;
    if (std::strcmp(text, "1") == 0)
        return 1;
    return 1 - row.standard;
}

int integerValue(const ut_IntegerRow &row, const char *text)
{
    // Too large for a long comes out as its limit, which is outside every range too.
    const long value = std::strtol(text, nullptr, 10);
    return static_cast<int>(clamped<long>(value, row.minimum, row.maximum));
}

float floatValue(const ut_FloatRow &row, const char *text)
{
    // Clamped while it still is a double, as it might not fit into a float.
    const double value = std::strtod(text, nullptr);
    return static_cast<float>(clamped<double>(value, row.minimum, row.maximum));
}
} // namespace

UT_EnvControl &UT_EnvControl::instance()
{
    static UT_EnvControl theInstance;
    return theInstance;
}

UT_EnvControl::UT_EnvControl()
{
    initialize();
    addNames(ut_theToggles, myNames);
    addNames(ut_theIntegers, myNames);
    addNames(ut_theFloats, myNames);
    addNames(ut_theStrings, myNames);
}

UT_EnvControl::~UT_EnvControl()
{
    releaseStrings();
}

void UT_EnvControl::setString(UT_StrControl setting, const char *value)
{
    const ut_StringRow *row = findRow(ut_theStrings, setting);
    if (row == nullptr)
        return;
    storeString(setting, value);
    UTsetenv(row->name, myStrings[setting]);
}

void UT_EnvControl::updateVariable(const char *name)
{
    if (name == nullptr || !myNames.findSymbol(name))
        return;
    releaseStrings();
    initialize();
}

const char *UT_EnvControl::getVariableName(UT_IntControl setting)
{
    const char *toggle = rowText(ut_theToggles, setting, &ut_ToggleRow::name);
    return toggle != nullptr ? toggle : rowText(ut_theIntegers, setting, &ut_IntegerRow::name);
}

const char *UT_EnvControl::getVariableName(UT_FloatControl setting)
{
    return rowText(ut_theFloats, setting, &ut_FloatRow::name);
}

const char *UT_EnvControl::getVariableName(UT_StrControl setting)
{
    return rowText(ut_theStrings, setting, &ut_StringRow::name);
}

const char *UT_EnvControl::getOldVariableName(UT_IntControl setting)
{
    const char *toggle = rowText(ut_theToggles, setting, &ut_ToggleRow::oldName);
    return toggle != nullptr ? toggle : rowText(ut_theIntegers, setting, &ut_IntegerRow::oldName);
}

const char *UT_EnvControl::getOldVariableName(UT_FloatControl setting)
{
    return rowText(ut_theFloats, setting, &ut_FloatRow::oldName);
}

const char *UT_EnvControl::getOldVariableName(UT_StrControl setting)
{
    return rowText(ut_theStrings, setting, &ut_StringRow::oldName);
}

// Defaults first, then the environment over them. Exporting comes last, as the
// variables may have been corrected while they were read.
void UT_EnvControl::initialize()
{
    ut_computeDefaults();
    markAll();
    applyDefaults();
    reportMissing();
    readEnvironment();
    exportAll();
}

void UT_EnvControl::markAll()
{
    for (int &value : myInts)
        value = MISSING_INT;
    for (float &value : myFloats)
        value = MISSING_FLOAT;
    for (char *&text : myStrings)
        text = MISSING_STRING;
}

void UT_EnvControl::applyDefaults()
{
    for (const ut_ToggleRow *row = ut_theToggles; row->name != nullptr; row++)
        myInts[row->setting] = row->standard;
    for (const ut_IntegerRow *row = ut_theIntegers; row->name != nullptr; row++)
        myInts[row->setting] = row->standard;
    for (const ut_StringRow *row = ut_theStrings; row->name != nullptr; row++)
        storeString(row->setting, row->standard);
    for (const ut_FloatRow *row = ut_theFloats; row->name != nullptr; row++)
        myFloats[row->setting] = row->standard;
}

// A slot without a row is a mistake in the tables. It keeps its marker, so that the
// number is easy to recognise where it turns up.
void UT_EnvControl::reportMissing() const
{
    for (int i = 0; i < UT_NUM_INT_CONTROLS; i++)
        if (myInts[i] == MISSING_INT)
            std::fprintf(stderr, "EnvControl: missing int %d\n", i);
    for (int i = 0; i < UT_NUM_FLOAT_CONTROLS; i++)
        if (myFloats[i] == MISSING_FLOAT)
            std::fprintf(stderr, "EnvControl: missing float %d\n", i);
    for (int i = 0; i < UT_NUM_STR_CONTROLS; i++)
        if (myStrings[i] == MISSING_STRING)
            std::fprintf(stderr, "EnvControl: missing string %d\n", i);
}

void UT_EnvControl::readEnvironment()
{
    forEachSet(ut_theToggles, [this](const ut_ToggleRow &row, const char *text) {
        myInts[row.setting] = toggleValue(row, text);
    });
    forEachSet(ut_theIntegers, [this](const ut_IntegerRow &row, const char *text) {
        myInts[row.setting] = integerValue(row, text);
    });
    forEachSet(ut_theStrings,
               [this](const ut_StringRow &row, const char *text) { readString(row, text); });
    forEachSet(ut_theFloats, [this](const ut_FloatRow &row, const char *text) {
        myFloats[row.setting] = floatValue(row, text);
    });
}

void UT_EnvControl::readString(const ut_StringRow &row, const char *value)
{
    // Paths come from other systems' scripts as well; ours know slashes only.
    storeString(row.setting, value);
    bool isChanged = false;
    for (char *at = myStrings[row.setting]; (at = std::strchr(at, '\\')) != nullptr;) {
        *at = '/';
        isChanged = true;
    }
    if (isChanged)
        UTsetenv(row.name, myStrings[row.setting]);
}

void UT_EnvControl::exportAll() const
{
    for (const UT_StrControl setting : EXPORTED)
        UTsetenv(getVariableName(setting), myStrings[setting]);
}

// Copies first: the text may be the one held.
void UT_EnvControl::storeString(UT_StrControl setting, const char *text)
{
    char *copy = UTduplicate(text);
    if (myStrings[setting] != MISSING_STRING)
        std::free(myStrings[setting]);
    myStrings[setting] = copy;
}

void UT_EnvControl::releaseStrings()
{
    for (char *text : myStrings)
        if (text != MISSING_STRING)
            std::free(text);
}
