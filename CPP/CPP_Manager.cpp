#include "CPP/CPP_Manager.h"

#include "CPP/CPP_Stream.h"
#include "CPP/cpp_Comments.h"
#include "CPP/cpp_Condition.h"
#include "CPP/cpp_DefStream.h"
#include "CPP/cpp_Expander.h"
#include "CPP/cpp_Macro.h"
#include "CPP/cpp_QuietLines.h"
#include "CPP/cpp_SkippedLines.h"
#include "CPP/cpp_SmallFiles.h"
#include "CPP/cpp_Text.h"
#include "UT/UT_IStream.h"
#include "UT/UT_Memory.h"

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{
// "error", "warning", by CPP_Manager::Severity.
const char *const SEVERITIES[] = {"error", "warning"};

// Characters from which on a line is not copied without need.
constexpr int LONG_LINE = 1 << 20;

// Skipped lines that are answered at once, or nearly so.
constexpr int MOST_EMPTY_LINES = 1 << 16;

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
      myExpander(new cpp_Expander(myMacros)), mySmallFiles(new cpp_SmallFiles(myMacros))
{
    defineBuiltins();
}

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
    return file != nullptr ? file->getName() : "<unknown>";
}

// ---- Input ---------------------------------------------------------------

bool CPP_Manager::openFile(const char *name, bool useSearchPath)
{
    if (isStandardInput(name))
        return pushPath(name);
    bool isAngled;
    const UT_String wanted = bareName(name, isAngled);
    return useSearchPath ? findAndPush(wanted, isAngled) : pushPath(wanted);
}

bool CPP_Manager::openStream(UT_IStream *is, const char *name)
{
    auto *file = new CPP_File(newStream());
    file->getStream()->setStream(is);
    return pushFile(file, name);
}

// Without its quotes or angle brackets.
UT_String CPP_Manager::bareName(const char *name, bool &isAngled) const
{
    name = skipSpace(name);
    isAngled = *name == '<';
    size_t length = std::strlen(name);
    if (*name == '"' || isAngled)
        length = std::strcspn(++name, isAngled ? ">" : "\"");
    else if (hasFlag(OLD_STYLE_INCLUDE))
        length = std::strcspn(name, " \t\n\v\f\r");
    return UT_String(name, true, static_cast<int>(length));
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

bool CPP_Manager::isOnce(const char *path) const
{
    char real[PATH_MAX];
    return myOnceFiles.entries() > 0 && realpath(path, real) != nullptr &&
           myOnceFiles.findSymbol(real);
}

bool CPP_Manager::pushPath(const char *path)
{
    if (isOnce(path))
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
        noteOpened(path);
    return true;
}

void CPP_Manager::noteOpened(const char *path)
{
    if (myOpenedNames.addSymbol(path, nullptr))
        myOpenedFiles.append(path);
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
    int available, lines = 0;
    while (lines < MOST_EMPTY_LINES && file.isSkipping()) {
        const char *start = file.peek(available);
        if (start == nullptr)
            break;
        const char *end =
            *start == '#' ? start : runEnd(cpp_RunKind::DROPPED, start, start + available);
        cpp_SkippedLine line;
        if (end == start) {
            line = readSkippedLine(stripsSlashes(), start, start + available);
            end = line.end;
            if (line.kind == cpp_SkippedLine::UNKNOWN || !takeSkippedElif(file, line))
                break;
        }
        const int count = line.isOneLine ? 1 : countLines(start, end);
        lines += count;
        file.skip(static_cast<int>(end - start), 1); // the one that counts for a directive
        if (line.kind == cpp_SkippedLine::OPENS)
            file.pushCondition(CPP_File::DONE);
        else if (line.kind == cpp_SkippedLine::ELSE)
            file.elseCondition();
        else if (line.kind == cpp_SkippedLine::CLOSES)
            file.popCondition();
        file.skip(0, count - 1);
        if (end == start + available) // more may be long in coming
            break;
    }
    text = emptyLines(lines);
    length = lines;
    sawSpecialStream = sawSpecialStream || file.isSpecial();
    return lines > 0;
}

// False when there is something to tell about the condition of a line.
bool CPP_Manager::takeSkippedElif(CPP_File &file, const cpp_SkippedLine &line)
{
    if (line.kind != cpp_SkippedLine::ELIF)
        return true;
    myCondition = line.condition;
    cpp_ConditionFault fault;
    const int value = evaluateCondition(myMacros, myCondition.c_str(), &fault);
    if (value < 0 || fault.oddMacro != nullptr)
        return false;
    file.elifCondition(value);
    return true;
}

bool CPP_Manager::stripsSlashes() const
{
    return hasFlag(STRIP_COMMENTS) && !hasFlag(KEEP_SLASH_COMMENTS);
}

bool CPP_Manager::takeQuiet(CPP_File &file, const char *&text, int &length)
{
    int available;
    const char *start = file.peek(available);
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
        makeDiagnostic(diagnostic, ERROR, message);
        out.append(diagnostic);
    }
    reportEnd(*file, message.text());
    file->release();
    myFiles.removeIndex(myFiles.entries() - 1);
    hasPoppedFile = myFiles.entries() > 0;
}

// From myLine, the source line, to `out`, which is empty.
void CPP_Manager::processLine(UT_ScratchBuffer &out)
{
    replaceAll(myLine.buffer(), myLine.length(), '\r', ' ');
    const bool strips = hasFlag(STRIP_COMMENTS);
    const bool isOpen = stripComments(myLine, stripsSlashes(), strips && hasFlag(HASH_COMMENTS),
                                      hasFlag(IN_BLOCK_COMMENT));
    if (isOpen && !hasFlag(IN_BLOCK_COMMENT))
        noteComment();
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
    for (const char *word : {"include", "sinclude"}) {
        const size_t length = std::strlen(word);
        if (std::strncmp(text, word, length) == 0 && UTisSpace(text[length]))
            return true;
    }
    return false;
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
    makeDiagnostic(diagnostic, ERROR, myExpander->message());
    reportExpansion();
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

void CPP_Manager::makeMarker(UT_ScratchBuffer &out, int lineNumber, const char *name)
{
    out.sprintf("# %d \"%s\"\n", lineNumber, name);
}

void CPP_Manager::makeDiagnostic(UT_String &out, Severity severity, const char *message) const
{
    const char *word = SEVERITIES[severity];
    const CPP_File *file = currentFile();
    if (file != nullptr)
        out.sprintf("# %s cpp %s: \"%s\":%d %s", word, word, file->getName(), file->getLineNumber(),
                    message);
    else
        out.sprintf("# %s cpp %s: %s", word, word, message);
}

void CPP_Manager::diagnose(UT_String &result, Severity severity, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    char *message = nullptr;
    const int length = UTprint(message, format, args);
    va_end(args);
    if (length < 0)
        return;
    makeDiagnostic(result, severity, message);
    reportDirective(severity, message);
    std::free(message);
    if (currentFile() != nullptr)
        myBlankLinesOwed = 1;
}

// ---- Macros ----------------------------------------------------------------

bool CPP_Manager::defineMacro(const char *definition, UT_String &result, bool commandLineForm)
{
    result = "\n";
    if (const char *name = myMacros.define(definition, commandLineForm))
        diagnose(result, WARNING, "Macro \"%s\" redefined.  %s", name, "Using later definition");
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
