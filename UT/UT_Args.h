// A program's arguments: takes the options out, keeps the operands.
//
// An option list such as "bg:qr:s" holds the option letters; a letter
// followed by colons takes as many values (at most four). Options are looked for
// before the first operand only; "--" ends them, a lone "-" is an operand. They
// may be clustered ("-bs"), and a value may be attached ("-gball").
//
// The words stay the caller's: pointers into its argv, which must outlive this.
// Letters are 7-bit ASCII; any other is unknown.
#pragma once

#include "UT/UT_WordList.h"

class UT_ScratchBuffer;
class UT_String;

class UT_Args
{
public:
    UT_Args() = default;
    virtual ~UT_Args() = default;
    UT_Args(const UT_Args &) = delete;
    UT_Args &operator=(const UT_Args &) = delete;

    void initialize(int argc, char *argv[]);
    void appendArg(const char *value);
    void setArg(int index, const char *value);

    // Finds the options and takes them out of the vector. An unknown letter
    // ends the scan in silence: its word becomes the first operand. When the
    // last option lacks a value, argc() is -1 and the vector stays as it was.
    void stripOptions(const char *optionSpec);

    // Where the letter was last seen (argv[0] being 0); 0 when it was not.
    int found(char letter) const;

    // A value of the letter's last occurrence, null when there is none.
    // REQUIRES: 0 <= slot < 4
    const char *getValue(char letter, int slot = 0) const;

    // The words left: argv(0) is the command, the operands follow.
    int argc() const { return myArgc; }
    const char *argv(int index) const { return myArgs.getArg(index); }
    char **getArgv() const { return myArgs.getArgv(); }

    // Rebuilds a command line that a shell would split into these words again:
    // the command (firstArg 0 only; `out` is then cleared first), the options
    // with their values in ascending order of letters when `withOptions`, and the
    // operands from `firstArg` on. Always true.
    bool makeCommandLine(UT_ScratchBuffer &out, int firstArg, bool withOptions) const;
    bool makeCommandLine(UT_String &out, int firstArg) const;

    // Prints "letter=value" for each option seen, on standard output.
    void dumpOptions() const;

    // Appends one word, in single quotes when a shell would not take it as is.
    static void appendQuotedWord(UT_ScratchBuffer &out, const char *word, bool leadingSpace);

private:
    static constexpr int LETTERS = 128;
    static constexpr int MAX_VALUES = 4;

    // One option word at `position`; false ends the scan. `position` moves on
    // to the next word.
    bool scanWord(const char *optionSpec, int &position);
    bool takeValues(int letter, int count, const char *attached, int &position);
    void removeWords(int end);

    int myArgc = 0; // -1 after a missing option value
    UT_WordList myArgs;
    unsigned char myFound[LETTERS] = {};
    const char *myValues[LETTERS][MAX_VALUES] = {};
};

// The classic single-letter option scanner, in place of the C library's (POSIX
// getopt): it reads and writes optind, optarg, optopt and opterr. Returns the
// letter, '?' for an unknown one or a missing value (with a message on standard
// error when opterr is not 0), -1 at the first operand.
extern "C" int getopt(int argc, char *const argv[], const char *optstring) noexcept;
