#include "osl/text/osl_Preprocessor.h"

#include "osl/text/osl_Condition.h"
#include "osl/text/osl_Lexer.h"

#include <algorithm>

osl_Preprocessor::osl_Preprocessor(osl_Lines &lines, osl_Messages &messages)
    : myLines(lines), myMessages(messages)
{
    myLines.setConditionRule([this](std::string_view text) { return conditionValue(text); });
}

std::string_view osl_Preprocessor::keep(std::string text)
{
    myBytes += text.size();
    if (myBytes > MAX_BYTES)
        giveUp();
    myTexts.push_back(std::move(text));
    return myTexts.back();
}

void osl_Preprocessor::giveUp()
{
    if (!isEnd)
        myMessages.error(myPlace, "too much text");
    isEnd = hasGivenUp = true;
}

// ---- Lines and directives -------------------------------------------------

// The next line of text into myLine; directives on the way are done.
bool osl_Preprocessor::fetchLine()
{
    std::string_view text;
    while (!isEnd && myLines.next(text, myPlace)) {
        myLine.clear();
        myNext = 0;
        text = keep(std::string(text));
        osl_appendTokens(text, myPlace, myLine);
        if (myLine.empty())
            continue;
        myLine[0].hasSpace = true; // the line's end in front of it
        if (!myLine[0].is(osl_punct("#")))
            return true;
        const Tokens line = std::move(myLine);
        myLine.clear();
        doDirective(line, text);
    }
    isEnd = true;
    return false;
}

void osl_Preprocessor::doDirective(const Tokens &line, std::string_view text)
{
    if (line.size() < 2)
        return;
    const std::string_view word = line[1].text;
    if (word == "define")
        doDefine(line);
    else if (word == "undef" && line.size() > 2)
        myMacros[line[2].text].isDefined = false; // it may be under expansion
    else if (word == "pragma")
        doPragma(line, text);
    else if (word == "error")
        myMessages.error(myPlace, text.substr(text.find("error") + 5));
    else if (word == "warning")
        myMessages.warning(myPlace, text.substr(text.find("warning") + 7));
    else if (word != "ident" && line[1].kind != osl_Token::NUMBER)
        myMessages.error(myPlace, "invalid preprocessing directive");
}

// "defined" is answered before names are expanded.
int osl_Preprocessor::conditionValue(std::string_view text)
{
    Tokens line;
    osl_appendTokens(keep(std::string(text)), myPlace, line);
    Tokens answered;
    for (size_t i = 0; i < line.size(); ++i) {
        answered.push_back(line[i]);
        if (!line[i].isName("defined"))
            continue;
        const bool isBracketed =
            i + 3 < line.size() && line[i + 1].is(osl_punct("(")) && line[i + 3].is(osl_punct(")"));
        const size_t named = i + (isBracketed ? 2 : 1);
        if (named >= line.size() || line[named].kind != osl_Token::NAME)
            return -1;
        const auto found = myMacros.find(line[named].text);
        const bool isDefined = found != myMacros.end() && found->second.isDefined;
        answered.back().kind = osl_Token::NUMBER;
        answered.back().text = isDefined ? "1" : "0";
        i = named + (isBracketed ? 1 : 0);
    }
    return osl_Condition(expandArgument(answered)).value();
}

void osl_Preprocessor::doDefine(const Tokens &line)
{
    if (line.size() < 3 || line[2].kind != osl_Token::NAME) {
        myMessages.error(myPlace, "macro name missing");
        return;
    }
    Macro macro;
    size_t at = 3;
    if (at < line.size() && line[at].is(osl_punct("(")) && !line[at].hasSpace) {
        macro.isFunction = true;
        for (++at; at < line.size() && !line[at].is(osl_punct(")")); ++at) {
            if (line[at].is(osl_punct("..."))) {
                macro.isVariadic = true;
                macro.parameters.emplace_back("__VA_ARGS__");
            } else if (line[at].kind == osl_Token::NAME) {
                macro.parameters.push_back(line[at].text);
            }
        }
        ++at;
    }
    if (at < line.size())
        macro.body.assign(line.begin() + static_cast<std::ptrdiff_t>(at), line.end());
    myMacros[line[2].text] = std::move(macro);
}

void osl_Preprocessor::define(const std::string &definition)
{
    const size_t sign = definition.find('=');
    std::string text = "#define " + definition;
    if (sign == std::string::npos)
        text += " 1";
    else
        text[8 + sign] = ' ';
    Tokens line;
    osl_appendTokens(keep(std::move(text)), {}, line);
    doDefine(line);
}

