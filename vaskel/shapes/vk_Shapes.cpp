#include "vaskel/shapes/vk_Shapes.h"

#include "vaskel/shapes/vk_TeapotData.h"

#include <iterator>

namespace
{
constexpr float TURN = 2 * VK_PI;

// Bernstein's polynomials of degree three, and their slopes.
struct Bernstein {
    float weight[4];
    float slope[4];

    explicit Bernstein(float t)
        : weight{(1 - t) * (1 - t) * (1 - t), 3 * t * (1 - t) * (1 - t), 3 * t * t * (1 - t),
                 t * t * t},
          slope{-3 * (1 - t) * (1 - t), 3 * (1 - t) * (1 - 3 * t), 3 * t * (2 - 3 * t), 3 * t * t}
    {
    }
};

// The stand's outline from the middle of its bottom to the middle of the dish on
// top, as radius and height: Bezier curves of degree three that share their ends
// and go on smoothly, so that a displaced stand has no gaps. The templates of other
// scene languages have the same figures.
constexpr int STAND_CURVES = 7;
constexpr float STAND[3 * STAND_CURVES + 1][2] = {
    {0, 0},        {.2f, 0},      {.4f, 0},      // bottom
    {.58f, 0},     {.62f, 0},     {.64f, .02f},  // foot
    {.64f, .04f},  {.64f, .06f},  {.625f, .07f}, //
    {.6f, .07f},   {.5f, .07f},   {.42f, .1f},   // waist
    {.42f, .165f}, {.42f, .23f},  {.48f, .27f},  //
    {.54f, .28f},  {.57f, .285f}, {.56f, .32f},  // lip
    {.52f, .31f},  {.4f, .28f},   {.2f, .21f},   // dish
    {0, .21f},
};

vk_Vertex standVertex(float u, float v, float scale)
{
    // At v = 1 the last curve's end, not the first point of one that is not there.
    const float along = std::clamp(v * STAND_CURVES, 0.0f, STAND_CURVES - .001f);
    const int curve = static_cast<int>(along);
    // Not clamped: beyond its ends, where displacements ask, the first and the last curve go on.
    const Bernstein b(v * STAND_CURVES - static_cast<float>(curve));
    vk_Vec at, slope; // x is the radius
    for (int i = 0; i < 4; ++i) {
        const vk_Vec point = {STAND[3 * curve + i][0], STAND[3 * curve + i][1], 0};
        at += point * b.weight[i];
        slope += point * b.slope[i];
    }
    const vk_Vec out = {std::sin(TURN * u), 0, std::cos(TURN * u)};
    const vk_Vec position = (out * at.x + vk_Vec{0, at.y, 0}) * scale;
    // The tangent turned by a right angle, to the outside.
    return {position, vk_normalize(out * slope.y - vk_Vec{0, slope.x, 0}), u, v};
}

void ball(vk_MeshBuilder &builder, float radius, float centre)
{
    // Fine enough that at 256 pixels no corner shows at the silhouette, which smooth normals do
    // not hide.
    builder.patch(144, 72, [&](float u, float v) {
        const float around = TURN * u, up = VK_PI * (v - .5f);
        const vk_Vec n = {std::cos(up) * std::sin(around), std::sin(up),
                          std::cos(up) * std::cos(around)};
        return vk_Vertex{n * radius + vk_Vec{0, centre, 0}, n, u, v};
    });
}

struct Sphere final : vk_Shape {
    float radius = 1;

    void describe(vk_ParamList &list) override
    {
        list.number("radius", radius, .001f, 1000, "radius");
    }
    void build(vk_MeshBuilder &builder) const override { ball(builder, radius, radius); }
};

struct ShaderBall final : vk_Shape {
    float height = 2;

    void describe(vk_ParamList &list) override
    {
        list.number("height", height, .001f, 1000, "height of ball and stand");
    }
    void build(vk_MeshBuilder &builder) const override
    {
        const float scale = height / 2;
        // The ball hangs a little above the dish, which it would touch at a point only.
        ball(builder, .88f * scale, 1.12f * scale);
        builder.patch(144, 40, [&](float u, float v) { return standVertex(u, v, scale); });
    }
};

// Folds run down like those of a curtain, from a top edge that is nearly straight,
// and lean a little, so that light plays on them in both directions.
struct Grid final : vk_Shape {
    float width = 2, height = 2, wave = .16f;

