// One recorded error: which message, about what, how bad.
//
// Table:    where the message comes from. "System" is the operating system (the
//           code is an errno), every other table a message catalogue, "Common" the
//           library's own; see ut_ErrorCatalogue.h.
// Code:     the message in its table.
// Text:     what is put into the message, a file name for example.
// Severity: UT_SEVERITY_MESSAGE to UT_SEVERITY_FATAL.
//
// A run of thumbrender does not come here: this is for other users of the library.
#pragma once

#include "UT/UT_String.h"

enum UT_ErrorSeverity : int {
    UT_SEVERITY_NONE, // of an empty manager; also "any" where one is asked for
    UT_SEVERITY_MESSAGE,
    UT_SEVERITY_NOTE,
    UT_SEVERITY_WARNING,
    UT_SEVERITY_ERROR,
    UT_SEVERITY_FATAL
};

class UT_Error
{
public:
    // Borrows `type`, which must outlive the record and its copies; copies `text`
    // (null counts as "").
    UT_Error(const char *type, int code, const char *text, int severity);

    virtual ~UT_Error();

    // The record as text. A system error reads "No such file or directory (text)".
    // A catalogue's message has the text in place of its first "%s"; a code without
    // a message gives "type: unknown error: code".
    //
    // `withPrefix` puts "Warning:     ", "Error:       " or "Fatal error: " in front
    // of a catalogue's message, or as many blanks when the message before it had
    // the same severity, and indents its further lines. An empty message stays so.
    virtual void getErrorMessage(UT_String &out, int previousSeverity, bool withPrefix) const;

    const char *getType() const { return myType; }
    const char *getText() const { return myText; }
    int getSeverity() const { return mySeverity; }
    int getCode() const { return myCode; }

private:
    UT_String myType;
    UT_String myText; // always deep: a copy of the record has its own
    int mySeverity;
    int myCode;
};
