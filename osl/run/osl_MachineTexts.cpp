// Operations on texts, and what shaders print.
#include "osl/run/osl_Machine.h"

#include "osl/lib/osl_Hash.h"
#include "osl/lib/osl_Strings.h"

#include <algorithm>
#include <climits>

const osl_Format &osl_Machine::formatOf(int handle)
{
    auto &format = myFormats[handle];
    if (format == nullptr)
        format = std::make_unique<osl_Format>(myTexts[handle]);
    return *format;
}

// The format is o[0], its arguments follow.
std::string osl_Machine::formatted(const osl_Operand *o, int count, int lane)
{
    std::vector<osl_FormatArg> arguments;
    std::deque<std::vector<std::string_view>> views;
    std::deque<std::string> texts;
    for (int i = 1; i < count; ++i) {
        const osl_Type &type = typeOf(o[i]);
        if (type.isFloatBased()) {
            arguments.emplace_back(floats(o[i].at) + lane, o[i].words, myWidth);
        } else if (type.base == osl_Type::INT) {
            arguments.emplace_back(ints(o[i].at) + lane, o[i].words, myWidth);
        } else {
            views.emplace_back();
            for (int word = 0; word < o[i].words; ++word) {
                const int handle = intAt(o[i], lane, word);
                if (type.isClosure)
                    texts.push_back(myClosures.text(handle, myTexts));
                views.back().push_back(type.isClosure ? std::string_view(texts.back())
                                                      : myTexts[handle]);
            }
            arguments.emplace_back(views.back().data(), o[i].words);
        }
    }
    std::string out;
    formatOf(intAt(o[0], lane)).apply(arguments, out);
    return out;
}

// printf, fprintf, error and warning.
void osl_Machine::printText(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        if (in.op == OSL_FPRINTF) {
            report(lane, Event::FILE, formatted(o + 2, in.count - 2, lane));
            auto &events = myEvents[static_cast<size_t>(lane)];
            if (!events.empty())
                events.back().file = textAt(o[1], lane);
            return;
        }
        std::string text = formatted(o + 1, in.count - 1, lane);
        if (in.op == OSL_PRINTF)
            return report(lane, Event::PRINT, std::move(text));
        const bool isError = in.op == OSL_ERROR;
        report(lane, isError ? Event::ERROR : Event::WARNING,
               std::string("Shader ") + (isError ? "error" : "warning") + " [" + myCode.shader +
                   "]: " + text);
    });
}

void osl_Machine::formatText(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setText(o[0], lane, formatted(o + 1, in.count - 1, lane)); });
}

void osl_Machine::concat(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        std::string text;
        for (int i = 1; i < in.count; ++i)
            text += textAt(o[i], lane);
        setText(o[0], lane, text);
    });
}

void osl_Machine::strlen(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in,
             [&](int lane) { setInt(o[0], lane, static_cast<int>(textAt(o[1], lane).size())); });
}

void osl_Machine::startsWith(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, osl_startsWith(textAt(o[1], lane), textAt(o[2], lane)) ? 1 : 0);
    });
}

void osl_Machine::endsWith(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, osl_endsWith(textAt(o[1], lane), textAt(o[2], lane)) ? 1 : 0);
    });
}

void osl_Machine::stoi(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setInt(o[0], lane, osl_stoi(textAt(o[1], lane))); });
}

void osl_Machine::stof(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setFloat(o[0], lane, osl_stof(textAt(o[1], lane))); });
}

// Operands: text, results, then separator and limit as far as they are given.
void osl_Machine::split(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const std::string_view separator = in.count > 3 ? textAt(o[3], lane) : std::string_view();
        const int room = o[2].words;
        const int limit = in.count > 4 ? intAt(o[4], lane) : room;
        const auto parts = osl_split(textAt(o[1], lane), separator, std::min(limit, room));
        const int count = std::min(static_cast<int>(parts.size()), room);
        for (int i = 0; i < count; ++i)
            setText(o[2], lane, std::string(parts[static_cast<size_t>(i)]), i);
        setInt(o[0], lane, count);
    });
}

void osl_Machine::substr(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const int length = in.count > 3 ? intAt(o[3], lane) : INT_MAX;
        setText(o[0], lane, osl_substr(textAt(o[1], lane), intAt(o[2], lane), length));
    });
}

void osl_Machine::getChar(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, osl_getChar(textAt(o[1], lane), intAt(o[2], lane)));
    });
}

const osl_Regex &osl_Machine::regexOf(int handle)
{
    auto &regex = myRegexes[handle];
    if (regex == nullptr)
        regex = std::make_unique<osl_Regex>(myTexts[handle]);
    return *regex;
}

// Operands: text, places if wanted, expression.
void osl_Machine::regex(In in)
{
    const osl_Operand *o = operands(in);
    const bool wantsPlaces = in.count == 4;
    forLanes(in, [&](int lane) {
        constexpr size_t STEPS_A_LETTER = 4;
        myExtraCost += STEPS_A_LETTER * textAt(o[1], lane).size() + 64;
        const osl_Regex &regex = regexOf(intAt(o[in.count - 1], lane));
        std::vector<int> places(wantsPlaces ? static_cast<size_t>(o[2].words) : 0);
        for (size_t i = 0; i < places.size(); ++i)
            places[i] = intAt(o[2], lane, static_cast<int>(i));
        const std::string_view text = textAt(o[1], lane);
        const bool isFound =
            in.op == OSL_REGEX_SEARCH ? regex.search(text, places) : regex.match(text, places);
        for (size_t i = 0; i < places.size(); ++i)
            setInt(o[2], lane, places[i], static_cast<int>(i));
        setInt(o[0], lane, isFound ? 1 : 0);
    });
}

// ---- Hashes ---------------------------------------------------------------

void osl_Machine::hashInt(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, static_cast<int>(osl_hash(static_cast<uint32_t>(intAt(o[1], lane)))));
    });
}

void osl_Machine::hashFloats(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        float numbers[4];
        int count = 0;
        for (int i = 1; i < in.count; ++i) {
            for (int word = 0; word < o[i].words && count < 4; ++word)
                numbers[count++] = floatAt(o[i], lane, word);
        }
        setInt(o[0], lane, osl_hashOf(numbers, count));
    });
}

void osl_Machine::hashText(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setInt(o[0], lane, osl_hashOf(textAt(o[1], lane))); });
}
