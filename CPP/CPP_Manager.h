// A line-oriented, C-style macro preprocessor for render scripts and shaders.
//
// A caller makes a manager, gives it options and definitions, opens one input
// and pulls the output a line at a time. One line's way through it:
//
//   gather   CPP_File.cpp        joins a line with those that backslashes
//                                continue it with; owes an empty line for each
//   strip    cpp_Comments.cpp    takes the comments out, in place
//   direct   cpp_Directives.cpp  a line that starts with '#' defines a macro,
//                                opens a branch, pushes an include file, ...;
//                                #if asks cpp_Condition.cpp
//   expand   cpp_Expander.cpp    replaces the macros of any other line, unless
//                                the branch is skipped
//   emit     CPP_Manager.cpp     hands it out, between line markers, owed empty
//                                lines and diagnostics
//
// getLines() spares most lines the stages: runs of text that none of them would change
// (cpp_Runs.h), lines that only define macros (cpp_QuietLines.h), skipped ones
// (cpp_SkippedLines.h).
//
// Each input line gives one output line, directives and skipped lines an empty
// one, so that numbers agree on both sides. Beside text there are line markers
// (# 12 "file") where a file begins or goes on, and diagnostics
// (# error cpp error: "file":12 message); a digit behind "# " tells a marker.
// A directive's diagnostic is followed by an extra empty line. A macro that cannot
// be expanded, and includes that nest without end, are fatal: their diagnostic is
// the last line.
#pragma once

#include "CPP/CPP_File.h"
#include "CPP/CPP_Message.h"
#include "CPP/cpp_IncludePath.h"
#include "CPP/cpp_MacroTable.h"
#include "UT/UT_PtrArray.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"

#include <memory>

class CPP_Stream;
class UT_IStream;
class UT_StringList;
class cpp_Expander;
class cpp_OpenedFiles;
class cpp_Reports;
class cpp_SmallFiles;
enum cpp_Severity : int;

class CPP_Manager
{
public:
    // What options and scanning have switched on.
    enum Flag : unsigned {
        STRIP_COMMENTS = 0x01,       // cleared by -C
        LINE_MARKERS = 0x02,         // cleared by -P
        IN_BLOCK_COMMENT = 0x04,     // a comment goes on on the next line
        HASH_COMMENTS = 0x08,        // -h: '#' starts a comment behind a line's start
        OLD_STYLE_INCLUDE = 0x10,    // -H: include lines without '#', names without quotes
        EXPAND_INCLUDE_NAMES = 0x20, // -x: variables in include names
        KEEP_SLASH_COMMENTS = 0x40,  // -c: slashes start no comment
        KEEP_MACROS = 0x80,          // the caller expands macros: see keepMacros()
        STOPPED = 0x1000             // after a fatal error
    };

    // Also what "__VVERSION__" stands for in the name of an include file.
    static const char VERSION[];

    // What parseOptions() takes, for getopt: ':' behind a letter that has a value.
    static const char OPTION_LETTERS[];

    // Include files are searched along a copy of the known path (a negative
    // number means the main one), with another "^" text when one is given.
    explicit CPP_Manager(int pathId = -1, const char *caretSubst = nullptr);
    virtual ~CPP_Manager();
    CPP_Manager(const CPP_Manager &) = delete;
    CPP_Manager &operator=(const CPP_Manager &) = delete;

    // Makes the line source of each file that is opened; the manager deletes it.
    virtual CPP_Stream *newStream();

    // From here on text is handed out with its macros unexpanded, and so are the lines
    // of definitions (which conditions still see), "#undef" and directives that are
    // unknown here. For a caller whose language has macro rules of its own.
    void keepMacros() { setFlag(KEEP_MACROS, true); }

    // Takes options from argv[1] on: the letters of getopt in OPTION_LETTERS
    // (see cpp_Options.cpp for what each does), in order. Returns the index of
    // the first operand; 0 at an unknown letter or a missing value, for which
    // getopt has written its message. Warnings about redefinitions are dropped; the
    // output stays as it is.
    int parseOptions(int argc, char *argv[]);

    void addIncludePath(const char *dir) { myIncludePath.add(dir); }
    // The existing folders of a pattern.
    void addIncludePathList(const char *pathList) { myIncludePath.addAll(pathList); }

    // Opens the outermost input; "stdin" and "stdin.zel" are standard input.
    // Quotes or angle brackets around the name are taken off. With
    // `useSearchPath` an explicit name is taken when it can be read; any other is
    // looked for beside the current file, then along the include path, once in this
    // manager's time: files that come or go later are not noticed. False when there is no such
    // file; nothing is reported.
    [[nodiscard]] bool openFile(const char *name, bool useSearchPath);

    // The same from a stream that stays the caller's and outlives the reading.
    [[nodiscard]] bool openStream(UT_IStream *is, const char *name);

    // Replaces `line` by the next output line; false at the end. The second form
    // copies less.
    [[nodiscard]] bool getLine(UT_String &line);
    [[nodiscard]] bool getLine(UT_ScratchBuffer &line);

