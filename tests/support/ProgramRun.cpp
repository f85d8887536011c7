#include "tests/support/ProgramRun.h"

#include "tests/support/PlainText.h"
#include "tests/support/ScratchDirectory.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

// Files and not pipes: the program may write as much as it likes to each.
void ProgramRun::run()
{
    const ScratchDirectory scratch;
    const std::string in = inputFrom.empty() ? scratch.write("in", input) : inputFrom;
    const std::string outFile = outputTo.empty() ? scratch.path("out") : outputTo;
    const std::string errFile = scratch.path("err");

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    const int flags = O_WRONLY | O_CREAT | O_APPEND;
    posix_spawn_file_actions_addopen(&actions, 1, outFile.c_str(), flags, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errFile.c_str(), flags, 0600);

    // Where the kernel does not run this kind of program, something else does.
    if (*TEST_EMULATOR != '\0')
        arguments.insert(arguments.begin(), TEST_EMULATOR);
    pid_t child = 0;
    const int failed = posix_spawnp(&child, arguments[0].c_str(), &actions, nullptr,
                                    pointersTo(arguments).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    int waited = 0;
    if (failed == 0 && waitpid(child, &waited, 0) == child)
        status = WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
    out = outputTo.empty() ? fileContents(outFile) : "";
    err = fileContents(errFile);
}
