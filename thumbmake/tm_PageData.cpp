#include "thumbmake/tm_PageData.h"

#include "thumbnail/PaletteHead.h"
#include "thumbnail/ThumbState.h"

#include <cstdint>
#include <filesystem>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

// One sequence of UTF-8 (RFC 3629), by its first byte.
struct Sequence {
    unsigned char first, last; // of the first byte
    unsigned char low, high;   // of the second: keeps out long forms and surrogates
    std::size_t length;
};

const Sequence SEQUENCES[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool isBetween(char c, unsigned char low, unsigned char high)
{
    const auto byte = static_cast<unsigned char>(c);
    return low <= byte && byte <= high;
}

bool startsWith(std::string_view text, const Sequence &sequence)
{
    if (text.size() < sequence.length || !isBetween(text[0], sequence.first, sequence.last))
        return false;
    if (sequence.length > 1 && !isBetween(text[1], sequence.low, sequence.high))
        return false;
    for (std::size_t i = 2; i < sequence.length; ++i) {
        if (!isBetween(text[i], 0x80, 0xBF))
            return false;
    }
    return true;
}

// The bytes of the character at the text's start; 0 when it is none.
std::size_t characterLength(std::string_view text)
{
    for (const Sequence &sequence : SEQUENCES) {
        if (startsWith(text, sequence))
            return sequence.length;
    }
    return 0;
}

const char HEX[] = "0123456789ABCDEF";

void appendEscape(std::string &json, char c)
{
    const auto byte = static_cast<unsigned char>(c);
    json += "\\u00";
    json += HEX[byte >> 4];
    json += HEX[byte & 15];
}

void appendCharacter(std::string &json, std::string_view character)
{
    const char c = character[0];
    if (character == "\u2028" || character == "\u2029")
        json += character == "\u2028" ? "\\u2028" : "\\u2029";
    else if (isBetween(c, 0x00, 0x1F) || c == 0x7F || c == '"' || c == '\\' || c == '<')
        appendEscape(json, c);
    else
        json += character;
}

// The seconds since 1970 of a file's last change; 0 without the file.
int64_t dateOf(const std::string &path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? int64_t{status.st_mtime} : 0;
}

std::string stem(const fs::path &palette)
{
    const std::string name = palette.filename().string();
    const std::size_t suffix = static_cast<std::size_t>(thePaletteSuffix.length());
    const bool hasSuffix =
        name.size() > suffix && name.compare(name.size() - suffix, suffix, thePaletteSuffix) == 0;
    return hasSuffix ? name.substr(0, name.size() - suffix) : name;
}

struct LabelledText {
    const char *label;
    const char *text;
};

// A list [["VVaskel", "v_plastic"], ...].
std::string textsOf(const PaletteHead &head)
{
    const LabelledText texts[] = {
        {"VVaskel", head.vvaskelShader},
        {"RIB", head.ribShader},
        {"MI", head.miShader},
        {"In front of the scene", head.ifdExtra.buffer()},
    };
    std::string json;
    for (const auto &[label, text] : texts) {
        if (text != nullptr && *text != '\0')
            json += (json.empty() ? "" : ", ") +
                    ("[" + tm_jsonText(label) + ", " + tm_jsonText(text) + "]");
    }
    return "[" + json + "]";
}

// Why the palette could not be read; empty when it was.
std::string readHead(const std::string &palette, PaletteHead &head)
{
    UT_String error;
    return readPaletteHead(palette.c_str(), head, error) ? "" : error.text();
}

// Relative names are told by their words alone: a picture below the folder is found in
// it, whatever links lead there.
class Namer
{
public:
    explicit Namer(const std::string &folder) : myFolder(absolute(folder)) {}

    std::string title() const { return myFolder.filename().string(); }

    std::string relative(const std::string &path) const
    {
        return absolute(path).lexically_relative(myFolder).string();
    }

private:
    static fs::path absolute(const std::string &path)
    {
        std::error_code ignored; // only without a current folder
        const fs::path whole = fs::absolute(path, ignored).lexically_normal();
        return whole.has_filename() ? whole : whole.parent_path(); // "lib/" is "lib"
    }

    fs::path myFolder;
};

std::string pair(const char *key, const std::string &value)
{
    return std::string("\"") + key + "\": " + value;
}

std::string entryJson(const Namer &namer, const tm_PageEntry &entry)
{
    PaletteHead head;
    const std::string unread = readHead(entry.palette, head);
    const std::string picture = namer.relative(entry.picture);
    const char *type = head.shaderType.isNonEmpty() ? head.shaderType.text() : "";
    const std::string pairs[] = {
        pair("name", tm_jsonText(stem(entry.palette))),
        pair("folder", tm_jsonText(fs::path(picture).parent_path().string())),
        pair("type", tm_jsonText(type)),
        pair("message", tm_jsonText(entry.message.empty() ? unread : entry.message)),
        pair("palette", tm_jsonText(tm_linkTo(namer.relative(entry.palette)))),
        pair("changed", std::to_string(dateOf(entry.palette))),
        pair("picture", tm_jsonText(tm_linkTo(picture))),
        pair("made", std::to_string(dateOf(entry.picture))),
        pair("texts", textsOf(head)),
    };
    std::string json;
    for (const std::string &each : pairs)
        json += (json.empty() ? "" : ", ") + each;
    return "{" + json + "}";
}

} // namespace

std::string tm_jsonText(std::string_view text)
{
    std::string json = "\"";
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length > 0)
            appendCharacter(json, text.substr(0, length));
        else
            json += "\\uFFFD";
        text.remove_prefix(length > 0 ? length : 1);
    }
    return json + '"';
}

std::string tm_linkTo(std::string_view relativePath)
{
    const std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                   "0123456789-._~/";
    std::string link;
    for (const char c : relativePath) {
        const auto byte = static_cast<unsigned char>(c);
        if (plain.find(c) != std::string_view::npos)
            link += c;
        else
            link += {'%', HEX[byte >> 4], HEX[byte & 15]};
    }
    return link;
}

std::string tm_pageData(const std::string &folder, const std::vector<tm_PageEntry> &entries)
{
    const Namer namer(folder);
    std::string json = "{" + pair("title", tm_jsonText(namer.title())) + ", \"entries\": [\n";
    for (const tm_PageEntry &entry : entries)
        json += (&entry == &entries.front() ? "" : ",\n") + entryJson(namer, entry);
    return json + "\n]}\n";
}
