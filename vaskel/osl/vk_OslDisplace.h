// A displacement whose shader is an OSL source.
//
// A shader that changes P moves the surface to wherever that is; where it does not, the first
// number among its outputs is the height along the normal, unless `show OUTPUT as height`
// chooses another one. No point moves by more than half a length. Shaders run in the
// shape's own space, which then is "common" too, and N alone moves nothing: normals follow
// from where points went.
#pragma once

#include "vaskel/osl/vk_OslRunner.h"
#include "vaskel/shaders/vk_DisplaceShaders.h"

class vk_OslDisplace final : public vk_DisplaceShader
{
public:
    static const vk_OslTargets TARGETS; // what may be shown

    explicit vk_OslDisplace(std::shared_ptr<const vk_OslBinding> binding)
        : myRunners(std::move(binding))
    {
    }

    float displace(const vk_SurfacePoint &point) const override;
    void move(const vk_SurfacePoint *points, vk_Vec *moved, std::size_t count) const override;

private:
    mutable vk_OslRunners myRunners;
};
