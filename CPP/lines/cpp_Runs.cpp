#include "CPP/cpp_Runs.h"

#include "CPP/cpp_Classes.h"

#include <algorithm>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{
// In skipped text: directives, comments and joined lines.
bool stopsDropped(char c)
{
    return c == '#' || c == '/' || c == '\\';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

// `next` is the character behind c: blanks in front of a newline may be all that
// their line has.
bool stopsKept(char c, char next)
{
    if (isBlank(c))
        return next == '\n';
    const bool isControl = c >= '\0' && c < ' ' && c != '\n';
    return isControl || UTisNameStart(c) || stopsDropped(c) || c == '"' || c == '\'';
}

const char *firstStop(cpp_RunKind kind, const char *from, const char *end)
{
    if (kind == cpp_RunKind::DROPPED)
        return std::find_if(from, end, [](char c) { return stopsDropped(c); });
    while (from < end && !stopsKept(*from, from + 1 < end ? from[1] : '\n'))
        ++from;
    return from;
}

// A run is whole lines: what it stops at needs the stages from its line's start.
const char *behindLastNewline(const char *from, const char *end)
{
    const void *newline = memrchr(from, '\n', static_cast<size_t>(end - from));
    return newline != nullptr ? static_cast<const char *>(newline) + 1 : from;
}

#ifdef __SSE2__
constexpr int WIDTH = 16;

using Bytes = __m128i;

Bytes load(const char *from)
{
    return _mm_loadu_si128(reinterpret_cast<const Bytes *>(from));
}

Bytes equal(Bytes bytes, char c)
{
    return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
}

Bytes either(Bytes a, Bytes b)
{
    return _mm_or_si128(a, b);
}

// One bit for each byte of a comparison's result.
unsigned bits(Bytes marks)
{
    return static_cast<unsigned>(_mm_movemask_epi8(marks));
}

Bytes stopsDropped(Bytes bytes)
{
    return either(equal(bytes, '#'), either(equal(bytes, '/'), equal(bytes, '\\')));
}

Bytes isLetter(Bytes bytes)
{
    // Shifted so that 'z' is the largest signed value.
    const Bytes lower = either(bytes, _mm_set1_epi8(' '));
    const Bytes shifted = _mm_add_epi8(lower, _mm_set1_epi8(127 - 'z'));
    return _mm_cmpgt_epi8(shifted, _mm_set1_epi8(127 - 26));
}

Bytes isDigit(Bytes bytes)
{
    const Bytes shifted = _mm_add_epi8(bytes, _mm_set1_epi8(127 - '9'));
    return _mm_cmpgt_epi8(shifted, _mm_set1_epi8(127 - 10));
}

Bytes isControl(Bytes bytes)
{
    const Bytes last = _mm_set1_epi8(' ' - 1);
    return _mm_cmpeq_epi8(_mm_max_epu8(bytes, last), last);
}

inline unsigned keptStops(const char *from)
{
    const Bytes bytes = load(from);
    const Bytes newlines = equal(bytes, '\n');
    const Bytes tabs = equal(bytes, '\t');
    const Bytes plainControls = either(newlines, tabs);
    // Tabs and newlines are what plain text has; other control characters are for the stages.
    Bytes stops = _mm_andnot_si128(plainControls, isControl(bytes));
    stops = either(stops, either(isLetter(bytes), equal(bytes, '_')));
    stops = either(stops, either(equal(bytes, '"'), equal(bytes, '\'')));
    stops = either(stops, stopsDropped(bytes));
    const Bytes blanks = either(equal(bytes, ' '), tabs);
    return bits(stops) | (bits(blanks) & bits(equal(load(from + 1), '\n')));
}

const char *skipVectors(cpp_RunKind kind, const char *from, const char *end)
{
    // One byte more is looked at than is decided on.
    for (; end - from > WIDTH; from += WIDTH) {
        const unsigned stops =
            kind == cpp_RunKind::KEPT ? keptStops(from) : bits(stopsDropped(load(from)));
        if (stops != 0)
            break;
    }
    return from;
}
#else
const char *skipVectors(cpp_RunKind, const char *from, const char *)
{
    return from;
}
#endif
} // namespace

const char *runEnd(cpp_RunKind kind, const char *from, const char *end)
{
    return behindLastNewline(from, firstStop(kind, skipVectors(kind, from, end), end));
}

const char *skipInert(const char *from, const char *end)
{
    return skipVectors(cpp_RunKind::KEPT, from, end);
}

const char *runEndByBytes(cpp_RunKind kind, const char *from, const char *end)
{
    return behindLastNewline(from, firstStop(kind, from, end));
}

const char *simpleLineEnd(const char *from, const char *end)
{
    const auto isStop = [](char c) {
        return c == '\n' || c == '/' || c == '\\' || c == '\r' || c == '\0';
    };
#ifdef __SSE2__
    for (; end - from >= WIDTH; from += WIDTH) {
        const Bytes bytes = load(from);
        const Bytes ends = either(equal(bytes, '\n'), equal(bytes, '\r'));
        const Bytes signs = either(equal(bytes, '/'), equal(bytes, '\\'));
        const unsigned stops = bits(either(either(ends, signs), equal(bytes, '\0')));
        if (stops != 0)
            return from + __builtin_ctz(stops);
    }
#endif
    return std::find_if(from, end, isStop);
}

const char *nameEnd(const char *from, const char *end)
{
#ifdef __SSE2__
    for (; end - from >= WIDTH; from += WIDTH) {
        const Bytes bytes = load(from);
        const Bytes others = either(isDigit(bytes), equal(bytes, '_'));
        const unsigned stops = ~bits(either(isLetter(bytes), others)) & ((1u << WIDTH) - 1);
        if (stops != 0)
            return from + __builtin_ctz(stops);
    }
#endif
    return findOther(CPP_NAME, from, end);
}

int countLines(const char *from, const char *end)
{
    int lines = 0;
#ifdef __SSE2__
    for (; end - from >= WIDTH; from += WIDTH) {
        // -1 for each newline; their sums over eight bytes fit the two halves.
        const Bytes ones = _mm_sub_epi8(_mm_setzero_si128(), equal(load(from), '\n'));
        const Bytes sums = _mm_sad_epu8(ones, _mm_setzero_si128());
        lines += _mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4);
    }
#endif
    return lines + static_cast<int>(std::count(from, end, '\n'));
}
