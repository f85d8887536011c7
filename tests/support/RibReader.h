// A strict reader of RenderMan Interface Bytestream as text (RenderMan Interface 3.2): it
// takes what every renderer has to take, and nothing that only some do.
#pragma once

#include "tests/support/SceneView.h"

#include <string>
#include <vector>

struct RibScene {
    std::vector<std::string> findings;   // "LINE REQUEST: what is wrong with it"
    SceneMatrix camera = SCENE_IDENTITY; // from the world to the camera
    double fieldOfView = 90;             // degrees
};

RibScene readRib(const std::string &scene);
