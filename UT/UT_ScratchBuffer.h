// A growable text buffer for building and reading text.
//
// The text is NUL-terminated at all times and may hold any bytes. Its first
// 2000 bytes live inside the object, so a local buffer of ordinary length needs
// no heap; after that the capacity doubles (malloc, realloc). Running out of
// memory ends the process with a message.
//
// While a lock is open the buffer belongs to the code that writes into it
// directly: appending and clearing do nothing.
#pragma once

#include <cstdio>

class UT_String;

class UT_ScratchBuffer
{
public:
    UT_ScratchBuffer();
    ~UT_ScratchBuffer();
    UT_ScratchBuffer(const UT_ScratchBuffer &) = delete;
    UT_ScratchBuffer &operator=(const UT_ScratchBuffer &) = delete;

    // Grows the capacity to exactly `n` bytes when it is smaller.
    void reserve(int n);

    // Amortised O(appended). A null text appends nothing. The text must not be
    // a part of this buffer.
    void append(const char *text);
    void append(const char *text, int length);
    void append(char c);

    void clear();

    // Opens a lock and gives the place `offset` bytes into the storage, with
    // room for `extra` bytes there. The writer ends its text with a NUL.
    char *lock(int offset, int extra);

    // Closes one lock. When it was the last one and `recomputeLength` is set,
    // the text ends at the storage's first NUL from now on.
    void release(bool recomputeLength);
    bool isLocked() const { return myLockCount != 0; }

    // Replaces the text, or adds to it, as printf would write it.
    void sprintf(const char *format, ...) __attribute__((format(printf, 2, 3)));
    void appendSprintf(const char *format, ...) __attribute__((format(printf, 2, 3)));

    // Replaces the text by the file's next line, without its "\n" or "\r\n"
    // (only one carriage return goes). False when nothing is left to read, or
    // reading failed before the first byte. NUL bytes are kept.
    [[nodiscard]] bool getLine(FILE *fp);

    // Cuts the text at its first `c` outside single and double quotes and not
    // directly behind a backslash.
    void stripComment(char c);

    // Cuts the text to `length` characters. REQUIRES: 0 <= length <= length()
    void truncate(int length);

    void copyToString(UT_String &out) const;

    // Exchanges the texts and their storage; a long text is not copied.
    // REQUIRES: neither is locked
    void swap(UT_ScratchBuffer &other);

    char *buffer() { return myBuffer; }
    const char *buffer() const { return myBuffer; }
    int length() const { return myLength; }

private:
    static constexpr int INLINE_BYTES = 2000;

    void growFor(int extra); // room for `extra` more bytes and the NUL

    char *myBuffer; // myInline until the first growth
    int myAllocSize;
    int myLength;
    int myLockCount;
    char myInline[INLINE_BYTES];
};
