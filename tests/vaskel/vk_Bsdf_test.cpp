#include "vaskel/scatter/vk_Bsdf.h"

#include "vaskel/base/vk_Sampler.h"
#include "vaskel/scatter/vk_Sheen.h"
#include "vaskel/shaders/vk_SurfaceShaders.h"
#include "vaskel/trace/vk_Subsurface.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
const vk_Vec UP = vk_normalize({.3f, .8f, -.5f});
const vk_Vec ALONG = {1, 0, 0};

// Directions around UP, by the cosine to it and the angle around it.
vk_Vec around(float cosine, float angle)
{
    const float sine = std::sqrt(1 - cosine * cosine);
    return vk_Frame(UP).toWorld({sine * std::cos(angle), sine * std::sin(angle), cosine});
}

struct Case {
    std::string what;
    vk_Material material;
    bool inside;

    vk_Bsdf seenFrom(const vk_Vec &out, bool split = false) const
    {
        return vk_Bsdf(material, UP, out, split, ALONG, inside);
    }
    bool isCompensatedInTwoWays() const
    {
        return !material.isClear() && material.rough >= .15f && material.brushed <= 0;
    }
};

// A shader as white and as rough as can be, up to a roughness.
vk_Material whiteMaterial(const vk_ShaderRow<vk_SurfaceShader> &row, float rough)
{
    const auto shader = row.make();
    for (vk_Param &param : shader->params())
        if (param.kind == VK_COLOUR)
            param.set(vk_grey(1));
        else if (std::string(param.name) == "rough")
            param.set({rough, 0, 0});
    return shader->shade(vk_SurfacePoint());
}

// All surface shaders, of all tables.
std::vector<Case> materials()
{
    std::vector<Case> all;
    for (const auto *table = &VK_SURFACE_SHADERS; table != nullptr; table = table->more)
        for (const auto &row : *table)
            for (const float rough : {0.0f, .3f, 1.0f})
                for (const bool inside : {false, true}) {
                    const vk_Material material = whiteMaterial(row, rough);
                    if (material.reflects() && (material.isClear() || !inside))
                        all.push_back({std::string(row.name) + " rough " + std::to_string(rough),
                                       material, inside});
                }
    return all;
}

vk_Scattered scattered(const vk_Bsdf &bsdf, const vk_Vec &in)
{
    float density = 0;
    return bsdf.evaluate(in, density);
}
// Where light leaves that wanders between facets which reflect all of it: the random walk of
// Heitz et al., "Multiple-Scattering Microfacet BSDFs with the Smith Model", 2016.
// `met` is how many it met.
vk_Vec wander(const vk_Facets &facets, vk_Vec way, vk_Sampler sampler, int &met)
{
    const float alpha = facets.rough() * facets.rough();
    float below = 1; // share of the surface that is lower than the light
    for (met = 0; met < 100; ++met) {
        const float slope2 = alpha * alpha * (1 / (way.z * way.z) - 1);
        const float lambda = .5f * (std::copysign(std::sqrt(1 + slope2), way.z) - 1);
        const float chance = sampler.number();
        if (way.z > 0 && chance > 1 - std::pow(below, lambda))
            return way;
        below *= std::pow(1 - chance, -1 / lambda);
        const vk_Vec facet = facets.sample(-way, sampler.square());
        way = way - facet * (2 * vk_dot(facet, way));
    }
    return {};
}

// Shares of light that go up or sideways, and on or back.
struct Quarters {
    float share[4] = {};

    void add(const vk_Vec &out, const vk_Vec &in, float light)
    {
        const bool isBack = in.x * out.x + in.y * out.y > 0;
        share[(in.z > .5f ? 2 : 0) + (isBack ? 1 : 0)] += light;
    }
};
} // namespace

TEST(Bsdf, MetalScattersAsARandomWalkBetweenItsFacets)
{
    constexpr std::uint32_t COUNT = 1 << 16;
    for (const float rough : {.4f, .5f})
        for (const float cosine : {.2f, .5f}) {
            vk_Material metal;
            metal.specular = metal.edge = vk_grey(1);
            metal.rough = rough;
            const vk_Vec out = {std::sqrt(1 - cosine * cosine), 0, cosine};
            const vk_Bsdf bsdf(metal, {0, 0, 1}, out, false);
            const vk_Facets facets(vk_alpha(rough), vk_alpha(rough));
            Quarters ofWalk, ofBsdf;
            for (std::uint32_t i = 0; i < COUNT; ++i) {
                int met = 0;
                const vk_Vec up = wander(facets, -out, vk_Sampler(vk_hash(i), 0), met);
                ofWalk.add(out, up, 1.0f / COUNT);
                float pdf = 0;
                const vk_Vec in = bsdf.sample(vk_Sampler(9, i).square());
                const float light = bsdf.evaluate(in, pdf).specular.x;
                ofBsdf.add(out, in, pdf > 0 ? light / pdf / COUNT : 0);
            }
            for (int i = 0; i < 4; ++i)
                EXPECT_NEAR(ofWalk.share[i], ofBsdf.share[i], .01f)
                    << rough << ' ' << cosine << ' ' << i;
        }
}

