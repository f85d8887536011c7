// A scene as it was described: what the reader fills and the renderer draws.
#pragma once

#include "vaskel/vk_EnvironmentShaders.h"
#include "vaskel/vk_FogShaders.h"
#include "vaskel/vk_LightShaders.h"
#include "vaskel/vk_ShadowShaders.h"
#include "vaskel/vk_Shapes.h"
#include "vaskel/vk_SurfaceShaders.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct vk_Camera {
    vk_Vec from, at, up;
    float fov = 0; // degrees, of the picture's shorter side
};

struct vk_ShapeEntry {
    const vk_ShapeRow *row = nullptr;
    vk_Values values;
    vk_Transform transform;
    vk_SurfaceShader surface;
    vk_DisplaceShader displace;
};

struct vk_Scene {
    static constexpr std::size_t MOST_LIGHTS = 64;
    static constexpr std::size_t MOST_SHAPES = 64;
    static constexpr int MOST_SAMPLES = 65536; // a pixel
    static constexpr int LONGEST_SIDE = 8192;
    static constexpr int MOST_PIXELS = 1 << 24;
    // Width times height times samples that a scene may ask for which somebody else wrote:
    // some ten seconds to a few minutes.
    static constexpr std::int64_t MOST_WORK = 1 << 30;

    std::string picture; // file name
    int width = 256;
    int height = 256;
    int samples = 256;  // most for a pixel
    float exposure = 0; // stops

    vk_Camera camera;
    bool hasCamera = false;
    bool showsEnvironment = true;
    vk_Colour backdrop; // seen instead of the environment
    vk_EnvironmentShader environment;
    vk_SurfaceShader floor; // none chosen: no floor
    vk_ShadowShader shadow;
    vk_FogShader fog; // none chosen: clear air

    std::vector<std::unique_ptr<vk_Light>> lights;
    std::vector<vk_ShapeEntry> shapes;

    std::int64_t work() const { return std::int64_t{width} * height * samples; }
};
