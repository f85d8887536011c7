// Quads of one shape, finely divided, with normals that make them look smooth.
#pragma once

#include "vaskel/base/vk_Transform.h"
#include "vaskel/shaders/vk_DisplaceShaders.h"

#include <array>
#include <cstdint>
#include <vector>

struct vk_Vertex {
    vk_Vec position;
    vk_Vec normal; // unit, to the outside where there is one
    float u = 0, v = 0;
};

struct vk_Mesh {
    std::vector<vk_Vertex> vertices;
    std::vector<std::array<std::uint32_t, 4>> quads; // corners in turn

    // Every quad is two triangles, which share its second and fourth corner.
    std::size_t triangles() const { return 2 * quads.size(); }
    std::array<std::uint32_t, 3> corners(std::size_t triangle) const
    {
        const auto &quad = quads[triangle / 2];
        return {quad[triangle % 2], quad[triangle % 2 + 1], quad[3]};
    }
};

// Divides curved patches into a mesh, moves the vertices as a displacement
// says, and takes them to the scene.
class vk_MeshBuilder
{
public:
    // Keeps both; no displacement when there is no shader for it.
    vk_MeshBuilder(const vk_Transform &transform, const vk_DisplaceShader *displace)
        : myTransform(transform), myDisplace(displace)
    {
    }

    // Adds the patch that `at`, a function of u and v from 0 to 1 with a vertex
    // as result, describes: columns along u, rows along v. A displaced patch is
    // divided further, and `at` is asked a little beyond its ends too.
    template <class Function>
    void patch(int columns, int rows, const Function &at)
    {
        const bool isMoved = myDisplace != nullptr;
        const int finer = isMoved ? 3 : 1, beyond = isMoved ? 1 : 0;
        columns *= finer;
        rows *= finer;
        std::vector<vk_Vertex> net;
        net.reserve(static_cast<std::size_t>((columns + 3) * (rows + 3)));
        for (int row = -beyond; row <= rows + beyond; ++row)
            for (int column = -beyond; column <= columns + beyond; ++column)
                net.push_back(at(static_cast<float>(column) / static_cast<float>(columns),
                                 static_cast<float>(row) / static_cast<float>(rows)));
        if (isMoved)
            displace(net, static_cast<std::size_t>(columns + 3));
        add(net, static_cast<std::uint32_t>(columns), static_cast<std::uint32_t>(rows));
    }

    vk_Mesh take() { return std::move(myMesh); }

private:
    void displace(std::vector<vk_Vertex> &net, std::size_t width) const;
    void add(const std::vector<vk_Vertex> &net, std::uint32_t columns, std::uint32_t rows);

    const vk_Transform &myTransform;
    const vk_DisplaceShader *myDisplace;
    vk_Mesh myMesh;
};
