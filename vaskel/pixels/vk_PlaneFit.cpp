#include "vaskel/pixels/vk_PlaneFit.h"

namespace
{
// Added to the variance of neighbours' places along both axes, in square pixels (a ridge): where
// next to none has weight, the plane lies level in place of following their noise. bench/filter.py
// tries others.
constexpr float LEVELLING = .09f;
} // namespace

void vk_PlaneFit::Moments::add(const Row::Moments &row, float at)
{
    one += row.one;
    x += row.x;
    y += row.one * at;
    xx += row.xx;
    xy += row.x * at;
    yy += row.one * (at * at);
}

void vk_PlaneFit::add(const Row &row, float y)
{
    myLight = myLight + row.light;
    myLightX = myLightX + row.lightX;
    myLightY = myLightY + row.light * vk_lanes(y);
    myWeight.add(row.weight, y);
    myError.add(row.error, y);
}

// The plane's height at (0, 0) is a sum over neighbours of value * weight * (a + b x + c y), where
// a, b and c are the first column of the inverse of the normal equations' matrix.
vk_PlaneFit::Value vk_PlaneFit::atPixel() const
{
    const Moments &w = myWeight, &e = myError;
    const vk_Lanes xx = w.xx + w.one * LEVELLING, yy = w.yy + w.one * LEVELLING;
    const vk_Lanes minorA = xx * yy - w.xy * w.xy;
    const vk_Lanes minorB = w.xy * w.y - w.x * yy;
    const vk_Lanes minorC = w.x * w.xy - xx * w.y;
    const vk_Lanes determinant = w.one * minorA + w.x * minorB + w.y * minorC;
    const vk_Lanes a = minorA / determinant, b = minorB / determinant, c = minorC / determinant;
    return {myLight * a + myLightX * b + myLightY * c,
            a * a * e.one + b * b * e.xx + c * c * e.yy +
                2 * (a * b * e.x + a * c * e.y + b * c * e.xy),
            a};
}
