#include "vaskel/pixels/vk_Allocation.h"

#include <algorithm>
#include <cmath>

// Fine enough for a limit, and forecasts then need no sorted pixels.
int vk_Allocation::stepOf(float quotient)
{
    // A pixel without error, as of a plain backdrop, has no logarithm.
    const float least = std::exp2(static_cast<float>(LOWEST) / STEPS);
    const auto step = static_cast<int>(std::floor(STEPS * std::log2(std::max(quotient, least))));
    return std::clamp(step, LOWEST, HIGHEST);
}

void vk_Allocation::add(float error, float cost, bool isFixed)
{
    ++myPixels;
    Share &share = isFixed ? myFixed : myShares[stepOf(error / cost) - LOWEST];
    share.error += static_cast<double>(error);
    share.cost += static_cast<double>(cost);
}

// Twice the samples leave a quarter of the quotient.
vk_Allocation::Share vk_Allocation::forecast(int limit) const
{
    constexpr int DOUBLING = 2 * STEPS;

    // Those of a step are as far above the limit as its lower end: they need one doubling to come
    // below it, and one more for every factor of 4.
    Share sum = myFixed;
    for (int i = 0; i <= HIGHEST - LOWEST; ++i) {
        const int above = i + LOWEST - limit;
        const int doublings = above < 0 ? 0 : above / DOUBLING + 1;
        sum.error += std::ldexp(myShares[i].error, -doublings);
        sum.cost += std::ldexp(myShares[i].cost, doublings);
    }
    return sum;
}

float vk_Allocation::limit(float target, float costOfPixel) const
{
    const double most = static_cast<double>(target) * static_cast<double>(myPixels);
    const double budget = static_cast<double>(costOfPixel) * static_cast<double>(myPixels);
    // With a lower limit errors fall and costs grow, so halving finds where either is met.
    int low = LOWEST, high = HIGHEST + 1;
    while (high - low > 1) {
        const int middle = (low + high) / 2;
        const Share then = forecast(middle);
        if (then.error > most && then.cost < budget)
            high = middle;
        else
            low = middle;
    }
    return std::exp2(static_cast<float>(low) / STEPS);
}

// A limit that all are below asks for nothing more.
double vk_Allocation::cost() const
{
    return forecast(HIGHEST + 1).cost;
}

double vk_Allocation::cost(float limit) const
{
    return forecast(stepOf(limit)).cost;
}
