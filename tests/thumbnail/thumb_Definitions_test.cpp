#include "thumbnail/thumb_Definitions.h"

#include "UT/UT_Args.h"
#include "thumbnail/ThumbRenderer.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

// The vector for a command line such as {"-b", "-gtube"}; empty when refused.
std::vector<std::string> definitions(const char *type, std::vector<std::string> options)
{
    options.insert(options.begin(), "prog");
    std::vector<char *> argv;
    for (std::string &option : options)
        argv.push_back(option.data());
    UT_Args args;
    args.initialize(static_cast<int>(argv.size()), argv.data());
    args.stripOptions("bg:qr:s");

    const ThumbRenderer row = {"cmd", "script", type, "v \"a b\" 'c' ", nullptr, THUMB_IFD};
    thumb_Definitions built;
    if (!built.build(row, args, "a b.jpg"))
        return {};
    EXPECT_EQ(nullptr, built.words()[built.count()]);
    return {built.words(), built.words() + built.count()};
}

} // namespace

TEST(Definitions, AreWordsInAFixedOrder)
{
    const struct {
        const char *type;
        std::vector<std::string> options;
        std::vector<std::string> added;
    } cases[] = {
        {"surface", {}, {"-DSURF_SHADER="}},
        {"displace",
         {"-b", "-g", "box", "-s"},
         {"-DNO_SHADOWS", "-DNO_BACKGROUND", "-DDISP_SHADER="}},
        {"light",
         {"-bsgteapot"},
         {"-DNO_SHADOWS", "-DGEO_TEAPOT", "-DNO_BACKGROUND", "-DLIGHT_SHADER="}},
        {"shadow", {"-gcylinder"}, {"-DGEO_TUBE", "-DSHADOW_SHADER="}},
        {"fog", {"-gg"}, {"-DGEO_GRID", "-DFOG_SHADER="}},
        {"fog", {"-gs"}, {"-DGEO_SPHERE", "-DFOG_SHADER="}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.options));
        std::vector<std::string> expected = {"thumbrender", "-x", "-DOUTPUT_PICTURE=\"a b.jpg\""};
        expected.insert(expected.end(), c.added.begin(), c.added.end());
        expected.back() += "v \"a b\" 'c' ";
        EXPECT_EQ(expected, definitions(c.type, c.options));
    }
}
