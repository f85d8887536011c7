// The input stream that every reader of the library reads through.
//
// A stream parses (lines, words, quoted texts, numbers, binary values) what its
// source delivers; see UT_IStreamBuf.h for sources and their chunks.
//
// Text form:   numbers are decimal words, strings are words or quoted texts.
// Binary form: values have a fixed width and are big-endian, strings have their
//              length in front.
//
// The error is sticky: once an operation fails because the source has recorded
// an error, every read fails at once, until open(), seekg() or clearError(). The
// end of the input is no error; only bread() on a file takes it for one. Nothing
// is ever printed.
#pragma once

#include "UT/UT_IStreamBuf.h"
#include "UT/UT_IntegerArray.h"

class UT_String;

class UT_IStream
{
public:
    // None of these owns what it reads from. Standard input (also std::cin) is
    // shared: all streams over it go on where another one stopped.
    UT_IStream(FILE *fp, bool binary);
    UT_IStream(std::istream &is, bool binary);
    UT_IStream(const char *data, int size, bool binary);
    UT_IStream(const UT_ScratchBuffer &text, bool binary);

    // Takes over the caller's reference. REQUIRES: src is not null
    UT_IStream(UT_IStreamBuf *src, bool binary);

    // Lets the source go without closing it.
    virtual ~UT_IStream();
    UT_IStream(const UT_IStream &) = delete;
    UT_IStream &operator=(const UT_IStream &) = delete;

    // Whether standard input is read line by line even when it is no terminal.
    // Counts until a stream first uses it.
    static void setStdinLineMode(bool lineByLine) { UT_IStreamBuf::setStdinLineMode(lineByLine); }

    // Closes the source, which stays: what is buffered can still be read.
    bool close();

    // ---- Text: see the readers of the same names in UT_IStreamBuf.h --------

    [[nodiscard]] bool getLine(UT_ScratchBuffer &line, int delimiter);
    bool skipWhitespace();
    bool skipPast(int delimiter);
    [[nodiscard]] bool getWord(UT_ScratchBuffer &word);
    [[nodiscard]] bool getString(UT_ScratchBuffer &text);

    // The next line that is neither blank nor begins with `commentChar`, without
    // its leading white space; `stripInline` also cuts a comment behind the text
    // (UT_ScratchBuffer::stripComment). Returns the number of non-blank lines
    // consumed; 0 at the end of input. After a comment that ends the input the
    // line is empty.
    int getNonCommentLine(UT_ScratchBuffer &line, int commentChar, bool stripInline);

    // ---- Bytes ------------------------------------------------------------
    // The next byte as a signed value, -1 at the end. peekChar() does not
    // consume it, and gives 0 to 255 when nothing is buffered.
    int getChar() { return mySource->getChar(); }
    int peekChar() { return mySource->peekBufferedChar(); }

    // Steps back, not beyond the current chunk. Returns the number of bytes.
    int unread(int n) { return mySource->unread(n); }

    // ---- Values -------------------------------------------------------------

    // Raw bytes; returns how many there were.
    int bread(void *dst, int n);

    // Big-endian values, converted to the host's order. Returns the number of
    // whole values; bytes of an incomplete one are lost.
    int bread(int16_t *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(uint16_t *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(int32_t *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(uint32_t *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(int64_t *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(uint64_t *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(float *dst, int count) { return breadValues(dst, count, sizeof *dst); }
    int bread(double *dst, int count) { return breadValues(dst, count, sizeof *dst); }

    // Values in the stream's form; in binary form the same as bread(). In text
    // form a value is a number or any other word, converted as strtol, strtoll,
    // strtod and their like do it, so that a word without a number is 0. The 16-
    // and 32-bit integers also take numbers with a point or an exponent, which
    // are rounded (half up). What does not fit 32 bits is clamped, 16-bit values
    // then keep their low bits. Returns the number of values read.
    int read(int16_t *dst, int count) { return readValues(dst, count); }
    int read(uint16_t *dst, int count) { return readValues(dst, count); }
    int read(int32_t *dst, int count) { return readValues(dst, count); }
    int read(uint32_t *dst, int count) { return readValues(dst, count); }
    int read(int64_t *dst, int count) { return readValues(dst, count); }
    int read(uint64_t *dst, int count) { return readValues(dst, count); }
    int read(float *dst, int count) { return readValues(dst, count); }
    int read(double *dst, int count) { return readValues(dst, count); }

    // Lets the string load itself in the given form.
    [[nodiscard]] bool readString(UT_String &s, bool binary);

    // A string with its length in front, in the shortest of these forms that
    // has at least minBits:
    //
    //     | n (1) | text          n < 255
    //     | 255   | n (2) | text          n < 65535
    //             | 65535 | n (4) | text          n < 4294967295
    //                     | 4294967295 | n (8) | text
    //
    // False, and the string stays, when something is missing, or when the
    // length is negative or beyond what a string can hold.
    [[nodiscard]] bool readBinaryString(UT_String &s, int minBits);

    // ---- Position ------------------------------------------------------------

    // Position of the next byte to consume.
    int64_t tellg() { return mySource->tellg(); }

    // Moves to `pos` from the start (whence 0), from behind the current chunk
    // (1) or from the end (2), and forgets the error.
    bool seekg(int64_t pos, int whence);

    // Also true while the stream has an error.
    bool isEof() { return myError || mySource->isAtEnd(); }

    // ---- State -----------------------------------------------------------------

    bool isBinary() const { return myBinary; }

    // Saves the current form and sets a new one; restores the one last saved.
    void pushBinary(bool binary);
    void popBinary();

    bool hasError() const { return myError; }
    void clearError() { myError = false; }

    // The name of a file opened by name, else null.
    const char *getLabel() const { return myLabel; }

    // The stream's source, still held by the stream; it has the error's text.
    UT_IStreamBuf &getSource() const { return *mySource; }

    // ---- Sub-streams ----------------------------------------------------------
    // New streams, owned by the caller, over a view of this one's source, in the
    // same form. They move the source: nobody else may read from it meanwhile.

    // `length` bytes from the source's position `start` on.
    [[nodiscard]] UT_IStream *newRangeStream(int64_t start, int64_t length) const;

    // The decompressed form of what follows.
    [[nodiscard]] UT_IStream *newZLibStream() const;
    [[nodiscard]] UT_IStream *newGZipStream() const;

protected:
    // Replaces source, label (a copy is kept) and form; the stream has an error
    // when the source has. Takes over the caller's reference.
    void install(UT_IStreamBuf *src, const char *label, bool binary);

private:
    // Notes the source's error after a failure; true when the read counts.
    bool conclude(bool succeeded);

    int breadValues(void *dst, int count, int width);
    template <class T>
    int readValues(T *dst, int count);
    bool readPrefix(int bytes, uint64_t &value);
    bool readCharacters(UT_String &s, int length);

    UT_IntegerArray myBinaryStack;
    UT_IStreamBuf *mySource; // one reference is ours
    char *myLabel = nullptr; // malloc'd
    bool myBinary;
    bool myError = false;
};
