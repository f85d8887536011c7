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
        // Sums of an amount over neighbours, times powers of x.
        struct Moments {
            vk_Lanes one = {}, x = {}, xx = {};

            void add(const vk_Lanes &amount, float at);
        };

        vk_VecLanes light = {}, lightX = {};
        Moments weight, error;

        void add(const vk_VecLanes &value, const vk_Lanes &itsWeight, const vk_Lanes &itsError,
                 float x);
    };

    // What the plane is at the pixel itself, the squared error that those of the neighbours, which
    // do not depend on each other, leave of it, and what the pixel's own value counts in it when
    // multiplied by its weight.
    struct Value {
        vk_VecLanes light;
        vk_Lanes error;
        vk_Lanes own;
    };

    // A row that is y pixels away.
    void add(const Row &row, float y);

    // REQUIRES: weights came to more than 0; a lane where they did not gets no number.
    Value atPixel() const;

private:
    // The same over rows, times powers of x and y.
    struct Moments {
        vk_Lanes one = {}, x = {}, y = {}, xx = {}, xy = {}, yy = {};

        void add(const Row::Moments &row, float at);
    };

    vk_VecLanes myLight = {}, myLightX = {}, myLightY = {};
    Moments myWeight, myError;
};

// Here, as they are the inner loop of the filter.
inline void vk_PlaneFit::Row::Moments::add(const vk_Lanes &amount, float at)
{
    const vk_Lanes along = amount * at;
    one += amount;
    x += along;
    xx += along * at;
}
inline void vk_PlaneFit::Row::add(const vk_VecLanes &value, const vk_Lanes &itsWeight,
                                  const vk_Lanes &itsError, float x)
{
    const vk_VecLanes weighted = value * itsWeight;
    light = light + weighted;
    lightX = lightX + weighted * vk_lanes(x);
    weight.add(itsWeight, x);
    error.add(itsWeight * itsWeight * itsError, x);
}
