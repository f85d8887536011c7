// A ball that glows evenly.
#pragma once

#include "vaskel/lights/vk_Light.h"

class vk_BallLight : public vk_Light
{
public:
    // `white` is what a white matte surface shows that faces it at the target.
    vk_BallLight(const vk_Vec &centre, float radius, const vk_Vec &target, const vk_Colour &white);

    vk_LightSample sample(const vk_Vec &from, const vk_Square &at) const override;
    vk_LightSample hit(const vk_Vec &from, const vk_Vec &direction) const override;
    const vk_Vec *place() const override { return &myCentre; }
    float size() const override { return std::sqrt(myRadius2); }

protected:
    const vk_Vec &centre() const { return myCentre; }

private:
    vk_LightSample complete(vk_LightSample sample, const vk_Vec &way) const;

    vk_Vec myCentre;
    float myRadius2;
    vk_Colour myRadiance;
};
