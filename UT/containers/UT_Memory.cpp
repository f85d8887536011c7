#include "UT/UT_Memory.h"

#include "UT/UT_Process.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{
void *checked(void *block)
{
    if (block == nullptr)
        UTdieWithoutMemory();
    return block;
}

// A size that was negative before its conversion, or beyond any object, fails
// like memory that is not there.
size_t sane(size_t bytes)
{
    return bytes > PTRDIFF_MAX ? SIZE_MAX : bytes;
}
} // namespace

void *UTallocate(size_t bytes)
{
    bytes = sane(bytes);
    return checked(bytes == SIZE_MAX ? nullptr : std::malloc(bytes != 0 ? bytes : 1));
}

void *UTreallocate(void *block, size_t bytes)
{
    bytes = sane(bytes);
    return checked(bytes == SIZE_MAX ? nullptr : std::realloc(block, bytes != 0 ? bytes : 1));
}

int UTprint(char *&text, const char *format, va_list arguments)
{
    const int length = vasprintf(&text, format, arguments);
    if (length >= 0)
        return length;
    if (errno == ENOMEM)
        UTdieWithoutMemory();
    text = nullptr;
    return -1;
}

char *UTduplicate(const char *text)
{
    if (text == nullptr)
        return nullptr;
    return UTduplicate(text, std::strlen(text));
}

char *UTduplicate(const char *text, size_t length)
{
    auto *const copy = static_cast<char *>(UTallocate(length + 1));
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}
