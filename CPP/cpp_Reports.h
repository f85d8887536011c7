// What the manager tells its listener: the place and the reason of what the output's
// diagnostics say, and warnings that the output has no words for.
//
// Nothing here changes the output. Without a listener all of it does nothing.
#pragma once

#include "CPP/CPP_Message.h"
#include "CPP/lines/cpp_OutputLines.h"

#include <string>
#include <string_view>

class CPP_File;
class UT_ScratchBuffer;
class cpp_Expander;
struct cpp_ConditionFault;

class cpp_Reports
{
public:
    // `line` is the source line under way: the places are pointers into it, anything else
    // is a place that nobody knows.
    explicit cpp_Reports(const UT_ScratchBuffer &line) : myLine(line) {}

    // Returns the one before; an empty one is none.
    CPP_Listener exchangeListener(CPP_Listener listener);

    // The directive or its argument that the next diagnostic is about; null: unknown.
    void setPlace(const char *place) { myPlace = place; }

    // As it is in the output; `file` is the current one, or null.
    void diagnostic(const CPP_File *file, cpp_Severity severity, const char *message);
    void failedExpansion(const CPP_File &file, const cpp_Expander &expander) const;

    // A block comment begins on the line and goes on behind it, which is cut behind its sign.
    void openComment(const CPP_File &file);

    // At the end of a file, inside a comment or not. `message` is the output's diagnostic,
    // empty when all is well.
    void end(const CPP_File &file, bool isInComment, const std::string &message);

    // What may be meant otherwise: the text behind #define, the word of an unknown
    // directive, an expression of #if.
    void definition(const CPP_File &file, const char *definition) const;
    void unknownWord(const CPP_File &file, std::string_view word, const char *place);
    void condition(const CPP_File &file, const cpp_ConditionFault &fault);

private:
    CPP_Message messageAt(const CPP_File *file, const char *place, const std::string &text) const;
    void warn(CPP_Warning warning, CPP_Message message) const;

    const UT_ScratchBuffer &myLine;
    CPP_Listener myListener;
    const char *myPlace = nullptr;
    std::string myDetail, myHint; // to add to the next diagnostic
    struct {
        const CPP_File *file;
        int line, column;
    } myComment = {}; // the last one that went on on the next line
};
