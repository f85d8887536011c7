#include "CPP/CPP_Manager.h"

#include "CPP/CPP_Stream.h"
#include "CPP/cpp_Classes.h"
#include "CPP/cpp_Macro.h"
#include "CPP/cpp_Reports.h"
#include "CPP/cpp_Text.h"
#include "CPP/files/cpp_DefStream.h"
#include "CPP/files/cpp_OpenedFiles.h"
#include "CPP/files/cpp_SmallFiles.h"
#include "CPP/lines/cpp_Comments.h"
#include "CPP/lines/cpp_OutputLines.h"
#include "CPP/lines/cpp_QuietLines.h"
#include "CPP/lines/cpp_SkippedLines.h"
#include "CPP/macros/cpp_Expander.h"
#include "UT/UT_IStream.h"
#include "UT/UT_Memory.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace
{
// Characters from which on a line is not copied without need.
constexpr int LONG_LINE = 1 << 20;

bool isStandardInput(const char *path)
{
    return std::strcmp(path, "stdin") == 0 || std::strcmp(path, "stdin.zel") == 0;
}

// Shared by all managers of the process: what one has buffered, the next sees.
UT_IStream *standardInput()
{
    static UT_IStream *const stream = new UT_IStream(stdin, false);
    return stream;
}
} // namespace

CPP_Manager::CPP_Manager(int pathId, const char *caretSubst)
    : myIncludePath(pathId, caretSubst), myRecursionLimit(cpp_Expander::DEFAULT_LIMIT),
      myOpened(new cpp_OpenedFiles), myExpander(new cpp_Expander(myMacros)),
      mySmallFiles(new cpp_SmallFiles(myMacros)), myReports(new cpp_Reports(myLine))
{
    defineBuiltins();
}

// The innermost file first, as they would have ended.
CPP_Manager::~CPP_Manager()
{
    for (unsigned i = myFiles.entries(); i > 0; --i)
        myFiles(i - 1)->release();
}

CPP_Stream *CPP_Manager::newStream()
{
    return new cpp_DefStream(mySmallFiles.get());
}

void CPP_Manager::setFlag(Flag flag, bool on)
{
    if (on)
        myFlags |= flag;
    else
        myFlags &= ~static_cast<unsigned>(flag);
}

void CPP_Manager::stop()
{
    setFlag(STOPPED, true);
    myBlankLinesOwed = 0; // the diagnostic is the last line
}

CPP_File *CPP_Manager::currentFile() const
{
    return myFiles.entries() == 0 ? nullptr : myFiles(myFiles.entries() - 1);
}

const char *CPP_Manager::getCurrentFileName() const
{
    const CPP_File *file = currentFile();
    return file != nullptr ? file->getName() : CPP_NO_FILE;
}

void CPP_Manager::setListener(CPP_Listener listener)
{
    myReports->exchangeListener(std::move(listener));
}

const UT_StringList &CPP_Manager::getOpenedFiles() const
{
    return myOpened->paths();
}

// ---- Input ---------------------------------------------------------------

bool CPP_Manager::openFile(const char *name, bool useSearchPath)
{
    if (isStandardInput(name))
        return pushPath(name);
    bool isAngled;
    const UT_String wanted = bareIncludeName(name, hasFlag(OLD_STYLE_INCLUDE), isAngled);
    return useSearchPath ? findAndPush(wanted, isAngled) : pushPath(wanted);
}

bool CPP_Manager::openStream(UT_IStream *is, const char *name)
{
    auto *file = new CPP_File(newStream());
    file->getStream()->setStream(is);
    return pushFile(file, name);
}

// False, and errno is 0, also for a name that was looked for in vain before.
bool CPP_Manager::findAndPush(const UT_String &name, bool isAngled)
{
    const char *folder = nearFolder(isAngled);
    UT_String path;
    const bool isFound = name.isNonEmpty() && myIncludePath.find(name, folder, path);
    errno = 0;
    if (!isFound)
        return false;
    if (pushPath(path))
        return true;
    if (errno == ENOENT || errno == ENOTDIR)
        myIncludePath.noteMissing(name, folder);
    return false;
}

