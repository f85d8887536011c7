#include "vaskel/shapes/vk_Shapes.h"

#include <gtest/gtest.h>

namespace
{
vk_Mesh build(const char *word, const vk_DisplaceShader *displace = nullptr,
              const vk_Transform &transform = {})
{
    vk_MeshBuilder builder(transform, displace);
    vk_findShape(word)->make()->build(builder);
    return builder.take();
}

void setHeight(vk_DisplaceShader &shader, float height)
{
    shader.params().find("height")->set({height, 0, 0});
}

// The share of triangles whose normals point to the side that the vertices'
// normals say.
double agreement(const vk_Mesh &mesh)
{
    double agree = 0, all = 0;
    for (std::size_t i = 0; i < mesh.triangles(); ++i) {
        const auto corners = mesh.corners(i);
        const vk_Vertex &a = mesh.vertices[corners[0]];
        const vk_Vertex &b = mesh.vertices[corners[1]];
        const vk_Vertex &c = mesh.vertices[corners[2]];
        const vk_Vec facet = vk_cross(b.position - a.position, c.position - a.position);
        if (vk_length(facet) < 1e-9f)
            continue; // at a pole
        all += 1;
        const vk_Vec mean = vk_normalize(a.normal + b.normal + c.normal);
        agree += vk_dot(vk_normalize(facet), mean) > .8f ? 1 : 0;
    }
    return agree / all;
}
} // namespace

TEST(Shapes, StandOnTheFloorAndTheirNormalsFit)
{
    const auto bumps = VK_DISPLACE_SHADERS.rows->make();
    for (const char *word : {"shaderball", "sphere", "grid", "tube", "teapot"}) {
        SCOPED_TRACE(word);
        const vk_Mesh plain = build(word);
        float lowest = 10, widest = 0;
        for (const vk_Vertex &vertex : plain.vertices) {
            lowest = std::min(lowest, vertex.position.y);
            widest = std::max(widest, std::abs(vertex.position.x));
            EXPECT_NEAR(1, vk_length(vertex.normal), 1e-4f);
        }
        EXPECT_NEAR(0, lowest, 1e-4f);
        EXPECT_LT(widest, 1.5f);
        EXPECT_GT(widest, .7f);
        EXPECT_GT(agreement(plain), .995);
        EXPECT_GT(agreement(build(word, bumps.get())), .94);
        // A mirroring transform turns the triangles round, not the outside.
        EXPECT_LT(agreement(build(word, nullptr, vk_Transform::scaling({-1, 1, 1}))), .005);
    }
}

TEST(Shapes, AreAsLargeAsTheirParametersSay)
{
    const struct {
        const char *word, *param;
        float value, width, height;
    } cases[] = {
        {"sphere", "radius", .4f, .8f, .8f},   {"tube", "radius", .4f, .8f, 2},
        {"tube", "height", .5f, 1.5f, .5f},    {"grid", "width", 3, 3, 2},
        {"grid", "height", .5f, 2, .5f},       {"shaderball", "height", 1, .88f, 1},
        {"teapot", "width", 1.3f, 1.3f, .63f},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.word) + ' ' + c.param);
        const auto shape = vk_findShape(c.word)->make();
        shape->params().find(c.param)->set({c.value, 0, 0});
        const vk_Transform still;
        vk_MeshBuilder builder(still, nullptr);
        shape->build(builder);
        vk_Vec low = vk_grey(9), high = vk_grey(-9);
        for (const vk_Vertex &vertex : builder.take().vertices) {
            const vk_Vec &p = vertex.position;
            low = {std::min(low.x, p.x), std::min(low.y, p.y), 0};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), 0};
        }
        EXPECT_NEAR(0, low.y, 1e-4f);
        EXPECT_NEAR(c.width, high.x - low.x, .02f);
        EXPECT_NEAR(c.height, high.y, .01f);
    }
}

// Else a texture was repeated on each of its patches.
TEST(Shapes, UGoesOnceAroundTheTeapot)
{
    const vk_Mesh mesh = build("teapot");
    float front[2] = {9, -9}, back[2] = {9, -9}; // least and most
    for (const vk_Vertex &vertex : mesh.vertices)
        if (std::abs(vertex.position.z) > .7f) {
            float(&ends)[2] = vertex.position.z > 0 ? front : back;
            ends[0] = std::min(ends[0], vertex.u);
            ends[1] = std::max(ends[1], vertex.u);
        }
    EXPECT_TRUE(front[1] < back[0] || back[1] < front[0]);
    EXPECT_LT(front[1] - front[0], .5f);
}

