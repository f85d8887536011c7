// The tokens of a source, with its macros expanded as C does it.
//
// Lines come from osl_Lines. A "#define" among them makes a macro from there on;
// a name that is being expanded is not expanded again inside its own replacement
// (C17 6.10.3.4). What a source may cost is bounded: it ends with an error
// when it has too many tokens.
#pragma once

#include "osl/text/osl_Lines.h"
#include "osl/text/osl_Token.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

class osl_Preprocessor
{
public:
    osl_Preprocessor(osl_Lines &lines, osl_Messages &messages);

    // A definition as on a command line, "NAME" or "NAME=VALUE".
    void define(const std::string &definition);

    // All tokens; the last one is END. They refer to texts of this object.
    std::vector<osl_Token> takeAll();

private:
    using Tokens = std::vector<osl_Token>;

    struct Macro {
        bool isDefined = true;
        bool isFunction = false;
        bool isVariadic = false;
        bool isActive = false; // being expanded
        std::vector<std::string_view> parameters;
        Tokens body;
    };

    // A replacement that is being read.
    struct Frame {
        Tokens tokens;
        size_t next = 0;
        Macro *macro = nullptr; // active until the frame ends
    };

    static constexpr size_t MAX_TOKENS = 1000000;
    static constexpr size_t MAX_BYTES = size_t(48) << 20; // of the texts of all tokens
    static constexpr size_t MAX_FRAMES = 400;
    static constexpr int MAX_ARGUMENT_DEPTH = 60;

    // Lines and directives
    bool fetchLine();
    void doDirective(const Tokens &line, std::string_view text);
    void doDefine(const Tokens &line);
    void doPragma(const Tokens &line, std::string_view text);
    int conditionValue(std::string_view text);

    // Expansion
    bool takeRaw(osl_Token &token); // unexpanded, from the frames, then the lines
    void freeze(osl_Token &token);
    bool peekIsParenthesis();
    void popFrame();
    bool expand(const osl_Token &name);
    bool expandBuiltin(const osl_Token &name);
    bool takeArguments(const Macro &macro, std::vector<Tokens> &arguments);
    Tokens substitute(const Macro &macro, const std::vector<Tokens> &arguments, osl_Place place);
    void paste(Tokens &out, const osl_Token &right);
    osl_Token stringify(const Tokens &tokens, const osl_Token &like);
    Tokens expandArgument(const Tokens &tokens);
    void drain(Tokens &out);
    std::string_view keep(std::string text);
    void giveUp(); // there is too much of it
    static int parameterIndex(const Macro &macro, const osl_Token &token);

    osl_Lines &myLines;
    osl_Messages &myMessages;
    std::deque<std::string> myTexts;
    std::unordered_map<std::string_view, Macro> myMacros;
    std::vector<Frame> myFrames;
    size_t myFloor = 0; // frames below are not ours to read while an argument is expanded
    Tokens myLine;
    size_t myNext = 0;
    osl_Place myPlace;
    size_t mySteps = 0;
    size_t myBytes = 0;
    int myDepth = 0;
    bool isEnd = false;
    bool hasGivenUp = false;
};
