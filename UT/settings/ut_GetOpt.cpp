#include "UT/UT_Args.h"

#include <cstring>
#include <unistd.h>

namespace
{
int ourPosition = 1; // the next character inside the current word

void complain(const char *program, const char *what, char letter)
{
    if (opterr == 0)
        return;
    const char tail[] = {letter, '\n'};
    const bool written = write(STDERR_FILENO, program, std::strlen(program)) >= 0 &&
                         write(STDERR_FILENO, what, std::strlen(what)) >= 0 &&
                         write(STDERR_FILENO, tail, sizeof tail) >= 0;
    static_cast<void>(written); // nowhere to report a failure to report
}

void nextWord()
{
    ++optind;
    ourPosition = 1;
}

// Steps past the current character, and on to the next word behind its last.
void nextCharacter(char *const argv[])
{
    if (argv[optind][++ourPosition] == '\0')
        nextWord();
}

// A caller that turned to another vector may have left us inside a longer word.
bool isInsideWord(int argc, char *const argv[])
{
    return ourPosition > 1 && optind < argc &&
           strnlen(argv[optind], static_cast<size_t>(ourPosition) + 1) >
               static_cast<size_t>(ourPosition);
}
} // namespace

int getopt(int argc, char *const argv[], const char *optstring) noexcept
{
    if (!isInsideWord(argc, argv)) {
        ourPosition = 1;
        if (optind >= argc || argv[optind][0] != '-' || argv[optind][1] == '\0')
            return -1;
        if (std::strcmp(argv[optind], "--") == 0) {
            ++optind;
            return -1;
        }
    }
    const char letter = argv[optind][ourPosition];
    optopt = letter;
    const char *entry = letter == ':' ? nullptr : std::strchr(optstring, letter);
    if (entry == nullptr) {
        complain(argv[0], ": illegal option -- ", letter);
        nextCharacter(argv);
        return '?';
    }
    if (entry[1] != ':') {
        nextCharacter(argv);
        optarg = nullptr;
        return letter;
    }
    char *attached = argv[optind] + ourPosition + 1;
    nextWord();
    if (*attached != '\0') {
        optarg = attached;
        return letter;
    }
    if (optind >= argc) {
        complain(argv[0], ": option requires an argument -- ", letter);
        return '?';
    }
    optarg = argv[optind++];
    return letter;
}
