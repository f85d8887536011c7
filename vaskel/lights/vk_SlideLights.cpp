#include "vaskel/lights/vk_SlideLights.h"

#include "vaskel/base/vk_Noise.h"
#include "vaskel/lights/vk_BallLight.h"

#include <iterator>

namespace
{
using Slide = float(const vk_Values &, float x, float y);

enum { ANGLE = VK_LIGHT_OWN, RADIUS, SOFT, OWN };
constexpr vk_Param angleOf(float standard)
{
    return {"angle", VK_NUMBER, {standard, 0, 0}, 1, 80, "half of its width, degrees"};
}
constexpr vk_Param RADIUS_ROW = {"radius", VK_NUMBER, {.08f, 0, 0},
                                 .02f,     1000,      "of the glowing ball"};
constexpr vk_Param softOf(float standard)
{
    return {"soft", VK_NUMBER, {standard, 0, 0}, .001f, 1, "how softly edges fade"};
}

class SlideLight final : public vk_BallLight
{
public:
    SlideLight(const vk_Values &values, Slide *slide)
        : vk_BallLight(values.vec(VK_FROM), values.number(RADIUS), values.vec(VK_TO),
                       vk_lightWhite(values)),
          myValues(values), mySlide(slide)
    {
        const vk_Vec ahead = vk_normalize(values.vec(VK_TO) - values.vec(VK_FROM));
        const vk_Vec level = vk_cross(ahead, {0, 1, 0});
        const float wide = std::tan(values.number(ANGLE) * VK_PI / 180);
        myRight = vk_dot(level, level) > 1e-6f ? vk_normalize(level) : vk_Vec{1, 0, 0};
        myUp = vk_cross(myRight, ahead);
        myAhead = ahead * wide;
    }
    vk_LightSample sample(const vk_Vec &from, const vk_Square &at) const override
    {
        return passed(from, vk_BallLight::sample(from, at));
    }
    vk_LightSample hit(const vk_Vec &from, const vk_Vec &direction) const override
    {
        return passed(from, vk_BallLight::hit(from, direction));
    }
    // Inside of the four planes through the slide's edges and the light.
    vk_Span reach(const vk_Vec &origin, const vk_Vec &direction) const override
    {
        vk_Span lit = vk_BallLight::reach(origin, direction);
        for (const vk_Vec &inwards :
             {myAhead + myRight, myAhead - myRight, myAhead + myUp, myAhead - myUp}) {
            const float off = vk_dot(origin - centre(), inwards);
            const float slope = vk_dot(direction, inwards);
            if (slope > 0)
                lit.begin = std::max(lit.begin, -off / slope);
            else if (slope < 0)
                lit.end = std::min(lit.end, -off / slope);
            else if (off < 0)
                lit.end = 0;
        }
        return lit;
    }

private:
    vk_LightSample passed(const vk_Vec &from, vk_LightSample sample) const
    {
        const vk_Vec way = from - centre();
        const float depth = vk_dot(way, myAhead);
        const float x = vk_dot(way, myRight), y = vk_dot(way, myUp);
        if (sample.density <= 0 || std::max(std::abs(x), std::abs(y)) >= depth)
            return {};
        const float share = mySlide(myValues, x / depth, y / depth);
        if (share <= 0)
            return {};
        sample.radiance = sample.radiance * share;
        return sample;
    }

