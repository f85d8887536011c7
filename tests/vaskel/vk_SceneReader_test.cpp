#include "vaskel/vk_SceneReader.h"

#include "tests/support/ScratchDirectory.h"
#include "vaskel/vk_ShaderList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using testing::HasSubstr;

namespace
{
struct Reading {
    std::unique_ptr<vk_Scene> scene = std::make_unique<vk_Scene>();
    bool good = false;
    std::vector<std::string> messages;
};

Reading readText(std::string text)
{
    Reading reading;
    std::FILE *const file = fmemopen(text.data(), text.size(), "r");
    vk_SceneReader reader("s", *reading.scene);
    reading.good = reader.read(file);
    reading.messages = reader.messages();
    std::fclose(file);
    return reading;
}

// The text behind a line that makes it a scene.
Reading readLines(const std::string &lines)
{
    return readText("picture p.jpg\ncamera\n" + lines + "\n");
}
} // namespace

TEST(SceneReader, MistakesNameTheLineWhatWasExpectedAndTheNearestWord)
{
    const struct {
        const char *line, *message;
    } cases[] = {
        {"sufrace v_matte", "unknown statement 'sufrace'; expected a statement of the scene "
                            "language; nearest is 'surface'"},
        {"surface v_plastc", "unknown surface shader 'v_plastc'; expected a surface shader: "
                             "v_plastic, v_matte, v_metal, "},
        {"surface v_plastc", "; nearest is 'v_plastic'"},
        {"surface v_metal color golt", "or a colour's name, found 'golt'; nearest is 'gold'"},
        {"surface opdef:/Shop/v_mate", "nearest is 'v_matte'"},
        {"surface", "expected a surface shader: v_plastic"},
        {"surface v_plastic rogh .1", "v_plastic has no parameter 'rogh'; expected diff, spec, "
                                      "rough, ior; nearest is 'rough'"},
        {"surface v_plastic rough", "rough of v_plastic expected a number, found the end"},
        {"surface v_plastic diff 1 0", "diff of v_plastic expected three numbers"},
        {"surface v_plastic rough 1.5", "expected a number from 0 to 1, found '1.5'"},
        {"surface v_plastic diff -1 0 0", "expected a number from 0 to 1, found '-1'"},
        {"surface v_plastic rough nan", "expected a number, found 'nan'"},
        {"light v_spot from 1 1 1 to 1 1 1", "light expected 'from' and 'to' to be apart"},
        {"light v_area width 0", "width of v_area expected a number from 0.01"},
        {"displace v_dents height 2", "height of v_dents expected a number from -0.5 to 0.5"},
        {"exposure inf", "expected a number, found 'inf'"},
        {"exposure 1e999", "expected a number that fits a float, found '1e999'"},
        {"exposure 0x10", "expected a number, found '0x10'"},
        {"exposure 1,5", "expected a number, found '1,5'"},
        {"exposure", "exposure expected STOPS, found 0 words"},
        {"size 256", "size expected WIDTH HEIGHT, found 1 words"},
        {"size 256.5 256", "whole numbers"},
        {"size 0 256", "from 1 to 8192"},
        {"size 8192 8192", "at most 16777216 pixels"},
        {"samples 0", "from 1 to 65536"},
        {"background maybe", "expected 'on', or 'off' and a colour, found 'maybe'"},
        {"background off 1 2", "expected three numbers"},
        {"camera from 0 1 0 at 0 1 0", "to be apart"},
        {"camera from 0 5 0 at 0 0 0", "'up' to point away"},
        {"rotate 90 0 0 0", "an axis that points somewhere"},
        {"scale 1 0 1", "between a thousandth"},
        {"displace v_bump", "nearest is 'v_bumps'"},
        {"fog fog", "nearest is 'v_fog'"},
        {"shadow v_noshadows", "nearest is 'v_noshadow'"},
        {"light v_spt", "nearest is"},
        {"lightplace form 1 2 3", "nearest is 'from'"},
        {"sphere radius 0", "expected a number from 0.001"},
        {"end here", "end expected nothing, found 1 words"},
        {"picture \"a b", "closing quote"},
        {"picture a b.jpg", "one file name"},
        {"picture \"\"", "one file name"},
        {"picture a.gif", ".jpg, .jpeg or .png, found 'a.gif'"},
        {"picture .jpg", "expected a name"},
        {"default", "expected a statement behind it"},
        {"default default light v_area", "expected a statement behind it"},
        {"default picture q.txt", "found 'q.txt'"}, // checked though it does not count
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        const Reading reading = readLines(c.line);
        EXPECT_FALSE(reading.good);
        ASSERT_EQ(1u, reading.messages.size());
        EXPECT_THAT(reading.messages[0], testing::StartsWith("s:3: error: "));
        EXPECT_THAT(reading.messages[0], HasSubstr(c.message));
    }
}

