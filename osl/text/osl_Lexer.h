// Cuts a line without comments into tokens.
#pragma once

#include "osl/text/osl_Token.h"

#include <vector>

// Appends the tokens of `line`, which outlives them; all get the place.
void osl_appendTokens(std::string_view line, osl_Place place, std::vector<osl_Token> &tokens);