void osl_Preprocessor::doPragma(const Tokens &line, std::string_view text)
{
    if (line.size() < 3)
        return;
    const std::string_view word = line[2].text;
    if (word == "once") {
        myLines.markOnce(myPlace.file);
    } else if (word == "osl") {
        if (line.size() > 3 && line[3].text == "nowarn")
            myMessages.ignoreWarnings({myPlace.file, myPlace.line + 1});
        else
            myMessages.warning(myPlace, "Unknown pragma '" +
                                            std::string(line.size() > 3 ? line[3].text : "") + "'");
    } else if (word == "error" || word == "warning") {
        std::string_view message = text.substr(text.find(word, text.find("pragma")) + word.size());
        const size_t first = message.find('"');
        const size_t last = message.rfind('"');
        if (last != std::string_view::npos && last > first)
            message = message.substr(first + 1, last - first - 1);
        if (word == "error")
            myMessages.error(myPlace, message);
        else
            myMessages.warning(myPlace, message);
    }
}

// ---- Expansion ------------------------------------------------------------

void osl_Preprocessor::popFrame()
{
    if (myFrames.back().macro != nullptr)
        myFrames.back().macro->isActive = false;
    myFrames.pop_back();
}

// A macro's name inside its own replacement stays a name for good.
void osl_Preprocessor::freeze(osl_Token &token)
{
    if (token.kind != osl_Token::NAME)
        return;
    const auto found = myMacros.find(token.text);
    token.isFrozen = token.isFrozen || (found != myMacros.end() && found->second.isActive);
}

bool osl_Preprocessor::takeRaw(osl_Token &token)
{
    if (++mySteps > MAX_TOKENS * 4)
        giveUp();
    while (!isEnd && myFrames.size() > myFloor) {
        Frame &frame = myFrames.back();
        if (frame.next < frame.tokens.size()) {
            token = frame.tokens[frame.next++];
            freeze(token);
            return true;
        }
        popFrame();
    }
    if (myFloor > 0 || isEnd)
        return false;
    if (myNext >= myLine.size() && !fetchLine())
        return false;
    token = myLine[myNext++];
    return true;
}

// Whether the next token opens an argument list; frames that are read up end here.
bool osl_Preprocessor::peekIsParenthesis()
{
    while (myFrames.size() > myFloor) {
        const Frame &frame = myFrames.back();
        if (frame.next < frame.tokens.size())
            return frame.tokens[frame.next].is(osl_punct("("));
        popFrame();
    }
    if (myFloor > 0 || isEnd)
        return false;
    if (myNext >= myLine.size() && !fetchLine())
        return false;
    return myLine[myNext].is(osl_punct("("));
}

int osl_Preprocessor::parameterIndex(const Macro &macro, const osl_Token &token)
{
    if (token.kind != osl_Token::NAME)
        return -1;
    const auto found = std::find(macro.parameters.begin(), macro.parameters.end(), token.text);
    return found == macro.parameters.end() ? -1
                                           : static_cast<int>(found - macro.parameters.begin());
}

// Behind the macro's name: the arguments between parentheses, unexpanded.
bool osl_Preprocessor::takeArguments(const Macro &macro, std::vector<Tokens> &arguments)
{
    osl_Token token;
    int depth = 0;
    arguments.assign(1, {});
    const osl_Place place = myPlace;
    while (takeRaw(token)) {
        if (token.is(osl_punct("(")) && depth++ == 0)
            continue;
        if (token.is(osl_punct(")")) && --depth == 0)
            return true;
        const bool isRest = macro.isVariadic && arguments.size() >= macro.parameters.size();
        if (token.is(osl_punct(",")) && depth == 1 && !isRest)
            arguments.emplace_back();
        else
            arguments.back().push_back(token);
    }
    myMessages.error(place, "unterminated argument list of a macro");
    return false;
}

osl_Token osl_Preprocessor::stringify(const Tokens &tokens, const osl_Token &like)
{
    std::string text = "\"";
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (i > 0 && tokens[i].hasSpace)
            text += ' ';
        for (const char c : tokens[i].text) {
            if (tokens[i].kind == osl_Token::STRING && (c == '"' || c == '\\'))
                text += '\\';
            text += c;
        }
    }
    osl_Token result = like;
    result.kind = osl_Token::STRING;
    result.text = keep(text + "\"");
    return result;
}

// Joins `right` to the last token.
void osl_Preprocessor::paste(Tokens &out, const osl_Token &right)
{
    if (out.empty()) {
        out.push_back(right);
        return;
    }
    const osl_Token left = out.back();
    out.pop_back();
    const size_t first = out.size();
    osl_appendTokens(keep(std::string(left.text) + std::string(right.text)), left.place, out);
    if (first < out.size())
        out[first].hasSpace = left.hasSpace;
}

