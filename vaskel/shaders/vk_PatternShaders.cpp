#include "vaskel/shaders/vk_PatternShaders.h"

#include "vaskel/base/vk_Noise.h"

#include <iterator>

namespace
{
// What all have: two colours, a size and a coat.
enum { DIFF1, DIFF2, SIZE, SPEC, ROUGH, OWN };
constexpr vk_Param COAT = {"spec", VK_COLOUR, {1, 1, 1}, 0, 1, "how much of a coat there is"};

vk_Material coated(const vk_Values &p, const vk_Colour &base)
{
    return vk_coated(base, p.vec(SPEC), p.number(ROUGH));
}

constexpr vk_Param CHECKER[] = {
    {"diff1", VK_COLOUR, {.42f, .42f, .42f}, 0, 1, "colour of one half of the checks"},
    {"diff2", VK_COLOUR, {.24f, .24f, .24f}, 0, 1, "colour of the other half"},
    {"size", VK_NUMBER, {.5f, 0, 0}, .001f, 1000, "edge of a check, in scene lengths"},
    {"spec", VK_COLOUR, {0, 0, 0}, 0, 1, "how much of a coat there is"},
    {"rough", VK_NUMBER, {.3f, 0, 0}, 0, 1, "roughness of the coat"},
};

vk_Material checker(const vk_Values &p, const vk_SurfacePoint &point)
{
    // The small shift keeps a floor at y = 0 off the planes between checks.
    const vk_Vec at = vk_within(point.position) * (1 / p.number(SIZE)) + vk_grey(1e-3f);
    const float cells = std::floor(at.x) + std::floor(at.y) + std::floor(at.z);
    return coated(p, p.vec(std::fmod(cells, 2.0f) != 0 ? DIFF2 : DIFF1));
}

enum { MARBLE_VEINS = OWN };
constexpr vk_Param MARBLE[] = {
    {"diff1", VK_COLOUR, {.75f, .73f, .70f}, 0, 1, "colour of the stone"},
    {"diff2", VK_COLOUR, {.09f, .10f, .12f}, 0, 1, "colour of the veins"},
    {"size", VK_NUMBER, {.5f, 0, 0}, .01f, 1000, "from vein to vein"},
    COAT,
    {"rough", VK_NUMBER, {.08f, 0, 0}, 0, 1, "roughness of the coat"},
    {"veins", VK_NUMBER, {1, 0, 0}, 0, 4, "how far the veins wander"},
};

// Planes through the stone that wander: Perlin, "An Image Synthesizer", SIGGRAPH
// 1985. A second, finer set of planes gives the hairlines.
vk_Material marble(const vk_Values &p, const vk_SurfacePoint &point)
{
    const vk_Vec at = vk_within(point.position) * (1 / p.number(SIZE));
    const float wander = p.number(MARBLE_VEINS) * vk_clouds(at * .7f, 5);
    const float broad = std::abs(std::sin(VK_PI * (at.x * .6f + at.y * .8f + 1.2f * wander)));
    const float fine = std::abs(std::sin(VK_PI * (at.z * 1.3f - at.y * .9f + 2.1f * wander)));
    const float cloud = .18f * (.5f + .5f * vk_clouds(at * 1.9f, 3));
    const float vein = std::max(.85f * (1 - vk_smoothStep(0, .32f, broad)),
                                .45f * (1 - vk_smoothStep(0, .13f, fine)));
    return coated(p, vk_mix(p.vec(DIFF1), p.vec(DIFF2), std::clamp(vein + cloud, 0.0f, 1.0f)));
}

enum { WOOD_GRAIN = OWN };
constexpr vk_Param WOOD[] = {
    {"diff1", VK_COLOUR, {.56f, .31f, .13f}, 0, 1, "colour of the early wood"},
    {"diff2", VK_COLOUR, {.20f, .08f, .03f}, 0, 1, "colour of the late wood"},
    {"size", VK_NUMBER, {.14f, 0, 0}, .01f, 1000, "width of a year's ring"},
    COAT,
    {"rough", VK_NUMBER, {.25f, 0, 0}, 0, 1, "roughness of the coat"},
    {"grain", VK_NUMBER, {.5f, 0, 0}, 0, 1, "how much its pores show"},
};

// Rings around a trunk that leans out of the picture, so that the ball shows
// their ends as well as their sides. Each year begins light and ends dark.
vk_Material wood(const vk_Values &p, const vk_SurfacePoint &point)
{
    const vk_Vec at = vk_within(point.position);
    const vk_Vec trunk = {at.x + .35f * at.y + .9f, at.z - .18f * at.y - .15f, 0};
    const float bent = vk_clouds({at.x * 1.1f, at.y * .35f, at.z * 1.1f}, 2);
    const float years = vk_length(trunk) / p.number(SIZE) + 1.1f * bent;
    const float part = years - std::floor(years);
    const float late = vk_smoothStep(.1f, .85f, part) * (1 - vk_smoothStep(.9f, 1, part));
    const float pores = vk_noise({at.x * 42, at.y * 3.5f, at.z * 42});
    const float dark = late * .8f + p.number(WOOD_GRAIN) * .5f * vk_smoothStep(.1f, .6f, pores);
    return coated(p, vk_mix(p.vec(DIFF1), p.vec(DIFF2), std::min(dark, 1.0f)));
}

enum { GRANITE_DIFF3 = OWN };
constexpr vk_Param GRANITE[] = {
    {"diff1", VK_COLOUR, {.42f, .27f, .23f}, 0, 1, "colour of the feldspar, half of the stone"},
    {"diff2", VK_COLOUR, {.03f, .03f, .035f}, 0, 1, "colour of the mica"},
    {"size", VK_NUMBER, {.09f, 0, 0}, .01f, 1000, "width of a grain"},
    COAT,
    {"rough", VK_NUMBER, {.1f, 0, 0}, 0, 1, "roughness of the coat"},
    {"diff3", VK_COLOUR, {.62f, .60f, .57f}, 0, 1, "colour of the quartz"},
};

// Grains with ragged borders, each of one of three minerals.
vk_Material granite(const vk_Values &p, const vk_SurfacePoint &point)
{
    const vk_Vec at = vk_within(point.position) * (1 / p.number(SIZE));
    const vk_Vec ragged = {vk_noise(at * 2.3f), vk_noise(at * 2.3f + vk_grey(31)), 0};
    const std::uint32_t grain = vk_cell(at + ragged * .35f).name;
    const float kind = vk_share(grain), shade = .8f + .35f * vk_share(grain >> 16);
    const int mineral = kind < .5f ? int{DIFF1} : (kind < .73f ? int{DIFF2} : int{GRANITE_DIFF3});
    return coated(p, p.vec(static_cast<std::size_t>(mineral)) * std::min(shade, 1.0f));
}

enum { CANDY_TURNS = OWN };
constexpr vk_Param CANDY[] = {
    {"diff1", VK_COLOUR, {.7f, .03f, .05f}, 0, 1, "colour of one half of the stripes"},
    {"diff2", VK_COLOUR, {.8f, .78f, .75f}, 0, 1, "colour of the other half"},
    {"size", VK_NUMBER, {.125f, 0, 0}, .01f, 1, "width of both, as a share of the way around"},
    COAT,
    {"rough", VK_NUMBER, {.05f, 0, 0}, 0, 1, "roughness of the coat"},
    {"turns", VK_NUMBER, {.5f, 0, 0}, -100, 100, "how often stripes go around on their way up"},
};

vk_Material candy(const vk_Values &p, const vk_SurfacePoint &point)
{
    const float stripe = (point.u + point.v * p.number(CANDY_TURNS)) / p.number(SIZE);
    return coated(p, p.vec(stripe - std::floor(stripe) < .5f ? DIFF1 : DIFF2));
}

constexpr vk_ShaderRow<vk_SurfaceFunction> ROWS[] = {
    {"v_checker", "checks of two colours in space", CHECKER, checker},
    {"v_marble", "polished stone with veins", MARBLE, marble},
    {"v_wood", "varnished wood with its rings and pores", WOOD, wood},
    {"v_granite", "polished stone of three kinds of grains", GRANITE, granite},
    {"v_candy", "stripes that wind upwards", CANDY, candy},
};
static_assert(std::size(CHECKER) == OWN && std::size(MARBLE) == MARBLE_VEINS + 1 &&
              std::size(WOOD) == WOOD_GRAIN + 1 && std::size(GRANITE) == GRANITE_DIFF3 + 1 &&
              std::size(CANDY) == CANDY_TURNS + 1);
} // namespace

const vk_ShaderTable<vk_SurfaceFunction> VK_PATTERN_SHADERS = {"surface", ROWS, std::size(ROWS)};
