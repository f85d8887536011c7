// The abstract source of bytes behind an input stream.
//
// Medium:   what a concrete source reads from (a file, a block of memory, ...).
// Chunk:    the bytes last fetched from the medium. It belongs to the concrete
//           source and holds until the next fetch.
// Buffered: the bytes of the chunk that nobody has consumed yet.
// Error:    a source remembers its first failure until seekg() clears it. The
//           end of the input is no failure for the readers of text.
//
// Sources are shared by counting: a new one has one holder, and the last
// release() deletes it. Nothing here is locked: a source and all its holders
// belong to one thread.
#pragma once

#include <cstdint>
#include <cstdio>
#include <iosfwd>

class UT_ScratchBuffer;

class UT_IStreamBuf
{
public:
    // ---- Factories: never null, one reference is the caller's ------------

    // A file that cannot be opened gives a source that has an error.
    static UT_IStreamBuf *openFile(const char *path);

    // Neither the file nor the stream nor the memory is owned. Standard input,
    // also in the form of std::cin, always gives the one source that the whole
    // process shares.
    static UT_IStreamBuf *wrapFile(FILE *fp);
    static UT_IStreamBuf *wrapStream(std::istream &is);
    static UT_IStreamBuf *wrapMemory(const char *data, int size);

    // `length` bytes of `inner` from its position `start` on. The range takes a
    // reference of its own and moves the inner source as it reads.
    static UT_IStreamBuf *makeRange(UT_IStreamBuf &inner, int64_t start, int64_t length);

    static UT_IStreamBuf *makeEmpty();

    // The decompressed form of what follows in `inner`, to which the new source
    // takes a reference. Data in another format give an error at the first read.
    static UT_IStreamBuf *makeZLib(UT_IStreamBuf &inner);
    static UT_IStreamBuf *makeGZip(UT_IStreamBuf &inner);

    // Whether the shared source of standard input fetches line by line even
    // when that is no terminal. Counts until that source is first asked for.
    static void setStdinLineMode(bool lineByLine);

    // ---- Holders ---------------------------------------------------------

    void addReference() { ++myRefCount; }
    void release();

    // ---- The medium, each without regard to the chunk ---------------------

    // Copies up to n bytes; returns how many.
    virtual int read(void *dst, int n) = 0;

    // The next byte, 0 to 255, without consuming it; -1 when there is none.
    virtual int peekChar() = 0;

    // Lets the medium go; false when that failed.
    virtual bool close();

    UT_IStreamBuf(const UT_IStreamBuf &) = delete;
    UT_IStreamBuf &operator=(const UT_IStreamBuf &) = delete;
    virtual ~UT_IStreamBuf();

    // Fetches the next chunk and sets the range of its valid indices; null at
    // the end of the input.
    virtual const char *fillBuffer(int &start, int &end) = 0;

    // Position behind the last byte fetched; -1 when there is none.
    virtual int64_t tell() = 0;

    // Moves to `pos` from the start (whence 0), from the medium's position (1)
    // or from the end (2).
    virtual bool seek(int64_t pos, int whence) = 0;

    virtual bool isEof() = 0;

    // ---- Buffered reading --------------------------------------------------
    // Text is appended in runs to a buffer that is emptied first; a buffer that
    // is locked stays as it is while the input is consumed all the same.

    // A line, without its delimiter; with '\n' a carriage return in front of it
    // goes too. The last line needs no delimiter. False at the end of input
    // with nothing read, and while the source has an error.
    [[nodiscard]] bool getLine(UT_ScratchBuffer &line, int delimiter);

    // Consumes white space (isspace). True when another byte comes next.
    bool skipWhitespace();

    // Consumes all bytes through the next delimiter, or all there are. False
    // only when there was none.
    bool skipPast(int delimiter);

    // Skips white space and takes what comes before the next.
    [[nodiscard]] bool getWord(UT_ScratchBuffer &word);

    // A word, or a text in double quotes; in both \" and \\ stand for the
    // character behind the backslash, other backslashes for themselves. A word
    // that begins with \" keeps that quote. The input's end ends either.
    [[nodiscard]] bool getString(UT_ScratchBuffer &text);

    // The longest text that can still become a decimal number ("-1.5e+3"), or a
    // plain word when no number begins here. `isFloating` tells whether the
    // number has a point or an exponent.
    [[nodiscard]] bool getNumberToken(UT_ScratchBuffer &token, bool &isFloating);

    // The next byte as a signed value, -1 at the end. peekBufferedChar() does
    // not consume it, and asks the medium (0 to 255) when the chunk is used up;
    // peekByte() gives 0 to 255 in either case.
    int getChar();
    int peekBufferedChar();
    int peekByte();

    // Steps back, within the chunk only. Returns the number of bytes.
    int unread(int n);

    // Raw bytes: the buffered ones, the rest straight from the medium. Returns
    // how many there were.
    int bread(void *dst, int n);

    // Hands out a run of at most `most` buffered bytes (fetching when there are
    // none), which are then consumed; null at the end of input.
    const char *takeRun(int64_t most, int &length);

    // Position of the next byte to consume: tell() less the buffered bytes.
    int64_t tellg();

    // Drops the chunk and the error, then moves the medium. A position with
    // whence 1 thus counts from tell(), not from tellg().
    bool seekg(int64_t pos, int whence);

    // Nothing is buffered and the medium has no more.
    bool isAtEnd();

    // ---- Errors ------------------------------------------------------------

    // Records an error with errno and, optionally, a text of its own. Only the
    // first one counts.
    void setError(const char *text = nullptr);
    bool hasError() const { return myError; }

    // The recorded text, or the system's one for the recorded errno.
    const char *getErrorText() const;

protected:
    UT_IStreamBuf() = default;

private:
    int buffered() const { return myEnd - myReadPos; }
    bool refill();
    bool hasNext() { return buffered() > 0 || refill(); }
    bool nextIs(char c);

    // Appends what `scan` finds in front of a stop, chunk by chunk. False when
    // the input ended before a stop.
    template <class Scan>
    bool takeUntil(UT_ScratchBuffer &out, Scan &&scan);

    static UT_IStreamBuf *sharedStdin();

    char *myErrorText = nullptr; // malloc'd
    const char *myBuffer = nullptr;
    int myReadPos = 0;
    int myEnd = 0;
    int myRefCount = 1;
    int myErrno = 0;
    bool myError = false;
};
