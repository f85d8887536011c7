// A strict reader of the scene description language of mental ray: of what the templates
// write in it, and nothing else. A name must be there before it is used.
#pragma once

#include "tests/support/SceneView.h"

#include <string>
#include <vector>

struct MiScene {
    // "LINE WORD: what is wrong there". Reading ends at what the grammar does not allow.
    std::vector<std::string> findings;
    SceneMatrix camera = SCENE_IDENTITY; // from the world to the camera, which looks along -z
    double tangent = 0;                  // of half the field of view
};

MiScene readMi(const std::string &scene);
