#include "UT/UT_Process.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <pwd.h>
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

void findHome()
{
    if (std::getenv("HOME") != nullptr)
        return;
    const passwd *const user = getpwuid(geteuid());
    setenv("HOME", user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "", 1);
}

// How many bytes at `text` are not to be shown.
size_t unprintable(std::string_view text)
{
    const auto byte = [text](size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    };
    if ((byte(0) < ' ' && byte(0) != '\t') || byte(0) == 0x7f)
        return 1;
    if (byte(0) == 0xc2 && byte(1) >= 0x80 && byte(1) <= 0x9f)
        return 2; // U+0080 to U+009F
    if (byte(0) != 0xe2)
        return 0;
    // U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069
    const int code = (byte(1) - 0x80) * 64 + byte(2) - 0x80;
    const bool isHidden = code == 0x0e || code == 0x0f || (code >= 0x28 && code <= 0x2e) ||
                          (code >= 0x66 && code <= 0x69);
    return isHidden ? 3 : 0;
}
} // namespace

void UTstartProgram()
{
    std::set_new_handler(UTdieWithoutMemory);
    occupyStandardDescriptors();
    turnFileLimitIntoError();
    findHome();
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
        const size_t count = unprintable({text + i, length - i});
        std::memset(text + i, '?', count);
    }
}
