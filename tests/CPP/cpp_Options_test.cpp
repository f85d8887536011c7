#include "tests/support/Cases.h"
#include "tests/support/preprocessed.h"

#include <unistd.h>

TEST(Options, SayWhereTheOperandsStartAndWhatIsDefined)
{
    // A failed scan leaves nothing behind for the next.
    expectEach({" -> 1", "-P file -> 2", "-D A -P -> 4A", "-- -DA -> 2", "-q -> 0", "-r -> 0",
                "-DA=1 -qqqqq -DB=2 -> 0A", "-DA=1 -> 2A"},
               [](const char *options) {
                   CPP_Manager manager;
                   const int before = optind = 7;
                   testing::internal::CaptureStderr();
                   const int index = parseOptions(manager, options);
                   EXPECT_EQ(index == 0, !testing::internal::GetCapturedStderr().empty());
                   EXPECT_EQ(before, optind);
                   EXPECT_FALSE(manager.isMacroDefined("B"));
                   return std::to_string(index) + (manager.isMacroDefined("A") ? "A" : "");
               });
}
