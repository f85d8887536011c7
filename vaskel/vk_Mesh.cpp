#include "vaskel/vk_Mesh.h"

// Grows at least twofold, as many patches may follow.
void vk_MeshBuilder::reserve(std::size_t columns, std::size_t rows)
{
    const std::size_t vertices = myMesh.vertices.size() + (columns + 1) * (rows + 1);
    const std::size_t triangles = myMesh.triangles.size() + 2 * columns * rows;
    if (vertices > myMesh.vertices.capacity())
        myMesh.vertices.reserve(std::max(vertices, 2 * myMesh.vertices.capacity()));
    if (triangles > myMesh.triangles.capacity())
        myMesh.triangles.reserve(std::max(triangles, 2 * myMesh.triangles.capacity()));
}

void vk_MeshBuilder::add(vk_Vertex vertex)
{
    if (myDisplace)
        displace(vertex);
    vertex.position = myTransform.point(vertex.position);
    vertex.normal = myTransform.normal(vertex.normal);
    myMesh.vertices.push_back(vertex);
}

void vk_MeshBuilder::displace(vk_Vertex &vertex) const
{
    // The normal leans against the slope of the heights along the surface
    // (Blinn, "Simulation of Wrinkled Surfaces", 1978). A slope in space, not
    // in u and v, has no seams and no poles.
    constexpr float STEP = 2e-3f;

    const vk_Vec &p = vertex.position;
    const auto slope = [&](const vk_Vec &step) {
        return (myDisplace(p + step) - myDisplace(p - step)) / (2 * STEP);
    };
    const vk_Vec slopes = {slope({STEP, 0, 0}), slope({0, STEP, 0}), slope({0, 0, STEP})};
    const vk_Vec along = slopes - vertex.normal * vk_dot(slopes, vertex.normal);
    const float height = myDisplace(p);
    vertex.position = p + vertex.normal * height;
    vertex.normal = vk_normalize(vertex.normal - along);
}

void vk_MeshBuilder::weave(std::uint32_t first, std::uint32_t columns, std::uint32_t rows)
{
    for (std::uint32_t row = 0; row < rows; ++row)
        for (std::uint32_t column = 0; column < columns; ++column) {
            const std::uint32_t a = first + row * (columns + 1) + column;
            const std::uint32_t b = a + columns + 1;
            myMesh.triangles.push_back({a, a + 1, b});
            myMesh.triangles.push_back({a + 1, b + 1, b});
        }
}