// Each facet that light meets keeps its share, so that rough metal is of a deeper colour.
TEST(Bsdf, RoughMetalDeepensItsColourAsARandomWalkDoes)
{
    constexpr std::uint32_t COUNT = 1 << 14;
    constexpr float COLOUR = .5f, ROUGH = .9f;
    vk_Material metal;
    metal.specular = metal.edge = {1, COLOUR, 0};
    metal.rough = ROUGH;
    const vk_Vec out = {.6f, 0, .8f};
    const vk_Bsdf bsdf(metal, {0, 0, 1}, out, false);
    const vk_Facets facets(vk_alpha(ROUGH), vk_alpha(ROUGH));
    float ofWalk = 0, ofBsdf = 0;
    for (std::uint32_t i = 0; i < COUNT; ++i) {
        int met = 0;
        wander(facets, -out, vk_Sampler(vk_hash(i), 0), met);
        ofWalk += std::pow(COLOUR, static_cast<float>(met)) / COUNT;
        float pdf = 0;
        const vk_Vec in = bsdf.sample(vk_Sampler(9, i).square());
        const float light = bsdf.evaluate(in, pdf).specular.y;
        ofBsdf += pdf > 0 ? light / pdf / COUNT : 0;
    }
    EXPECT_NEAR(ofWalk, ofBsdf, .02f);
    EXPECT_LT(ofWalk, .98f * COLOUR);
}

TEST(Bsdf, BrushedMetalGleamsAcrossItsScratches)
{
    vk_Material metal;
    metal.specular = metal.edge = vk_grey(1);
    metal.rough = .4f;
    metal.brushed = .9f;
    const vk_Bsdf bsdf(metal, {0, 0, 1}, {0, 0, 1}, false, ALONG);
    const float along = scattered(bsdf, vk_normalize({.5f, 0, 1})).specular.x;
    const float across = scattered(bsdf, vk_normalize({0, .5f, 1})).specular.x;
    EXPECT_GT(across, 5 * along);
}

TEST(Bsdf, GlassReflectsWithoutItsColour)
{
    vk_Material glass;
    glass.clear = {1, 0, 0};
    glass.rough = .3f;
    const vk_Bsdf bsdf(glass, UP, around(.6f, 1), false);
    const vk_Colour back = scattered(bsdf, bsdf.mirror()).sum();
    EXPECT_GT(back.x, .001f);
    EXPECT_EQ(back.x, back.y);
    const vk_Colour on = scattered(bsdf, -around(.85f, 1)).sum();
    EXPECT_GT(on.x, .001f);
    EXPECT_EQ(0, on.y);
}

// As a normal of a bump without bounds: as a place it would lie far outside the tables.
TEST(Microfacet, WhatIsNoNumberHasAnAlbedoAllTheSame)
{
    constexpr float NONE = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(vk_facetAlbedo(0, .5f), vk_facetAlbedo(NONE, .5f));
    EXPECT_EQ(vk_glassAlbedo(.5f, 0, 1.5f), vk_glassAlbedo(.5f, NONE, 1.5f));
}

TEST(Bsdf, ATiltTurnsTheGleamToItsSide)
{
    vk_Material metal;
    metal.specular = metal.edge = vk_grey(1);
    metal.rough = .3f;
    metal.tilt = {.3f, 0, 0};
    const vk_Bsdf bsdf(metal, {0, 0, 1}, {0, 0, 1}, false);
    const float towards = scattered(bsdf, vk_normalize({.5f, 0, 1})).specular.x;
    EXPECT_GT(towards, 5 * scattered(bsdf, vk_normalize({-.5f, 0, 1})).specular.x);
}

TEST(Bsdf, HalfACoatShowsHalfAsMuch)
{
    const auto gleam = [](float coat) {
        vk_Material material;
        material.diffuse = vk_grey(.3f);
        material.coat = coat;
        material.coatRough = .3f;
        return scattered(vk_Bsdf(material, UP, around(.6f, 1), false), around(.7f, 4)).specular.x;
    };
    EXPECT_GT(gleam(1), .001f);
    EXPECT_NEAR(.5f * gleam(1), gleam(.5f), .01f * gleam(1));
}

