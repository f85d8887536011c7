// Numbers from their decimal text, the same on every platform.
//
// 16- and 32-bit integers are read as a 32-bit strtol or strtoul would, that is
// clamped to 32 bits; a floating text is rounded to single precision and then
// half up. 16-bit integers keep the low bits of the result.
#pragma once

#include <cstdint>

void UTnumberFromText(const char *text, bool isFloating, int16_t &value);
void UTnumberFromText(const char *text, bool isFloating, uint16_t &value);
void UTnumberFromText(const char *text, bool isFloating, int32_t &value);
void UTnumberFromText(const char *text, bool isFloating, uint32_t &value);

// For these the text's form makes no difference: strtoll, strtoull and strtod.
void UTnumberFromText(const char *text, bool isFloating, int64_t &value);
void UTnumberFromText(const char *text, bool isFloating, uint64_t &value);
void UTnumberFromText(const char *text, bool isFloating, float &value);
void UTnumberFromText(const char *text, bool isFloating, double &value);
