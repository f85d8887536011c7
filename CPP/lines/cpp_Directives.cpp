// Stage "direct": the lines that start with '#'.
#include "CPP/CPP_Manager.h"

#include "CPP/cpp_Reports.h"
#include "CPP/cpp_Text.h"
#include "CPP/files/cpp_OpenedFiles.h"
#include "CPP/lines/cpp_DirectiveWords.h"
#include "CPP/lines/cpp_OutputLines.h"
#include "CPP/macros/cpp_Condition.h"
#include "UT/UT_Environment.h"
#include "UT/UT_ExpandVariables.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace
{
constexpr size_t MAX_WORD = 31;

// Each open include file holds a descriptor, and a file that includes itself
// twice would never end.
constexpr unsigned MAX_INCLUDE_DEPTH = 200;

// The first word of `text`, cut at `most` characters.
std::string_view firstWord(const char *text, size_t most)
{
    size_t length = 0;
    while (length < most && text[length] != '\0' && !UTisSpace(text[length]))
        ++length;
    return {text, length};
}

bool applies(const cpp_DirectiveWord &word, bool isSkipping, bool hashComments)
{
    switch (word.where) {
    case cpp_DirectiveWord::EVERYWHERE:
        return true;
    case cpp_DirectiveWord::IN_TEXT:
        return !isSkipping;
    default:
        return !isSkipping && !hashComments;
    }
}

const char *lookUpIncludeName(const char *name, void *)
{
    return std::strcmp(name, "__VVERSION__") == 0 ? CPP_Manager::VERSION : UTgetenv(name);
}
} // namespace

// A directive line that is obeyed, and what each word does with it.
class CPP_Manager::Directive
{
public:
    // `line` is the text from the directive's word on, `argument` that behind it and white
    // space, both with the newline. `result` is the output line, "\n" unless it is replaced.
    Directive(CPP_Manager &manager, const char *line, const char *argument, UT_String &result)
        : myManager(manager), myFile(*manager.currentFile()), myLine(line), myArgument(argument),
          myResult(result)
    {
        // It stays until the directive is done, whatever is pushed or popped.
        myFile.addReference();
    }
    ~Directive() { myFile.release(); }
    Directive(const Directive &) = delete;
    Directive &operator=(const Directive &) = delete;

    void apply(cpp_DirectiveNumber number);

private:
    struct Row {
        cpp_DirectiveNumber number;
        void (Directive::*apply)();
    };
    static const Row ROWS[];

    void doDefine();
    void doUndef();
    void doIf();
    void doIfdef() { pushName(true); }
    void doIfndef() { pushName(false); }
    void doElif();
    void doElse() { myFile.elseCondition(); }
    void doEndif() { myFile.popCondition(); }
    void doInclude();
    void doSilentInclude();
    void doLine();
    void doPassThrough();

    void pushName(bool isWanted);
    bool include(UT_String &name);
    void fail(const char *message) { myManager.diagnose(myResult, CPP_ERROR, "%s", message); }

    CPP_Manager &myManager;
    CPP_File &myFile;
    const char *myLine;
    const char *myArgument;
    UT_String &myResult;
};

constexpr CPP_Manager::Directive::Row CPP_Manager::Directive::ROWS[] = {
    {CPP_DEFINE, &Directive::doDefine},     {CPP_ELIF, &Directive::doElif},
    {CPP_ENDIF, &Directive::doEndif},       {CPP_IF, &Directive::doIf},
    {CPP_IFDEF, &Directive::doIfdef},       {CPP_IFNDEF, &Directive::doIfndef},
    {CPP_ELSE, &Directive::doElse},         {CPP_UNDEF, &Directive::doUndef},
    {CPP_INCLUDE, &Directive::doInclude},   {CPP_SINCLUDE, &Directive::doSilentInclude},
    {CPP_LINE, &Directive::doLine},         {CPP_PRAGMA, &Directive::doPassThrough},
    {CPP_IDENT, &Directive::doPassThrough},
};

void CPP_Manager::Directive::apply(cpp_DirectiveNumber number)
{
    static_assert(cpp_isInOrder(ROWS), "a row stands at its number");
    (this->*ROWS[number].apply)();
}

// The first word of the argument, whether or not it is a good name.
void CPP_Manager::Directive::pushName(bool isWanted)
{
    const bool isMacro = myManager.myMacros.holds(firstWord(myArgument, CPP_MOST_TESTED));
    myFile.pushCondition(isMacro == isWanted ? CPP_File::TAKING : CPP_File::NOT_YET);
}

void CPP_Manager::Directive::doIf()
{
    const int value = myFile.isSkipping() ? static_cast<int>(CPP_File::DONE)
                                          : myManager.conditionValue(myArgument);
    if (value < 0)
        fail("#if syntax error");
    else
        myFile.pushCondition(value); // 0, 1 and 2 are the states' numbers
}