// And no more of a colour than its share.
TEST(Bsdf, GlassTakesItsTintOverOneLength)
{
    for (const char *name : {"v_glass", "v_frosted"})
        for (const auto *table = &VK_SURFACE_SHADERS; table != nullptr; table = table->more)
            for (const auto &row : *table)
                if (name == std::string(row.name)) {
                    const auto shader = row.make();
                    shader->params().find("tint")->set({.9f, .5f, .2f});
                    const vk_Colour left = shader->shade(vk_SurfacePoint()).absorbed(1);
                    EXPECT_LT(vk_length(left - vk_Colour{.9f, .5f, .2f}), 1e-4f) << name;
                }
}

TEST(Bsdf, IsReciprocal)
{
    for (const Case &c : materials())
        for (const float a : {.1f, .5f, .9f})
            for (const float b : {.2f, .7f, 1.0f}) {
                SCOPED_TRACE(c.what);
                const vk_Bsdf ofX = c.seenFrom(around(a, .3f)), ofY = c.seenFrom(around(b, 2));
                const vk_Vec x = around(a, .3f), y = around(b, 2);
                if (!(c.material.tilt == vk_Vec{}))
                    continue; // cosines are then those to another normal
                const vk_Scattered xy = scattered(ofX, y), yx = scattered(ofY, x);
                const float even = xy.diffuse.x / b;
                EXPECT_NEAR(even, yx.diffuse.x / a, 2e-3f * even);
                if (c.isCompensatedInTwoWays())
                    continue; // of which one is not symmetric
                const float once = xy.specular.x / b / ofX.compensation().x;
                EXPECT_NEAR(once, yx.specular.x / a / ofY.compensation().x, 4e-3f * once);
            }
}

// Through glass, after division by the square of the index on the light's side.
TEST(Bsdf, GlassIsReciprocalFromBothSides)
{
    vk_Material glass;
    glass.clear = vk_grey(1);
    glass.rough = .5f;
    const vk_Vec x = around(.8f, .3f), y = -around(.7f, .9f);
    const vk_Bsdf outside(glass, UP, x, false);
    const vk_Bsdf inside(glass, -UP, y, false, {}, true);
    const float in =
        scattered(outside, y).sum().x / .7f / (glass.ior * glass.ior) / outside.compensation().x;
    const float out = scattered(inside, x).sum().x / .8f / inside.compensation().x;
    EXPECT_GT(in, .01f);
    EXPECT_NEAR(in, out, 1e-3f * in);
}

TEST(Bsdf, SendsOnAtMostWhatArrives)
{
    constexpr int COUNT = 4096;
    for (const Case &c : materials())
        for (const float cosine : {.05f, .3f, .7f, 1.0f})
            for (const bool split : {false, true}) {
                SCOPED_TRACE(c.what + " cosine " + std::to_string(cosine));
                const vk_Bsdf bsdf = c.seenFrom(around(cosine, 1), split);
                double albedo = 0;
                for (std::uint32_t i = 0; i < COUNT; ++i) {
                    vk_Sampler sampler(7, i);
                    const vk_Square at = sampler.square();
                    const float choice = sampler.number();
                    for (int round = 0; round < bsdf.rounds(); ++round) {
                        float density = 0;
                        const vk_Vec in = bsdf.sample(at, round, choice);
                        const vk_Colour light = bsdf.evaluate(in, density).sum();
                        ASSERT_TRUE(vk_isFinite(light) && std::isfinite(density));
                        albedo += density > 0 ? static_cast<double>(light.x / density) / COUNT : 0;
                    }
                }
                // The table of glass is coarser.
                EXPECT_LE(albedo, c.material.isClear() ? 1.007 : 1.004);
                // White metal and glass keep nothing, however rough (at grazing angles about).
                const bool isWhite = c.material.isClear() || c.material.specular.x >= 1;
                EXPECT_GT(albedo, isWhite && c.material.coat <= 0 && cosine > .1f ? .97 : .15);
            }
}

// Counted over directions spread evenly: the density must integrate to 1, less
// what sample() sends to where nothing arrives.
TEST(Bsdf, DensityIsThatOfTheSamples)
{
    constexpr int COUNT = 1 << 15;
    for (const Case &c : materials())
        for (const float cosine : {.2f, .8f})
            for (const bool split : {false, true}) {
                const vk_Material &m = c.material;
                if ((m.rough < .2f && (m.edge.x > 0 || m.isClear())) || m.coat > 0)
                    continue; // too narrow to be counted evenly
                SCOPED_TRACE(c.what + " cosine " + std::to_string(cosine));
                const vk_Bsdf bsdf = c.seenFrom(around(cosine, 1), split);
                double integral = 0, used = 0;
                for (std::uint32_t i = 0; i < COUNT; ++i) {
                    vk_Sampler sampler(3, i);
                    const vk_Square at = sampler.square();
                    const float choice = sampler.number();
                    float density = 0;
                    const vk_Vec way = vk_toCap(at, 2);
                    static_cast<void>(bsdf.evaluate(way, density));
                    integral += static_cast<double>(density * 4 * VK_PI) / COUNT;
                    for (int round = 0; round < bsdf.rounds(); ++round) {
                        static_cast<void>(bsdf.evaluate(bsdf.sample(at, round, choice), density));
                        used += density > 0 ? 1.0 / COUNT : 0;
                    }
                }
                EXPECT_NEAR(used, integral, .04);
            }
}

