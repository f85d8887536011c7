// The settings as tables, one for each kind, in the order of ut_EnvSettings.def.
//
// Each ends with a row whose name is null. Only the five computed defaults are ever
// written, once, at the first initialisation.
#pragma once

#include "UT/UT_EnvSettings.h"

struct ut_ToggleRow {
    UT_IntControl setting;
    const char *name;
    int standard; // the default: 0 or 1
    const char *oldName;
};

struct ut_IntegerRow {
    UT_IntControl setting;
    const char *name;
    int standard;
    int minimum, maximum; // inclusive
    const char *oldName;
};

struct ut_FloatRow {
    UT_FloatControl setting;
    const char *name;
    float standard;
    float minimum, maximum; // inclusive
    const char *oldName;
};

struct ut_StringRow {
    UT_StrControl setting;
    const char *name;
    const char *standard; // or null
    const char *oldName;
};

extern const ut_ToggleRow ut_theToggles[];
extern const ut_IntegerRow ut_theIntegers[];
extern const ut_FloatRow ut_theFloats[];
extern ut_StringRow ut_theStrings[];