    void describe(vk_ParamList &list) override
    {
        list.number("width", width, .001f, 1000, "width");
        list.number("height", height, .001f, 1000, "height");
        list.number("wave", wave, -10, 10, "how far its folds reach to and fro");
    }
    void build(vk_MeshBuilder &builder) const override
    {
        builder.patch(160, 120, [&](float u, float v) {
            // Two whole waves, so that both side edges swing alike.
            const float fold = TURN * 2 * u + 1.4f * v, reach = wave * (1.1f - .85f * v);
            const vk_Vec at = {width * (u - .5f), height * v, reach * std::sin(fold)};
            const float slope = reach * std::cos(fold);
            // The cross product of both slopes.
            const vk_Vec n = {-slope * TURN * 2 / width,
                              (.85f * wave * std::sin(fold) - slope * 1.4f) / height, 1};
            return vk_Vertex{at, vk_normalize(n), u, v};
        });
    }
};

struct Tube final : vk_Shape {
    float radius = .75f, height = 2;

    void describe(vk_ParamList &list) override
    {
        list.number("radius", radius, .001f, 1000, "radius");
        list.number("height", height, .001f, 1000, "height");
    }
    void build(vk_MeshBuilder &builder) const override
    {
        builder.patch(144, 40, [&](float u, float v) {
            const vk_Vec n = {std::sin(TURN * u), 0, std::cos(TURN * u)};
            return vk_Vertex{n * radius + vk_Vec{0, height * v, 0}, n, u, v};
        });
    }
};

vk_Vec blended(const unsigned short (&patch)[16], const float (&u)[4], const float (&v)[4])
{
    vk_Vec sum;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            const float *point = VK_TEAPOT_POINTS[patch[4 * row + column]];
            sum += vk_Vec{point[0], point[1], point[2]} * (u[column] * v[row]);
        }
    return sum;
}

// The data's z is up: turned about x.
vk_Vec upright(const vk_Vec &p)
{
    return {p.x, p.z, -p.y};
}

vk_Vertex teapotVertex(const unsigned short (&patch)[16], float u, float v)
{
    // Where a row of points falls together, the slopes beside it say where the
    // surface faces.
    const float inside = std::clamp(v, 1e-3f, 1 - 1e-3f);
    const Bernstein bu(u), bv(v), beside(inside);
    const vk_Vec along = blended(patch, bu.slope, beside.weight);
    const vk_Vec up = blended(patch, bu.weight, beside.slope);
    return {upright(blended(patch, bu.weight, bv.weight)),
            upright(vk_normalize(vk_cross(along, up))), u, v};
}

// Patches that follow each other around a part of the teapot, and where its texture
// has their first and last rows of points.
struct Ring {
    int patches;
    float first, last;
};
constexpr Ring RINGS[] = {
    {4, 1, .95f}, {4, .95f, .4f}, {4, .4f, .08f},              // rim and body
    {2, 0, .5f},  {2, .5f, 1},    {2, 0, .5f},    {2, .5f, 1}, // handle, spout
    {4, 1, .6f},  {4, .6f, .3f},  {4, 0, .08f},                // knob, lid, bottom
};

struct Teapot final : vk_Shape {
    float width = 2.6f;

    void describe(vk_ParamList &list) override
    {
        list.number("width", width, .001f, 1000, "from handle to spout");
    }
    void build(vk_MeshBuilder &builder) const override
    {
        // The outermost control points, which the spout's lip does not quite reach.
        constexpr float LEFT = -3, RIGHT = 3.525f; // of the data

        const float scale = width / (RIGHT - LEFT);
        const auto *patch = VK_TEAPOT_PATCHES;
        for (const Ring &ring : RINGS)
            for (int i = 0; i < ring.patches; ++i, ++patch)
                builder.patch(20, 20, [&](float u, float v) {
                    vk_Vertex vertex = teapotVertex(*patch, u, v);
                    vertex.position = (vertex.position - vk_Vec{(LEFT + RIGHT) / 2, 0, 0}) * scale;
                    vertex.u = (static_cast<float>(i) + u) / static_cast<float>(ring.patches);
                    vertex.v = ring.first + (ring.last - ring.first) * v;
                    return vertex;
                });
    }
};
} // namespace

const vk_ShaderRow<vk_Shape> VK_SHAPES[VK_SHAPE_COUNT] = {
    vk_row<ShaderBall>("shaderball", "a ball on a stand, which curves both ways"),
    vk_row<Sphere>("sphere", "a ball"),
    vk_row<Grid>("grid", "a hanging sheet with folds"),
    vk_row<Tube>("tube", "an open cylinder, its inside visible"),
    vk_row<Teapot>("teapot", "the teapot"),
};

const vk_ShaderRow<vk_Shape> *vk_findShape(std::string_view word)
{
    for (const vk_ShaderRow<vk_Shape> &row : VK_SHAPES)
        if (word == row.name)
            return &row;
    return nullptr;
}
