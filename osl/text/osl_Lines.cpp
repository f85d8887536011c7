#include "osl/text/osl_Lines.h"

#include "CPP/CPP_Manager.h"
#include "CPP/CPP_Stream.h"
#include "UT/UT_ScratchBuffer.h"
#include "UT/UT_String.h"
#include "osl/headers/osl_Headers.h"
#include "osl/lib/osl_TextFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>

namespace
{
constexpr size_t MAX_TOTAL_BYTES = size_t(64) << 20;

// Whether a comment is open behind a line.
bool endsInComment(std::string_view line, bool isInComment)
{
    size_t at = 0;
    bool isQuoted = false;
    if (!isInComment && line.find("/*") == std::string_view::npos)
        return false;
    while (at < line.size()) {
        const std::string_view two = line.substr(at, 2);
        if (isInComment) {
            const size_t close = line.find("*/", at);
            if (close == std::string_view::npos)
                return true;
            isInComment = false;
            at = close + 2;
        } else if (!isQuoted && two == "//") {
            return false;
        } else if (!isQuoted && two == "/*") {
            isInComment = true;
            at += 2;
        } else {
            isQuoted = isQuoted != (line[at] == '"');
            at += line[at] == '\\' ? 2U : 1U;
        }
    }
    return isInComment;
}
} // namespace

// The text of one file, in memory.
class osl_Lines::Stream : public CPP_Stream
{
public:
    explicit Stream(Manager &manager) : myManager(manager) {}

    bool open(const char *path) override;
    void setFile(FILE *) override {}
    void setStream(UT_IStream *) override {}
    bool readLine(UT_ScratchBuffer &line) override;
    bool isOpen() const override { return isGood; }

private:
    bool takeSource();
    void closeComments(std::string &line);

    Manager &myManager;
    std::string myText;
    size_t myNext = 0;
    bool isGood = false;
    bool isInDirective = false; // that goes on in the next line
    bool isInComment = false;   // of a directive
    bool isInBlock = false;     // a comment that other lines have opened
};

class osl_Lines::Manager : public CPP_Manager
{
public:
    CPP_Stream *newStream() override { return new Stream(*this); }
    int conditionValue(const char *text) override { return condition(text); }

    std::set<std::string> onceFiles;
    std::string sourceName; // of the outermost input, where it is no file
    std::string sourceText;
    osl_FileRule mayRead;
    std::function<int(std::string_view)> condition;
    size_t bytesRead = 0;
};

bool osl_Lines::Stream::open(const char *path)
{
    if (myManager.onceFiles.count(path) > 0)
        isGood = true; // nothing more of it
    else if (!myManager.sourceName.empty() && myManager.sourceName == path)
        isGood = takeSource();
    else if (!myManager.mayRead || myManager.mayRead(path))
        isGood = osl_readText(path, myText);
    if (!isGood) {
        const std::string_view text = osl_findHeader(path);
        isGood = text.data() != nullptr;
        myText = text;
    }
    if (myText.compare(0, 3, "\xef\xbb\xbf") == 0) // the mark of UTF-8
        myText.erase(0, 3);
    myManager.bytesRead += myText.size();
    isGood = isGood && myManager.bytesRead <= MAX_TOTAL_BYTES;
    return isGood;
}

bool osl_Lines::Stream::takeSource()
{
    myText = myManager.sourceText;
    return true;
}

bool osl_Lines::Stream::readLine(UT_ScratchBuffer &line)
{
    line.clear();
    if (myNext >= myText.size())
        return false;
    const size_t newline = std::min(myText.find('\n', myNext), myText.size());
    size_t end = newline;
    if (end > myNext && myText[end - 1] == '\r')
        --end;
    const std::string_view text(myText.data() + myNext, end - myNext);
    myNext = newline + 1;
    const size_t first = text.find_first_not_of(" \t");
    const bool isDirective = first != std::string_view::npos && text[first] == '#' && !isInBlock;
    if (!isInDirective && !isDirective) {
        isInBlock = endsInComment(text, isInBlock);
        line.append(text.data(), static_cast<int>(text.size()));
        return true;
    }
    std::string directive(text);
    closeComments(directive);
    isInDirective = !directive.empty() && directive.back() == '\\';
    line.append(directive.data(), static_cast<int>(directive.size()));
    return true;
}

