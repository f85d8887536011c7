// A plane through values of neighbours by weighted least squares, for four pixels at a time.
//
// A mean of neighbours is off where light rises or falls and more of them, or heavier ones, lie on
// one side; a plane goes along with it. This is the first-order regression of Bitterli, Rousselle,
// Moon, Iglesias-Guitian, Adler, Mitchell, Jarosz and Novak, "Nonlinearly Weighted First-order
// Regression for Denoising Monte Carlo Renderings", 2016, over places alone.
#pragma once

#include "vaskel/base/vk_Lanes.h"

class vk_PlaneFit
{
public:
    // Neighbours that lie in one row; x is the way to them, in pixels.
    struct Row {
        vk_VecLanes light = {}, lightX = {};
        vk_Lanes weight = {}, weightX = {}, weightXX = {};
        vk_Lanes error = {}, errorX = {}, errorXX = {};

        void add(const vk_VecLanes &value, const vk_Lanes &itsWeight, const vk_Lanes &itsError,
                 float x);
    };

    // What the plane is at the pixel itself, and the squared error that those of the neighbours,
    // which do not depend on each other, leave of it.
    struct Value {
        vk_VecLanes light;
        vk_Lanes error;
    };

    // A row that is y pixels away.
    void add(const Row &row, float y);

    // REQUIRES: weights came to more than 0; a lane where they did not gets no number.
    Value atPixel() const;

private:
    vk_VecLanes myLight = {}, myLightX = {}, myLightY = {};
    vk_Lanes myWeight = {}, myWeightX = {}, myWeightY = {};
    vk_Lanes myWeightXX = {}, myWeightXY = {}, myWeightYY = {};
    vk_Lanes myError = {}, myErrorX = {}, myErrorY = {};
    vk_Lanes myErrorXX = {}, myErrorXY = {}, myErrorYY = {};
};

// Here, as it is the inner loop of the filter.
inline void vk_PlaneFit::Row::add(const vk_VecLanes &value, const vk_Lanes &itsWeight,
                                  const vk_Lanes &itsError, float x)
{
    const vk_VecLanes weighted = value * itsWeight;
    light = light + weighted;
    lightX = lightX + weighted * vk_lanes(x);
    const vk_Lanes along = itsWeight * x;
    weight += itsWeight;
    weightX += along;
    weightXX += along * x;
    const vk_Lanes left = itsWeight * itsWeight * itsError, leftX = left * x;
    error += left;
    errorX += leftX;
    errorXX += leftX * x;
}
