#include "UT/UT_Process.h"

#include <atomic>
#include <csignal>
#include <new>

#include <fcntl.h>
#include <unistd.h>

namespace
{
extern "C" void ignoreSignal(int) {}

// An empty handler and not SIG_IGN, which programs started from here would inherit
// (POSIX exec). Somebody's own SIG_IGN stays.
void turnFileLimitIntoError()
{
    struct sigaction action = {};
    if (sigaction(SIGXFSZ, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = ignoreSignal;
    action.sa_flags = SA_RESTART;
    sigaction(SIGXFSZ, &action, nullptr);
}

// Open the wrong way round, so that a use fails with EBADF.
void occupyStandardDescriptors()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

bool isControl(unsigned char c)
{
    return (c < ' ' && c != '\t') || c == 0x7f;
}
} // namespace

void UTstartProgram()
{
    std::set_new_handler(UTdieWithoutMemory);
    occupyStandardDescriptors();
    turnFileLimitIntoError();
}

void UTdieWithoutMemory()
{
    static std::atomic_flag isDying = ATOMIC_FLAG_INIT;
    while (isDying.test_and_set())
        pause();
    static const char message[] = "Out of memory\n";
    static_cast<void>(!write(STDERR_FILENO, message, sizeof message - 1));
    _exit(1);
}

void UTmakePrintable(char *text, size_t length)
{
    for (size_t i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < length ? text[i + 1] : 0);
        // U+0080 to U+009F are C2 80 to C2 9F.
        if (c == 0xc2 && next >= 0x80 && next <= 0x9f)
            text[i] = text[i + 1] = '?';
        else if (isControl(c))
            text[i] = '?';
    }
}
