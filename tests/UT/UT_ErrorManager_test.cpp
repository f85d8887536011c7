#include "UT/UT_ErrorManager.h"

#include "UT/UT_EnvControl.h"
#include "UT/UT_Environment.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace
{

// A manager with one system error of each severity given, the codes from 1 on.
void fill(UT_ErrorManager &manager, const std::string &severities)
{
    int code = 0;
    for (const char c : severities)
        manager.addError(new UT_Error("System", ++code, "", c - '0'));
}

std::string codesOf(const UT_ErrorManager &manager)
{
    std::string codes;
    for (int i = 0; i < manager.getNumErrors(); ++i)
        codes += std::to_string(manager.getError(i)->getCode());
    return codes;
}

} // namespace

TEST(ErrorManager, EachOperationMakesItsRecord)
{
    UT_ErrorManager m;
    EXPECT_EQ(0, m.getSeverity());
    EXPECT_EQ(1, m.addMessage("T", 1, "x"));
    EXPECT_EQ(2, m.addNote("T", 2));
    EXPECT_EQ(3, m.addWarning("T", 3));
    EXPECT_EQ(3, m.addCommonWarning(4));
    EXPECT_EQ(4, m.addError("T", 5));
    EXPECT_EQ(4, m.addCommonError(6));
    errno = ENOENT;
    EXPECT_EQ(4, m.addSystemError("y"));
    EXPECT_EQ(5, m.addFatal("T", 8));
    EXPECT_EQ(5, m.addMessage("T", 1, "later"));

    const struct {
        const char *type;
        int code, index, severity;
    } cases[] = {{"T", 1, 0, 1},      {"T", 2, 1, 2}, {"T", 3, 2, 3},
                 {"Common", 4, 3, 3}, {"T", 5, 4, 4}, {"Common", 6, 5, 4},
                 {"System", 2, 6, 4}, {"T", 8, 7, 5}, {"T", 9, -1, 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(c.index, m.findError(c.type, c.code));
        EXPECT_EQ(c.severity, c.index < 0 ? 0 : m.getError(c.index)->getSeverity());
    }
    EXPECT_STREQ("x", m.getError(0)->getText());
}

TEST(ErrorManager, AFullListTakesOnlyWhatIsWorse)
{
    UT_ErrorManager m;
    fill(m, std::string(41, '3'));
    EXPECT_EQ(40, m.getNumErrors());
    EXPECT_EQ(4, m.addError("T", 1));
    EXPECT_EQ(4, m.addError("T", 2));
    EXPECT_EQ(41, m.getNumErrors());
    EXPECT_EQ(-1, m.findError("T", 2));
}

TEST(ErrorManager, MessagesAreJoinedAndCountedBySeverity)
{
    UT_ErrorManager m;
    fill(m, "343");
    const std::string one = std::strerror(1), two = std::strerror(2), three = std::strerror(3);
    UT_String out("old");
    EXPECT_FALSE(m.isRead());
    EXPECT_EQ(3, m.getErrorMessages(out, 0, true));
    EXPECT_EQ(one + "\n" + two + "\n" + three, out.toStdString());
    EXPECT_TRUE(m.isRead());
    EXPECT_EQ(2, m.getErrorMessages(out, 3, false));
    EXPECT_EQ(one + "\n\n" + three, out.toStdString());
    m.addMessage("System", 1);
    EXPECT_FALSE(m.isRead());

    m.clearAndDestroyErrors();
    EXPECT_TRUE(m.isRead());
    EXPECT_EQ(0, m.getErrorMessages(out, 0, true));
    EXPECT_STREQ("", out);
    EXPECT_EQ(0, m.getSeverity());
}

TEST(ErrorManager, ConsecutiveMessagesOfOneSeverityArePrefixedOnce)
{
    UT_ErrorManager m;
    UT_String out;
    const char *table = SOURCE_DIR "/share/veldrin/error/Common";
    m.addError(table, 4, "a");
    m.addError(table, 4, "b");
    m.getErrorMessages(out, 0, true);
    EXPECT_STREQ("Error:       Unable to save: a\n             Unable to save: b", out);
}

TEST(ErrorManager, RecordsCanBeTakenOverAndTakenOut)
{
    const struct {
        const char *what;
        int first, last, filter;
        bool copy;
        int count;
        const char *left, *taken;
        int severityLeft;
    } cases[] = {
        {"all", 0, -1, 0, false, 4, "", "1234", 0},
        {"some", 1, 2, 0, false, 2, "14", "23", 3},
        {"one severity", 0, -1, 4, false, 1, "134", "2", 5},
        {"clamped", -5, 99, 3, false, 1, "234", "1", 5},
        {"copies", 1, -1, 0, true, 3, "1234", "234", 5},
        {"nothing", 3, 1, 0, false, 0, "1234", "", 5},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        UT_ErrorManager from, to;
        fill(from, "3452");
        EXPECT_EQ(c.count, to.stealErrors(from, c.first, c.last, c.filter, c.copy));
        EXPECT_EQ(c.left, codesOf(from));
        EXPECT_EQ(c.taken, codesOf(to));
        EXPECT_EQ(c.severityLeft, from.getSeverity());
    }
    UT_ErrorManager m;
    fill(m, "354");
    EXPECT_EQ(3, m.stealErrors(m, 0, -1, 0, false)) << "from itself";
    EXPECT_EQ("123", codesOf(m));
    const UT_Error *worst = m.getError(1);
    EXPECT_EQ(1, m.removeError(1));
    EXPECT_EQ(5, worst->getSeverity());
    delete worst;
    EXPECT_EQ(4, m.getSeverity());
    EXPECT_EQ(-1, m.removeError(2));
    EXPECT_EQ(nullptr, m.getError(-1));
}

TEST(ErrorManager, FunctionsWorkOnTheTopOfTheStack)
{
    UT_ErrorManager::pushManager();
    EXPECT_EQ(3, UTaddWarning("T", 1, "x"));
    UT_ErrorManager::pushManager();
    EXPECT_EQ(0, UTgetErrorSeverity());
    EXPECT_EQ(1, UTaddMessage("T", 1));
    EXPECT_EQ(2, UTaddNote("T", 2));
    EXPECT_EQ(3, UTaddCommonWarning(3));
    EXPECT_EQ(4, UTaddError("T", 4));
    EXPECT_EQ(4, UTaddCommonError(5));
    EXPECT_EQ(4, UTaddSystemError());
    EXPECT_EQ(5, UTaddFatal("T", 7));
    EXPECT_EQ(5, UTaddError(new UT_Error("T", 8, "", 1)));
    EXPECT_EQ(7, UTfindError("T", 8));
    UT_ErrorManager::popManager();
    EXPECT_EQ(3, UTgetErrorSeverity());
    EXPECT_EQ(0, UTfindError("T", 1));
    UT_ErrorManager::popManager();
    while (UT_ErrorManager::getCurrent().getNumErrors() > 0)
        UT_ErrorManager::popManager();
    EXPECT_EQ(0, UTgetErrorSeverity()) << "an empty stack makes a manager";
}

namespace
{
std::string watched;
}

TEST(ErrorManager, AWatcherHearsOfErrorsOnly)
{
    UT_ErrorManager m;
    UT_ErrorManager::setErrorHook([](const char *message) { watched += message; });
    m.addWarning("T", 1);
    m.addFatal("T", 2);
    m.addError(new UT_Error("T", 3, "", 4));
    EXPECT_EQ("", watched);
    m.addError(SOURCE_DIR "/share/veldrin/error/Common", 4, "x");
    m.addError("T", 4);
    m.addCommonError(-1);
    EXPECT_EQ("Error:       Unable to save: xT: unknown error: 4Common: unknown error: -1",
              watched);
    UT_ErrorManager::setErrorHook(nullptr);
    watched.clear();
    m.addError("T", 5);
    EXPECT_EQ("", watched);
}

TEST(ErrorManager, AFailedWriteIsPostedWhenItsDataAreLost)
{
    const std::string full = std::strerror(ENOSPC);
    const struct {
        int code;
        const char *operation, *path;
        bool good;
        std::string text;
    } cases[] = {
        {0, "Write", "a", true, ""},
        {ENOENT, "Write", "a", true, ""},
        {ENOSPC, "Write", "a/b", false, "Write <" + full + "> a/b"},
        {ENOSPC, nullptr, nullptr, false, " <" + full + "> "},
        {ETIMEDOUT, "Write", "", false, "Write <" + std::string(std::strerror(ETIMEDOUT)) + "> "},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.code);
        UT_ErrorManager::pushManager();
        errno = c.code;
        EXPECT_EQ(c.good, UTcheckSaveError(c.operation, c.path));
        const UT_ErrorManager &m = UT_ErrorManager::getCurrent();
        EXPECT_EQ(c.good ? -1 : 0, m.findError("Common", UT_COMMON_SAVE_FAILED));
        EXPECT_EQ(c.text, c.good ? "" : m.getError(0)->getText());
        UT_ErrorManager::popManager();
    }
}

TEST(ErrorManager, FailedWritesAreReportedInFullWhenAskedFor)
{
    const auto report = [](const char *verbose) {
        UTsetenv("VELDRIN_VERBOSE_ERROR", verbose);
        UT_EnvControl::instance().updateVariable("VELDRIN_VERBOSE_ERROR");
        testing::internal::CaptureStderr();
        errno = ENOENT;
        EXPECT_TRUE(UTcheckSaveError("Write", nullptr));
        return testing::internal::GetCapturedStderr();
    };
    const std::string reason = std::strerror(ENOENT);
    EXPECT_EQ("Veldrin Save error detected:errno 2 (" + reason + ") path() operation(Write)\n\r",
              report("1"));
    EXPECT_EQ("", report("0"));
}
