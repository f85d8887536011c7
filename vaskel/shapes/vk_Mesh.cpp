#include "vaskel/shapes/vk_Mesh.h"

#include <tbb/parallel_for.h>

namespace
{
// The normal of a surface through four neighbours, on the side of the one that it
// had. At a pole, where neighbours fall together, that one stays.
vk_Vec normalAmong(const vk_Vec &along, const vk_Vec &up, const vk_Vec &before)
{
    const vk_Vec normal = vk_cross(along, up);
    const float area2 = vk_dot(normal, normal);
    if (!(area2 > 1e-6f * vk_dot(along, along) * vk_dot(up, up)))
        return before;
    return vk_normalize(vk_dot(normal, before) < 0 ? -normal : normal);
}
} // namespace

// Moves the vertices of a net and drops its outermost ones, which have only been
// there for the normals of their neighbours.
void vk_MeshBuilder::displace(std::vector<vk_Vertex> &net, std::size_t width) const
{
    std::vector<vk_Vec> moved(net.size());
    tbb::parallel_for(std::size_t{0}, net.size(), [&](std::size_t i) {
        const vk_Vertex &vertex = net[i];
        const float height = myDisplace->displace({vertex.position, vertex.u, vertex.v});
        moved[i] = vertex.position + vertex.normal * height;
    });
    std::size_t kept = 0; // so far; those that are still needed lie behind
    for (std::size_t i = width; i + width < net.size(); ++i) {
        if (i % width == 0 || i % width == width - 1)
            continue;
        vk_Vertex &vertex = net[kept++] = net[i];
        vertex.position = moved[i];
        vertex.normal = normalAmong(moved[i + 1] - moved[i - 1],
                                    moved[i + width] - moved[i - width], vertex.normal);
    }
    net.resize(kept);
}

void vk_MeshBuilder::add(const std::vector<vk_Vertex> &net, std::uint32_t columns,
                         std::uint32_t rows)
{
    const auto first = static_cast<std::uint32_t>(myMesh.vertices.size());
    myMesh.vertices.reserve(first + net.size());
    myMesh.triangles.reserve(myMesh.triangles.size() + 2 * std::size_t{columns} * rows);
    for (vk_Vertex vertex : net) {
        vertex.position = myTransform.point(vertex.position);
        vertex.normal = myTransform.normal(vertex.normal);
        myMesh.vertices.push_back(vertex);
    }
    for (std::uint32_t row = 0; row < rows; ++row)
        for (std::uint32_t column = 0; column < columns; ++column) {
            const std::uint32_t a = first + row * (columns + 1) + column;
            const std::uint32_t b = a + columns + 1;
            myMesh.triangles.push_back({a, a + 1, b});
            myMesh.triangles.push_back({a + 1, b + 1, b});
        }
}
