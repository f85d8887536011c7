// The defaults that only the running process can tell.
#pragma once

// Fills the computed defaults into ut_theStrings; the second and later calls do
// nothing, so that the answers stay for the life of the process.
void ut_computeDefaults();

// The default of USER, a malloc'd text: the login name with blanks turned into '_',
// or "nobody" for null.
[[nodiscard]] char *ut_makeUserDefault(const char *loginName);
