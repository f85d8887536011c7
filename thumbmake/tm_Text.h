// Texts in the forms that other programs read, and small files as a whole.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One word for a POSIX shell.
std::string tm_quoteForShell(const std::string &word);

// For ninja's manifest: the value of a variable, and a path of a build line. Neither can
// hold a control character.
std::string tm_quoteForNinja(const std::string &value);
std::string tm_ninjaPath(const std::string &path);

// Words in one line, as vaskel's scene language and its variable of options split it.
std::string tm_quoteForVaskel(const std::string &word);

bool tm_hasControl(std::string_view text);

// For people's eyes: UTmakePrintable() on a copy.
std::string tm_printable(std::string text);

// "thumbmake: error: MESSAGE" on standard error, printable; returns 1, a program's status.
int tm_fail(const std::string &message);

// Writes to standard output now; 0, or tm_fail() with the reason.
int tm_print(const std::string &text);

// 1234567 as "1,234,567"; 64 bits as 16 hexadecimal digits.
std::string tm_grouped(long number);
std::string tm_hex(std::uint64_t number);

// FNV-1a with 64 bits (RFC draft-eastlake-fnv), for names of files and to see changes;
// no protection against somebody who wants two texts to look alike.
std::uint64_t tm_hash(std::string_view text, std::uint64_t start = 0xcbf29ce484222325);

std::vector<std::string> tm_split(const std::string &text, char separator);

// All of a file; false when it cannot be read, with errno.
[[nodiscard]] bool tm_readFile(const std::string &path, std::string &text);

// Writes beside and renames, after making the folders above. False, and errno.
[[nodiscard]] bool tm_writeFile(const std::string &path, const std::string &text);