TEST(SceneReader, ReadsOnBehindMistakesUntilTheTenth)
{
    std::string bad;
    for (int i = 0; i < 1000; ++i)
        bad += "bad\n";
    const Reading reading = readText(bad);
    ASSERT_EQ(11u, reading.messages.size());
    EXPECT_THAT(reading.messages[9], HasSubstr("s:10: error: unknown statement 'bad'"));
    EXPECT_THAT(reading.messages[10], HasSubstr("too many errors"));
}

TEST(SceneReader, PictureAndCameraAreRequired)
{
    for (const char *text : {"\n", "picture p.jpg\n", "camera\n"})
        EXPECT_FALSE(readText(text).good) << text;
    EXPECT_EQ(2u, readText("sphere\n").messages.size());
}

TEST(SceneReader, WhatIsNoSceneIsRefused)
{
    const struct {
        const char *what;
        std::string text;
    } cases[] = {
        {"zero bytes", std::string("cam\0era\n", 8)},
        {"a line without end", std::string(5000000, 'x')},
        {"a picture's bytes", "\xff\xd8\xff\xe0\x10JFIF\n\x01\x02"},
        {"a hundred thousand lights",
         [] {
             std::string lights;
             for (int i = 0; i < 100000; ++i)
                 lights += "light v_point\n";
             return lights;
         }()},
        {"quotes left open", "picture 'p.jpg\n"},
        {"many defaults on one line",
         [] {
             std::string line;
             for (int i = 0; i < 100000; ++i)
                 line += "default ";
             return line;
         }()},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const Reading reading = readText(c.text);
        EXPECT_FALSE(reading.good);
        EXPECT_LE(reading.messages.size(), 11u);
    }
}

TEST(SceneReader, BlanksCommentsAndQuotesDoNotMatter)
{
    const Reading reading = readText("# 12 \"file\"\n\r\n  picture 'p q.jpg'  // a comment\r\n"
                                     "\tcamera\n//x\nsize 8 9 // size\nend\nnonsense");
    EXPECT_TRUE(reading.good);
    EXPECT_EQ("p q.jpg", reading.scene->picture);
    EXPECT_EQ(9, reading.scene->height);
}

TEST(SceneReader, QuotedPictureNamesMayHoldAnything)
{
    const struct {
        const char *line, *name;
    } cases[] = {
        {"picture \"a b.jpg\"", "a b.jpg"},      {"picture \"it's.jpg\"", "it's.jpg"},
        {"picture \"a\"b.jpg\"", "a\"b.jpg"},    {"picture \"-$HOME%s//.jpg\" ", "-$HOME%s//.jpg"},
        {"picture plain.png // c", "plain.png"}, {"default picture \"a b.jpeg\"", "a b.jpeg"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        const Reading reading = readText("camera\n" + std::string(c.line) + "\n");
        EXPECT_TRUE(reading.good) << testing::PrintToString(reading.messages);
        EXPECT_EQ(c.name, reading.scene->picture);
    }
}

TEST(SceneReader, DefaultsGiveWayToWhatCameBefore)
{
    const Reading plain =
        readLines("default light v_area\ndefault light v_area\ndefault exposure 2");
    EXPECT_EQ(2u, plain.scene->lights.size());
    EXPECT_EQ(2, plain.scene->exposure);

    const Reading added =
        readLines("light v_point\nexposure 1\n"
                  "default light v_area\ndefault light v_area\ndefault exposure 2");
    EXPECT_TRUE(added.good);
    EXPECT_EQ(1u, added.scene->lights.size());
    EXPECT_EQ(1, added.scene->exposure);
}

TEST(SceneReader, ParametersComeByNameInAnyOrder)
{
    const Reading reading = readLines("surface opdef:/Shop/v_plastic rough .3 diff .2 rough .4\n"
                                      "translate 0 1 0\nscale 2\nsphere\n"
                                      "surface v_metal\nidentity\nteapot width 3");
    ASSERT_TRUE(reading.good) << testing::PrintToString(reading.messages);
    ASSERT_EQ(2u, reading.scene->shapes.size());
    const vk_ShapeEntry &ball = reading.scene->shapes[0];
    const vk_Material material = ball.surface(vk_SurfacePoint{});
    EXPECT_STREQ("v_plastic", ball.surface.row->name);
    EXPECT_FLOAT_EQ(.4f, material.rough);
    EXPECT_FLOAT_EQ(.2f, material.diffuse.y); // one number is a grey
    EXPECT_FLOAT_EQ(3, ball.transform.point({0, 1, 0}).y);
    EXPECT_FLOAT_EQ(1, reading.scene->shapes[1].transform.point({0, 1, 0}).y);
}

TEST(SceneReader, TheManualHasEveryStatementAndShader)
{
    const std::string manual = fileContents(SOURCE_DIR "/doc/scene.md");
    for (const std::string_view word : vk_SceneReader::words())
        EXPECT_THAT(manual, HasSubstr("| `" + std::string(word))) << word;
    EXPECT_TRUE(vk_listShaders() == fileContents(SOURCE_DIR "/doc/shaders.md"))
        << "vaskel --list-shaders >doc/shaders.md";
}