void CPP_Manager::Directive::doElif()
{
    const int value = myManager.conditionValue(myArgument);
    if (value < 0)
        fail("#elif syntax error");
    else
        myFile.elifCondition(value);
}

void CPP_Manager::Directive::doDefine()
{
    myManager.myReports->setPlace(myArgument);
    myManager.defineMacro(myArgument, myResult, false);
    if (myManager.hasFlag(KEEP_MACROS))
        doPassThrough();
    else
        myManager.myReports->definition(myFile, myArgument);
}

void CPP_Manager::Directive::doUndef()
{
    myManager.undefineMacro(myArgument, myResult);
    if (myManager.hasFlag(KEEP_MACROS))
        doPassThrough();
}

// False, and `name` for the message, when the file cannot be opened.
bool CPP_Manager::Directive::include(UT_String &name)
{
    if (myManager.hasFlag(EXPAND_INCLUDE_NAMES)) {
        UT_ScratchBuffer expanded;
        UTexpandVariables(expanded, myArgument, lookUpIncludeName, nullptr, true, true);
        expanded.copyToString(name);
    } else {
        name.assignCopy(myArgument);
    }
    bool isAngled;
    const UT_String wanted = bareIncludeName(name, myManager.hasFlag(OLD_STYLE_INCLUDE), isAngled);
    const bool isTooDeep = myManager.myFiles.entries() >= MAX_INCLUDE_DEPTH;
    if (!isTooDeep && myManager.findAndPush(wanted, isAngled))
        return true;
    if (!isTooDeep && errno != EMFILE) // the user may allow fewer descriptors
        return false;
    fail("Include nesting limit reached");
    myManager.stop();
    return true;
}

void CPP_Manager::Directive::doInclude()
{
    UT_String name;
    if (include(name))
        return;
    // Unlike other diagnostics this one has no newline of its own.
    name.changeSuffix("\n", "");
    myManager.myReports->setPlace(myArgument);
    myManager.diagnose(myResult, CPP_ERROR, "Unable to include %s", name.text());
}

// A file that cannot be there is no fault; one that nests without end still is.
void CPP_Manager::Directive::doSilentInclude()
{
    UT_String name;
    include(name);
}

void CPP_Manager::Directive::doLine()
{
    // An open quote goes on to the line's end, but not over it.
    const size_t length = std::strcspn(myArgument, "\n");
    UT_String argument(myArgument, true, static_cast<int>(length));
    char *words[3];
    const int count = argument.splitWordsInto(words, 3);
    // The next line read counts one more.
    if (count > 0)
        myFile.setLineNumber(UT_String(words[0]).toInt());
    if (count > 1)
        myFile.setName(words[1]);
    if (!myManager.hasFlag(LINE_MARKERS))
        return;
    UT_ScratchBuffer marker;
    makeMarker(marker, myFile.getLineNumber(), myFile.getName());
    marker.copyToString(myResult);
}

void CPP_Manager::Directive::doPassThrough()
{
    const bool isOnce = myManager.honoursOnce && firstWord(myLine, MAX_WORD) == "pragma" &&
                        firstWord(myArgument, MAX_WORD) == "once";
    if (isOnce)
        myManager.myOpened->keepOnce(myFile.getPath());
    else
        myResult.sprintf("#%s", myLine);
}

int CPP_Manager::conditionValue(const char *text)
{
    cpp_ConditionFault fault;
    const int value = evaluateCondition(myMacros, text, &fault);
    myReports->condition(*currentFile(), fault);
    return value;
}

// `text` is what follows the '#'.
void CPP_Manager::processDirective(const char *text, UT_String &result)
{
    result = "\n";
    const bool hashComments = hasFlag(HASH_COMMENTS);
    if (hashComments && UTisSpace(*text))
        return;
    text = skipSpace(text);
    const std::string_view word = firstWord(text, MAX_WORD);
    const char *argument = skipSpace(text + word.size());
    myReports->setPlace(text);

    CPP_File &file = *currentFile();
    const bool isSkipping = file.isSkipping();
    const cpp_DirectiveWord *known = findDirective(word);
    if (known != nullptr && applies(*known, isSkipping, hashComments)) {
        Directive(*this, text, argument, result).apply(known->number);
        myReports->setPlace(nullptr);
        return;
    }
    const bool isKept = hasFlag(KEEP_MACROS);
    if (!hashComments && !isKept)
        myReports->unknownWord(file, word, text);
    if (!isSkipping && isKept)
        result.sprintf("#%s", text);
    else if (!isSkipping && !hashComments)
        diagnose(result, CPP_ERROR, "Undefined directive \"%s\"\n", std::string(word).c_str());
}