// Where a quoted name is looked for first; null for none.
const char *CPP_Manager::nearFolder(bool isAngled) const
{
    const CPP_File *file = isAngled ? nullptr : currentFile();
    if (file == nullptr)
        return nullptr;
    const char *directory = file->getDirectory();
    return directory != nullptr ? directory : ".";
}

bool CPP_Manager::pushPath(const char *path)
{
    if (myOpened->isKept(path))
        return true;
    auto *file = new CPP_File(newStream());
    CPP_Stream *stream = file->getStream();
    const bool isFile = *path != '\0' && !isStandardInput(path);
    // Old-style includes are reported even in skipped text.
    mySmallFiles->heedGuards(!hasFlag(OLD_STYLE_INCLUDE) && !hasFlag(HASH_COMMENTS) &&
                             !hasFlag(IN_BLOCK_COMMENT) && stripsSlashes());
    if (isFile)
        static_cast<void>(stream->open(path)); // whether it is open now, counts
    else if (*path != '\0')
        stream->setStream(standardInput());
    if (!pushFile(file, path))
        return false;
    if (isFile)
        myOpened->note(path);
    return true;
}

bool CPP_Manager::pushFile(CPP_File *file, const char *path)
{
    if (!file->getStream()->isOpen()) {
        file->release();
        return false;
    }
    file->setPath(path);
    myFiles.append(file);
    if (hasFlag(LINE_MARKERS)) {
        makeMarker(myPendingText, 1, path);
        isPendingSource = false;
    }
    return true;
}

// ---- Emit ----------------------------------------------------------------

bool CPP_Manager::getLine(UT_String &line)
{
    if (!getLine(myOutput))
        return false;
    myOutput.copyToString(line);
    return true;
}

bool CPP_Manager::getLine(UT_ScratchBuffer &line)
{
    line.clear();
    // The caller brings the buffer back that its last line went out in.
    if (isLineLent)
        line.swap(myLine);
    isLineLent = false;
    if (myBlankLinesOwed > 0) {
        --myBlankLinesOwed;
        line.append('\n');
        return true;
    }
    if (hasFlag(STOPPED))
        return false;
    if (myPendingText.length() > 0) {
        takePendingText(line);
        return true;
    }
    // A file that ends gives no line unless it has something to say, so the next one is asked.
    while (currentFile() != nullptr) {
        if (currentFile()->readLogicalLine(myLine)) {
            takeSourceLine(line);
            return true;
        }
        popFile(line);
        if (line.length() > 0)
            return true;
    }
    return false;
}

bool CPP_Manager::getLines(const char *&text, int &length)
{
    if (takeRun(text, length))
        return true;
    if (!getLine(myOutput))
        return false;
    text = myOutput.buffer();
    length = myOutput.length();
    return true;
}

// Only where getLine() would read a source line and have nothing to put in front.
bool CPP_Manager::takeRun(const char *&text, int &length)
{
    CPP_File *file = currentFile();
    const bool isBusy = myBlankLinesOwed > 0 || hasFlag(STOPPED) || myPendingText.length() > 0;
    if (isBusy || hasPoppedFile || file == nullptr)
        return false;
    const bool isDropped = hasFlag(IN_BLOCK_COMMENT) || file->isSkipping();
    if (isDropped && hasFlag(OLD_STYLE_INCLUDE)) // which warns even there
        return false;
    // Whole conditionals first: a dropped run ends at each '#'.
    if (isDropped && takeSkipped(*file, text, length))
        return true;
    int lines;
    text = file->takeRun(isDropped ? cpp_RunKind::DROPPED : cpp_RunKind::KEPT, length, lines);
    if (text == nullptr)
        return !isDropped && takeQuiet(*file, text, length);
    sawSpecialStream = sawSpecialStream || file->isSpecial();
    if (isDropped) {
        text = emptyLines(lines);
        length = lines;
    }
    return true;
}

