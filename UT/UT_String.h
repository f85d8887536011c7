// A NUL-terminated text that is owned or borrowed.
//
// A string borrows its text when it is made from a `const char *` or assigned
// from another string: no copy, and the text must stay alive as long as it is
// used. Every operation that edits takes an owned copy first (makeOwned), so a
// borrowed text is never written. Owned text comes from malloc and may be handed
// to, or taken from, code that uses free and realloc.
//
// Unset (null) and empty are different states; most queries treat both alike.
// White space in the text operations means space, tab, newline, vertical tab and
// form feed unless an operation says otherwise.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

class UT_IStream;
class UT_WordList;

class UT_String
{
public:
    enum AlwaysDeep { ALWAYS_DEEP };

    // How tokenize() takes a text apart. A set may be null, which is empty.
    struct TokenRules {
        const char *separators; // each ends a token; so does a run of them
        const char *quotes;     // each keeps separators plain up to its like
        char escape;            // keeps the next character plain; NUL for none
        bool keepEmpty;         // a token between any two separators
    };

    // length < 0: borrows `text`, or owns a copy of it when `deep`. Otherwise
    // owns exactly `length` characters of it, NULs where it is shorter.
    UT_String(const char *text = nullptr, bool deep = false, int length = -1);

    // A string that never borrows: each assignment copies.
    UT_String(AlwaysDeep, const char *text);

    // Borrows the other's text, or copies it when the other is always deep.
    UT_String(const UT_String &other);
    ~UT_String();

    UT_String &operator=(const UT_String &other);
    UT_String &operator=(const char *text);

    // Owns its text from now on; an unset borrowed one becomes empty.
    void makeOwned();

    // Owns a copy of `text` (null counts as ""), or of `length` characters.
    void assignCopy(const char *text, int length = -1);

    // Takes over a malloc'd text.
    void adopt(char *text);

    void clear(); // unset
    void swap(UT_String &other);

    // Appends; an unset or empty string becomes an owned copy of `text`.
    UT_String &operator+=(const char *text);

    // Replaces the text as printf would write it; gives its length, or a
    // negative number (and an unset string) when formatting failed.
    int sprintf(const char *format, ...) __attribute__((format(printf, 2, 3)));

    // Decimal text of a number; the grouped form writes 1,234,567.
    void setInteger(int32_t value);
    void setInteger(uint32_t value);
    void setGroupedInteger(int64_t value);

    operator const char *() const { return myData; }
    const char *text() const { return myData; } // may be null

    // Writes itself to a stream, for load() to read: as writeText() does, or in
    // binary form with its length in front (UT_IStream::readBinaryString, 16 bits).
    // False, with an error posted, when errno afterwards tells that the text is lost
    // (UTcheckSaveError): set it to 0 before.
    [[nodiscard]] bool save(std::ostream &os, bool binary) const;

    // Reads itself from a stream: in binary form as UT_IStream::readBinaryString
    // does with 16 bits, else unset first and then an owned copy of the next word
    // or quoted text. False when there was none.
    [[nodiscard]] bool load(UT_IStream &is);

    // ---- Queries -------------------------------------------------------

    bool isNonEmpty() const { return myData != nullptr && *myData != '\0'; }
    int length() const;

    // False for unset or empty on either side. An equal text starts with, but
    // does not end with, the whole of it.
    bool startsWith(const char *prefix) const;
    bool endsWith(const char *suffix) const;

    int countChar(char c) const;

    // First occurrence of `word` with, on both sides, an end of the text, white
    // space, punctuation other than '_' or a non-printing character; or null.
    const char *findWord(const char *word) const;

    // `text` as a whole word, as a wildcard pattern anywhere, or as plain text.
    bool contains(const char *text, bool wholeWord = false, bool asPattern = false) const;

    // Syntax of a signed integer, or of a decimal number with at most one '.'
    // and one exponent. `allowSpace` permits white space around it. A text of
    // signs and points without a digit gives `noDigitsIsNumber`.
    bool isInteger(bool allowSpace) const;
    bool isNumber(bool allowSpace, bool noDigitsIsNumber) const;

    bool hasWhitespace() const;
    static bool hasWildcards(const char *text); // any of " ,?*["

    int toInt() const;      // strtol, base 10; clamped; 0 when unset
    double toFloat() const; // strtod; 0 when unset
    std::string toStdString() const;

    // ---- Splitting -----------------------------------------------------
    // In place: NULs are written into the text and the words point into it, so
    // the string takes its own copy first and must outlive the words. The forms
    // with an array store at most maxArgs - 1 words and a null behind them, and
    // return how many words that were.

    // Words separated by white space, with quotes as in a shell: "a b"c is one
    // word, "" an empty one, \" and \' outside quotes are plain quotes. Inside
    // quotes a backslash keeps the quote from closing and both stay. An open
    // quote ends with the text. Returns the number of words.
    int splitWords(UT_WordList &words);
    int splitWordsInto(char *argv[], int maxArgs);

