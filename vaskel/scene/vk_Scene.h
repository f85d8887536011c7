// A scene as it was described: what the reader fills and the renderer draws.
#pragma once

#include "vaskel/lights/vk_LightShaders.h"
#include "vaskel/osl/vk_OslLibrary.h"
#include "vaskel/shaders/vk_EnvironmentShaders.h"
#include "vaskel/shaders/vk_FogShaders.h"
#include "vaskel/shaders/vk_ShadowShaders.h"
#include "vaskel/shaders/vk_SurfaceShaders.h"
#include "vaskel/shapes/vk_Shapes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct vk_Camera : vk_Parametrised {
    vk_Vec from = {0, 2.3f, 6.4f};
    vk_Vec at = {0, .95f, 0};
    vk_Vec up = {0, 1, 0};
    float fov = 24; // degrees, of the picture's shorter side

    void describe(vk_ParamList &list) override
    {
        list.point("from", from, "where the viewer stands");
        list.point("at", at, "what is in the picture's middle");
        list.point("up", up, "what points upwards");
        list.number("fov", fov, .01f, 170, "angle of the shorter side");
    }
};

struct vk_ShapeEntry {
    std::unique_ptr<vk_Shape> shape;
    vk_Transform transform;
    std::shared_ptr<const vk_SurfaceShader> surface;
    std::shared_ptr<const vk_DisplaceShader> displace; // null: none
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
    std::string comment; // for the picture's file, lines
    int width = 256;
    int height = 256;
    int samples = 256;  // most for a pixel
    float exposure = 0; // stops

    vk_Camera camera;
    bool hasCamera = false;
    bool showsEnvironment = true;
    vk_Colour backdrop; // seen instead of the environment
    std::unique_ptr<vk_EnvironmentShader> environment;
    std::unique_ptr<vk_SurfaceShader> floor; // null: no floor
    std::unique_ptr<vk_ShadowShader> shadow;
    std::unique_ptr<vk_FogShader> fog; // null: clear air

    std::shared_ptr<vk_OslLibrary> osl; // null: no shaders of its own
    std::vector<std::unique_ptr<vk_Light>> lights;
    std::vector<vk_ShapeEntry> shapes;

    std::int64_t work() const { return std::int64_t{width} * height * samples; }
};
