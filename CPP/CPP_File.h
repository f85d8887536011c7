// One open input of the preprocessor: where its lines come from, how far it was
// read, and its open conditionals. Counted: each holder releases it once.
//
// A logical line is a physical line together with the lines that backslashes at
// its end continue it with. It is answered by empty lines for the continuation
// lines, so that output lines stay on the number of their input lines.
#pragma once

#include "CPP/cpp_Runs.h"
#include "UT/UT_IntegerArray.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"

#include <memory>

class CPP_Stream;
struct cpp_DirectiveWord;

class CPP_File
{
public:
    // States of a conditional. Any greater number means the same as DONE.
    enum Condition {
        NOT_YET = 0, // skipping; a later branch may be taken
        TAKING = 1,  // the lines of this branch count
        DONE = 2     // skipping; no later branch is taken
    };

    // Owns the stream. The count starts at 1.
    explicit CPP_File(CPP_Stream *stream);
    CPP_File(const CPP_File &) = delete;
    CPP_File &operator=(const CPP_File &) = delete;

    void addReference() { ++myRefCount; }
    void release(); // deletes the file at the last one

    CPP_Stream *getStream() const { return myStream.get(); }

    // The name under which it was opened, and its part in front of the last '/'
    // (null without one). setName leaves the folder alone.
    void setPath(const char *path);
    void setName(const char *name) { myName.assignCopy(name); }
    const char *getName() const { return myName; }
    const char *getPath() const { return myPath; } // whatever #line says
    const char *getDirectory() const { return myDirectory; }

    // Number of the line last read, from 1; the one read next gets one more.
    int getLineNumber() const { return myLineNumber; }
    void setLineNumber(int number) { myLineNumber = number; }

    // Replaces `line` by the next logical line with its newline, or by an owed
    // empty line. Two backslashes at a line's end stand for one and keep the line
    // from being continued; it then has no newline. NUL bytes become blanks.
    // False at the end of the file.
    [[nodiscard]] bool readLogicalLine(UT_ScratchBuffer &line);
    bool isSpecial() const { return mySpecialFlag; }

    // Takes all lines of the run that comes next, those that are in memory already,
    // and counts them. Null when there is none. The text holds until the next line.
    const char *takeRun(cpp_RunKind kind, int &length, int &lines);

    // What comes next and is in memory already, null when nothing is; and takes whole lines
    // of it, which are counted.
    const char *peek(int &length);
    void skip(int length, int lines);

    // ---- Conditionals: a stack, the innermost on top --------------------
    // On an empty stack all but push do nothing.

    bool isSkipping() const;
    bool isDecided() const; // skipping, and no later branch of the innermost is taken
    bool hasOpenCondition() const { return myConditions.entries() > 0; }
    int openConditionLine() const; // of the innermost; REQUIRES: there is one
    void pushCondition(int state); // DONE instead, inside skipped text
    void elifCondition(int value); // 0 false, 1 true, 2 not evaluated
    void elseCondition();
    void popCondition();

    // What a directive in skipped text does to them; `value` is that of an #elif.
    void applySkipped(const cpp_DirectiveWord &directive, int value);

private:
    ~CPP_File();

    bool joinLines(UT_ScratchBuffer &line);
    bool takeContinuations(UT_ScratchBuffer &line);
    void countLines(int lines);
    int &topCondition() { return myConditions(myConditions.entries() - 1); }

    std::unique_ptr<CPP_Stream> myStream;
    UT_String myDirectory;
    int myLineNumber = 0;
    UT_IntegerArray myConditions;
    UT_IntegerArray myConditionLines; // where each was pushed
    UT_String myName = "", myPath = "";
    int myOwedNewlines = 0; // continuation lines not yet answered
    bool mySpecialFlag = false;
    int myRefCount = 1;
};
