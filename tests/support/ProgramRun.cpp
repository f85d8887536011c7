#include "tests/support/ProgramRun.h"

#include "tests/support/PlainText.h"
#include "tests/support/ScratchDirectory.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

// Files and not pipes: the program may write as much as it likes to each.
ProgramRun runProgram(Texts arguments, Texts environment, const std::string &folder,
                      const std::string &input)
{
    const ScratchDirectory scratch;
    const std::string in = scratch.write("in", input);
    const std::string outFile = scratch.path("out"), errFile = scratch.path("err");

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    const int flags = O_WRONLY | O_CREAT | O_APPEND;
    posix_spawn_file_actions_addopen(&actions, 1, outFile.c_str(), flags, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errFile.c_str(), flags, 0600);
    pid_t child = 0;
    const int failed = posix_spawn(&child, arguments[0].c_str(), &actions, nullptr,
                                   pointersTo(arguments).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    int waited = 0, status = -1;
    if (failed == 0 && waitpid(child, &waited, 0) == child)
        status = WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
    return {status, fileContents(outFile), fileContents(errFile)};
}

ProgramRun runLine(const std::string &line, Texts environment, const std::string &folder,
                   const std::string &input)
{
    environment.emplace_back("RUN=" TEST_EMULATOR);
    return runProgram({"/bin/bash", "-c", line}, environment, folder, input);
}
