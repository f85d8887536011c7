#include "Output.h"

#include "UT/UT_Process.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace
{
void write(std::string text, std::FILE *to)
{
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        UTmakePrintable(&text[at], end - at);
        at = end + 1;
    }
    std::fwrite(text.data(), 1, text.size(), to);
}
} // namespace

void writeError(const std::string &text)
{
    std::fflush(stdout);
    write(text, stderr);
}

void writeOutput(const std::string &text)
{
    write(text, stdout);
}

bool finishOutput()
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    std::fprintf(stderr, "vosl: cannot write: %s\n", std::strerror(errno));
    return false;
}
