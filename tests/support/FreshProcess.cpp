#include "tests/support/FreshProcess.h"

#include "tests/support/ProgramRun.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

bool isFreshProcess(std::vector<std::string> environment)
{
    static const char MARK[] = "VELDRIN_FRESH_PROCESS";
    if (std::getenv(MARK) != nullptr)
        return true;
    const auto &test = *testing::UnitTest::GetInstance()->current_test_info();
    environment.push_back(std::string(MARK) + "=1");
    std::vector<std::string> arguments = {std::filesystem::read_symlink("/proc/self/exe"),
                                          std::string("--gtest_filter=") + test.test_suite_name() +
                                              "." + test.name()};
    if (*TEST_EMULATOR != '\0') // where the kernel does not run this kind of program
        arguments.insert(arguments.begin(), TEST_EMULATOR);
    const ProgramRun again = runProgram(arguments, environment);
    EXPECT_EQ(0, again.status) << again.out << again.err;
    return false;
}
