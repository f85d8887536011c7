// Scenes as texts.
#pragma once

#include "vaskel/scene/vk_SceneReader.h"

#include <gtest/gtest.h>

// What most tests look at, but for what stands in it.
inline constexpr char STUDIO[] = "picture p.png\ncamera\nfloor v_checker\n"
                                 "lightplace from -5 5.5 2.6 to 0 1 0\n"
                                 "light v_area intensity .8 width 2.5 height 2.5\n"
                                 "lightplace from 4.5 2.5 6 to 0 1 0\n"
                                 "light v_area intensity .07 width 4 height 4\n"
                                 "lightplace from 4 5 -4 to 0 1 0\n"
                                 "light v_area intensity .35 width 3 height 2\n";

// Reads all statements of a scene but its end, which must be right.
inline void readScene(const std::string &statements, vk_Scene &scene)
{
    std::string text = statements + "\nend\n";
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    vk_SceneReader reader("s", scene);
    EXPECT_TRUE(reader.read(file)) << reader.messages()[0];
    std::fclose(file);
}
