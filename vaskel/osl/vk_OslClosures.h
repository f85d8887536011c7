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
//   holdout, debug, chiang_hair_bsdf               nothing
//
// Closures of one kind merge into one: colours by their sum, roughness, index of refraction
// and bent normals by the mean of the weights. A material is either opaque or glass; where
// closures ask for both, each point is one of them, by chance with the shares of their
// weights, so that a pixel's mean is the mixture.
#pragma once

#include "osl/OSL_Context.h"
#include "vaskel/scatter/vk_Material.h"

#include <deque>

class vk_OslClosures
{
public:
    // Keeps a reference.
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

    // Parameters of closures, by their names in PARAMETERS.
    enum Parameter {
        ALBEDO,
        ALPHA,
        BASE,
        EMITTANCE,
        ETA,
        EXPONENT,
        EXTINCTION,
        F0,
        F90,
        IOR,
        K,
        MFP,
        NORMAL,
        RADIUS,
        REFLECTION_TINT,
        REFRACT,
        ROUGHNESS,
        ROUGHNESS_X,
        ROUGHNESS_Y,
        SIGMA,
        TOP,
        TRANSMISSION_DEPTH,
        TRANSMISSION_TINT,
        XALPHA,
        XROUGH,
        YALPHA,
        YROUGH,
        COUNT
    };
    static const char *const PARAMETERS[COUNT];

    class Lobe;
    using Add = void (vk_OslClosures::*)(const Lobe &lobe, const vk_Colour &weight);
    struct Row {
        const char *name;
        Add add;
    };
    static const Row ROWS[];

    // What a closure is here: found once by its names, and then by its address.
    struct Kind {
        const osl_ClosureRow *closure;
        Add add;       // null for those that show nothing
        bool isLayer;  // of two others
        int at[COUNT]; // where values begin; -1: it has no such parameter
    };
    // One closure of a sum.
    class Lobe
    {
    public:
        Lobe(const Kind &kind, const int32_t *words) : myKind(kind), myWords(words) {}

        bool has(Parameter parameter) const { return myKind.at[parameter] >= 0; }
        // REQUIRES: it has the parameter
        const int32_t *ints(Parameter parameter) const { return myWords + myKind.at[parameter]; }
        vk_Vec triple(Parameter parameter) const;
        float number(Parameter parameter) const;
        // With what stands for one that it does not have.
        vk_Colour colour(Parameter parameter, const vk_Colour &other) const
        {
            return has(parameter) ? triple(parameter) : other;
        }
        float number(Parameter parameter, float other) const
        {
            return has(parameter) ? number(parameter) : other;
        }

    private:
        const Kind &myKind;
        const int32_t *myWords;
    };
    // Widths along and across, perceptual.
    struct Widths {
        float along, across;
    };

    const Kind &kindOf(const OSL_ClosureComponent &component);
    static Widths widthsOf(const Lobe &lobe);

    void addAll(int32_t closure, const vk_Colour &factor, int depth);
    void addDiffuse(const Lobe &lobe, const vk_Colour &weight);
    void addSubsurface(const Lobe &lobe, const vk_Colour &weight);
    void addMirror(const Lobe &lobe, const vk_Colour &weight);
    void addMicrofacet(const Lobe &lobe, const vk_Colour &weight);
    void addRefraction(const Lobe &lobe, const vk_Colour &weight);
    void addDielectric(const Lobe &lobe, const vk_Colour &weight);
    void addConductor(const Lobe &lobe, const vk_Colour &weight);
    void addSchlick(const Lobe &lobe, const vk_Colour &weight);
    void addSheen(const Lobe &lobe, const vk_Colour &weight);
    void addEmission(const Lobe &lobe, const vk_Colour &weight);
    void addTransparent(const Lobe &lobe, const vk_Colour &weight);
    void addBoundary(const Lobe &lobe, const vk_Colour &straight, const vk_Colour &edge);
    void addGlass(const Lobe &lobe, const vk_Colour &weight, float ior);
    void bend(const Lobe &lobe, const vk_Colour &weight);

    void fillOpaque(float share, vk_Material &material) const;
    void fillGlass(float share, vk_Material &material) const;

    const OSL_Context &myContext;
    std::deque<Kind> myKinds;                                    // of the closures met so far
    std::vector<std::vector<OSL_ClosureComponent>> myComponents; // by depth, kept for their memory

    vk_Colour myEmission, myDiffuse, myEdge, myTransparent, myEven;
    vk_Vec myScatter, myNormals;
    Part myBoundary, mySheen, myGlass;
};
