// An area light whose shader is an OSL source: a surface's shader that emits.
//
// Its emission, a closure's or the first colour's, is a slide in front of the light v_area,
// whose parameters it has: one that emits 1 everywhere is v_area. The shader is asked
// over a grid of 64 by 64 points, with u and v from 0 to 1 across and upwards, P in the
// scene and N along the light's way.
#pragma once

#include "vaskel/base/vk_Distribution.h"
#include "vaskel/lights/vk_LightShaders.h"
#include "vaskel/osl/vk_OslRunner.h"

class vk_OslLight final : public vk_Light
{
public:
    static const vk_OslTargets TARGETS; // what may be shown

    // The parameters of v_area, which may change until the light shines.
    static std::shared_ptr<vk_LightShader> makeParameters();

    vk_OslLight(std::shared_ptr<const vk_OslBinding> binding,
                std::shared_ptr<vk_LightShader> parameters);

    vk_LightSample sample(const vk_Vec &from, const vk_Square &at) const override;
    vk_LightSample hit(const vk_Vec &from, const vk_Vec &direction) const override;
    vk_LightSample middle(const vk_Vec &from) const override { return area().middle(from); }
    const vk_Vec *place() const override { return &myShader->from; }
    float size() const override { return area().size(); }

private:
    const vk_Light &area() const;
    void prepare() const;
    void shine() const;
    void askShader() const;
    vk_LightSample coloured(const vk_Vec &from, vk_LightSample sample) const;

    std::shared_ptr<const vk_OslBinding> myBinding;
    std::shared_ptr<vk_LightShader> myShader; // v_area

    // Made at the first use, when the shader is loaded.
    mutable std::once_flag myOnce;
    mutable std::unique_ptr<vk_Light> myArea;
    mutable vk_Vec myAcross, myUp; // over its width and height
    mutable std::vector<vk_Colour> myPicture;
    mutable vk_Distribution myBright; // where it is seen to shine
};