// Lines that are skipped, with what they do to the open conditionals.
bool CPP_Manager::takeSkipped(CPP_File &file, const char *&text, int &length)
{
    if (hasFlag(IN_BLOCK_COMMENT) || hasFlag(HASH_COMMENTS) || hasFlag(KEEP_MACROS))
        return false;
    length = skipLines(file, myMacros, stripsSlashes());
    text = emptyLines(length);
    sawSpecialStream = sawSpecialStream || file.isSpecial();
    return length > 0;
}

bool CPP_Manager::stripsSlashes() const
{
    return hasFlag(STRIP_COMMENTS) && !hasFlag(KEEP_SLASH_COMMENTS);
}

bool CPP_Manager::takeQuiet(CPP_File &file, const char *&text, int &length)
{
    int available;
    const char *start = file.peek(available);
    // Those callers see definitions with other eyes: as comments, or as text to hand on.
    if (start == nullptr || hasFlag(HASH_COMMENTS) || hasFlag(KEEP_MACROS))
        return false;
    const char *end = takeQuietLines(myMacros, stripsSlashes(), start, start + available);
    if (end == start)
        return false;
    length = countLines(start, end);
    file.skip(static_cast<int>(end - start), length);
    text = emptyLines(length);
    return true;
}

// Made once and lent: a text of a million skipped lines writes them nowhere.
const char *CPP_Manager::emptyLines(int lines)
{
    while (myEmptyLines.length() < lines)
        myEmptyLines.append('\n');
    return myEmptyLines.buffer();
}

void CPP_Manager::takePendingText(UT_ScratchBuffer &out)
{
    UT_ScratchBuffer &to = isPendingSource ? myLine : out;
    to.clear();
    to.append(myPendingText.buffer(), myPendingText.length());
    myPendingText.clear();
    if (isPendingSource)
        processLine(out);
}

// The line just read, or the marker that goes in front of it.
void CPP_Manager::takeSourceLine(UT_ScratchBuffer &out)
{
    const CPP_File &file = *currentFile();
    sawSpecialStream = sawSpecialStream || file.isSpecial();
    const bool needsMarker = hasPoppedFile && hasFlag(LINE_MARKERS);
    hasPoppedFile = false;
    // The marker tells the line's number, so the line itself waits for the next call.
    if (!needsMarker) {
        processLine(out);
        return;
    }
    myPendingText.append(myLine.buffer(), myLine.length());
    isPendingSource = true;
    makeMarker(out, file.getLineNumber(), file.getName());
}

void CPP_Manager::popFile(UT_ScratchBuffer &out)
{
    CPP_File *file = currentFile();
    UT_String message = "";
    if (const char *reason = file->getStream()->readError()) {
        message.sprintf("Unable to read: %s", reason);
        stop();
    } else if (file->hasOpenCondition()) {
        message = "Missing #endif";
    }
    if (message.isNonEmpty()) {
        UT_String diagnostic;
        makeDiagnostic(diagnostic, CPP_ERROR, file, message);
        out.append(diagnostic);
    }
    myReports->end(*file, hasFlag(IN_BLOCK_COMMENT), message.text());
    file->release();
    myFiles.removeIndex(myFiles.entries() - 1);
    hasPoppedFile = myFiles.entries() > 0;
}

// From myLine, the source line, to `out`, which is empty.
void CPP_Manager::processLine(UT_ScratchBuffer &out)
{
    // One in front of the newline is gone by now; any other separates words, as a blank does.
    replaceAll(myLine.buffer(), myLine.length(), '\r', ' ');
    const bool strips = hasFlag(STRIP_COMMENTS);
    const bool isOpen = stripComments(myLine, stripsSlashes(), strips && hasFlag(HASH_COMMENTS),
                                      hasFlag(IN_BLOCK_COMMENT));
    if (isOpen && !hasFlag(IN_BLOCK_COMMENT))
        myReports->openComment(*currentFile());
    setFlag(IN_BLOCK_COMMENT, isOpen);

    const char *first = skipSpace(myLine.buffer());
    if (processIfDirective(first, out))
        return;
    if (*first == '\0' || currentFile()->isSkipping())
        out.append('\n');
    else
        expandInto(out);
}

