#include "UT/UT_ErrorManager.h"

#include "tests/support/Random.h"
#include "tests/support/ScopedVariable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>

namespace
{
// What a manager holds: each record's code and severity.
struct PlainManager : std::vector<std::pair<int, int>> {
    int severity() const
    {
        int most = 0;
        for (const auto &[code, one] : *this)
            most = std::max(most, one);
        return most;
    }
    void add(value_type record)
    {
        if (size() < 40 || record.second > severity())
            push_back(record);
    }
};

// Type, code, severity and text.
std::string shown(const UT_Error *error)
{
    return error == nullptr
               ? ""
               : std::string(error->getType()) + ' ' + std::to_string(error->getCode()) + ' ' +
                     std::to_string(error->getSeverity()) + error->getText();
}

void expectSame(const PlainManager &plain, UT_ErrorManager &manager)
{
    for (int filter = 0; filter < 6; ++filter) {
        std::string all;
        int count = 0;
        for (const auto &[code, severity] : plain) {
            const bool isWanted = filter == 0 || filter == severity;
            all += code == plain[0].first ? "" : "\n";
            all += isWanted ? std::strerror(ENOENT) + (" (" + std::to_string(code) + ")") : "";
            count += isWanted;
        }
        UT_String out("old");
        ASSERT_EQ(count, manager.getErrorMessages(out, filter, filter % 2));
        ASSERT_EQ(all, out.toStdString());
    }
    ASSERT_EQ(plain.severity(), manager.getSeverity());
    ASSERT_EQ(plain.size(), static_cast<size_t>(manager.getNumErrors()));
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
                p.erase(p.begin() + index);
            delete error;
        } else if (below(4) == 0) {
            m.clearAndDestroyErrors();
            p.clear();
            EXPECT_TRUE(m.isRead());
        } else {
            const int first = below(40) - 5, last = below(50) - 5, filter = below(5);
            const bool copies = below(2) == 0;
            const PlainManager before = plain[other];
            int count = 0, index = 0;
            plain[other].clear();
            for (const auto &record : before) {
                const bool isInside = index >= first && (last < 0 || index <= last);
                const bool isTaken = isInside && (!filter || filter == record.second);
                if (isTaken)
                    p.add(record);
                if (!isTaken || copies)
                    plain[other].push_back(record);
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
    UT_ErrorManager::pushManager();
    UTaddNote("below", 1);
    UT_ErrorManager::pushManager();
    errno = ENOENT;
    const int highest[] = {
        UTaddMessage("T", 1, "x"), UTaddNote("T", 2),  UTaddWarning("T", 3, "x"),
        UTaddCommonWarning(4),     UTaddError("T", 5), UTaddCommonError(6, "x"),
        UTaddSystemError(),        UTaddFatal("T", 8), UTaddError(new UT_Error("T", 9, "x", 1))};
    EXPECT_THAT(highest, testing::ElementsAre(1, 2, 3, 3, 4, 4, 4, 5, 5));
    std::string all;
    for (int i = 0; const UT_Error *error = UT_ErrorManager::getCurrent().getError(i); ++i) {
        all += shown(error) + '|';
        EXPECT_EQ(i, UTfindError(error->getType(), error->getCode()));
    }
    EXPECT_EQ("T 1 1x|T 2 2|T 3 3x|Common 4 3|T 5 4|Common 6 4x|System 2 4|T 8 5|T 9 1x|", all);
    EXPECT_EQ(-1, UTfindError("Common", 5));
    UT_ErrorManager::popManager();
    EXPECT_EQ(2, UTgetErrorSeverity());
    while (UT_ErrorManager::getCurrent().getNumErrors() > 0)
        UT_ErrorManager::popManager();
    UT_ErrorManager::popManager();
    UT_ErrorManager::popManager();
    EXPECT_EQ(0, UTgetErrorSeverity()) << "an empty stack makes a manager";
}

TEST(ErrorManager, AWatcherHearsOfErrorsOnly)
{
    static std::string watched;
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
    const auto isLoss = testing::AnyOf(EIO, EMFILE, ENOSPC, EROFS, ENOSTR, ENOSR, ETIMEDOUT);
    for (int code = 0; code < 140; ++code)
        for (const char *const word : {"Write", "", static_cast<const char *>(nullptr)}) {
            const bool isLost = testing::Value(code, isLoss), isVerbose = code % 2 == 0;
            const std::string reason = std::strerror(code), text = word ? word : "";
            const ScopedVariable verbose("VELDRIN_VERBOSE_ERROR", isVerbose ? "1" : "0");
            UT_ErrorManager::pushManager();
            testing::internal::CaptureStderr();
            errno = code;
            EXPECT_EQ(!isLost, UTcheckSaveError(word, word));
            const std::string report = "Veldrin Save error detected:errno " + std::to_string(code) +
                                       " (" + reason + ") path(" + text + ") operation(" + text +
                                       ")\n\r";
            EXPECT_EQ(isVerbose && code ? report : "", testing::internal::GetCapturedStderr());
            const UT_Error *const error = UT_ErrorManager::getCurrent().getError(0);
            EXPECT_EQ(isLost ? "Common 4 4" + text + " <" + reason + "> " + text : "",
                      shown(error));
            UT_ErrorManager::popManager();
        }
}
