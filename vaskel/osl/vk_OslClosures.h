// Sums of OSL closures as materials.
//
// A closure's kind says which part of a material it feeds:
//
//   diffuse, oren_nayar, burley, translucent ...   base
//   subsurface                                     base, in which light wanders
//   reflection, phong, ward, microfacet ...        boundary, with the closure's weight as
//                                                  its reflectance in all directions
//   dielectric, conductor, generalized_schlick     boundary after Fresnel
//   sheen, velvet, cloth                           sheen
//   refraction, dielectric, microfacet             glass
//   emission, background, uniform_edf              light of its own
//   transparent                                    lets light straight through
//   holdout, debug and those of hair               nothing
//
// Closures of one kind merge into one: colours by their sum, roughness, index of refraction
// and bent normals by the mean of the weights. A material is either opaque, glass or nothing
// but air; where closures ask for several of these, each point is one of them, by chance with
// the shares of their weights, so that a pixel's mean is the mixture.
#pragma once

#include "osl/OSL_Context.h"
#include "vaskel/scatter/vk_Material.h"

class vk_OslClosures
{
public:
    explicit vk_OslClosures(const OSL_Context &context) : myContext(context) {}

    // The material of a closure at a point; `chance`, 0 to 1, decides what a point of a
    // mixture is.
    vk_Material materialOf(int32_t closure, const vk_Vec &normal, float chance);

private:
    // What closures of one part add up to.
    struct Part {
        vk_Colour colour;
        float total = 0; // of weights, for the means
        float rough = 0, brushed = 0, ior = 0;

        void add(const vk_Colour &weight, float roughness)
        {
            const float share = vk_luminance(weight);
            colour += weight;
            total += share;
            rough += roughness * share;
        }
        float mean(float sum) const { return total > 0 ? sum / total : 0; }
    };

    using Component = OSL_ClosureComponent;
    using Add = void (vk_OslClosures::*)(const Component &component, const vk_Colour &weight);
    struct Row {
        const char *name;
        Add add;
    };
    static const Row ROWS[];

    void addAll(int32_t closure, const vk_Colour &factor, int depth);
    void addNothing(const Component &, const vk_Colour &) {}
    void addDiffuse(const Component &component, const vk_Colour &weight);
    void addSubsurface(const Component &component, const vk_Colour &weight);
    void addMirror(const Component &component, const vk_Colour &weight);
    void addMicrofacet(const Component &component, const vk_Colour &weight);
    void addRefraction(const Component &component, const vk_Colour &weight);
    void addDielectric(const Component &component, const vk_Colour &weight);
    void addConductor(const Component &component, const vk_Colour &weight);
    void addSchlick(const Component &component, const vk_Colour &weight);
    void addSheen(const Component &component, const vk_Colour &weight);
    void addEmission(const Component &component, const vk_Colour &weight);
    void addTransparent(const Component &component, const vk_Colour &weight);
    void addBoundary(const Component &component, const vk_Colour &straight, const vk_Colour &edge);
    void addGlass(const Component &component, const vk_Colour &weight, float ior);
    void bend(const Component &component, const vk_Colour &weight);

    void fillOpaque(float share, vk_Material &material) const;
    void fillGlass(float share, vk_Material &material) const;

    const OSL_Context &myContext;
    std::vector<std::vector<Component>> myComponents; // by depth, kept for their memory

    vk_Colour myEmission, myDiffuse, myEdge, myTransparent, myEven;
    vk_Vec myScatter, myNormals;
    Part myBoundary, mySheen, myGlass;
};

// Air, as a material: what is behind is seen as if there were no surface.
vk_Material vk_clearAir(const vk_Colour &passes);