    vk_Values myValues;
    Slide *mySlide;
    vk_Vec myRight, myUp;
    vk_Vec myAhead; // as long as the slide's half width at distance 1
};

template <Slide slide>
std::unique_ptr<vk_Light> project(const vk_Values &p)
{
    return std::make_unique<SlideLight>(p, slide);
}

// 1 inside of an edge, 0 outside, half at the edge; `inside` is how far in.
float edge(const vk_Values &p, float inside)
{
    const float soft = p.number(SOFT);
    return vk_smoothStep(-soft / 2, soft / 2, inside);
}

constexpr vk_Param SPOT[] = {
    VK_LIGHT_FROM, VK_LIGHT_TO, VK_LIGHT_COLOR, VK_LIGHT_INTENSITY,
    angleOf(12),   RADIUS_ROW,  softOf(.25f),
};

float spot(const vk_Values &p, float x, float y)
{
    return edge(p, 1 - p.number(SOFT) / 2 - std::sqrt(x * x + y * y));
}

enum { WINDOW_COLUMNS = OWN, WINDOW_ROWS, WINDOW_BAR };
constexpr vk_Param WINDOW[] = {
    VK_LIGHT_FROM,
    VK_LIGHT_TO,
    VK_LIGHT_COLOR,
    VK_LIGHT_INTENSITY,
    angleOf(14),
    RADIUS_ROW,
    softOf(.03f),
    {"columns", VK_NUMBER, {2, 0, 0}, 1, 100, "panes side by side, rounded"},
    {"rows", VK_NUMBER, {2, 0, 0}, 1, 100, "panes above each other, rounded"},
    {"bar", VK_NUMBER, {.12f, 0, 0}, 0, 1, "width of the bars between"},
};

// How far a place lies inside of its pane, along one axis.
float insidePane(float x, float panes, float bar)
{
    const float at = (x + 1) / 2 * panes;
    const float inPane = std::clamp(at - std::floor(at), 0.0f, 1.0f);
    return std::min(inPane, 1 - inPane) * 2 / panes - bar / 2;
}

float window(const vk_Values &p, float x, float y)
{
    if (std::max(std::abs(x), std::abs(y)) >= 1)
        return 0;
    const float bar = p.number(WINDOW_BAR);
    return edge(p, std::min(insidePane(x, std::round(p.number(WINDOW_COLUMNS)), bar),
                            insidePane(y, std::round(p.number(WINDOW_ROWS)), bar)));
}

enum { BLINDS_SLATS = OWN, BLINDS_GAP };
constexpr vk_Param BLINDS[] = {
    VK_LIGHT_FROM,
    VK_LIGHT_TO,
    VK_LIGHT_COLOR,
    VK_LIGHT_INTENSITY,
    angleOf(17),
    RADIUS_ROW,
    softOf(.04f),
    {"slats", VK_NUMBER, {9, 0, 0}, 1, 100, "how many gaps it has, rounded"},
    {"gap", VK_NUMBER, {.5f, 0, 0}, 0, 1, "share of the gaps"},
};

float blinds(const vk_Values &p, float x, float y)
{
    const float slats = std::round(p.number(BLINDS_SLATS));
    const float shut = (1 - p.number(BLINDS_GAP)) * 2 / slats;
    return std::abs(y) < 1 ? edge(p, std::min(insidePane(y, slats, shut), 1 - std::abs(x))) : 0;
}

enum { LEAVES_SIZE = OWN, LEAVES_GAPS };
constexpr vk_Param LEAVES[] = {
    VK_LIGHT_FROM,
    VK_LIGHT_TO,
    VK_LIGHT_COLOR,
    VK_LIGHT_INTENSITY,
    angleOf(30),
    RADIUS_ROW,
    softOf(.3f),
    {"size", VK_NUMBER, {.11f, 0, 0}, .01f, 10, "from spot to spot"},
    {"gaps", VK_NUMBER, {.55f, 0, 0}, 0, 1, "how open the tree is"},
};

// Small gaps show the sun's disc, so the spots are round. A plane through cells in
// space has large and small ones.
float leaves(const vk_Values &p, float x, float y)
{
    const float size = p.number(LEAVES_SIZE);
    return edge(p, p.number(LEAVES_GAPS) - vk_cell({x / size, y / size, .5f}).distance);
}

constexpr vk_ShaderRow<vk_LightFunction> ROWS[] = {
    {"v_spot", "a cone with a soft edge", SPOT, project<spot>},
    {"v_window", "the picture of a window's panes", WINDOW, project<window>},
    {"v_blinds", "stripes, as through a blind", BLINDS, project<blinds>},
    {"v_leaves", "spots, as through the leaves of a tree", LEAVES, project<leaves>},
};
static_assert(std::size(SPOT) == OWN && std::size(WINDOW) == WINDOW_BAR + 1 &&
              std::size(BLINDS) == BLINDS_GAP + 1 && std::size(LEAVES) == LEAVES_GAPS + 1);
} // namespace

const vk_ShaderTable<vk_LightFunction> VK_SLIDE_LIGHTS = {"light", ROWS, std::size(ROWS)};
