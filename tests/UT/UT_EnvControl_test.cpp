#include "UT/UT_EnvControl.h"

#include "UT/UT_TempDir.h"
#include "UT/settings/ut_EnvDefaults.h"
#include "tests/support/Cases.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/ScopedVariable.h"

#include <cstdlib>

namespace
{
UT_EnvControl &settings()
{
    return UT_EnvControl::instance();
}

std::string shown(UT_StrControl setting)
{
    return orNull(settings().getString(setting));
}

// What a setting is while its variable has a value.
template <class Control>
auto reading(Control setting)
{
    return [setting](const char *value) {
        const ScopedVariable variable(UT_EnvControl::getVariableName(setting), value);
        if constexpr (std::is_same_v<Control, UT_IntControl>)
            return std::to_string(settings().getInt(setting));
        else
            return std::to_string(settings().getFloat(setting));
    };
}
} // namespace

TEST(EnvControl, VariablesAreReadAsTheirKindsSay)
{
    expectTable(TEST_DATA "/data/settings",
                {{"off by default", reading(ENV_VELDRIN_NO_ASSERTS)},
                 {"on by default", reading(ENV_VELDRIN_INTERACTIVE_ASSERTS)},
                 {"integer from -1 to 100", reading(ENV_VELDRIN_MAXTHREADS)},
                 {"integer from 1", reading(ENV_VELDRIN_RMAN_CURVE_STEP)},
                 {"float from -20 to -0.1", reading(ENV_VELDRIN_GAUSS_EXP)},
                 {"float", reading(ENV_VELDRIN_WF_GAMMA)}});
}

TEST(EnvControl, AStringIsExportedAsItIsHeld)
{
    const ScopedVariable variable("VELDRIN_ZEL_DEFAULT_MATTE", "C:\\tmp\\x");
    const auto held = [] {
        EXPECT_EQ(shown(ENV_VELDRIN_ZEL_DEFAULT_MATTE), UTgetenv("VELDRIN_ZEL_DEFAULT_MATTE"));
        return shown(ENV_VELDRIN_ZEL_DEFAULT_MATTE);
    };
    EXPECT_EQ("C:/tmp/x", held());
    settings().setString(ENV_VELDRIN_ZEL_DEFAULT_MATTE, "a\\b"); // not one that was read
    EXPECT_EQ("a\\b", held());
    settings().setString(ENV_VELDRIN_ZEL_DEFAULT_MATTE,
                         settings().getString(ENV_VELDRIN_ZEL_DEFAULT_MATTE) + 1);
    EXPECT_EQ("\\b", held());
    settings().setString(UT_NUM_STR_CONTROLS, "nowhere");
}

TEST(EnvControl, OnlyThePrimaryNameOfASettingIsReadAndUpdated)
{
    const ScopedVariable primary("VELDRIN_RI_SHADERPATH", nullptr);
    const ScopedVariable older("RMAN_SHADERPATH", "/old");
    for (const char *any : {"VELDRIN_NO_ASSERTS", "FPS", "VELDRIN_LOD", "JOB"}) {
        UTsetenv("VELDRIN_RI_SHADERPATH", any);
        for (const char *name : {"RMAN_SHADERPATH", "NO_SETTING", ""})
            settings().updateVariable(name);
        EXPECT_NE(any, shown(ENV_VELDRIN_RI_SHADERPATH));
        settings().updateVariable(any); // any setting's name reads all
        EXPECT_EQ(any, shown(ENV_VELDRIN_RI_SHADERPATH));
    }
}

TEST(EnvControl, NamesAreFoundByEnumerator)
{
    const auto names = [](auto... setting) {
        return ((orNull(UT_EnvControl::getVariableName(setting)) + ' ' +
                 orNull(UT_EnvControl::getOldVariableName(setting)) + '|') +
                ...);
    };
    EXPECT_EQ("VELDRIN_AUDIT_IO img_ioState|FPS (null)|VELDRIN_WF_GAMMA WF_GAMMA|",
              names(ENV_VELDRIN_AUDIT_IO, ENV_FPS, ENV_VELDRIN_WF_GAMMA));
    EXPECT_EQ("(null) (null)|(null) (null)|(null) (null)|",
              names(UT_NUM_INT_CONTROLS, UT_NUM_FLOAT_CONTROLS, UT_NUM_STR_CONTROLS));
}

TEST(EnvControl, FirstUseComputesAndExportsDefaults)
{
    const std::vector<std::string> cases[] = {
        // the inherited environment, then HOME, temporary folder and desktop
        {"VELDRIN_TEMP_DIR=/var/tmp/", "T=/var/tmp /var/tmp/ /Desktop"},
        {"T=/tmp /tmp /Desktop"},
        {"HOME=/home/u", "VELDRIN_TEMP_DIR=/t//", "T=/home/u /t// /home/u/Desktop"},
        {"HOME=\\h", "VELDRIN_DESKTOP_DIR=d", "USER=u", "T=/h /tmp d"},
    };
    for (const std::vector<std::string> &environment : cases) {
        if (!isFreshProcess(environment))
            continue;
        EXPECT_EQ(UTgetenv("T"), shown(ENV_HOME) + ' ' + shown(ENV_VELDRIN_TEMP_DIR) + ' ' +
                                     shown(ENV_VELDRIN_DESKTOP_DIR));
        EXPECT_EQ("Linux", shown(ENV_VELDRIN_OS));
        EXPECT_EQ(nullptr, UTgetenv("VELDRIN_OS")) << "is not exported";
        for (const UT_StrControl exported :
             {ENV_HOME, ENV_VELDRIN_TEMP_DIR, ENV_VELDRIN_DESKTOP_DIR, ENV_USER})
            EXPECT_EQ(shown(exported), orNull(UTgetenv(UT_EnvControl::getVariableName(exported))));
        const std::string before = UTgetTempDir();
        const ScopedVariable later("VELDRIN_TEMP_DIR", "/elsewhere");
        EXPECT_EQ(before, UTgetTempDir());
        EXPECT_EQ("/elsewhere", shown(ENV_VELDRIN_TEMP_DIR));
        return;
    }
}

TEST(EnvControl, TheUserIsTheLoginNameWithoutBlanks)
{
    expectEach({"John Smith -> John_Smith", " a  b -> _a__b", "root -> root", "(null) -> nobody"},
               [](const char *login) {
                   UT_String user;
                   user.adopt(ut_makeUserDefault(login));
                   return user.toStdString();
               });
}
