// A fog whose shader is an OSL source.
//
// It is even, so the shader is asked once, at the origin. A volume's closures tell how much
// light is scattered and absorbed per length: isotropic, henyey_greenstein, absorption,
// anisotropic_vdf and medium_vdf. Of any other shader outputs feed `color` (the first
// colour), `density` (.07) and `forward` (0). The statement's own parameters are
// `radius` and `height`, as those of the fogs that are built in.
#pragma once

#include "vaskel/osl/vk_OslRunner.h"
#include "vaskel/shaders/vk_FogShaders.h"

// Of the statement.
struct vk_OslFogParams : vk_Parametrised {
    float radius = 8;
    float height = 0;

    void describe(vk_ParamList &list) override;
};

class vk_OslFog final : public vk_FogShader
{
public:
    static const vk_OslTargets TARGETS; // what may be shown

    vk_OslFog(std::shared_ptr<const vk_OslBinding> binding,
              std::shared_ptr<const vk_OslFogParams> params)
        : myBinding(std::move(binding)), myParams(std::move(params))
    {
    }

    vk_Medium medium() const override;

private:
    std::shared_ptr<const vk_OslBinding> myBinding;
    std::shared_ptr<const vk_OslFogParams> myParams;
};