    // The same text in larger pieces, for those who only pass it on: one or more
    // whole output lines, which hold until the next call. A line marker or a
    // diagnostic comes alone.
    [[nodiscard]] bool getLines(const char *&text, int &length);

    // From now on "#pragma once" keeps its file, under whatever name, from being included
    // again: such an include gives its own empty line only, and so does the pragma.
    void honourPragmaOnce() { honoursOnce = true; }

    const char *getCurrentFileName() const; // "<unknown>" when none is open

    // The paths of all files that were opened so far, as they were opened, each once, in
    // the order of first opening: what the output depends on. Files that came from memory,
    // or whose guard left nothing of them, count; standard input and lent streams do not.
    const UT_StringList &getOpenedFiles() const;

    // Has what goes wrong told as well, when it happens: places and reasons that the
    // output's diagnostics leave out, and warnings that it does not have. The output stays
    // as it is. What parseOptions() has to tell comes to a listener that was set before.
    void setListener(CPP_Listener listener);

    // ---- Macros --------------------------------------------------------

    // Stores a definition, "NAME body" or "NAME(a,b) body"; in the command-line
    // form '=' may stand in front of the body. A macro of that name is replaced.
    // `result` is "\n", or the warning about the replacement. Always true.
    bool defineMacro(const char *definition, UT_String &result, bool commandLineForm);

    // "NAME value"; false when that gave a warning.
    bool defineMacroValue(const char *name, const char *value);

    // Removes the macro that the text's first word names. Always true.
    bool undefineMacro(const char *text, UT_String &result);

    bool isMacroDefined(const char *name) const { return myMacros.holds(name); }
    const cpp_MacroTable &macros() const { return myMacros; }

    // Appends "#define NAME body" for each macro that is not built in, by name. Each is a
    // line that defines the same macro again.
    void listMacros(UT_StringList &lines) { myMacros.list(lines); }

    // Appends the expansion of `text`, a line of `file`, to the result. Macros in
    // replacements nest less than `depthLeft` deep (128, if that is below 1). On
    // failure `result` is the message. Argument lists may go on on the file's next
    // lines.
    [[nodiscard]] bool expandLine(CPP_File &file, const char *text, UT_String &result,
                                  int depthLeft);

    // ---- For the stages ------------------------------------------------

    bool hasFlag(Flag flag) const { return (myFlags & flag) != 0; }
    CPP_File *currentFile() const; // null when none is open

protected:
    // What the expression of an #if or #elif is worth: 1 true, 0 false, -1 a syntax
    // error. For the callers of keepMacros(), whose conditions may be another language's.
    // REQUIRES of an override: keepMacros(), without which skipped conditions are not asked
    virtual int conditionValue(const char *text);

private:
    class Directive; // a line of one

    void setFlag(Flag flag, bool on);
    void defineBuiltins();
    void stop(); // the diagnostic under way is the last line

    // emit
    bool takeRun(const char *&text, int &length);
    bool takeSkipped(CPP_File &file, const char *&text, int &length);
    bool takeQuiet(CPP_File &file, const char *&text, int &length);
    bool stripsSlashes() const;
    const char *emptyLines(int lines);
    void processLine(UT_ScratchBuffer &out);
    bool processIfDirective(const char *first, UT_ScratchBuffer &out);
    void expandInto(UT_ScratchBuffer &out);
    bool lendLine(UT_ScratchBuffer &out);
    bool isOldInclude(const char *text) const;
    void takePendingText(UT_ScratchBuffer &out);
    void takeSourceLine(UT_ScratchBuffer &out);
    void popFile(UT_ScratchBuffer &out);
    void diagnose(UT_String &result, cpp_Severity severity, const char *format, ...)
        __attribute__((format(printf, 4, 5)));

    // direct
    void processDirective(const char *text, UT_String &result);

    // input
    const char *nearFolder(bool isAngled) const;
    bool findAndPush(const UT_String &name, bool isAngled);
    bool pushPath(const char *path);
    bool pushFile(CPP_File *file, const char *path);
    bool applyOption(char letter, const char *value);

    cpp_IncludePath myIncludePath;
    UT_ScratchBuffer myPendingText;  // the next output line, held back
    UT_PtrArray<CPP_File *> myFiles; // the innermost last
    cpp_MacroTable myMacros;
    unsigned myFlags = STRIP_COMMENTS | LINE_MARKERS | EXPAND_INCLUDE_NAMES;
    int myRecursionLimit;         // 0 means the default
    bool isPendingSource = false; // the held-back text is a source line, not output
    int myBlankLinesOwed = 0;
    bool sawSpecialStream = false;
    bool honoursOnce = false;
    bool hasPoppedFile = false; // the next line read goes on in an outer file
    std::unique_ptr<cpp_OpenedFiles> myOpened;
    std::unique_ptr<cpp_Expander> myExpander;
    std::unique_ptr<cpp_SmallFiles> mySmallFiles;
    UT_ScratchBuffer myLine;   // the source line under way
    bool isLineLent = false;   // to the caller, who has given us another buffer
    UT_ScratchBuffer myOutput; // for callers who bring no buffer
    UT_ScratchBuffer myEmptyLines;
    std::unique_ptr<cpp_Reports> myReports; // about myLine
};
