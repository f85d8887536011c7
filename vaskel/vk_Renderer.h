// From a scene to a film, on several threads.
#pragma once

#include "vaskel/vk_Film.h"
#include "vaskel/vk_Scene.h"

#include <string>

// How many threads the setting VELDRIN_MAXTHREADS asks for; as many as there are
// processors when it is 0 or below.
int vk_threadCount();

// Draws the scene. The film depends on the scene only, not on the number of
// threads. A pixel stops early when its samples agree. False and a message when
// memory or ray tracing failed.
[[nodiscard]] bool vk_render(const vk_Scene &scene, int threads, vk_Film &film, std::string &error);
