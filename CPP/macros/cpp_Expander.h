// Stage "expand": replaces the macros of one line.
//
// A macro's replacement is expanded by itself, with one level less left, and the
// text behind the macro goes on afterwards: nothing is rescanned across that
// border. The levels are kept in a list of our own, not on the C++ stack, so
// that any depth a user asks for ends with a message.
//
// Text is copied but for a backslash in front of a plain character, which goes;
// a quoted run is copied as it is. Arguments are expanded with the replacement
// that they stand in.
#pragma once

#include "CPP/cpp_Macro.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CPP_File;
class cpp_MacroTable;
class UT_ScratchBuffer;

class cpp_Expander
{
public:
    static constexpr int DEFAULT_LIMIT = 128;

    explicit cpp_Expander(const cpp_MacroTable &macros) : myMacros(macros) {}

    // Appends the expansion of a text of `file` to `out`. Macros nest less than
    // `limit` deep (the default, if that is below 1). Argument lists may go on on
    // the file's next lines, linesTaken() of them. On failure `out` is of no use and message() says
    // why.
    [[nodiscard]] bool expand(CPP_File &file, const char *text, int length, int limit,
                              UT_ScratchBuffer &out);
    const char *message() const { return myMessage.c_str(); }

    // Where in the text, or in a line taken, and why the last expand() failed. To be asked
    // while the text is there.
    struct Fault {
        int line = 0;
        int column = 0;     // from 1; 0: unknown
        std::string source; // the line, where it is known
        std::string detail; // to add to the message
        bool isQuote = false;
    };
    Fault fault() const;

    int linesTaken() const { return myLinesTaken; } // by the last expand()

    // Whether expand() would copy all of the text as it is.
    bool isPlain(const char *text, int length) const;

private:
    // The text of one level and how far it was scanned. A level that took more
    // lines, or whose arguments were filled in, owns its text.
    struct Level {
        const char *start;
        const char *next;
        const char *end;
        std::string owned;
    };

    // A view of the level's text, or of a copy where that is not the argument as it
    // stands, or is about to go.
    struct Argument {
        std::string_view text;
        std::string copy;

        void own()
        {
            if (text.data() == copy.data())
                return;
            copy.assign(text.data(), text.size());
            text = copy;
        }
    };

    bool fail(std::string message);
    bool failList(const char *reason);
    void notePlace(const char *place);
    void showPlace(Fault &fault) const;
    Level &level() { return *myLevel; }
    Level &levelAt(size_t depth); // makes it, one behind the last
    void goToLevel(size_t depth);
    void leaveLevel();

    bool expandLevel();
    const char *findWork(const Level &here, const cpp_Macro *&macro, size_t &nameLength) const;
    void copyBackslash();
    bool expandMacro(const cpp_Macro &macro);
    void openLevel(const std::string &text); // the next one; keeps no copy
    bool spend(size_t bytes);                // false when it is more than is left
    size_t costOf(cpp_Macro::Builtin builtin) const;
    bool copyBuiltin(const cpp_Macro &macro);

    // Argument lists. All give false when the list is bad.
    bool readLine();
    bool skipSpace(bool acrossLines);
    bool takeArguments(int count);
    bool takeArgument(Argument &argument);
    bool takeAsItStands();
    bool copyArgument(std::string &argument);
    bool takeCharacter(std::string &argument, int &parentheses);

    size_t replacementSize(const cpp_Macro &macro) const; // may stop above the budget
    void fillIn(const cpp_Macro &macro, size_t size, std::string &replacement) const;

    const cpp_MacroTable &myMacros;
    CPP_File *myFile = nullptr;
    UT_ScratchBuffer *myOut = nullptr;
    // Levels point into their own texts and must not move. Those above myDepth are
    // kept for their memory, if it is little.
    std::vector<std::unique_ptr<Level>> myLevels;
    size_t myDepth = 0;
    Level *myLevel = nullptr; // the one at that depth
    size_t myLimit = 0;
    int myLinesTaken = 0;
    size_t myBudget = 0; // what the line's macros may still stand for
    std::vector<Argument> myArguments;
    // Arguments below myOwned have texts of their own, those from there to myTaken may
    // be views of the current level's.
    size_t myTaken = 0;
    size_t myOwned = 0;
    std::string myMessage;

    // The last place of the outermost level that was more than copied.
    const char *myText = nullptr; // of the line, and behind it
    const char *myTextEnd = nullptr;
    const char *myPlace = nullptr;
    int myPlaceLine = 0;
    int myLinesToPlace = 0;
    const char *myReason = nullptr; // why an argument list is bad
    size_t myFaultDepth = 0;
};