bool CPP_Manager::processIfDirective(const char *first, UT_ScratchBuffer &out)
{
    const bool isDirective = *first == '#';
    if (!isDirective && !isOldInclude(first))
        return false;
    UT_String result;
    // Where '#' starts comments, only the first column has directives.
    if (isDirective) {
        if (hasFlag(HASH_COMMENTS) && first != myLine.buffer())
            result = "\n";
        else
            processDirective(first + 1, result);
    } else {
        std::fprintf(stderr, "CPP Warning:  old style include detected %s:%d\n",
                     currentFile()->getName(), currentFile()->getLineNumber());
        processDirective(first, result);
    }
    out.append(result);
    return true;
}

bool CPP_Manager::isOldInclude(const char *text) const
{
    if (!hasFlag(OLD_STYLE_INCLUDE))
        return false;
    const cpp_DirectiveWord *word =
        findDirective({text, static_cast<size_t>(skipName(text) - text)});
    const bool isInclude =
        word != nullptr && (word->number == CPP_INCLUDE || word->number == CPP_SINCLUDE);
    return isInclude && UTisSpace(text[word->text.size()]);
}

// A long line that stays as it is goes out in its own buffer: it would be in memory
// twice.
bool CPP_Manager::lendLine(UT_ScratchBuffer &out)
{
    isLineLent =
        myLine.length() >= LONG_LINE && myExpander->isPlain(myLine.buffer(), myLine.length());
    if (isLineLent)
        myLine.swap(out);
    return isLineLent;
}

void CPP_Manager::expandInto(UT_ScratchBuffer &out)
{
    if (lendLine(out))
        return;
    if (hasFlag(KEEP_MACROS)) {
        out.swap(myLine);
        return;
    }
    const bool isGood =
        myExpander->expand(*currentFile(), myLine.buffer(), myLine.length(), myRecursionLimit, out);
    myBlankLinesOwed += myExpander->linesTaken();
    if (isGood)
        return;
    UT_String diagnostic;
    makeDiagnostic(diagnostic, CPP_ERROR, currentFile(), myExpander->message());
    myReports->failedExpansion(*currentFile(), *myExpander);
    // Half a line would pass for text.
    out.clear();
    out.append(diagnostic);
    stop();
}

bool CPP_Manager::expandLine(CPP_File &file, const char *text, UT_String &result, int depthLeft)
{
    UT_ScratchBuffer out;
    const int length = static_cast<int>(std::strlen(text));
    const bool isGood = myExpander->expand(file, text, length, depthLeft, out);
    myBlankLinesOwed += myExpander->linesTaken();
    if (!isGood) {
        result.assignCopy(myExpander->message());
        return false;
    }
    result += out.buffer();
    return true;
}

void CPP_Manager::diagnose(UT_String &result, cpp_Severity severity, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    char *message = nullptr;
    const int length = UTprint(message, format, args);
    va_end(args);
    if (length < 0)
        return;
    makeDiagnostic(result, severity, currentFile(), message);
    myReports->diagnostic(currentFile(), severity, message);
    std::free(message);
    if (currentFile() != nullptr)
        myBlankLinesOwed = 1;
}

// ---- Macros ----------------------------------------------------------------

bool CPP_Manager::defineMacro(const char *definition, UT_String &result, bool commandLineForm)
{
    result = "\n";
    if (const char *name = myMacros.define(definition, commandLineForm))
        diagnose(result, CPP_WARNING, "Macro \"%s\" redefined.  %s", name,
                 "Using later definition");
    return true;
}

bool CPP_Manager::defineMacroValue(const char *name, const char *value)
{
    UT_String result;
    defineMacro((std::string(name) + " " + value).c_str(), result, false);
    return std::strcmp(result, "\n") == 0;
}

bool CPP_Manager::undefineMacro(const char *text, UT_String &result)
{
    result = "\n";
    myMacros.undefine(text);
    return true;
}
