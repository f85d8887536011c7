#include "UT/UT_EnvControl.h"

#include "UT/UT_Environment.h"
#include "UT/UT_TempDir.h"
#include "UT/ut_EnvDefaults.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/ScopedVariable.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace
{
UT_EnvControl &settings()
{
    return UT_EnvControl::instance();
}

std::string shown(UT_StrControl setting)
{
    const char *text = settings().getString(setting);
    return text != nullptr ? text : "(null)";
}

// Prints, in a process whose settings were never read, what two variables make of
// the computed ones.
[[noreturn]] void printComputed(const char *home, const char *tempDir)
{
    (home != nullptr ? UTsetenv("HOME", home) : UTunsetenv("HOME"));
    (tempDir != nullptr ? UTsetenv("VELDRIN_TEMP_DIR", tempDir) : UTunsetenv("VELDRIN_TEMP_DIR"));
    UTunsetenv("VELDRIN_DESKTOP_DIR");
    UTunsetenv("VELDRIN_OS");
    std::fprintf(stderr, "%s,%s,%s,%s", shown(ENV_HOME).c_str(),
                 shown(ENV_VELDRIN_TEMP_DIR).c_str(), shown(ENV_VELDRIN_DESKTOP_DIR).c_str(),
                 shown(ENV_VELDRIN_OS).c_str());
    const bool isExported = shown(ENV_HOME) == UTgetenv("HOME") &&
                            shown(ENV_VELDRIN_TEMP_DIR) == UTgetenv("VELDRIN_TEMP_DIR") &&
                            shown(ENV_VELDRIN_DESKTOP_DIR) == UTgetenv("VELDRIN_DESKTOP_DIR") &&
                            shown(ENV_USER) == UTgetenv("USER") &&
                            UTgetenv("VELDRIN_OS") == nullptr;
    const std::string before = UTgetTempDir();
    UTsetenv("VELDRIN_TEMP_DIR", "/elsewhere");
    settings().updateVariable("VELDRIN_TEMP_DIR");
    const bool isKept = before == UTgetTempDir() && shown(ENV_VELDRIN_TEMP_DIR) == "/elsewhere";
    std::exit(isExported && isKept ? 0 : 1);
}
} // namespace

TEST(EnvControl, ToggleTextsGiveZeroOneOrTheOppositeOfTheDefault)
{
    const struct {
        const char *text;
        int usuallyOff, usuallyOn;
    } cases[] = {{nullptr, 0, 1}, {"0", 0, 0},  {"1", 1, 1}, {"yes", 1, 0},
                 {"2", 1, 0},     {"00", 1, 0}, {"", 1, 0},  {" 1", 1, 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text != nullptr ? c.text : "unset");
        const ScopedVariable off("VELDRIN_NO_ASSERTS", c.text);
        const ScopedVariable on("VELDRIN_INTERACTIVE_ASSERTS", c.text);
        EXPECT_EQ(c.usuallyOff, settings().getInt(ENV_VELDRIN_NO_ASSERTS));
        EXPECT_EQ(c.usuallyOn, settings().getInt(ENV_VELDRIN_INTERACTIVE_ASSERTS));
    }
}

TEST(EnvControl, NumbersAreParsedAsFarAsTheyGoAndClamped)
{
    const struct {
        UT_IntControl setting;
        const char *text;
        int expected;
    } integers[] = {
        {ENV_VELDRIN_MAXTHREADS, "500", 100},
        {ENV_VELDRIN_MAXTHREADS, "-7", -1},
        {ENV_VELDRIN_MAXTHREADS, "abc", 0},
        {ENV_VELDRIN_MAXTHREADS, "12abc", 12},
        {ENV_VELDRIN_MAXTHREADS, "99999999999999999999", 100},
        {ENV_VELDRIN_MAXTHREADS, "-99999999999999999999", -1},
        {ENV_VELDRIN_RMAN_CURVE_STEP, nullptr, -1}, // a default is not clamped
        {ENV_VELDRIN_RMAN_CURVE_STEP, "0", 1},
        {ENV_VELDRIN_MIP_READ, "4294967297", 1073741824},
    };
    for (const auto &c : integers) {
        const char *name = UT_EnvControl::getVariableName(c.setting);
        SCOPED_TRACE(std::string(name) + "=" + (c.text != nullptr ? c.text : ""));
        const ScopedVariable variable(name, c.text);
        EXPECT_EQ(c.expected, settings().getInt(c.setting));
    }
    const struct {
        UT_FloatControl setting;
        const char *text;
        float expected;
    } floats[] = {
        {ENV_VELDRIN_GAUSS_EXP, "0", -0.1f},     {ENV_VELDRIN_GAUSS_EXP, "-50", -20.0f},
        {ENV_VELDRIN_GAUSS_EXP, "-2.5x", -2.5f}, {ENV_VELDRIN_GAUSS_EXP, nullptr, -3.0f},
        {ENV_VELDRIN_LOD, "1e300", 1e17f},       {ENV_VELDRIN_LOD, "1e-300", 1e-17f},
        {ENV_VELDRIN_WF_GAMMA, nullptr, -1.0f},
    };
    for (const auto &c : floats) {
        const char *name = UT_EnvControl::getVariableName(c.setting);
        SCOPED_TRACE(std::string(name) + "=" + (c.text != nullptr ? c.text : ""));
        const ScopedVariable variable(name, c.text);
        EXPECT_EQ(c.expected, settings().getFloat(c.setting));
    }
}

