#include "vaskel/scene/vk_SceneReader.h"

#include "tests/support/Cases.h"
#include "tests/support/ScratchDirectory.h"
#include "vaskel/scene/vk_ShaderList.h"

#include <gmock/gmock.h>

#include <regex>
#include <sstream>

// The messages for a scene, a line each, in which "..." stands for a list of shaders; or
// what a good one holds.
static std::string told(std::string text)
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
        const vk_Material material = shape.surface->shade(vk_SurfacePoint{});
        out << ", rough " << material.rough << " diff " << material.diffuse.y << " top "
            << shape.transform.point({0, 1, 0}).y;
    }
    return out.str();
}

TEST(SceneReader, TellsMistakesOrTheSceneByTheTable)
{
    const auto behind = [](const std::string &head) {
        return [head](const char *in) { return told(head + in + "\nend\n"); };
    };
    expectTable(TEST_DATA "/data/scenes", {{"scene", told},
                                           {"third line", behind("picture p.jpg\ncamera\n")},
                                           {"picture", behind("camera\n")}});
    EXPECT_EQ("s:1: error: expected text, found a zero byte\n", told({"cam\0era\n", 8}));
}

TEST(SceneReader, LightsStandAtTheirOwnPlaceOrElseAtTheLastOne)
{
    std::string text = "picture p.jpg\ncamera\nlight v_area\nlightplace from 1 2 3\n"
                       "light v_area\nlight v_area from 4 5 6\nlight v_area width 2\nend\n";
    vk_Scene scene;
    vk_SceneReader reader("s", scene);
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    ASSERT_TRUE(reader.read(file));
    std::fclose(file);
    const vk_Vec places[] = {{1, 2, 3}, {4, 5, 6}, {1, 2, 3}};
    for (std::size_t i = 0; i < std::size(places); ++i)
        EXPECT_EQ(places[i], *scene.lights[i + 1]->place()) << i;
}

TEST(SceneReader, MessagesTakeThePicturesNameWhereTheSceneHasNone)
{
    const std::pair<std::string, std::string> cases[] = {
        {"bad\npicture a\x1b[2J.jpg\n", "a?[2J.jpg:1"},
        {"picture evil.jpg\npicture good.jpg\n", "good.jpg:2"},
        {"bad\n", "<stdin>:1"},
    };
    for (auto [text, start] : cases) {
        vk_Scene scene;
        vk_SceneReader reader(nullptr, scene);
        std::FILE *const file = fmemopen(text.data(), text.size(), "r");
        EXPECT_FALSE(reader.read(file));
        std::fclose(file);
        EXPECT_THAT(reader.messages().front(), testing::StartsWith(start + ": error: "));
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
