// Scenes as texts.
#pragma once

#include "vaskel/scene/vk_SceneReader.h"

#include <gtest/gtest.h>

// Reads all statements of a scene but its end, which must be right.
inline void readScene(const std::string &statements, vk_Scene &scene)
{
    std::string text = statements + "\nend\n";
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    vk_SceneReader reader("s", scene);
    EXPECT_TRUE(reader.read(file)) << reader.messages()[0];
    std::fclose(file);
}
