#include "thumbmake/tm_Progress.h"

#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace
{
double seconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

size_t columns()
{
    winsize size = {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 20;
    return known ? size.ws_col : 80U;
}
} // namespace

tm_Progress::tm_Progress(const tm_Options &options)
    : isShown(!options.isQuiet), isWrittenOver(!options.isVerbose && isatty(STDOUT_FILENO) != 0),
      myStart(seconds())
{
}

tm_Progress::~tm_Progress()
{
    clear();
}

void tm_Progress::clear()
{
    if (!hasLine)
        return;
    std::fputs("\r\x1b[K", stdout);
    std::fflush(stdout);
    hasLine = false;
}

// By the pictures so far; nothing before there are some.
std::string tm_Progress::timeLeft(long done, long all) const
{
    const double passed = seconds() - myStart;
    if (done >= all || passed < 1)
        return "";
    const auto left =
        static_cast<long>(passed / static_cast<double>(done) * static_cast<double>(all - done));
    char text[64];
    if (left >= 3600)
        std::snprintf(text, sizeof text, "  %ld:%02ld:%02ld left", left / 3600, left / 60 % 60,
                      left % 60);
    else
        std::snprintf(text, sizeof text, "  %ld:%02ld left", left / 60, left % 60);
    return text;
}

void tm_Progress::show(long done, long all, const std::string &name)
{
    if (!isShown)
        return;
    const std::string total = std::to_string(all);
    std::string count = std::to_string(done);
    count.insert(0, total.size() - std::min(total.size(), count.size()), ' ');
    std::string line = "[" + count + "/" + total + "] " + tm_printable(name);
    if (!isWrittenOver) {
        std::printf("%s\n", line.c_str());
        std::fflush(stdout);
        return;
    }
    const std::string left = timeLeft(done, all);
    line.resize(std::min(line.size(), columns() - 1 - left.size()));
    std::printf("\r%s%s\x1b[K", line.c_str(), left.c_str());
    std::fflush(stdout);
    hasLine = true;
}

void tm_Progress::say(const std::string &line)
{
    clear();
    std::fprintf(stderr, "%s\n", tm_printable(line).c_str());
}