// On a ball of radius 1, places change by half a turn with v, and by less with u near a pole.
TEST(Shapes, DisplacementsAreToldTheSlopesOfTheSurface)
{
    struct Slopes final : vk_DisplaceShader {
        float displace(const vk_SurfacePoint &point) const override
        {
            // Beyond the poles, and where neighbours are missing, they are about right.
            if (point.v > .1f && point.v < .9f && point.u > .01f && point.u < .99f) {
                EXPECT_NEAR(VK_PI, vk_length(point.dPdv), .01f);
                EXPECT_NEAR(2 * VK_PI * std::sin(VK_PI * point.v), vk_length(point.dPdu), .01f);
            }
            return 0;
        }
    } slopes;
    build("sphere", &slopes);
}

TEST(Shapes, DisplacementsMoveNoFartherThanTheirHeight)
{
    const auto none = VK_DISPLACE_SHADERS.rows->make();
    setHeight(*none, 0);
    const vk_Mesh plain = build("sphere", none.get());
    for (const auto &row : VK_DISPLACE_SHADERS)
        for (const float height : {.05f, -.5f, .5f}) {
            SCOPED_TRACE(row.name);
            const auto shader = row.make();
            setHeight(*shader, height);
            const vk_Mesh moved = build("sphere", shader.get());
            float low = 9, high = -9;
            for (std::size_t i = 0; i < moved.vertices.size(); ++i) {
                const vk_Vec way = moved.vertices[i].position - plain.vertices[i].position;
                const float out = vk_dot(way, plain.vertices[i].normal);
                low = std::min(low, out);
                high = std::max(high, out);
                ASSERT_NEAR(1, vk_length(moved.vertices[i].normal), 1e-3f);
            }
            EXPECT_LE(std::max(-low, high), std::abs(height) * 1.01f);
            EXPECT_GT(high - low, std::abs(height) * .7f);
        }
}

TEST(Shapes, DentsGoInAndBricksStandOut)
{
    const auto ends = [](const std::string &name) {
        float low = 9, high = -9;
        for (const auto &row : VK_DISPLACE_SHADERS)
            for (int i = 0; name == row.name && i < 4000; ++i) {
                vk_SurfacePoint point;
                const auto at = [i](int step) { return static_cast<float>(i * step % 997) / 997; };
                point.position = {at(31), at(101), at(7)};
                point.u = at(31);
                point.v = at(101);
                const float by = row.make()->displace(point);
                low = std::min(low, by);
                high = std::max(high, by);
            }
        return std::pair(low, high);
    };
    EXPECT_LT(ends("v_dents").first, -.05f);
    EXPECT_LE(ends("v_dents").second, 0);
    EXPECT_GE(ends("v_bricks").first, 0);
    EXPECT_GT(ends("v_bricks").second, .04f);
}

TEST(Shapes, NormalsPointOutwards)
{
    // Of the teapot's vertices some look at its axis.
    for (const auto &[word, share] : {std::pair("sphere", 0.), {"tube", 0.}, {"teapot", .25}}) {
        const vk_Mesh mesh = build(word);
        const auto inwards =
            std::count_if(mesh.vertices.begin(), mesh.vertices.end(), [](const vk_Vertex &vertex) {
                return vk_dot(vertex.position - vk_Vec{0, 1, 0}, vertex.normal) <= 0;
            });
        EXPECT_LE(static_cast<double>(inwards), share * static_cast<double>(mesh.vertices.size()));
    }
}

TEST(Transform, NormalsStaySquareToTheirSurface)
{
    const vk_Transform t =
        vk_Transform::rotation(30, {1, 1, 0}) * vk_Transform::scaling({2, .5f, -1});
    const vk_Vec a = {.3f, -.7f, 2}, b = {1, .2f, .4f};
    const vk_Vec normal = t.normal(vk_normalize(vk_cross(a, b)));
    EXPECT_NEAR(0, vk_dot(normal, t.vector(a)), 1e-5f);
    EXPECT_NEAR(0, vk_dot(normal, t.vector(b)), 1e-5f);
    EXPECT_GT(vk_dot(normal, t.vector(vk_cross(a, b))), 0); // to the same side
}

TEST(Transform, InverseAndNestingUndoAndOrder)
{
    const vk_Transform t = vk_Transform::translation({1, 2, 3}) *
                           vk_Transform::rotation(30, {1, 1, 0}) *
                           vk_Transform::scaling({2, 3, -1});
    const vk_Vec p = {.3f, -.7f, 2};
    EXPECT_LT(vk_length(t.inverse().point(t.point(p)) - p), 1e-5f);
    const vk_Vec turned = vk_Transform::rotation(90, {0, 1, 0}).point({1, 0, 0});
    EXPECT_LT(vk_length(turned - vk_Vec{0, 0, -1}), 1e-6f);
}
