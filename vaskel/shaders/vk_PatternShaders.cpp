#include "vaskel/shaders/vk_PatternShaders.h"

#include "vaskel/base/vk_Noise.h"

#include <iterator>

namespace
{
constexpr const char *COAT = "how much of a coat there is";
constexpr const char *ROUGHNESS = "roughness of the coat";

struct Checker final : vk_Pointwise<Checker> {
    vk_Colour diff1 = vk_grey(.42f);
    vk_Colour diff2 = vk_grey(.24f);
    float size = .5f;
    vk_Colour spec;
    float rough = .3f;

    void describe(vk_ParamList &list) override
    {
        list.colour("diff1", diff1, 0, 1, "colour of one half of the checks");
        list.colour("diff2", diff2, 0, 1, "colour of the other half");
        list.number("size", size, .001f, 1000, "edge of a check, in scene lengths");
        list.colour("spec", spec, 0, 1, COAT);
        list.number("rough", rough, 0, 1, ROUGHNESS);
    }
    vk_Material at(const vk_SurfacePoint &point) const
    {
        // The small shift keeps a floor at y = 0 off the planes between checks.
        const vk_Vec place = vk_within(point.position) * (1 / size) + vk_grey(1e-3f);
        const float cells = std::floor(place.x) + std::floor(place.y) + std::floor(place.z);
        // Sums of whole numbers below 2^24 are exact, so checks of all sizes close without gaps.
        // Not compared with 1: below 0 the rest of an odd number is -1.
        return vk_coated(std::fmod(cells, 2.0f) != 0 ? diff2 : diff1, spec, rough);
    }
};

// Planes through the stone that wander: Perlin, "An Image Synthesizer", SIGGRAPH
// 1985. A second, finer set of planes gives the hairlines.
struct Marble final : vk_Pointwise<Marble> {
    vk_Colour diff1 = {.75f, .73f, .70f};
    vk_Colour diff2 = {.09f, .10f, .12f};
    float size = .5f;
    vk_Colour spec = vk_grey(1);
    float rough = .08f;
    float veins = 1;

    void describe(vk_ParamList &list) override
    {
        list.colour("diff1", diff1, 0, 1, "colour of the stone");
        list.colour("diff2", diff2, 0, 1, "colour of the veins");
        list.number("size", size, .01f, 1000, "from vein to vein");
        list.colour("spec", spec, 0, 1, COAT);
        list.number("rough", rough, 0, 1, ROUGHNESS);
        list.number("veins", veins, 0, 4, "how far the veins wander");
    }
    vk_Material at(const vk_SurfacePoint &point) const
    {
        const vk_Vec place = vk_within(point.position) * (1 / size);
        // Both sets of planes wander together, as the stone was bent as a whole.
        const float wander = veins * vk_clouds(place * .7f, 5);
        const float broad =
            std::abs(std::sin(VK_PI * (place.x * .6f + place.y * .8f + 1.2f * wander)));
        const float fine =
            std::abs(std::sin(VK_PI * (place.z * 1.3f - place.y * .9f + 2.1f * wander)));
        const float cloud = .18f * (.5f + .5f * vk_clouds(place * 1.9f, 3));
        // A vein lies where its sine is 0. The larger of both, not their sum: where veins cross
        // stone gets no darker.
        const float vein = std::max(.85f * (1 - vk_smoothStep(0, .32f, broad)),
                                    .45f * (1 - vk_smoothStep(0, .13f, fine)));
        const vk_Colour base = vk_mix(diff1, diff2, std::clamp(vein + cloud, 0.0f, 1.0f));
        return vk_coated(base, spec, rough);
    }
};

// Rings around a trunk that leans out of the picture, so that the ball shows
// their ends as well as their sides. Each year begins light and ends dark.
struct Wood final : vk_Pointwise<Wood> {
    vk_Colour diff1 = {.56f, .31f, .13f};
    vk_Colour diff2 = {.20f, .08f, .03f};
    float size = .14f;
    vk_Colour spec = vk_grey(1);
    float rough = .25f;
    float grain = .5f;

