#include "UT/text/ut_NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

// Half up; far beyond 32 bits it need not be exact any more, only far beyond.
int64_t rounded(const char *text)
{
    constexpr double limit = 1e15;
    const double single = static_cast<float>(std::strtod(text, nullptr));
    return static_cast<int64_t>(std::floor(std::clamp(single, -limit, limit) + 0.5));
}

int32_t signedValue(const char *text, bool isFloating)
{
    const int64_t wide = isFloating ? rounded(text) : std::strtoll(text, nullptr, 10);
    return static_cast<int32_t>(std::clamp<int64_t>(wide, INT32_MIN, INT32_MAX));
}

// strtoul negates within its own width, and clamps by the number's size.
uint32_t unsignedValue(const char *text, bool isFloating)
{
    const int64_t wide = isFloating ? rounded(text) : std::strtoll(text, nullptr, 10);
    constexpr int64_t most = UINT32_MAX;
    return wide > most || wide < -most ? UINT32_MAX : static_cast<uint32_t>(wide);
}

} // namespace

void UTnumberFromText(const char *text, bool isFloating, int16_t &value)
{
    value = static_cast<int16_t>(signedValue(text, isFloating));
}

void UTnumberFromText(const char *text, bool isFloating, uint16_t &value)
{
    value = static_cast<uint16_t>(unsignedValue(text, isFloating));
}

void UTnumberFromText(const char *text, bool isFloating, int32_t &value)
{
    value = signedValue(text, isFloating);
}

void UTnumberFromText(const char *text, bool isFloating, uint32_t &value)
{
    value = unsignedValue(text, isFloating);
}

void UTnumberFromText(const char *text, bool, int64_t &value)
{
    value = std::strtoll(text, nullptr, 10);
}

void UTnumberFromText(const char *text, bool, uint64_t &value)
{
    value = std::strtoull(text, nullptr, 10);
}

void UTnumberFromText(const char *text, bool, float &value)
{
    value = static_cast<float>(std::strtod(text, nullptr));
}

void UTnumberFromText(const char *text, bool, double &value)
{
    value = std::strtod(text, nullptr);
}
