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
