// malloc and realloc that never return null.
//
// Text buffers pass between classes and callers that use free() and realloc()
// on them, so they all come from malloc. When memory runs out, or a size is
// beyond any object's (a negative one converted), these end the process with
// "Out of memory" on standard error and status 1.
#pragma once

#include <cstdarg>
#include <cstddef>

[[nodiscard]] void *UTallocate(size_t bytes);
[[nodiscard]] void *UTreallocate(void *block, size_t bytes);

// vasprintf: the length of the malloc'd text; -1, and null, for a format that cannot be
// printed or a text that an int cannot count.
[[nodiscard]] [[gnu::format(printf, 2, 0)]] int UTprint(char *&text, const char *format,
                                                        va_list arguments);

// A malloc'd copy of a NUL-terminated text; null stays null.
[[nodiscard]] char *UTduplicate(const char *text);
[[nodiscard]] char *UTduplicate(const char *text, size_t length); // of its first characters
