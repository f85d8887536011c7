#include "vaskel/pixels/vk_Variances.h"

#include <algorithm>
#include <cmath>

void vk_Variances::add(float variance)
{
    ++myPixels;
    const float least = std::exp2(static_cast<float>(LOWEST) / STEPS);
    const auto step = static_cast<int>(std::lround(STEPS * std::log2(std::max(variance, least))));
    ++myCounts[std::clamp(step, LOWEST, HIGHEST) - LOWEST];
}

vk_Variances &vk_Variances::operator+=(const vk_Variances &o)
{
    myPixels += o.myPixels;
    for (int i = 0; i <= HIGHEST - LOWEST; ++i)
        myCounts[i] += o.myCounts[i];
    return *this;
}

vk_Variances::Forecast vk_Variances::forecast(float limit, int least, int most) const
{
    Forecast sum;
    for (int i = 0; i <= HIGHEST - LOWEST; ++i) {
        const float variance = std::exp2(static_cast<float>(i + LOWEST) / STEPS);
        int samples = least;
        while (samples < most &&
               variance >= limit * static_cast<float>(samples) * static_cast<float>(samples))
            samples = std::min(2 * samples, most);
        const auto count = static_cast<double>(myCounts[i]);
        sum.error += count * static_cast<double>(variance) / samples;
        sum.samples += count * samples;
    }
    const auto pixels = static_cast<double>(myPixels);
    return {sum.error / pixels, sum.samples / pixels};
}

float vk_Variances::limit(float target, float meanSamples, int least, int most) const
{
    constexpr float LOW = -60, HIGH = 20, CLOSE = .01f; // powers of 2

    float low = LOW, high = HIGH;
    while (high - low > CLOSE) {
        const float middle = (low + high) / 2;
        const Forecast then = forecast(std::exp2(middle), least, most);
        const bool wantsMore = then.error > static_cast<double>(target) &&
                               then.samples < static_cast<double>(meanSamples);
        (wantsMore ? high : low) = middle;
    }
    return std::exp2(low);
}
