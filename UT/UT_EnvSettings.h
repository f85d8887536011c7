// The settings: one enumerator for each, ENV_ and the variable's name.
//
// They are numbered from 0 within each kind; toggles and integers share a kind.
// The list itself, with defaults, ranges and older names, is ut_EnvSettings.def.
#pragma once

enum UT_IntControl : int {
#define UT_TOGGLE(name, standard, oldName) ENV_##name,
#define UT_INTEGER(name, standard, minimum, maximum, oldName) ENV_##name,
#include "UT/ut_EnvSettings.def"
    UT_NUM_INT_CONTROLS
};

enum UT_FloatControl : int {
#define UT_FLOAT(name, standard, minimum, maximum, oldName) ENV_##name,
#include "UT/ut_EnvSettings.def"
    UT_NUM_FLOAT_CONTROLS
};

enum UT_StrControl : int {
#define UT_STRING(name, standard, oldName) ENV_##name,
#include "UT/ut_EnvSettings.def"
    UT_NUM_STR_CONTROLS
};
