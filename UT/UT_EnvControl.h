// The settings' current values: environment variables, read once.
//
// A setting is an environment variable with a kind, a default and, for numbers, a
// range (ut_EnvSettings.def). A variable that is not set gives the default as it
// stands; one that is set gives:
//   toggle   0 for "0", 1 for "1", for anything else (also "") the opposite of the
//            default
//   integer  strtol's value in base 10 (0 without digits), clamped to the range
//   float    strtod's value, clamped to the range
//   string   the text with every backslash turned into a slash; a text changed that
//            way is written back to the environment
//
// Five strings have computed defaults, fixed at the first use in the process:
//   USER                 login name of the effective user, blanks turned into '_',
//                        or "nobody"
//   HOME                 UTgetTempDir()
//   VELDRIN_TEMP_DIR     "/tmp"
//   VELDRIN_DESKTOP_DIR  "$HOME/Desktop", of the environment's HOME
//   VELDRIN_OS           "Linux"
// All but the last are exported, so that child processes have them too.
//
// Not locked: first use and every change belong to the main thread.
#pragma once

#include "UT/UT_EnvSettings.h"
#include "UT/UT_SymbolTable.h"

struct ut_StringRow;

class UT_EnvControl
{
public:
    // The only one; the first call reads the environment.
    static UT_EnvControl &instance();

    UT_EnvControl(const UT_EnvControl &) = delete;
    UT_EnvControl &operator=(const UT_EnvControl &) = delete;

    // Array look-ups; toggles are integers. A string may be null; it is ours, and
    // stays until it is set or any variable is updated.
    int getInt(UT_IntControl setting) const { return myInts[setting]; }
    float getFloat(UT_FloatControl setting) const { return myFloats[setting]; }
    const char *getString(UT_StrControl setting) const { return myStrings[setting]; }

    // Stores a copy of `value` as it is and exports it (UTsetenv). A number that
    // is no setting's changes nothing. REQUIRES: value != nullptr
    void setString(UT_StrControl setting, const char *value);

    // Reads all settings again when `name` is the name of one: call it after the
    // variable has changed. Other names are ignored, and so are older ones.
    void updateVariable(const char *name);

    // The variable's name, or the one it had before: null when there is none, or
    // when the number is no setting's. O(settings).
    static const char *getVariableName(UT_IntControl setting);
    static const char *getVariableName(UT_FloatControl setting);
    static const char *getVariableName(UT_StrControl setting);
    static const char *getOldVariableName(UT_IntControl setting);
    static const char *getOldVariableName(UT_FloatControl setting);
    static const char *getOldVariableName(UT_StrControl setting);

private:
    UT_EnvControl();
    ~UT_EnvControl();

    void initialize();
    void markAll();
    void applyDefaults();
    void reportMissing() const;
    void readEnvironment();
    void readString(const ut_StringRow &row, const char *value);
    void exportAll() const;
    void storeString(UT_StrControl setting, const char *text);
    void releaseStrings();

    int myInts[UT_NUM_INT_CONTROLS];
    float myFloats[UT_NUM_FLOAT_CONTROLS];
    char *myStrings[UT_NUM_STR_CONTROLS]; // malloc'd, null, or the marker
    UT_SymbolTable myNames;               // every primary name; no values
};
