// vcpp: the preprocessor as a command. Text goes to standard output, diagnostics
// to standard error.
#include "CPP/CPP_Manager.h"
#include "UT/UT_Process.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include <unistd.h>

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

enum Kind { TEXT, WARNING, ERROR };

Kind kindOf(std::string_view text)
{
    const auto startsWith = [text](std::string_view prefix) {
        return text.substr(0, prefix.size()) == prefix;
    };
    if (startsWith("# error cpp error: "))
        return ERROR;
    return startsWith("# warning cpp warning: ") ? WARNING : TEXT;
}

// Behind the text in front of it, where both go to one place.
void printDiagnostic(std::string line)
{
    const size_t length = line.find_last_not_of('\n') + 1;
    UTmakePrintable(line.data(), length);
    std::fflush(stdout);
    std::fprintf(stderr, "%s%s", line.c_str(), line.back() == '\n' ? "" : "\n");
}

int reportError(const char *what)
{
    std::perror(what);
    return FAILED;
}

const char CANNOT_WRITE[] = "vcpp: cannot write the output";

// `status`, unless what was printed does not get out.
int finishOutput(int status)
{
    return std::fflush(stdout) == 0 ? status : reportError(CANNOT_WRITE);
}

int print(const char *text)
{
    std::fputs(text, stdout);
    return finishOutput(OK);
}

int preprocess(CPP_Manager &manager)
{
    const char *start;
    int count;
    int status = OK;
    while (manager.getLines(start, count)) {
        const std::string_view text(start, static_cast<size_t>(count));
        const Kind kind = kindOf(text);
        status = kind == ERROR ? FAILED : status;
        if (kind != TEXT)
            printDiagnostic(std::string(text));
        else if (fwrite_unlocked(text.data(), 1, text.size(), stdout) != text.size())
            return reportError(CANNOT_WRITE);
    }
    return finishOutput(status);
}

// Between quotes or angle brackets a name is taken as it is, blanks and all.
bool open(CPP_Manager &manager, const std::string &file)
{
    if (file.empty())
        return false;
    if (file == "-" || file == "stdin")
        return manager.openFile("stdin", false);
    const bool hasQuote = file.find('"') != std::string::npos;
    const std::string name = hasQuote ? "<" + file + ">" : "\"" + file + "\"";
    return manager.openFile(name.c_str(), false);
}

// --help and --version win over all other options. -1 when there is neither.
int printInformation(int argc, char *argv[])
{
    for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i) {
        if (std::strcmp(argv[i], "--help") == 0)
            return print(USAGE);
        if (std::strcmp(argv[i], "--version") == 0)
            return print(("vcpp " + std::string(CPP_Manager::VERSION) + "\n").c_str());
    }
    return -1;
}

int badUsage(const char *what)
{
    std::fprintf(stderr, "vcpp: %s (vcpp --help tells more)\n", what);
    return BAD_USAGE;
}
} // namespace

int main(int argc, char *argv[])
{
    UTstartProgram();
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is a write error like others
    if (const int status = printInformation(argc, argv); status >= 0)
        return status;
    CPP_Manager manager;
    const int operand = manager.parseOptions(argc, argv);
    if (operand == 0)
        return badUsage("bad option");
    if (operand == argc)
        return badUsage("no file");
    if (operand + 1 < argc)
        return badUsage("more than one file");
    if (!open(manager, argv[operand])) {
        UTmakePrintable(argv[operand], std::strlen(argv[operand]));
        std::fprintf(stderr, "vcpp: cannot open '%s'\n", argv[operand]);
        return BAD_USAGE;
    }
    // The C library heeds a size only together with a buffer. This one fills a pipe, so
    // that its reader is woken seldom.
    static char buffer[65536];
    if (isatty(STDOUT_FILENO) == 0)
        std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    return preprocess(manager);
}
