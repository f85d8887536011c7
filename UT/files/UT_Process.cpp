#include "UT/UT_Process.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iterator>
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

// What UTF-8 (RFC 3629) has at the beginning of a text: how many bytes, and its code. A byte
// that begins no sequence counts as the code that it is in Latin-1.
struct Character {
    size_t length;
    unsigned code;
};

Character firstCharacter(std::string_view text)
{
    const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const size_t length = first < 0xc2 || first > 0xf4 ? 1
                          : first < 0xe0               ? 2
                          : first < 0xf0               ? 3
                                                       : 4;
    if (length == 1 || length > text.size())
        return {1, first};
    unsigned code = first & (0x7fU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80)
            return {1, first};
        code = code << 6 | (byte(i) & 0x3f);
    }
    static constexpr unsigned LEAST[] = {0, 0, 0x80, 0x800, 0x10000}; // by length
    const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
    if (code < LEAST[length] || isSurrogate || code > 0x10ffff)
        return {1, first};
    return {length, code};
}

bool isPrintable(unsigned code)
{
    static constexpr struct {
        unsigned first, last;
    } HIDDEN[] = {
        {0, 0x08},        {0x0a, 0x1f},     {0x7f, 0x9f},     // control characters
        {0x061c, 0x061c}, {0x200e, 0x200f}, {0x202a, 0x202e}, // direction of writing
        {0x2066, 0x2069}, {0x2028, 0x2029},                   // line ends
    };
    return std::none_of(std::begin(HIDDEN), std::end(HIDDEN), [code](const auto &range) {
        return code >= range.first && code <= range.last;
    });
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
    for (size_t i = 0; i < length;) {
        const Character character = firstCharacter({text + i, length - i});
        if (!isPrintable(character.code))
            std::memset(text + i, '?', character.length);
        i += character.length;
    }
}
