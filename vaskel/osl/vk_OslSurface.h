// A surface whose shader is an OSL source.
//
// A shader that has closures describes the material by itself (vk_OslClosures.h): its first
// output of that type, or Ci. Of any other an output feeds the plastic's model: the first
// colour its `diff`, else the first triple of another kind, else the first number, as a
// grey. `show OUTPUT as TARGET` chooses: of a shader with closures too, then in place of
// them unless TARGET is `bump` or `opacity`, which go with either.
//
//   diff, spec   colours of base and coat (.6, 1)      emission   radiance (0)
//   rough        roughness of the coat (.2)            bump       height, in scene lengths
//   ior          index of refraction of the coat (1.5) opacity    1: opaque, 0: nothing there
//
// A bump turns normals by the slope of its output, which takes two more points around each.
#pragma once

#include "vaskel/osl/vk_OslRunner.h"
#include "vaskel/shaders/vk_SurfaceShaders.h"

class vk_OslSurface final : public vk_SurfaceShader
{
public:
    static const vk_OslTargets TARGETS; // what may be shown

    explicit vk_OslSurface(std::shared_ptr<const vk_OslBinding> binding);

    using vk_SurfaceShader::shade;
    void shade(const vk_SurfacePoint *points, vk_Material *materials,
               std::size_t count) const override;
    void shadeForShadows(const vk_SurfacePoint *points, vk_Material *materials,
                         std::size_t count) const override;
    bool usesGeometry() const override { return true; }
    bool mayBeClear() const override;

private:
    template <class Ask>
    void inBatches(std::size_t count, Ask ask) const;
    bool shade(vk_OslRunner &runner, const vk_SurfacePoint *points, vk_Material *materials,
               int count) const;
    bool bump(vk_OslRunner &runner, const vk_SurfacePoint *points, vk_Material *materials,
              int count) const;
    static vk_Material plastic(const vk_OslRunner &runner, int point);

    mutable vk_OslRunners myRunners;
};
