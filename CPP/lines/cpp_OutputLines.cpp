#include "CPP/lines/cpp_OutputLines.h"

#include "CPP/CPP_File.h"

namespace
{
// By cpp_Severity.
const char *const SEVERITIES[] = {"error", "warning"};
} // namespace

void makeMarker(UT_ScratchBuffer &out, int lineNumber, const char *name)
{
    out.sprintf("# %d \"%s\"\n", lineNumber, name);
}

void makeDiagnostic(UT_String &out, cpp_Severity severity, const CPP_File *file,
                    const char *message)
{
    const char *word = SEVERITIES[severity];
    if (file != nullptr)
        out.sprintf("# %s cpp %s: \"%s\":%d %s", word, word, file->getName(), file->getLineNumber(),
                    message);
    else
        out.sprintf("# %s cpp %s: %s", word, word, message);
}
