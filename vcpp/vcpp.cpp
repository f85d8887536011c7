// vcpp: the preprocessor as a command. Text goes to standard output or to a file,
// diagnostics to standard error.
#include "CPP/CPP_Manager.h"
#include "UT/UT_FileUtil.h"
#include "UT/UT_Installation.h"
#include "UT/UT_Process.h"
#include "UT/UT_SafeFile.h"
#include "vcpp/vcpp_Dependencies.h"
#include "vcpp/vcpp_Options.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <string>
#include <string_view>

#include <unistd.h>

namespace
{
enum Status { OK = 0, FAILED = 1, BAD_USAGE = 2 };

// What the output says about the text: the messages add the place and the reason.
bool isDiagnostic(std::string_view text)
{
    const auto startsWith = [text](std::string_view prefix) {
        return text.substr(0, prefix.size()) == prefix;
    };
    return startsWith("# error cpp error: ") || startsWith("# warning cpp warning: ");
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

// Passes the text of what is open on to `out`; drops it without one.
int preprocess(CPP_Manager &manager, vcpp_Messages &messages, FILE *out)
{
    const char *start;
    int count;
    while (manager.getLines(start, count)) {
        const std::string_view text(start, static_cast<size_t>(count));
        if (isDiagnostic(text))
            messages.showDiagnostic(std::string(text));
        else if (out != nullptr && fwrite_unlocked(text.data(), 1, text.size(), out) != text.size())
            return reportError(CANNOT_WRITE);
        messages.flush();
    }
    messages.flush();
    return OK;
}

// ---- Input -----------------------------------------------------------------

// Between quotes or angle brackets a name is taken as it is, blanks and all.
std::string quoted(const std::string &file)
{
    const bool hasQuote = file.find('"') != std::string::npos;
    return hasQuote ? "<" + file + ">" : "\"" + file + "\"";
}

bool openInput(CPP_Manager &manager, const std::string &file)
{
    if (file == "-" || file == "stdin")
        return manager.openFile("stdin", false);
    return !file.empty() && manager.openFile(quoted(file).c_str(), false);
}

// From where the command was started, or else along the search path.
bool openInclude(CPP_Manager &manager, const std::string &file)
{
    return !file.empty() && manager.openFile(quoted(file).c_str(), !UTisReadable(file.c_str()));
}

int badUsage(std::string what)
{
    UTmakePrintable(what.data(), what.size());
    std::fprintf(stderr, "vcpp: %s\n", what.c_str());
    return BAD_USAGE;
}

using Open = bool (*)(CPP_Manager &, const std::string &file);

int preprocessFile(CPP_Manager &manager, Open open, const std::string &file,
                   vcpp_Messages &messages, FILE *out)
{
    return open(manager, file) ? preprocess(manager, messages, out)
                               : badUsage("cannot open '" + file + "'");
}

int preprocessAll(CPP_Manager &manager, vcpp_Options &options, FILE *out)
{
    int status = OK;
    for (const std::string &file : options.includes)
        status =
            std::max(status, preprocessFile(manager, openInclude, file, options.messages, out));
    if (status == BAD_USAGE)
        return status;
    const std::string file = options.files.empty() ? "-" : options.files[0];
    status = std::max(status, preprocessFile(manager, openInput, file, options.messages, out));
    return status == OK && options.messages.hasFailed() ? FAILED : status;
}

// ---- Output ----------------------------------------------------------------

// The file beside the output, for a signal's handler.
std::atomic<const char *> theTemporary = nullptr;

extern "C" void removeTemporary(int number)
{
    if (const char *name = theTemporary.load())
        unlink(name);
    std::signal(number, SIG_DFL);
    raise(number);
}

void removeTemporaryOnSignals()
{
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
        if (std::signal(number, removeTemporary) == SIG_IGN)
            std::signal(number, SIG_IGN);
}

int reportError(const std::string &file)
{
    return reportError(file.empty() ? CANNOT_WRITE : ("vcpp: cannot write '" + file + "'").c_str());
}

// Fills a file, or standard output where the name is empty. `fill(FILE *)` gives a status;
// unless that is OK, the file stays as it was.
template <class Fill>
int write(const std::string &file, Fill fill)
{
    // The C library heeds a size only together with a buffer. This one fills a pipe, so
    // that its reader is woken seldom.
    static char buffer[65536];
    if (file.empty() || file == "-" || file == "/dev/stdout") {
        if (isatty(STDOUT_FILENO) == 0)
            std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
        return finishOutput(fill(stdout));
    }
    UT_SafeFile target(file);
    FILE *out = target.open();
    if (out == nullptr)
        return reportError(file);
    theTemporary = target.temporary().empty() ? nullptr : target.temporary().c_str();
    const int status = fill(out);
    const bool isGood = status != OK || target.commit();
    theTemporary = nullptr;
    return isGood ? status : reportError(file);
}

int writeText(const std::string &file, const std::string &text)
{
    return write(file, [&text](FILE *out) {
        std::fputs(text.c_str(), out);
        return OK;
    });
}

std::string macrosOf(CPP_Manager &manager)
{
    UT_StringList lines;
    manager.listMacros(lines);
    std::string all;
    for (int i = 0; i < lines.entries(); ++i)
        (all += lines(i)) += '\n';
    return all;
}

// Whether the file lies in a folder that every manager searches.
bool isOfSystem(const std::string &file)
{
    const UT_StringList &folders = UT_PathSearch::getInstance(UT_VELDRIN_PATH).getDirs();
    for (int i = 0; i < folders.entries(); ++i) {
        const std::string folder = std::string(folders(i)) + "/";
        if (file.compare(0, folder.size(), folder) == 0)
            return true;
    }
    return false;
}

// The file itself, then those that it or an option included.
std::vector<std::string> filesRead(const CPP_Manager &manager, const vcpp_Options &options)
{
    std::vector<std::string> files;
    const std::string first = options.files.empty() ? "" : options.files[0];
    const UT_StringList &opened = manager.getOpenedFiles();
    for (int i = 0; i < opened.entries(); ++i) {
        const std::string file = opened(i).text();
        if (file == first)
            files.insert(files.begin(), file);
        else if (!options.omitsSystem || !isOfSystem(file))
            files.push_back(file);
    }
    return files;
}

std::string ruleOf(const CPP_Manager &manager, const vcpp_Options &options)
{
    return vcpp_makeRule(options, filesRead(manager, options));
}

// ---- Run -------------------------------------------------------------------

int print(CPP_Manager &manager, vcpp_Options &options)
{
    if (options.print == vcpp_Options::TEXT)
        return write(options.output,
                     [&](FILE *out) { return preprocessAll(manager, options, out); });
    const int status = preprocessAll(manager, options, nullptr);
    if (status != OK)
        return status;
    if (options.print == vcpp_Options::MACROS)
        return writeText(options.output, macrosOf(manager));
    const std::string &file = options.ruleFile.empty() ? options.output : options.ruleFile;
    return writeText(file, ruleOf(manager, options));
}

int run(vcpp_Options &options)
{
    // Stays to the end: to free its macros one by one can take as long as to read them.
    static CPP_Manager &manager = *new CPP_Manager;
    std::vector<char *> words = {const_cast<char *>("vcpp")};
    for (const std::string &word : options.forManager)
        words.push_back(const_cast<char *>(word.c_str()));
    for (const CPP_Message &warning : options.warnings)
        options.messages.show(warning);
    manager.setListener([&](const CPP_Message &message) { options.messages.show(message); });
    if (manager.parseOptions(static_cast<int>(words.size()), words.data()) == 0)
        return badUsage("bad option");
    options.messages.flush();
    if (options.honoursOnce)
        manager.honourPragmaOnce();
    const int status = print(manager, options);
    if (status != OK || !options.hasRule || options.print == vcpp_Options::RULE)
        return status;
    return writeText(vcpp_ruleFile(options), ruleOf(manager, options));
}
} // namespace

int main(int argc, char *argv[])
{
    UTstartProgram();
    UTuseInstalledData();
    std::signal(SIGPIPE, SIG_IGN); // a closed pipe is a write error like others
    removeTemporaryOnSignals();
    vcpp_Options options;
    std::string error;
    if (!vcpp_parseOptions(argc, argv, options, error))
        return badUsage(error + " (vcpp --help tells more)");
    if (options.action == vcpp_Options::HELP)
        return writeText("", vcpp_usage());
    if (options.action == vcpp_Options::VERSION)
        return writeText("", "vcpp " + std::string(CPP_Manager::VERSION) + "\n");
    return run(options);
}