TEST(EnvControl, BackslashesOfAStringBecomeSlashesInTheEnvironmentToo)
{
    const ScopedVariable variable("VELDRIN_TEMP_DIR", "C:\\tmp\\x");
    EXPECT_EQ("C:/tmp/x", shown(ENV_VELDRIN_TEMP_DIR));
    EXPECT_STREQ("C:/tmp/x", UTgetenv("VELDRIN_TEMP_DIR"));
}

TEST(EnvControl, SettingAStringExportsItAsItIs)
{
    const ScopedVariable variable("VELDRIN_ZEL_DEFAULT_MATTE", nullptr);
    EXPECT_EQ("opdef:/Shop/v_matte", shown(ENV_VELDRIN_ZEL_DEFAULT_MATTE));
    settings().setString(ENV_VELDRIN_ZEL_DEFAULT_MATTE, "a\\b");
    settings().setString(ENV_VELDRIN_ZEL_DEFAULT_MATTE,
                         settings().getString(ENV_VELDRIN_ZEL_DEFAULT_MATTE) + 1);
    EXPECT_EQ("\\b", shown(ENV_VELDRIN_ZEL_DEFAULT_MATTE));
    EXPECT_STREQ("\\b", UTgetenv("VELDRIN_ZEL_DEFAULT_MATTE"));
    settings().setString(UT_NUM_STR_CONTROLS, "nowhere");
}

TEST(EnvControl, OnlyThePrimaryNameOfASettingIsReadAndUpdated)
{
    const ScopedVariable primary("VELDRIN_RI_SHADERPATH", nullptr);
    const ScopedVariable older("RMAN_SHADERPATH", "/old");
    EXPECT_EQ("(null)", shown(ENV_VELDRIN_RI_SHADERPATH));
    UTsetenv("VELDRIN_RI_SHADERPATH", "/new");
    for (const char *name : {"RMAN_SHADERPATH", "NO_SETTING", ""}) {
        settings().updateVariable(name);
        EXPECT_EQ("(null)", shown(ENV_VELDRIN_RI_SHADERPATH)) << name;
    }
    settings().updateVariable("FPS"); // any setting's name reads all
    EXPECT_EQ("/new", shown(ENV_VELDRIN_RI_SHADERPATH));
}

TEST(EnvControl, NamesAreFoundByEnumerator)
{
    EXPECT_STREQ("VELDRIN_WINDOW_CONSOLE",
                 UT_EnvControl::getVariableName(ENV_VELDRIN_WINDOW_CONSOLE));
    EXPECT_STREQ("FPS", UT_EnvControl::getVariableName(ENV_FPS));
    EXPECT_EQ(nullptr, UT_EnvControl::getOldVariableName(ENV_FPS));
    EXPECT_STREQ("img_ioState", UT_EnvControl::getOldVariableName(ENV_VELDRIN_AUDIT_IO));
    EXPECT_STREQ("MIP_READ", UT_EnvControl::getOldVariableName(ENV_VELDRIN_MIP_READ));
    EXPECT_STREQ("WF_GAMMA", UT_EnvControl::getOldVariableName(ENV_VELDRIN_WF_GAMMA));
    EXPECT_STREQ("UNITS", UT_EnvControl::getOldVariableName(ENV_VELDRIN_CHOP_UNITS));
    EXPECT_EQ(nullptr, UT_EnvControl::getVariableName(UT_NUM_INT_CONTROLS));
    EXPECT_EQ(nullptr, UT_EnvControl::getOldVariableName(UT_NUM_FLOAT_CONTROLS));
    EXPECT_EQ(nullptr, UT_EnvControl::getVariableName(UT_NUM_STR_CONTROLS));
}

TEST(EnvControl, FirstUseComputesAndExportsDefaults)
{
    if (!isFreshProcess())
        GTEST_SKIP();
    const struct {
        const char *home, *tempDir, *expected; // HOME, temporary, desktop, system
    } cases[] = {
        {nullptr, "/var/tmp/", "^/var/tmp,/var/tmp/,/Desktop,Linux$"},
        {nullptr, nullptr, "^/tmp,/tmp,/Desktop,Linux$"},
        {"/home/u", "/t//", "^/home/u,/t//,/home/u/Desktop,Linux$"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EXIT(printComputed(c.home, c.tempDir), testing::ExitedWithCode(0), c.expected);
    }
}

TEST(EnvControl, TheUserIsTheLoginNameWithoutBlanks)
{
    const char *const cases[][2] = {
        {"John Smith", "John_Smith"}, {" a  b", "_a__b"}, {"root", "root"}, {nullptr, "nobody"}};
    for (const auto &c : cases) {
        char *user = ut_makeUserDefault(c[0]);
        EXPECT_STREQ(c[1], user);
        std::free(user);
    }
}
