#include "thumbnail/PaletteHead.h"

#include "UT/UT_IFStream.h"

#include <cstring>
#include <memory>

#include <sys/stat.h>

namespace
{

const char *const HEAD_END = "ShopData";
const char *const EXTRA_BEGIN = "BeginIfdExtra";
const char *const EXTRA_END = "EndIfdExtra";

constexpr int64_t MOST_BYTES = 128 << 20;

struct HeadKey {
    const char *word;
    UT_String PaletteHead::*value;
};

const HeadKey HEAD_KEYS[] = {
    {"ShaderType", &PaletteHead::shaderType},
    {"VVaskel", &PaletteHead::vvaskelShader},
    {"RIB", &PaletteHead::ribShader},
    {"MI", &PaletteHead::miShader},
};

enum class State { HEAD, EXTRA, DONE };

void setValue(PaletteHead &head, const char *key, const char *value)
{
    for (const HeadKey &known : HEAD_KEYS) {
        if (strcmp(key, known.word) == 0)
            (head.*known.value).assignCopy(value);
    }
}

State readHeadLine(const UT_ScratchBuffer &line, PaletteHead &head)
{
    if (line.buffer()[0] == '#')
        return State::HEAD;
    UT_String text(line.buffer(), true);
    // Room for one word more than a key line has, to tell it from longer ones.
    char *words[4];
    const int count = text.splitWordsInto(words, 4);
    if (count == 0)
        return State::HEAD;
    if (strcmp(words[0], HEAD_END) == 0)
        return State::DONE;
    if (strcmp(words[0], EXTRA_BEGIN) == 0)
        return State::EXTRA;
    if (count == 2)
        setValue(head, words[0], words[1]);
    return State::HEAD;
}

State readExtraLine(const UT_ScratchBuffer &line, PaletteHead &head)
{
    if (strncmp(line.buffer(), EXTRA_END, strlen(EXTRA_END)) == 0)
        return State::HEAD;
    head.ifdExtra.append(line.buffer(), line.length());
    return State::EXTRA;
}

// A folder opens, and tells that it is one when it is read.
bool isFileOrFolder(const char *fileName)
{
    struct stat info;
    return stat(fileName, &info) != 0 || S_ISREG(info.st_mode) || S_ISDIR(info.st_mode);
}

// False when the text ended before the head did.
bool readLines(UT_IStream &in, PaletteHead &head)
{
    UT_ScratchBuffer line;
    State state = State::HEAD;
    while (state != State::DONE && in.getLine(line, '\n')) {
        // What follows a NUL could not reach the renderer anyway.
        line.truncate(static_cast<int>(strlen(line.buffer())));
        line.append('\n');
        state = state == State::HEAD ? readHeadLine(line, head) : readExtraLine(line, head);
    }
    return state == State::DONE;
}

bool fail(UT_String &error, const char *fileName, const char *why)
{
    error.sprintf("Unable to read palette file %s: %s", fileName, why);
    return false;
}

} // namespace

bool readPaletteHead(const char *fileName, PaletteHead &head, UT_String &error)
{
    if (!isFileOrFolder(fileName))
        return fail(error, fileName, "Not a regular file");
    UT_IFStream file;
    if (!file.open(fileName, true)) {
        error.sprintf("Unable to open palette file %s", fileName);
        return false;
    }
    const std::unique_ptr<UT_IStream> in(file.newRangeStream(0, MOST_BYTES));
    const bool isWhole = readLines(*in, head);
    const UT_IStreamBuf &source = file.getSource();
    if (source.hasError())
        return fail(error, fileName, source.getErrorText());
    return isWhole || in->tellg() < MOST_BYTES ||
           fail(error, fileName, "Its head is longer than 128 MB");
}
