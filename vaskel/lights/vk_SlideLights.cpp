#include "vaskel/lights/vk_SlideLights.h"

#include "vaskel/base/vk_Noise.h"
#include "vaskel/lights/vk_BallLight.h"

#include <iterator>

namespace
{
// What all have: a slide lets a share of the light pass at each place.
struct Slide : vk_LightShader {
    float angle, radius = .08f, soft;

    Slide(float width, float softness) : angle(width), soft(softness) {}
    void describe(vk_ParamList &list) override
    {
        vk_LightShader::describe(list);
        // Less than 90 degrees, where a slide would have no end.
        list.number("angle", angle, 1, 80, "half of its width, degrees");
        list.number("radius", radius, .02f, 1000, "of the glowing ball");
        list.number("soft", soft, .001f, 1, "how softly edges fade");
    }

    // 1 inside of an edge, 0 outside, half at the edge; `inside` is how far in.
    float edge(float inside) const { return vk_smoothStep(-soft / 2, soft / 2, inside); }
};

// The light of a slide that has float passes(float x, float y) const: a ball behind a picture.
// Its shadow is as soft as the ball is wide, but the slide itself is sharp at every distance,
// as if it were focussed everywhere. A template, as passes() is asked for every sample.
template <class Picture>
class SlideLight final : public vk_BallLight
{
public:
    explicit SlideLight(const Picture &slide)
        : vk_BallLight(slide.from, slide.radius, slide.to, slide.white()), mySlide(slide)
    {
        const vk_Vec ahead = vk_normalize(slide.to - slide.from);
        const vk_Vec level = vk_cross(ahead, {0, 1, 0});
        const float wide = std::tan(slide.angle * VK_PI / 180);
        // A light that looks straight down has no level side; any will do.
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
        // More than a round picture lights, which costs samples of fog but no light.
        for (const vk_Vec &inwards :
             {myAhead + myRight, myAhead - myRight, myAhead + myUp, myAhead - myUp}) {
            const float off = vk_dot(origin - centre(), inwards);
            const float slope = vk_dot(direction, inwards);
            if (slope > 0)
                lit.begin = std::max(lit.begin, -off / slope);
            else if (slope < 0)
                lit.end = std::min(lit.end, -off / slope);
            // Along a plane, outside of it.
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
        // Also what lies behind it: there depth is below 0.
        if (sample.density <= 0 || std::max(std::abs(x), std::abs(y)) >= depth)
            return {};
        // By the point's place alone, not by the part of the ball that is seen: that keeps the
        // picture sharp.
        const float share = mySlide.passes(x / depth, y / depth);
        if (share <= 0)
            return {};
        sample.radiance = sample.radiance * share;
        return sample;
    }

    Picture mySlide;
    vk_Vec myRight, myUp;
    vk_Vec myAhead; // as long as the slide's half width at distance 1
};

// What makes the light of a slide.
template <class Picture>
struct SlideOf : Slide {
    using Slide::Slide;
    std::unique_ptr<vk_Light> make() const override
    {
        return std::make_unique<SlideLight<Picture>>(static_cast<const Picture &>(*this));
    }
};

struct Spot final : SlideOf<Spot> {
    Spot() : SlideOf(12, .25f) {}
    // The edge ends where the cone does: the light reaches nothing outside of it.
    float passes(float x, float y) const { return edge(1 - soft / 2 - std::sqrt(x * x + y * y)); }
};

// How far a place lies inside of its pane, along one axis.
float insidePane(float x, float panes, float bar)
{
    // Edges of panes fall on whole numbers; the pane's half width is 1 / panes.
    const float at = (x + 1) / 2 * panes;
    const float inPane = std::clamp(at - std::floor(at), 0.0f, 1.0f);
    return std::min(inPane, 1 - inPane) * 2 / panes - bar / 2;
}

struct Window final : SlideOf<Window> {
    float columns = 2, rows = 2, bar = .12f;

    Window() : SlideOf(14, .03f) {}
    void describe(vk_ParamList &list) override
    {
        Slide::describe(list);
        list.number("columns", columns, 1, 100, "panes side by side, rounded");
        list.number("rows", rows, 1, 100, "panes above each other, rounded");
        list.number("bar", bar, 0, 1, "width of the bars between");
    }
    float passes(float x, float y) const
    {
        if (std::max(std::abs(x), std::abs(y)) >= 1)
            return 0;
        return edge(std::min(insidePane(x, std::round(columns), bar),
                             insidePane(y, std::round(rows), bar)));
    }
};

struct Blinds final : SlideOf<Blinds> {
    float slats = 9, gap = .5f;

    Blinds() : SlideOf(17, .04f) {}
    void describe(vk_ParamList &list) override
    {
        Slide::describe(list);
        list.number("slats", slats, 1, 100, "how many gaps it has, rounded");
        list.number("gap", gap, 0, 1, "share of the gaps");
    }
    float passes(float x, float y) const
    {
        // The slide is 2 high, of which each gap has its part with a slat.
        const float gaps = std::round(slats), shut = (1 - gap) * 2 / gaps;
        return std::abs(y) < 1 ? edge(std::min(insidePane(y, gaps, shut), 1 - std::abs(x))) : 0;
    }
};

// Small gaps show the sun's disc, so the spots are round. A plane through cells in
// space has large and small ones.
struct Leaves final : SlideOf<Leaves> {
    float size = .11f, gaps = .55f;

    Leaves() : SlideOf(30, .3f) {}
    void describe(vk_ParamList &list) override
    {
        Slide::describe(list);
        list.number("size", size, .01f, 10, "from spot to spot");
        list.number("gaps", gaps, 0, 1, "how open the tree is");
    }
    float passes(float x, float y) const
    {
        return edge(gaps - vk_cell({x / size, y / size, .5f}).distance);
    }
};

constexpr vk_ShaderRow<vk_LightShader> ROWS[] = {
    vk_row<Spot>("v_spot", "a cone with a soft edge"),
    vk_row<Window>("v_window", "the picture of a window's panes"),
    vk_row<Blinds>("v_blinds", "stripes, as through a blind"),
    vk_row<Leaves>("v_leaves", "spots, as through the leaves of a tree"),
};
} // namespace

const vk_ShaderTable<vk_LightShader> VK_SLIDE_LIGHTS = {"light", ROWS, std::size(ROWS)};