osl_Preprocessor::Tokens osl_Preprocessor::substitute(const Macro &macro,
                                                      const std::vector<Tokens> &arguments,
                                                      osl_Place place)
{
    Tokens out;
    const Tokens &body = macro.body;
    std::vector<Tokens> expanded(arguments.size());
    std::vector<bool> isExpanded(arguments.size());
    for (size_t i = 0; i < body.size() && out.size() < MAX_TOKENS; ++i) {
        const bool isHash = macro.isFunction && body[i].is(osl_punct("#"));
        const int named = isHash && i + 1 < body.size() ? parameterIndex(macro, body[i + 1]) : -1;
        if (named >= 0) {
            out.push_back(stringify(arguments[static_cast<size_t>(named)], body[i]));
            ++i;
            continue;
        }
        const bool pastes = body[i].is(osl_punct("##")) && i + 1 < body.size();
        const osl_Token &token = pastes ? body[++i] : body[i];
        const int parameter = parameterIndex(macro, token);
        if (parameter < 0) {
            if (pastes)
                paste(out, token);
            else
                out.push_back(token);
            continue;
        }
        const auto index = static_cast<size_t>(parameter);
        const bool isPasted = pastes || (i + 1 < body.size() && body[i + 1].is(osl_punct("##")));
        if (!isPasted && !isExpanded[index]) {
            expanded[index] = expandArgument(arguments[index]);
            isExpanded[index] = true;
        }
        const Tokens &tokens = isPasted ? arguments[index] : expanded[index];
        // ", ## __VA_ARGS__" without further arguments drops the comma, as everywhere.
        if (pastes && tokens.empty() && macro.isVariadic && index + 1 == macro.parameters.size() &&
            !out.empty() && out.back().is(osl_punct(",")))
            out.pop_back();
        const size_t first = out.size();
        for (size_t k = 0; k < tokens.size(); ++k) {
            if (k == 0 && pastes && !(out.size() > 0 && out.back().is(osl_punct(","))))
                paste(out, tokens[k]);
            else
                out.push_back(tokens[k]);
        }
        if (first < out.size() && !pastes)
            out[first].hasSpace = token.hasSpace;
    }
    for (osl_Token &token : out)
        token.place = place;
    return out;
}

// An argument by itself, as if nothing stood behind it.
osl_Preprocessor::Tokens osl_Preprocessor::expandArgument(const Tokens &tokens)
{
    if (std::none_of(tokens.begin(), tokens.end(), [](const osl_Token &token) {
            return token.kind == osl_Token::NAME && !token.isFrozen;
        }))
        return tokens;
    if (myDepth >= MAX_ARGUMENT_DEPTH) {
        myMessages.error(myPlace, "macro arguments nest too deeply");
        isEnd = true;
        return {};
    }
    ++myDepth;
    const size_t callersFloor = myFloor;
    myFloor = myFrames.size();
    const size_t floor = myFloor;
    // A floor of 0 would mean the source itself.
    if (floor == 0) {
        myFrames.push_back({});
        myFloor = 1;
    }
    myFrames.push_back({tokens, 0, nullptr});
    Tokens out;
    drain(out);
    while (myFrames.size() > floor)
        popFrame();
    myFloor = callersFloor;
    --myDepth;
    return out;
}

void osl_Preprocessor::drain(Tokens &out)
{
    osl_Token token;
    while (out.size() < MAX_TOKENS && takeRaw(token)) {
        if (token.kind != osl_Token::NAME || token.isFrozen || !expand(token))
            out.push_back(token);
    }
}

bool osl_Preprocessor::expandBuiltin(const osl_Token &name)
{
    osl_Token token = name;
    if (name.text == "__LINE__") {
        token.kind = osl_Token::NUMBER;
        token.text = keep(std::to_string(name.place.line));
    } else if (name.text == "__FILE__") {
        token.kind = osl_Token::STRING;
        token.text = keep('"' + myMessages.fileName(name.place.file) + '"');
    } else {
        return false;
    }
    myFrames.push_back({{token}, 0, nullptr});
    return true;
}

// Puts the replacement of a macro in front of what comes next.
bool osl_Preprocessor::expand(const osl_Token &name)
{
    const auto found = myMacros.find(name.text);
    if (found == myMacros.end() || !found->second.isDefined)
        return name.text[0] == '_' && expandBuiltin(name);
    Macro &macro = found->second;
    if (macro.isActive || isEnd)
        return false;
    std::vector<Tokens> arguments;
    if (macro.isFunction) {
        if (!peekIsParenthesis() || !takeArguments(macro, arguments))
            return false;
        if (macro.isVariadic && arguments.size() + 1 == macro.parameters.size())
            arguments.emplace_back();
        const bool isEmptyCall = macro.parameters.empty() && arguments[0].empty();
        if (!isEmptyCall && arguments.size() != macro.parameters.size()) {
            myMessages.error(name.place, "macro \"" + std::string(name.text) + "\" takes " +
                                             std::to_string(macro.parameters.size()) +
                                             " arguments");
            return true;
        }
    }
    if (myFrames.size() >= MAX_FRAMES) {
        myMessages.error(name.place, "macros nest too deeply");
        isEnd = true;
        return false;
    }
    Tokens replacement = substitute(macro, arguments, name.place);
    if (!replacement.empty())
        replacement[0].hasSpace = name.hasSpace;
    macro.isActive = true;
    myFrames.push_back({std::move(replacement), 0, &macro});
    return true;
}

std::vector<osl_Token> osl_Preprocessor::takeAll()
{
    Tokens out;
    drain(out);
    if (out.size() >= MAX_TOKENS)
        giveUp();
    if (hasGivenUp)
        out.clear(); // half of it would only give errors of its own
    osl_Token end;
    end.place = myPlace;
    out.push_back(end);
    return out;
}
