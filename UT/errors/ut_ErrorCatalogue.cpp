#include "UT/errors/ut_ErrorCatalogue.h"

#include "UT/UT_Character.h"
#include "UT/UT_FileUtil.h"
#include "UT/UT_IFStream.h"
#include "UT/UT_PathSearch.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_SymbolTable.h"

#include <cstring>

namespace
{

bool findFile(UT_String &path, const char *table)
{
    if (UTisExplicitPath(table)) {
        path.assignCopy(table);
        return true;
    }
    UT_String name;
    name.sprintf("error/%s", table);
    return UT_PathSearch::getInstance(UT_VELDRIN_PATH).findFile(path, name);
}

// What a character behind a backslash stands for; NUL when the backslash stays.
char unescaped(char c)
{
    if (c == 'n')
        return '\n';
    if (c == 't')
        return '\t';
    return c == '\\' ? c : '\0';
}

void decode(UT_ScratchBuffer &out, const char *text, size_t length)
{
    for (size_t i = 0; i < length; ++i) {
        const char special = text[i] == '\\' && i + 1 < length ? unescaped(text[i + 1]) : '\0';
        out.append(special ? special : text[i]);
        i += special != '\0';
    }
}

// Without the trailing white space that an editor may have left, except blanks and
// tabs, which may be meant.
size_t lengthOf(const char *text)
{
    size_t length = std::strlen(text);
    while (length > 0 && std::strchr("\r\n\v\f", text[length - 1]))
        --length;
    return length;
}

} // namespace

const char *ut_ErrorCatalogue::find(const char *table, int code)
{
    static auto *cache = new UT_SymbolTable; // to the end of the process, as its values
    void *known = nullptr;
    if (!cache->findSymbol(table, &known)) {
        const ut_ErrorCatalogue *loaded = load(table);
        if (!loaded)
            return nullptr;
        known = const_cast<ut_ErrorCatalogue *>(loaded);
        cache->addSymbol(table, known);
    }
    const auto &messages = static_cast<const ut_ErrorCatalogue *>(known)->myMessages;
    if (code < 0 || static_cast<unsigned>(code) >= messages.entries())
        return nullptr;
    const char *message = messages(static_cast<unsigned>(code));
    return message ? message : "";
}

const ut_ErrorCatalogue *ut_ErrorCatalogue::load(const char *table)
{
    UT_String path;
    if (!findFile(path, table))
        return nullptr;
    UT_IFStream is(path, false);
    if (is.hasError())
        return nullptr;
    auto *catalogue = new ut_ErrorCatalogue;
    catalogue->read(is);
    return catalogue;
}

void ut_ErrorCatalogue::read(UT_IStream &is)
{
    UT_ScratchBuffer line;
    while (is.getNonCommentLine(line, '#', false) > 0)
        addLine(line.buffer());
}

void ut_ErrorCatalogue::addLine(const char *line)
{
    const char *p = line;
    int code = 0;
    // Stops counting, not reading, above the greatest code: no overflow.
    for (; UTisDigit(*p); ++p)
        code = code <= MAX_CODE ? code * 10 + (*p - '0') : code;
    if (p == line || code > MAX_CODE)
        return;
    p += *p != '\0'; // the separator
    UT_ScratchBuffer text;
    decode(text, p, lengthOf(p));
    const unsigned index = static_cast<unsigned>(code);
    if (index >= myMessages.entries())
        myMessages.insert(index);
    myMessages(index) += text.buffer();
}
