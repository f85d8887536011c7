#include "vaskel/vk_SceneReader.h"

#include "tests/support/Cases.h"
#include "tests/support/PlainText.h"
#include "tests/support/ScratchDirectory.h"
#include "vaskel/vk_ShaderList.h"

#include <gmock/gmock.h>

#include <regex>
#include <sstream>

namespace
{
// The messages for a scene, a line each, in which "..." stands for a list of shaders; or
// what a good one holds.
std::string told(std::string text)
{
    vk_Scene scene;
    vk_SceneReader reader("s", scene);
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    const bool isGood = reader.read(file);
    std::fclose(file);
    EXPECT_EQ(isGood, reader.messages().empty());
    if (!isGood) {
        std::string all;
        for (const std::string &message : reader.messages())
            all += message + '\n';
        return std::regex_replace(all, std::regex("shader: v_[^;\n]*"), "shader: ...");
    }
    std::ostringstream out;
    out << scene.picture << ' ' << scene.width << 'x' << scene.height << " exposure "
        << scene.exposure << ", lights " << scene.lights.size();
    for (const vk_ShapeEntry &shape : scene.shapes) {
        const vk_Material material = shape.surface(vk_SurfacePoint{});
        out << ", " << shape.surface.row->name << " rough " << material.rough << " diff "
            << material.diffuse.y << " top " << shape.transform.point({0, 1, 0}).y;
    }
    return out.str();
}
} // namespace

TEST(SceneReader, TellsMistakesOrTheSceneByTheTable)
{
    const auto behind = [](const std::string &head) {
        return [head](const char *in) { return told(head + in + '\n'); };
    };
    expectTable(TEST_DATA "/data/scenes", {{"scene", told},
                                           {"third line", behind("picture p.jpg\ncamera\n")},
                                           {"picture", behind("camera\n")}});
}

TEST(SceneReader, WhatIsNoSceneIsRefused)
{
    const std::string cases[] = {{"cam\0era\n", 8},
                                 "\xff\xd8\xff\xe0\x10JFIF\n\x01\x02",
                                 std::string(5000000, 'x'),
                                 repeated("light v_point\n", 100000),
                                 repeated("default ", 100000)};
    for (const std::string &text : cases) {
        const std::string messages = told(text);
        EXPECT_EQ(0u, messages.find("s:")) << text.substr(0, 20);
        EXPECT_LE(std::count(messages.begin(), messages.end(), '\n'), 11);
    }
}

TEST(SceneReader, TheManualHasEveryStatementAndShader)
{
    const std::string manual = fileContents(SOURCE_DIR "/doc/scene.md");
    for (const std::string_view word : vk_SceneReader::words())
        EXPECT_THAT(manual, testing::HasSubstr("| `" + std::string(word))) << word;
    EXPECT_TRUE(vk_listShaders() == fileContents(SOURCE_DIR "/doc/shaders.md"))
        << "vaskel --list-shaders >doc/shaders.md";
}
