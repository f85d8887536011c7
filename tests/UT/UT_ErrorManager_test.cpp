#include "UT/UT_ErrorManager.h"

#include "tests/support/Random.h"
#include "tests/support/ScopedVariable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{
// What a manager holds: each record's code and severity.
struct PlainManager {
    std::vector<std::pair<int, int>> records;

    int severity() const
    {
        int most = 0;
        for (const auto &[code, severity] : records)
            most = std::max(most, severity);
        return most;
    }
    void add(std::pair<int, int> record)
    {
        if (records.size() < 40 || record.second > severity())
            records.push_back(record);
    }
};

void expectSame(const PlainManager &plain, UT_ErrorManager &manager)
{
    for (int filter = 0; filter < 6; ++filter) {
        std::string all;
        int count = 0;
        for (const auto &[code, severity] : plain.records) {
            const bool isWanted = filter == 0 || filter == severity;
            all += code == plain.records[0].first ? "" : "\n";
            all += isWanted ? std::strerror(ENOENT) + (" (" + std::to_string(code) + ")") : "";
            count += isWanted;
        }
        UT_String out("old");
        ASSERT_EQ(count, manager.getErrorMessages(out, filter, filter % 2));
        ASSERT_EQ(all, out.toStdString());
    }
    ASSERT_EQ(plain.severity(), manager.getSeverity());
    ASSERT_EQ(plain.records.size(), static_cast<size_t>(manager.getNumErrors()));
    ASSERT_TRUE(manager.isRead());
}
} // namespace

// Each record has a text of its own, so that its way can be followed.
TEST(ErrorManager, RecordsComeAndGoAsInAList)
{
    Random random;
    SCOPED_TRACE(random.seed());
    UT_ErrorManager managers[2];
    PlainManager plain[2];
    const auto below = [&](size_t limit) { return static_cast<int>(random.below(limit)); };
    for (int step = 0; step < 1500 && !testing::Test::HasFailure(); ++step) {
        const size_t which = random.below(2), other = 1 - which;
        UT_ErrorManager &m = managers[which];
        PlainManager &p = plain[which];
        const int size = m.getNumErrors();
        if (below(10) > 0) {
            const int severity = below(20) > 0 ? 1 + below(3) : 4 + below(2);
            p.add({step, severity});
            auto *error = new UT_Error("System", ENOENT, std::to_string(step).c_str(), severity);
            EXPECT_EQ(p.severity(), m.addError(error));
            EXPECT_TRUE(!m.isRead() || m.getNumErrors() == size);
        } else if (below(4) == 0) {
            const int index = below(50) - 2;
            const UT_Error *const error = m.getError(index);
            EXPECT_EQ(error ? index : -1, m.removeError(index));
            if (error)
                p.records.erase(p.records.begin() + index);
            delete error;
        } else if (below(4) == 0) {
            m.clearAndDestroyErrors();
            p.records.clear();
            EXPECT_TRUE(m.isRead());
        } else {
            const int first = below(40) - 5, last = below(50) - 5, filter = below(5);
            const bool copies = below(2) == 0;
            const PlainManager before = plain[other];
            int count = 0, index = 0;
            plain[other].records.clear();
            for (const auto &record : before.records) {
                const bool isInside = index >= first && (last < 0 || index <= last);
                const bool isTaken = isInside && (!filter || filter == record.second);
                if (isTaken)
                    p.add(record);
                if (!isTaken || copies)
                    plain[other].records.push_back(record);
                count += isTaken;
                ++index;
            }
            EXPECT_EQ(count, m.stealErrors(managers[other], first, last, filter, copies));
            expectSame(plain[other], managers[other]);
        }
        expectSame(p, m);
    }
    const int count = managers[0].getNumErrors();
    EXPECT_EQ(count, managers[0].stealErrors(managers[0], 0, -1, 0, false)) << "from itself";
    EXPECT_EQ(count, managers[0].getNumErrors());
}

TEST(ErrorManager, FunctionsAddToTheTopOfTheStack)
{
    const struct {
        int (*add)();
        const char *type;
        int code, severity, highest;
    } cases[] = {
        {[] { return UTaddMessage("T", 1, "x"); }, "T", 1, 1, 1},
        {[] { return UTaddNote("T", 2); }, "T", 2, 2, 2},
        {[] { return UTaddWarning("T", 3, "x"); }, "T", 3, 3, 3},
        {[] { return UTaddCommonWarning(4); }, "Common", 4, 3, 3},
        {[] { return UTaddError("T", 5); }, "T", 5, 4, 4},
        {[] { return UTaddCommonError(6, "x"); }, "Common", 6, 4, 4},
        {[] { return UTaddSystemError(); }, "System", ENOENT, 4, 4},
        {[] { return UTaddFatal("T", 8); }, "T", 8, 5, 5},
        {[] { return UTaddError(new UT_Error("T", 9, "x", 1)); }, "T", 9, 1, 5},
    };
    UT_ErrorManager::pushManager();
    UTaddNote("below", 1);
    UT_ErrorManager::pushManager();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(-1, UTfindError(c.type, c.code));
        errno = ENOENT;
        EXPECT_EQ(c.highest, c.add());
        const int index = UTfindError(c.type, c.code);
        ASSERT_EQ(&c - cases, index);
        EXPECT_EQ(c.severity, UT_ErrorManager::getCurrent().getError(index)->getSeverity());
    }
    EXPECT_STREQ("x", UT_ErrorManager::getCurrent().getError(2)->getText());
    UT_ErrorManager::popManager();
    EXPECT_EQ(2, UTgetErrorSeverity());
    while (UT_ErrorManager::getCurrent().getNumErrors() > 0)
        UT_ErrorManager::popManager();
    UT_ErrorManager::popManager();
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
    m.addSystemError();
    m.addError(new UT_Error("T", 3, "", 4));
    m.addError(SOURCE_DIR "/share/veldrin/error/Common", 4, "x");
    m.addCommonError(-1);
    UT_ErrorManager::setErrorHook(nullptr);
    m.addError("T", 5);
    EXPECT_EQ("Error:       Unable to save: xCommon: unknown error: -1", watched);
}

TEST(ErrorManager, AFailedWriteIsPostedWhenItsDataAreLost)
{
    for (int code = 0; code < 140; ++code)
        for (const char *const word : {"Write", "", static_cast<const char *>(nullptr)}) {
            const int losses[] = {EIO, EMFILE, ENOSPC, EROFS, ENOSTR, ENOSR, ETIMEDOUT};
            const bool isLoss = std::count(std::begin(losses), std::end(losses), code) > 0;
            const std::string reason = std::strerror(code), text = word ? word : "";
            const bool isVerbose = code % 2 == 0;
            const ScopedVariable verbose("VELDRIN_VERBOSE_ERROR", isVerbose ? "1" : "0");
            UT_ErrorManager::pushManager();
            testing::internal::CaptureStderr();
            errno = code;
            EXPECT_EQ(!isLoss, UTcheckSaveError(word, word));
            const std::string report = "Veldrin Save error detected:errno " + std::to_string(code) +
                                       " (" + reason + ") path(" + text + ") operation(" + text +
                                       ")\n\r";
            EXPECT_EQ(isVerbose && code ? report : "", testing::internal::GetCapturedStderr());
            EXPECT_EQ(isLoss ? 0 : -1, UTfindError("Common", UT_COMMON_SAVE_FAILED));
            const UT_Error *const error = UT_ErrorManager::getCurrent().getError(0);
            EXPECT_EQ(isLoss ? text + " <" + reason + "> " + text : "",
                      error ? error->getText() : "");
            UT_ErrorManager::popManager();
        }
}
