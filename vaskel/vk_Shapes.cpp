#include "vaskel/vk_Shapes.h"

#include "vaskel/vk_TeapotData.h"

#include <iterator>

namespace
{
constexpr float TURN = 2 * VK_PI;

enum { SPHERE_RADIUS };
constexpr vk_Param SPHERE[] = {
    {"radius", VK_NUMBER, {1, 0, 0}, .001f, 1000, "radius"},
};

void sphere(const vk_Values &p, vk_MeshBuilder &builder)
{
    const float radius = p.number(SPHERE_RADIUS);
    builder.patch(192, 96, [&](float u, float v) {
        const float around = TURN * u, up = VK_PI * (v - .5f);
        const vk_Vec n = {std::cos(up) * std::sin(around), std::sin(up),
                          std::cos(up) * std::cos(around)};
        return vk_Vertex{n * radius + vk_Vec{0, radius, 0}, n, u, v};
    });
}

enum { GRID_WIDTH, GRID_HEIGHT, GRID_WAVE };
constexpr vk_Param GRID[] = {
    {"width", VK_NUMBER, {2, 0, 0}, .001f, 1000, "width"},
    {"height", VK_NUMBER, {2, 0, 0}, .001f, 1000, "height"},
    {"wave", VK_NUMBER, {.16f, 0, 0}, -10, 10, "how far its folds reach to and fro"},
};

// Folds run down like a curtain's and lean a little, so that light plays on
// them in both directions.
void grid(const vk_Values &p, vk_MeshBuilder &builder)
{
    const float width = p.number(GRID_WIDTH), height = p.number(GRID_HEIGHT);
    const float wave = p.number(GRID_WAVE);
    builder.patch(120, 120, [&](float u, float v) {
        const float across = TURN * 1.5f * u, lean = 1.8f * v;
        const vk_Vec at = {width * (u - .5f), height * v, wave * std::sin(across + lean)};
        const float slope = wave * std::cos(across + lean);
        const vk_Vec n = {-slope * TURN * 1.5f / width, -slope * 1.8f / height, 1};
        return vk_Vertex{at, vk_normalize(n), u, v};
    });
}

enum { TUBE_RADIUS, TUBE_HEIGHT };
constexpr vk_Param TUBE[] = {
    {"radius", VK_NUMBER, {.75f, 0, 0}, .001f, 1000, "radius"},
    {"height", VK_NUMBER, {2, 0, 0}, .001f, 1000, "height"},
};

void tube(const vk_Values &p, vk_MeshBuilder &builder)
{
    const float radius = p.number(TUBE_RADIUS), height = p.number(TUBE_HEIGHT);
    builder.patch(192, 48, [&](float u, float v) {
        const vk_Vec n = {std::sin(TURN * u), 0, std::cos(TURN * u)};
        return vk_Vertex{n * radius + vk_Vec{0, height * v, 0}, n, u, v};
    });
}

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

enum { TEAPOT_WIDTH };
constexpr vk_Param TEAPOT[] = {
    {"width", VK_NUMBER, {2.6f, 0, 0}, .001f, 1000, "from handle to spout"},
};

void teapot(const vk_Values &p, vk_MeshBuilder &builder)
{
    constexpr float LEFT = -3, RIGHT = 3.525f; // of the data

    const float scale = p.number(TEAPOT_WIDTH) / (RIGHT - LEFT);
    for (const auto &patch : VK_TEAPOT_PATCHES)
        builder.patch(20, 20, [&](float u, float v) {
            vk_Vertex vertex = teapotVertex(patch, u, v);
            vertex.position = (vertex.position - vk_Vec{(LEFT + RIGHT) / 2, 0, 0}) * scale;
            return vertex;
        });
}

constexpr vk_ShapeRow ROWS[] = {
    {"sphere", SPHERE, sphere},
    {"grid", GRID, grid},
    {"tube", TUBE, tube},
    {"teapot", TEAPOT, teapot},
};
static_assert(std::size(SPHERE) == SPHERE_RADIUS + 1 && std::size(GRID) == GRID_WAVE + 1 &&
              std::size(TUBE) == TUBE_HEIGHT + 1 && std::size(TEAPOT) == TEAPOT_WIDTH + 1);
} // namespace

const vk_ShapeRow *vk_findShape(std::string_view word)
{
    for (const vk_ShapeRow &row : ROWS)
        if (word == row.word)
            return &row;
    return nullptr;
}
