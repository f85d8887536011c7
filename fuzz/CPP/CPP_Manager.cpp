// Any text: without diagnostics there are as many lines out as in, and a file's
// pieces are a stream's lines. Text that nothing in the language touches comes out
// as it went in.
#include "CPP/files/cpp_DefStream.h"
#include "fuzz/fuzz.h"
#include "tests/support/preprocessed.h"

#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

// A file in memory, the only one that can be opened.
const int theFile = memfd_create("in", MFD_CLOEXEC);
const std::string thePath = "/proc/self/fd/" + std::to_string(theFile);

struct OneFile : CPP_Manager {
    struct Stream : cpp_DefStream {
        bool open(const char *path) override
        {
            return path == thePath && cpp_DefStream::open(path);
        }
    };
    CPP_Stream *newStream() override { return new Stream; }
};

std::string piecesOf(const std::string &text)
{
    OneFile manager;
    parseOptions(manager, "-P");
    const auto size = static_cast<ssize_t>(text.size());
    const bool isWritten =
        ftruncate(theFile, 0) == 0 && pwrite(theFile, text.data(), text.size(), 0) == size;
    return isWritten && manager.openFile(thePath.c_str(), false) ? allPieces(manager) : "";
}

void fuzz(const std::string &bytes)
{
    std::string text = bytes + '\n';
    OneFile manager;
    parseOptions(manager, "-P");
    UT_IStream in = streamOver(text);
    const bool isOpen = manager.openStream(&in, thePath.c_str());
    const std::string out = isOpen ? allLines(manager) : "";
    fuzzExpectEqual(out, piecesOf(text));
    if (out.find("# ") == std::string::npos && text.find("\\\\") == std::string::npos)
        fuzzExpectEqual(std::count(text.begin(), text.end(), '\n'),
                        std::count(out.begin(), out.end(), '\n'));

    const std::string special("#\"'\\\r\t\v\f _/\0", 12);
    for (size_t i; (i = text.find_first_of(special)) != std::string::npos;)
        text[i] = 'x';
    fuzzExpectEqual(text, preprocessed("-P -ULINUX", text));
}
