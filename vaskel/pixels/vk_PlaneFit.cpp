#include "vaskel/pixels/vk_PlaneFit.h"

namespace
{
// Added to the variance of neighbours' places along both axes, in square pixels (a ridge): where
// next to none has weight, the plane lies level in place of following their noise. bench/filter.py
// tries others.
constexpr float LEVELLING = .09f;
} // namespace

void vk_PlaneFit::add(const Row &row, float y)
{
    myLight = myLight + row.light;
    myLightX = myLightX + row.lightX;
    myLightY = myLightY + row.light * vk_lanes(y);
    myWeight += row.weight;
    myWeightX += row.weightX;
    myWeightY += row.weight * y;
    myWeightXX += row.weightXX;
    myWeightXY += row.weightX * y;
    myWeightYY += row.weight * (y * y);
    myError += row.error;
    myErrorX += row.errorX;
    myErrorY += row.error * y;
    myErrorXX += row.errorXX;
    myErrorXY += row.errorX * y;
    myErrorYY += row.error * (y * y);
}

// The plane's height at (0, 0) is a sum over neighbours of value * weight * (a + b x + c y), where
// a, b and c are the first column of the inverse of the normal equations' matrix.
vk_PlaneFit::Value vk_PlaneFit::atPixel() const
{
    const vk_Lanes xx = myWeightXX + myWeight * LEVELLING;
    const vk_Lanes yy = myWeightYY + myWeight * LEVELLING;
    const vk_Lanes minorA = xx * yy - myWeightXY * myWeightXY;
    const vk_Lanes minorB = myWeightXY * myWeightY - myWeightX * yy;
    const vk_Lanes minorC = myWeightX * myWeightXY - xx * myWeightY;
    const vk_Lanes determinant = myWeight * minorA + myWeightX * minorB + myWeightY * minorC;
    const vk_Lanes a = minorA / determinant, b = minorB / determinant, c = minorC / determinant;
    return {myLight * a + myLightX * b + myLightY * c,
            a * a * myError + b * b * myErrorXX + c * c * myErrorYY +
                2 * (a * b * myErrorX + a * c * myErrorY + b * c * myErrorXY)};
}
