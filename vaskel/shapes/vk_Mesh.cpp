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
    // Where the sine between them is below a thousandth, rounding decides. Written so that NaN,
    // too, keeps the one before.
    if (!(area2 > 1e-6f * vk_dot(along, along) * vk_dot(up, up)))
        return before;
    return vk_normalize(vk_dot(normal, before) < 0 ? -normal : normal);
}

// How the place changes from one vertex to another with a coordinate that differs so much.
vk_Vec slopeBetween(const vk_Vertex &a, const vk_Vertex &b, float difference)
{
    return difference != 0 ? (b.position - a.position) * (1 / difference) : vk_Vec{};
}

// A vertex of a net as a displacement is told of it.
vk_SurfacePoint pointOf(const std::vector<vk_Vertex> &net, std::size_t width, std::size_t i)
{
    const std::size_t column = i % width, last = net.size() - 1;
    const vk_Vertex &vertex = net[i];
    // At the net's rim a vertex stands for the neighbour that it lacks; those of the rim are
    // dropped later.
    const vk_Vertex &left = net[column > 0 ? i - 1 : i];
    const vk_Vertex &right = net[column + 1 < width ? i + 1 : i];
    const vk_Vertex &below = net[i >= width ? i - width : i];
    const vk_Vertex &above = net[i + width <= last ? i + width : i];
    vk_SurfacePoint point;
    point.position = point.place = vertex.position;
    point.u = vertex.u;
    point.v = vertex.v;
    point.normal = point.facet = vertex.normal;
    point.incoming = -vertex.normal;
    point.dPdu = slopeBetween(left, right, right.u - left.u);
    point.dPdv = slopeBetween(below, above, above.v - below.v);
    // Half the way across both neighbours: a displacement finer than the mesh only makes noise.
    point.footprint = vk_length(right.position - left.position) / 2;
    return point;
}
} // namespace

// Moves the vertices of a net and drops its outermost ones, which have only been
// there for the normals of their neighbours.
void vk_MeshBuilder::displace(std::vector<vk_Vertex> &net, std::size_t width) const
{
    constexpr std::size_t BLOCK = 64; // vertices that are moved together

    std::vector<vk_Vec> moved(net.size());
    // Fixed blocks, whatever the number of threads: a shader that works on several points at once
    // must see the same ones.
    const std::size_t blocks = (net.size() + BLOCK - 1) / BLOCK;
    tbb::parallel_for(std::size_t{0}, blocks, [&](std::size_t block) {
        const std::size_t first = block * BLOCK, count = std::min(BLOCK, net.size() - first);
        vk_SurfacePoint points[BLOCK];
        for (std::size_t i = 0; i < count; ++i)
            points[i] = pointOf(net, width, first + i);
        myDisplace->move(points, &moved[first], count);
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
    myMesh.quads.reserve(myMesh.quads.size() + std::size_t{columns} * rows);
    for (vk_Vertex vertex : net) {
        vertex.position = myTransform.point(vertex.position);
        vertex.normal = myTransform.normal(vertex.normal);
        myMesh.vertices.push_back(vertex);
    }
    for (std::uint32_t row = 0; row < rows; ++row)
        for (std::uint32_t column = 0; column < columns; ++column) {
            // Anticlockwise as seen from outside, until a transform mirrors the shape.
            const std::uint32_t a = first + row * (columns + 1) + column;
            const std::uint32_t b = a + columns + 1;
            myMesh.quads.push_back({a, a + 1, b + 1, b});
        }
}