// The first surface of a view: more rays that are scattered evenly take noise out of it.
TEST(Bsdf, OnlyADiffuseOneIsDrawnTwiceWithinAPart)
{
    vk_Material matte, metal, plastic;
    matte.diffuse = metal.specular = metal.edge = plastic.diffuse = plastic.edge = vk_grey(.5f);
    metal.rough = .3f;
    const vk_Vec out = around(.8f, 1);
    for (const auto &[material, rounds, repeats] :
         {std::tuple(matte, 2, true), {metal, 1, false}, {plastic, 2, false}}) {
        const vk_Bsdf bsdf(material, UP, out, true), unsplit(material, UP, out, false);
        EXPECT_EQ(rounds, bsdf.rounds());
        EXPECT_EQ(repeats, bsdf.repeats());
        EXPECT_EQ(1, unsplit.rounds());
        EXPECT_FALSE(unsplit.repeats());
    }
}

// The tables of bench/fit.py against the integral that they hold, for light along x and y.
TEST(Microfacet, AlbedoTablesAgreeWithTheirIntegral)
{
    constexpr int COUNT = 1 << 13;
    for (const float rough : {.2f, .5f, .77f, 1.0f})
        for (const float ratio : {1.0f, .5f, .13f})
            for (const vk_Vec &across : {vk_Vec{1, 0, 0}, vk_Vec{0, 1, 0}, vk_Vec{.6f, .8f, 0}})
                for (const float cosine : {.25f, .6f, .95f}) {
                    const float alpha = vk_alpha(rough);
                    const vk_Facets facets(alpha * ratio, alpha);
                    const vk_Vec out =
                        across * std::sqrt(1 - cosine * cosine) + vk_Vec{0, 0, cosine};
                    double sum = 0;
                    for (std::uint32_t i = 0; i < COUNT; ++i) {
                        const vk_Vec h = facets.sample(out, vk_Sampler(5, i).square());
                        const vk_Vec in = h * (2 * vk_dot(h, out)) - out;
                        if (in.z > 0)
                            sum += static_cast<double>(4 * in.z * out.z * facets.shared(in, out) /
                                                       facets.visible(out));
                    }
                    EXPECT_NEAR(facets.albedo(out), sum / COUNT, .012)
                        << rough << ' ' << ratio << ' ' << across.y << ' ' << cosine;
                }
}

TEST(Sheen, AlbedoTableAgreesWithItsIntegral)
{
    constexpr int COUNT = 1 << 14;
    for (const float rough : {VK_LEAST_SHEEN, .35f, .63f, 1.0f})
        for (const float cosine : {.0005f, .002f, .1f, .5f, 1.0f}) {
            const vk_Vec out = {std::sqrt(1 - cosine * cosine), 0, cosine};
            double sum = 0;
            for (std::uint32_t i = 0; i < COUNT; ++i) {
                const vk_Vec in = vk_toCap(vk_Sampler(5, i).square(), 1);
                const float half = vk_normalize(in + out).z;
                sum += static_cast<double>(vk_sheen(in.z, cosine, half, rough) * in.z * 2 * VK_PI);
            }
            const double near = cosine < .01f ? .015 : .01;
            EXPECT_NEAR(vk_sheenAlbedo(cosine, rough), std::min(1.0, sum / COUNT), near)
                << rough << ' ' << cosine;
        }
}

TEST(Subsurface, ProfileIntegratesToWhatLiesWithin)
{
    for (const float scatter : {.02f, .5f})
        for (const float distance : {.3f, 3.0f, 20.0f}) {
            constexpr int STEPS = 4000;
            const float end = distance * scatter;
            double sum = 0;
            for (int i = 0; i < STEPS; ++i) {
                const float r = end * (static_cast<float>(i) + .5f) / STEPS;
                sum += static_cast<double>(vk_profile(r, scatter) * 2 * VK_PI * r * end / STEPS);
            }
            EXPECT_NEAR(vk_profileWithin(end, scatter), sum, .01);
        }
}
