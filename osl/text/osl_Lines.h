// The lines of a source with its include files, conditions and comments done, by way
// of CPP_Manager; macros are still in them.
//
// Included are regular files up to a size, or headers of our own (osl_Headers.h) for
// names that no file has. A file that says "#pragma once" is read once.
#pragma once

#include "osl/text/osl_Messages.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Whether a file may be read at all.
using osl_FileRule = std::function<bool(const std::string &path)>;

class osl_Lines
{
public:
    explicit osl_Lines(osl_Messages &messages);
    ~osl_Lines();

    void addIncludePath(const std::string &folder);
    void define(const std::string &definition); // "NAME" or "NAME=VALUE"
    void setFileRule(osl_FileRule rule);

    // What an #if is worth: 1, 0, or -1 for a syntax error. Asked in the order of the
    // lines, when all lines in front of it were handed out.
    void setConditionRule(std::function<int(std::string_view)> rule);

    // One of the two, before lines are asked for. False when the file cannot be read.
    [[nodiscard]] bool openFile(const std::string &path);
    void openText(const std::string &text, const std::string &name);

    // The next line that says something, without its newline; false at the end. Errors
    // in directives go to the messages.
    [[nodiscard]] bool next(std::string_view &line, osl_Place &place);

    // Reads the file that the last line came from no more.
    void markOnce(int file);

private:
    class Manager;
    class Stream;

    bool takeMarker(const char *text);
    void takeDiagnostic(const char *text);

    osl_Messages &myMessages;
    std::unique_ptr<Manager> myManager;
    osl_Place myPlace; // of the next line
};
