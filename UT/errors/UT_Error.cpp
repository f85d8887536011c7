#include "UT/UT_Error.h"

#include "UT/UT_Character.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_WordList.h"
#include "UT/errors/ut_ErrorCatalogue.h"

#include <climits>
#include <cstring>

namespace
{

const char INDENT[] = "             ";

const char *const PREFIXES[] = {"", "", "", "Warning:     ", "Error:       ", "Fatal error: "};
static_assert(sizeof PREFIXES / sizeof *PREFIXES == UT_SEVERITY_FATAL + 1);

const char *prefixOf(int severity, int previousSeverity)
{
    if (severity == previousSeverity)
        return INDENT;
    return severity >= 0 && severity <= UT_SEVERITY_FATAL ? PREFIXES[severity] : "";
}

void addPrefixes(UT_String &entry, const char *prefix)
{
    UT_ScratchBuffer lines;
    UT_WordList words;
    const int count = entry.splitAtChar(words, '\n');
    for (int i = 0; i < count; ++i) {
        lines.append(i == 0 ? prefix : "\n");
        lines.append(i == 0 ? "" : INDENT);
        lines.append(words.getArg(i));
    }
    lines.copyToString(entry);
}

// A number as in "%-20.10s"; what is too large for any text is cut.
int parseNumber(const char *&p)
{
    int value = 0;
    for (; UTisDigit(*p); ++p)
        value = value < 10000 ? value * 10 + (*p - '0') : value;
    return value;
}

// Appends the text as the conversion at `p` ("%s", "%-20.10s") says, and moves past
// it. False for anything else.
bool convert(UT_ScratchBuffer &out, const char *&p, const char *text)
{
    const char *q = p + 1;
    const bool isLeft = *q == '-';
    q += isLeft;
    const int width = parseNumber(q);
    int precision = INT_MAX;
    if (*q == '.')
        precision = parseNumber(++q);
    if (*q != 's')
        return false;
    out.appendSprintf("%*.*s", isLeft ? -width : width, precision, text);
    p = q + 1;
    return true;
}

// Formats are users' files, so printf must not see them: only the one text is
// converted, and all else stays as it is.
void insertText(UT_String &out, const char *entry, const char *text)
{
    UT_ScratchBuffer result;
    bool isConverted = false;
    for (const char *p = entry; *p != '\0';) {
        if (p[0] == '%' && p[1] == '%') {
            result.append('%');
            p += 2;
        } else if (*p == '%' && !isConverted && convert(result, p, text)) {
            isConverted = true;
        } else {
            result.append(*p++);
        }
    }
    result.copyToString(out);
}

void getSystemMessage(UT_String &out, int code, const char *text)
{
    const char *message = std::strerror(code);
    out.assignCopy(message && *message ? message : "Unknown Error");
    if (*text == '\0')
        return;
    out += " (";
    out += text;
    out += ")";
}

} // namespace

UT_Error::UT_Error(const char *type, int code, const char *text, int severity)
    : myType(type ? type : ""), myText(UT_String::ALWAYS_DEEP, text ? text : ""),
      mySeverity(severity), myCode(code)
{
}

UT_Error::~UT_Error() = default;

void UT_Error::getErrorMessage(UT_String &out, int previousSeverity, bool withPrefix) const
{
    if (std::strcmp(myType, "System") == 0) {
        getSystemMessage(out, myCode, myText);
        return;
    }
    const char *entry = ut_ErrorCatalogue::find(myType, myCode);
    if (!entry) {
        out.sprintf("%s: unknown error: %d", myType.text(), myCode);
        return;
    }
    UT_String message(entry, true);
    if (withPrefix && *entry != '\0')
        addPrefixes(message, prefixOf(mySeverity, previousSeverity));
    insertText(out, message, myText);
}
