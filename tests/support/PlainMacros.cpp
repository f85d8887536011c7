#include "tests/support/PlainMacros.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace
{
// A quoted run, where escaped characters come in pairs; at most one starts here.
const char *const RUN = "\"([^\"\\\\]|\\\\[\\s\\S])*\"|'([^'\\\\]|\\\\[\\s\\S])*'";

bool startsRun(const PlainScanner &in)
{
    return (in.next() == '"' || in.next() == '\'') && (in.at == 0 || in.text[in.at - 1] != '\\');
}

std::vector<std::string> takeNames(PlainScanner &in)
{
    std::vector<std::string> names;
    for (in.take("\\s*"); !in.isAtEnd() && (in.next() != ')' || !names.empty());
         in.take("\\s*,?\\s*")) {
        names.push_back(in.take("[^,)\\s]*"));
        if (in.took("\\s*\\)"))
            return names;
    }
    in.take("\\)?");
    return names;
}

std::string compiled(const std::string &text, const std::vector<std::string> &names)
{
    std::string body;
    for (PlainScanner in{text}; !in.isAtEnd();) {
        body += in.take("\"(\\\\\"|[^\"])*\"?|[^\"#A-Za-z_]+");
        const std::string hashes = in.take("#*");
        const std::string word = in.take(hashes.empty() ? "[A-Za-z_]\\w*" : "\\w*");
        const auto name = std::find(names.begin(), names.end(), word);
        const std::string mark = "#" + std::to_string(name - names.begin()) + "#";
        if (word.empty() || name == names.end())
            body += hashes + word;
        else
            body += (hashes == "#" ? '"' + mark + '"' : mark) + (in.take("##?") == "#" ? " " : "");
    }
    return body;
}

std::string filledIn(const std::string &body, const std::vector<std::string> &arguments)
{
    std::string all;
    for (PlainScanner in{body}; !in.isAtEnd();) {
        const std::string mark = in.take("#\\d+#");
        const size_t index = mark.empty() ? SIZE_MAX : std::strtoul(&mark[1], nullptr, 10);
        in.at -= index < arguments.size() ? 0 : mark.size();
        all += index < arguments.size() ? arguments[index] : in.text.substr(in.at++, 1);
    }
    return all;
}
} // namespace

bool PlainMacros::define(const std::string &text, bool commandLineForm)
{
    static const std::regex spaceAtTheEnd("\\s+$");
    PlainScanner in{text};
    in.take("\\s*");
    const std::string name =
        in.take(commandLineForm ? "[A-Za-z_]\\w*(?=[(=\\s]|$)" : "[A-Za-z_]\\w*(?=[(\\s]|$)");
    if (name.empty())
        return false;
    in.take(commandLineForm ? "=?" : "");
    Macro macro;
    if (in.took("\\(")) {
        const std::vector<std::string> names = takeNames(in);
        macro.numArgs = static_cast<int>(names.size());
        in.take("[^\\S\\n]*");
        macro.body = compiled(in.take("[^\\n]*"), names);
    } else {
        in.take("\\s*");
        macro.body = in.take("[\\s\\S]*?(?=[\\r\\n]*$)");
    }
    macro.body = std::regex_replace(macro.body, spaceAtTheEnd, " ");

    const Macro *old = find(name);
    const bool warns = old != nullptr &&
                       (old->isBuiltin || old->numArgs != macro.numArgs || old->body != macro.body);
    myMacros[name] = macro;
    return warns;
}

const PlainMacros::Macro *PlainMacros::find(const std::string &name) const
{
    return myMacros.count(name) > 0 ? &myMacros.at(name) : nullptr;
}

bool PlainMacros::expand(const std::string &text, int depthLeft, std::string &result)
{
    const auto fail = [&](const std::string &message) { return result = message, false; };
    for (PlainScanner in{text}; !in.isAtEnd();) {
        if (startsRun(in)) {
            const std::string run = in.take(RUN);
            if (run.empty())
                return fail("Mismatched quotation marks");
            result += run;
            continue;
        }
        const std::string word = in.take("[A-Za-z_]\\w*");
        if (word.empty()) {
            in.take("\\\\(?=[^A-Za-z_])");
            result += in.text[in.at++];
            continue;
        }
        const Macro *macro = find(word);
        if (macro == nullptr || macro->isBuiltin) {
            result += macro == nullptr     ? word
                      : word == "__FILE__" ? "\"in\""
                                           : std::to_string(lineNumber);
            continue;
        }
        std::vector<std::string> arguments(static_cast<size_t>(std::max(macro->numArgs, 0)));
        if (macro->numArgs >= 0 && !takeArguments(in, arguments))
            return fail("Invalid arguments for macro \"" + word + "\"");
        if (depthLeft - 1 == 0)
            return fail("Macro recursion limit reached");
        std::string inner;
        if (!expand(filledIn(macro->body, arguments), depthLeft - 1, inner))
            return fail(inner);
        result += inner;
    }
    return true;
}

bool PlainMacros::takeLine(PlainScanner &in)
{
    if (furtherLines.empty())
        return false;
    in = {furtherLines.substr(0, furtherLines.find('\n') + 1)};
    furtherLines.erase(0, in.text.size());
    return ++lineNumber > 0;
}

bool PlainMacros::skipSpaceOverLines(PlainScanner &in)
{
    do
        in.take("\\s*");
    while (in.isAtEnd() && takeLine(in));
    return !in.isAtEnd();
}

bool PlainMacros::takeArguments(PlainScanner &in, std::vector<std::string> &arguments)
{
    in.take("\\s*");
    const char *sign = "\\(";
    for (std::string &argument : arguments) {
        if (!in.took(sign) || !skipSpaceOverLines(in) || !takeArgument(in, argument))
            return false;
        sign = ",";
    }
    return (!arguments.empty() || in.took(sign)) && skipSpaceOverLines(in) && in.took("\\)");
}

bool PlainMacros::takeArgument(PlainScanner &in, std::string &argument)
{
    for (int depth = 0; !in.isAtEnd() || takeLine(in);) {
        if (depth == 0 && (in.next() == ',' || in.next() == ')'))
            return !argument.empty() && argument.size() < 8192;
        if (startsRun(in)) {
            const std::string run = in.take(RUN);
            if (run.empty())
                return false;
            argument += run;
        } else if (!in.took("\\\\(?![^,()])")) { // what follows still divides and nests
            in.take("\\\\?");
            const char c = in.text[in.at++];
            depth += (c == '(') - (c == ')');
            argument += c == '\n' ? ' ' : c;
        }
    }
    return false;
}
