// vcpp: the preprocessor as a command. Text goes to standard output, diagnostics
// to standard error.
#include "CPP/CPP_Manager.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{
enum Status { OK = 0, FAILED = 1, BAD_USAGE = 2 };

const char USAGE[] = "Usage: vcpp [options] FILE\n"
                     "Preprocesses FILE (\"-\": standard input) to standard output.\n"
                     "Options:\n"
                     "  -D name[=value]  Define a macro\n"
                     "  -U name          Remove a macro\n"
                     "  -I directory     Search include files there too\n"
                     "  -P               Write no line markers\n"
                     "  -C               Keep comments\n"
                     "  -c               Take // and /* for text\n"
                     "  -h               Take # behind a line's start for a comment\n"
                     "  -H               Accept include lines without # and names without quotes\n"
                     "  -r number        Nest macros at most this deep (128)\n"
                     "  -x               Expand variables in include names (always done)\n"
                     "  -n               No effect\n"
                     "  --help           Print this text\n"
                     "  --version        Print the version\n"
                     "Status: 0; 1 after an error in the text or in writing; 2 for bad usage.\n";

bool startsWith(const UT_ScratchBuffer &line, const char *prefix)
{
    return std::strncmp(line.buffer(), prefix, std::strlen(prefix)) == 0;
}

void printDiagnostic(const UT_ScratchBuffer &line)
{
    const char *newline = std::strchr(line.buffer(), '\n');
    std::fprintf(stderr, "%s%s", line.buffer(), newline != nullptr ? "" : "\n");
}

int reportWriteError()
{
    std::perror("vcpp: cannot write the output");
    return FAILED;
}

int preprocess(CPP_Manager &manager)
{
    UT_ScratchBuffer line;
    int status = OK;
    while (manager.getLine(line)) {
        const bool isError = startsWith(line, "# error cpp error: ");
        if (isError || startsWith(line, "# warning cpp warning: ")) {
            printDiagnostic(line);
            status = isError ? FAILED : status;
            continue;
        }
        const auto length = static_cast<size_t>(line.length());
        if (std::fwrite(line.buffer(), 1, length, stdout) != length)
            return reportWriteError();
    }
    return std::fflush(stdout) == 0 ? status : reportWriteError();
}

// In quotes a name is taken as it is, blanks and all.
bool open(CPP_Manager &manager, const char *file)
{
    if (std::strcmp(file, "-") == 0 || std::strcmp(file, "stdin") == 0)
        return manager.openFile("stdin", false);
    const bool isPlain = std::strchr(file, '"') != nullptr;
    return manager.openFile(isPlain ? file : ("\"" + std::string(file) + "\"").c_str(), false);
}

int badUsage(const char *what)
{
    std::fprintf(stderr, "vcpp: %s (vcpp --help tells more)\n", what);
    return BAD_USAGE;
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc > 1 && std::strcmp(argv[1], "--help") == 0)
        return std::fputs(USAGE, stdout) < 0 || std::fflush(stdout) != 0 ? FAILED : OK;
    if (argc > 1 && std::strcmp(argv[1], "--version") == 0)
        return std::printf("vcpp %s\n", CPP_Manager::VERSION) < 0 ? FAILED : OK;

    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is a write error like others
    CPP_Manager manager;
    const int operand = manager.parseOptions(argc, argv);
    if (operand == 0)
        return badUsage("bad option");
    if (operand == argc)
        return badUsage("no file");
    if (operand + 1 < argc)
        return badUsage("more than one file");
    if (!open(manager, argv[operand])) {
        std::fprintf(stderr, "vcpp: cannot open %s\n", argv[operand]);
        return BAD_USAGE;
    }
    std::setvbuf(stdout, nullptr, _IOFBF, 65536);
    return preprocess(manager);
}