    // Fields between runs of any of the delimiters (no empty fields), appended
    // from index 0. An unset or empty text gives 0 and leaves `words` alone.
    int splitAt(UT_WordList &words, const char *delimiters);
    int splitAt(char *argv[], int maxArgs, const char *delimiters);

    // Fields between single separators: empty fields count, except one behind a
    // separator that ends the text.
    int splitAtChar(UT_WordList &words, char separator);
    int splitAtChar(char *argv[], int maxArgs, char separator);

    // Tokens by rules of the caller's: separators, quotes and escapes go, and
    // quotes may hold an empty token. None comes behind a separator that ends the
    // text. Resets `words`; returns the number of tokens.
    int tokenize(UT_WordList &words, const TokenRules &rules);

    // ---- Editing -------------------------------------------------------

    // "a.old" to "a.new"; false, and nothing changes, without that suffix.
    bool changeSuffix(const char *oldSuffix, const char *newSuffix);

    // Replaces the first, or every, occurrence; the replacement itself is not
    // searched. Returns the number of replacements.
    int replaceText(const char *find, const char *replacement, bool all);

    // The same for occurrences that are whole words, as in findWord.
    int replaceWord(const char *find, const char *replacement, bool all);

    // Removes every character that `set` holds; returns how many went.
    int removeChars(const char *set);

    // White space goes from both ends. collapseSpace also makes one blank of
    // each run of it inside.
    void trimSpace();
    void collapseSpace();

    // Blanks up to the next multiple of `tabSize` columns in place of each tab.
    // A newline starts column 0. A size below 1 changes nothing.
    void expandTabs(int tabSize = 8);

    // csh-style modifiers, each behind a ':': r (no extension), h (head), t
    // (tail), e (extension), u and l (case), s/old/new/; with g for each word
    // and a for as often as possible. True when a modifier changed the text.
    bool applyModifiers(const char *modifiers);

    // How many characters of `text` are a name with its modifiers: letters,
    // digits, '_', a ':' in front of a letter or digit, and the slashes of
    // s/old/new/.
    static int modifierNameLength(const char *text);

    // Removes "//", "." and ".." from an absolute path. False for any other
    // text (unchanged) and for a path that climbs above the root (spoiled).
    bool collapseAbsolutePath();

    // Becomes the path from the directory `from` to the directory `to`, such as
    // "../../lib", or "." between equal ones. Compares texts: symbolic links are
    // not followed. False, and nothing changes, unless collapseAbsolutePath
    // takes both.
    bool makeRelativePath(const char *from, const char *to);

    // Double quotes around a text with white space, unless it has them.
    void quoteIfSpaced();

    // Writes the text as one word that a reader of quoted words takes back: ""
    // when unset or empty, in double quotes when it holds white space, with a
    // backslash in front of each '"' and backslash. (UT_IStream::getString takes the
    // first byte of an unquoted word as it is, and ends a word at a carriage return:
    // without other white space, a text that begins with a backslash comes back with
    // one more, and one with a carriage return in pieces.)
    void writeText(std::ostream &os) const;

    // The text in quotes, with a backslash in front of each such quote and each
    // backslash. The other kind of quote is used when only that needs no
    // backslashes.
    UT_String makeQuoted(char quote) const;

    // \n, \r and \t become what they stand for; other backslashes go.
    void decodeEscapes();

    // Makes a name of letters, digits, '_' and the characters of `allowed`: any
    // other becomes '_', and a digit (or allowed character) in front gets a "_"
    // before it. Returns the number of changes.
    int makeIdentifier(const char *allowed);

    // Wildcards over the whole text: '*' any run, '?' one character, [abc] one
    // of these (no ranges), '\' the next character as it is. False for null.
    bool match(const char *pattern, bool caseSensitive = true) const;

    // Tries the patterns from the last to the first; a '^' in front negates. The
    // first that matches decides, `otherwise` when none does.
    bool matchAny(const UT_WordList &patterns, bool otherwise) const;

    // Expands variable references, "~" and quotes as UTexpandVariables does; the
    // string owns the result. Unset gives "".
    void substituteVariables();

    // Three-way comparison in natural order: digit runs at the same place
    // compare as numbers, so "file2" comes before "file10"; null comes first.
    static int compareNatural(const char *a, const char *b);

    // ---- The number at the end of a name, such as "shot" 099 ------------
    // A run of decimal digits of any length.

    const char *findNumber() const; // its first digit; null without one
    bool stripNumber();             // false, and nothing changes, without one

    // Adds 1 and keeps leading zeros: "shot099" to "shot100", "a9" to "a10". A
    // name without a number gets "1".
    void incrementNumber();

private:
    static constexpr char WHITE_SPACE[] = " \t\n\v\f";

    // Gives the next occurrence at or behind `from`, a place in `text`; or null.
    using Finder = const char *(*)(const char *text, const char *from, const char *word);
    static const char *nextWord(const char *text, const char *from, const char *word);
    int replaceFound(Finder next, const char *find, const char *replacement, bool all);

    char *myData;
    bool isBorrowed : 1;
    bool isAlwaysDeep : 1;
};
