#include "thumbmake/tm_Text.h"

#include "UT/UT_Process.h"
#include "UT/UT_SafeFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace
{
std::string replaced(const std::string &text, char from, std::string_view to)
{
    std::string out;
    for (const char c : text)
        if (c == from)
            out += to;
        else
            out += c;
    return out;
}
} // namespace

std::string tm_quoteForShell(const std::string &word)
{
    return "'" + replaced(word, '\'', "'\\''") + "'";
}

std::string tm_quoteForNinja(const std::string &value)
{
    return replaced(value, '$', "$$");
}

// A '|' ends a path, and nothing but a variable can hold one.
std::string tm_ninjaPath(const std::string &path)
{
    std::string quoted = replaced(tm_quoteForNinja(path), ' ', "$ ");
    quoted = replaced(quoted, ':', "$:");
    return replaced(quoted, '|', "${bar}");
}

std::string tm_quoteForVaskel(const std::string &word)
{
    return "'" + replaced(word, '\'', "'\"'\"'") + "'";
}

bool tm_hasControl(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < ' ' || byte == 0x7f;
    });
}

std::string tm_printable(std::string text)
{
    UTmakePrintable(text.data(), text.size());
    return text;
}

int tm_fail(const std::string &message)
{
    std::fprintf(stderr, "thumbmake: error: %s\n", tm_printable(message).c_str());
    return 1;
}

int tm_print(const std::string &text)
{
    const bool isGood = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return isGood ? 0 : tm_fail(std::string("cannot write: ") + std::strerror(errno));
}

std::string tm_grouped(long number)
{
    std::string text = std::to_string(number);
    for (size_t i = text.size(); i > 3; i -= 3)
        text.insert(i - 3, ",");
    return text;
}

std::string tm_hex(std::uint64_t number)
{
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(number));
    return text;
}

std::uint64_t tm_hash(std::string_view text, std::uint64_t start)
{
    for (const char c : text)
        start = (start ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return start;
}

std::vector<std::string> tm_split(const std::string &text, char separator)
{
    std::vector<std::string> parts(1);
    for (const char c : text)
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    return parts;
}

bool tm_readFile(const std::string &path, std::string &text)
{
    text.clear();
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    char block[65536];
    ssize_t count = 0;
    while ((count = read(file, block, sizeof block)) > 0 || (count < 0 && errno == EINTR))
        text.append(block, static_cast<size_t>(std::max<ssize_t>(count, 0)));
    const int code = errno;
    close(file);
    errno = code;
    return count == 0;
}

bool tm_writeFile(const std::string &path, const std::string &text)
{
    std::error_code ignored; // opening tells
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    UT_SafeFile file(path);
    FILE *const out = file.open();
    if (out == nullptr)
        return false;
    std::fwrite(text.data(), 1, text.size(), out);
    return file.commit();
}
