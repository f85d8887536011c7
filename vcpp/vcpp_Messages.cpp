#include "vcpp/vcpp_Messages.h"

#include "UT/UT_OptionTable.h"
#include "UT/UT_Process.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace
{
constexpr int LONGEST_SOURCE = 200; // characters of a line that are shown

// The line from where its place is on it, and the caret below. Tabs keep their width.
std::string excerpt(const CPP_Message &message)
{
    const auto column = static_cast<size_t>(message.column);
    if (column == 0 || column > message.source.size() + 1)
        return "";
    const size_t first = column > LONGEST_SOURCE ? column - LONGEST_SOURCE / 2 : 0;
    const std::string line = message.source.substr(first, LONGEST_SOURCE);
    std::string caret = line.substr(0, column - 1 - first);
    std::replace_if(
        caret.begin(), caret.end(), [](char c) { return c != '\t'; }, ' ');
    return line + '\n' + caret + "^\n";
}

std::string place(const CPP_Message &message)
{
    std::string text = message.file + ":";
    if (message.line > 0)
        text += std::to_string(message.line) + ":";
    return message.column > 0 ? text + std::to_string(message.column) + ":" : text;
}
} // namespace

void vcpp_Messages::print(std::string line)
{
    UTmakePrintable(line.data(), line.size());
    myText += line + '\n';
}

// Behind the text in front of it where both go to one place.
void vcpp_Messages::flush()
{
    if (myText.empty())
        return;
    std::fflush(stdout);
    std::fputs(myText.c_str(), stderr);
    myText.clear();
}

void vcpp_Messages::showDiagnostic(std::string line)
{
    if (isSilent && line.compare(0, 9, "# warning") == 0)
        return;
    line.erase(line.find_last_not_of('\n') + 1);
    const std::string messages = std::move(myText);
    myText.clear();
    print(line);
    myText += messages;
}

bool vcpp_Messages::select(const std::string &word)
{
    const bool isOn = word.compare(0, 3, "no-") != 0;
    const std::string name = isOn ? word : word.substr(3);
    if (name == "error") {
        areErrors = isOn;
        return true;
    }
    const auto isNamed = [&name](const CPP_WarningRow &row) { return name == row.name; };
    if (std::none_of(std::begin(CPP_WARNINGS), std::end(CPP_WARNINGS), isNamed))
        return false;
    isOn ? static_cast<void>(myUnwanted.erase(name)) : static_cast<void>(myUnwanted.insert(name));
    return true;
}

void vcpp_Messages::show(const CPP_Message &message)
{
    if (!message.isError && (isSilent || myUnwanted.count(message.name) > 0))
        return;
    const bool isError = message.isError || areErrors;
    isFailed = isFailed || isError;
    std::string text = place(message) + (isError ? " error: " : " warning: ") + message.text;
    if (!message.isError)
        text += std::string(" [-W") + message.name + "]";
    print(text);
    const std::string lines = excerpt(message);
    for (size_t i = 0, end; i < lines.size(); i = end + 1) {
        end = lines.find('\n', i);
        print(lines.substr(i, end - i));
    }
    if (!message.hint.empty())
        print("hint: " + message.hint);
}

std::string vcpp_Messages::list()
{
    std::string text;
    for (const CPP_WarningRow &row : CPP_WARNINGS)
        text += UThelpLine(std::string("  ") + row.name, row.what, HELP_COLUMN);
    return text;
}
