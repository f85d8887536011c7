#include "vaskel/vk_Spreads.h"

#include <algorithm>
#include <cmath>

void vk_Spreads::add(float spread)
{
    ++myPixels;
    if (spread <= 0)
        return;
    const int step = static_cast<int>(std::lround(STEPS * std::log2(spread)));
    ++myCounts[std::clamp(step, LOWEST, HIGHEST) - LOWEST];
}

vk_Spreads &vk_Spreads::operator+=(const vk_Spreads &o)
{
    myPixels += o.myPixels;
    for (int i = 0; i <= HIGHEST - LOWEST; ++i)
        myCounts[i] += o.myCounts[i];
    return *this;
}

double vk_Spreads::meanError(float limit, int least, int most) const
{
    double sum = 0;
    for (int i = 0; i <= HIGHEST - LOWEST; ++i) {
        const float spread = std::exp2(static_cast<float>(i + LOWEST) / STEPS);
        int samples = least;
        while (samples < most &&
               spread >= limit * static_cast<float>(samples) * static_cast<float>(samples))
            samples = std::min(2 * samples, most);
        sum += static_cast<double>(myCounts[i]) * static_cast<double>(spread) / samples;
    }
    return sum / static_cast<double>(myPixels);
}

float vk_Spreads::limit(float target, int least, int most) const
{
    constexpr float LOW = -60, HIGH = 20, CLOSE = .01f; // powers of 2

    float low = LOW, high = HIGH;
    while (high - low > CLOSE) {
        const float middle = (low + high) / 2;
        const bool isMore = meanError(std::exp2(middle), least, most) > static_cast<double>(target);
        (isMore ? high : low) = middle;
    }
    return std::exp2(low);
}