    void describe(vk_ParamList &list) override
    {
        list.colour("diff1", diff1, 0, 1, "colour of the early wood");
        list.colour("diff2", diff2, 0, 1, "colour of the late wood");
        list.number("size", size, .01f, 1000, "width of a year's ring");
        list.colour("spec", spec, 0, 1, COAT);
        list.number("rough", rough, 0, 1, ROUGHNESS);
        list.number("grain", grain, 0, 1, "how much its pores show");
    }
    vk_Material at(const vk_SurfacePoint &point) const
    {
        const vk_Vec place = vk_within(point.position);
        // The lean shows the rings as ellipses; off the middle, so that the ball does not show a
        // target.
        const vk_Vec trunk = {place.x + .35f * place.y + .9f, place.z - .18f * place.y - .15f, 0};
        // Slower along the trunk than across it: rings keep their form from end to end.
        const float bent = vk_clouds({place.x * 1.1f, place.y * .35f, place.z * 1.1f}, 2);
        const float years = vk_length(trunk) / size + 1.1f * bent;
        const float part = years - std::floor(years);
        // Late wood darkens slowly and ends within a winter.
        const float late = vk_smoothStep(.1f, .85f, part) * (1 - vk_smoothStep(.9f, 1, part));
        // Long along the trunk, short across it.
        // Pores are cells: they do not widen with the years' rings.
        const float pores = vk_noise({place.x * 42, place.y * 3.5f, place.z * 42});
        const float dark = late * .8f + grain * .5f * vk_smoothStep(.1f, .6f, pores);
        return vk_coated(vk_mix(diff1, diff2, std::min(dark, 1.0f)), spec, rough);
    }
};

// Grains with ragged borders, each of one of three minerals.
struct Granite final : vk_Pointwise<Granite> {
    vk_Colour diff1 = {.42f, .27f, .23f};
    vk_Colour diff2 = {.03f, .03f, .035f};
    float size = .09f;
    vk_Colour spec = vk_grey(1);
    float rough = .1f;
    vk_Colour diff3 = {.62f, .60f, .57f};

    void describe(vk_ParamList &list) override
    {
        list.colour("diff1", diff1, 0, 1, "colour of the feldspar, half of the stone");
        list.colour("diff2", diff2, 0, 1, "colour of the mica");
        list.number("size", size, .01f, 1000, "width of a grain");
        list.colour("spec", spec, 0, 1, COAT);
        list.number("rough", rough, 0, 1, ROUGHNESS);
        list.colour("diff3", diff3, 0, 1, "colour of the quartz");
    }
    vk_Material at(const vk_SurfacePoint &point) const
    {
        const vk_Vec place = vk_within(point.position) * (1 / size);
        // A place far away in the same noise is as good as another noise.
        const vk_Vec ragged = {vk_noise(place * 2.3f), vk_noise(place * 2.3f + vk_grey(31)), 0};
        const std::uint32_t grain = vk_cell(place + ragged * .35f).name;
        // Two numbers out of one hash: its ends hardly depend on each other.
        const float kind = vk_share(grain), shade = .8f + .35f * vk_share(grain >> 16);
        const vk_Colour &mineral = kind < .5f ? diff1 : (kind < .73f ? diff2 : diff3);
        return vk_coated(mineral * std::min(shade, 1.0f), spec, rough);
    }
};

struct Candy final : vk_Pointwise<Candy> {
    vk_Colour diff1 = {.7f, .03f, .05f};
    vk_Colour diff2 = {.8f, .78f, .75f};
    // An eighth: a whole number of stripes goes around, so that they meet behind the shape.
    float size = .125f;
    vk_Colour spec = vk_grey(1);
    float rough = .05f;
    float turns = .5f;

    void describe(vk_ParamList &list) override
    {
        list.colour("diff1", diff1, 0, 1, "colour of one half of the stripes");
        list.colour("diff2", diff2, 0, 1, "colour of the other half");
        list.number("size", size, .01f, 1, "width of both, as a share of the way around");
        list.colour("spec", spec, 0, 1, COAT);
        list.number("rough", rough, 0, 1, ROUGHNESS);
        list.number("turns", turns, -100, 100, "how often stripes go around on their way up");
    }
    vk_Material at(const vk_SurfacePoint &point) const
    {
        const float stripe = (point.u + point.v * turns) / size;
        return vk_coated(stripe - std::floor(stripe) < .5f ? diff1 : diff2, spec, rough);
    }
};

constexpr vk_ShaderRow<vk_SurfaceShader> ROWS[] = {
    vk_row<Checker>("v_checker", "checks of two colours in space"),
    vk_row<Marble>("v_marble", "polished stone with veins"),
    vk_row<Wood>("v_wood", "varnished wood with its rings and pores"),
    vk_row<Granite>("v_granite", "polished stone of three kinds of grains"),
    vk_row<Candy>("v_candy", "stripes that wind upwards"),
};
} // namespace

const vk_ShaderTable<vk_SurfaceShader> VK_PATTERN_SHADERS = {"surface", ROWS, std::size(ROWS)};