// A comment is a blank, over however many lines of a directive it goes.
void osl_Lines::Stream::closeComments(std::string &line)
{
    bool isQuoted = false;
    std::string kept;
    for (size_t at = 0; at < line.size(); ++at) {
        if (isInComment) {
            const size_t close = line.find("*/", at);
            isInComment = close == std::string::npos;
            if (isInComment)
                break;
            at = close + 1;
        } else if (!isQuoted && line.compare(at, 2, "/*") == 0) {
            isInComment = true;
            kept += ' ';
            ++at;
        } else if (!isQuoted && line.compare(at, 2, "//") == 0) {
            kept.append(line, at, std::string::npos);
            break;
        } else {
            if (line[at] == '\\' && at + 1 < line.size())
                kept += line[at++];
            else if (line[at] == '"')
                isQuoted = !isQuoted;
            kept += line[at];
        }
    }
    line = kept + (isInComment ? "\\" : "");
}

osl_Lines::osl_Lines(osl_Messages &messages) : myMessages(messages), myManager(new Manager)
{
    myManager->keepMacros();
}

osl_Lines::~osl_Lines() = default;

void osl_Lines::addIncludePath(const std::string &folder)
{
    myManager->addIncludePath(folder.c_str());
}

void osl_Lines::define(const std::string &definition)
{
    UT_String ignored;
    myManager->defineMacro(definition.c_str(), ignored, true);
}

void osl_Lines::setFileRule(osl_FileRule rule)
{
    myManager->mayRead = std::move(rule);
}

void osl_Lines::setConditionRule(std::function<int(std::string_view)> rule)
{
    myManager->condition = std::move(rule);
}

bool osl_Lines::openFile(const std::string &path)
{
    myPlace = {myMessages.fileNumber(path), 1};
    return myManager->openFile(("\"" + path + "\"").c_str(), false);
}

void osl_Lines::openText(const std::string &text, const std::string &name)
{
    myPlace = {myMessages.fileNumber(name), 1};
    myManager->sourceText = text;
    myManager->sourceName = name;
    static_cast<void>(myManager->openFile(("\"" + name + "\"").c_str(), false));
}

void osl_Lines::markOnce(int file)
{
    myManager->onceFiles.insert(myMessages.fileName(file));
}

// # 12 "file"
bool osl_Lines::takeMarker(const char *text)
{
    if (text[0] != '#' || text[1] != ' ' || text[2] < '0' || text[2] > '9')
        return false;
    char *rest;
    myPlace.line = static_cast<int>(std::strtol(text + 2, &rest, 10));
    const char *name = std::strchr(rest, '"');
    const char *end = std::strrchr(rest, '"');
    if (name != nullptr && end > name)
        myPlace.file = myMessages.fileNumber({name + 1, static_cast<size_t>(end - name - 1)});
    return true;
}

// # error cpp error: "file":12 message
void osl_Lines::takeDiagnostic(const char *text)
{
    std::string message(text);
    while (!message.empty() && message.back() == '\n')
        message.pop_back();
    const size_t quote = message.find("\":");
    const size_t blank = quote == std::string::npos ? quote : message.find(' ', quote);
    if (blank != std::string::npos)
        message.erase(0, blank + 1);
    myMessages.error(myPlace, message);
}

bool osl_Lines::next(std::string_view &line, osl_Place &place)
{
    const char *text;
    int length;
    while (myManager->getLines(text, length)) {
        if (takeMarker(text))
            continue;
        const std::string_view all(text, static_cast<size_t>(length));
        if (all.substr(0, 14) == "# error cpp er") {
            takeDiagnostic(text);
        } else if (all.substr(0, 14) == "# warning cpp ") {
            continue;
        } else {
            place = myPlace;
            ++myPlace.line;
            line = all.substr(0, all.find('\n'));
            if (line.find_first_not_of(" \t\r\f\v") != std::string_view::npos)
                return true;
        }
    }
    return false;
}
