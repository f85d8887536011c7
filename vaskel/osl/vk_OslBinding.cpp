#include "vaskel/osl/vk_OslBinding.h"

#include "vaskel/osl/vk_OslValues.h"
#include "vaskel/params/vk_Nearest.h"

#include <algorithm>
#include <cctype>

namespace
{
constexpr std::string_view ENDING = ".osl";
constexpr float LARGEST = 1e6f; // of a number that is shown

bool startsNumber(const std::string &word)
{
    return !word.empty() && word.find_first_of("0123456789+-.") == 0;
}

std::string listOf(const std::vector<std::string_view> &names)
{
    std::string list;
    for (const std::string_view name : names)
        list += (list.empty() ? "" : ", ") + std::string(name);
    return list.empty() ? "none" : list;
}

std::string nearestOf(const std::string &word, const std::vector<std::string_view> &names)
{
    return names.empty() ? "" : "; nearest is " + vk_quoted(vk_nearest(word, names));
}
} // namespace

// Keeps the words only: a source may stand behind the statement that names it.
vk_OslBinding::vk_OslBinding(std::shared_ptr<vk_OslLibrary> library, const vk_Words &words,
                             const vk_OslTargets &targets, std::shared_ptr<vk_Parametrised> own)
    : myLibrary(std::move(library)), myName(words.empty() ? "" : words[0]), myWords(words),
      myTargets(&targets), myOwn(std::move(own)), myShown(targets.size())
{
}

// A bare ".osl" names nothing.
bool vk_OslBinding::isName(const std::string &word)
{
    return word.size() > ENDING.size() &&
           word.compare(word.size() - ENDING.size(), ENDING.size(), ENDING) == 0;
}

bool vk_OslBinding::load(std::vector<std::string> &messages)
{
    OSL_Shader *const shader = myLibrary->shader(myName, messages);
    if (shader == nullptr)
        return false;
    std::string error;
    if (!parse(*shader, error)) {
        // The compiler's warnings say nothing new when the palette is what is wrong.
        messages = {error};
        return false;
    }
    // To the compiler values are constants: what follows from them is worked out once.
    myProgram = shader->link(myValues);
    if (myProgram == nullptr) {
        messages = {shader->messages()};
        return false;
    }
    chooseOutputs(*shader);
    return true;
}

// The default of the first target and the closure, as far as nothing else is shown.
void vk_OslBinding::chooseOutputs(const OSL_Shader &shader)
{
    // Not an array: what is fed is one number or one colour.
    const auto first = [&](auto fits) {
        for (const OSL_Parameter &parameter : shader.parameters())
            if (parameter.isOutput && !parameter.type.isArray() && fits(parameter.type))
                return parameter.name;
        return std::string();
    };
    const auto isColour = [](const osl_Type &t) {
        return t.isTriple() && t.base == osl_Type::COLOR;
    };
    const auto isTriple = [](const osl_Type &t) { return t.isTriple(); };
    const auto isScalar = [](const osl_Type &t) { return t.isScalar(); };
    const bool wantsNumber = myTargets->front().isNumber;
    // The kind of output that the target is made for, then what comes nearest to it.
    myDefault = wantsNumber ? first(isScalar) : first(isColour);
    if (myDefault.empty())
        myDefault = wantsNumber ? first(isColour) : first(isTriple);
    if (myDefault.empty())
        myDefault = first(isScalar);
    // Whoever asks for an output has chosen: the closure would hide it.
    for (std::size_t i = 0; i < myShown.size(); ++i)
        if (!myShown[i].empty() && !(*myTargets)[i].goesWithClosures)
            return;
    myClosure = first([](const osl_Type &t) { return t.isClosure; });
    // A surface of the old style sets Ci, which only a context knows.
    OSL_Renderer nobody;
    if (myClosure.empty() && OSL_Context(myProgram, nobody, 1).output("Ci") != nullptr)
        myClosure = "Ci";
}

std::string vk_OslBinding::feedOf(std::size_t target) const
{
    // Only the first target has something that it shows by itself.
    return target == 0 && myShown[0].empty() ? myDefault : myShown[target];
}

bool vk_OslBinding::parse(OSL_Shader &shader, std::string &error)
{
    for (std::size_t at = 1; at < myWords.size();) {
        const std::string &word = myWords[at];
        // The shader's own parameters come first: its author did not know our words.
        const OSL_Parameter *const parameter = shader.findParameter(word);
        bool isGood = false;
        // An output is worked out by the shader: a value for it would be lost.
        if (parameter != nullptr && !parameter->isOutput)
            isGood = parseParameter(shader, at, error);
        else if (word == "show")
            isGood = parseShow(shader, at, error);
        else if (myOwn != nullptr && myOwn->params().find(word) != nullptr)
            isGood = parseOwn(at, error);
        else
            error = unknown(shader, word);
        if (!isGood)
            return false;
    }
    const std::string fault = myOwn != nullptr ? myOwn->fault() : "";
    if (!fault.empty())
        error = myName + ' ' + fault;
    return fault.empty();
}

bool vk_OslBinding::parseParameter(const OSL_Shader &shader, std::size_t &at, std::string &error)
{
    const OSL_Parameter &parameter = *shader.findParameter(myWords[at++]);
    OSL_Value value;
    if (!vk_takeOslValue(parameter, myName, myWords, at, value, error))
        return false;
    // Of a name that is given twice the last one counts (OSL_Shader::link).
    myValues.emplace_back(parameter.name, std::move(value));
    return true;
}

// The values of a parameter of the statement: the numbers behind it, or one word.
bool vk_OslBinding::parseOwn(std::size_t &at, std::string &error)
{
    const std::size_t begin = at++;
    // Cut out, since vk_parseParams() would go on with the shader's parameters. A word may be a
    // colour's name; when it is none, that is told there.
    if (at < myWords.size() && !startsNumber(myWords[at]))
        ++at;
    else
        while (at < myWords.size() && startsNumber(myWords[at]))
            ++at;
    const vk_Words words(myWords.begin() + static_cast<std::ptrdiff_t>(begin),
                         myWords.begin() + static_cast<std::ptrdiff_t>(at));
    return vk_parseParams(myOwn->params(), myName.c_str(), words, 0, error);
}

bool vk_OslBinding::parseShow(const OSL_Shader &shader, std::size_t &at, std::string &error)
{
    if (at + 3 >= myWords.size() || myWords[at + 2] != "as") {
        error = "show expected 'show OUTPUT as PARAMETER'";
        return false;
    }
    // A target may be shown twice; the last one counts, as with parameters.
    const std::string what = myWords[at + 1], target = myWords[at + 3];
    at += 4;
    std::vector<std::string_view> targets;
    for (const vk_OslTarget &row : *myTargets)
        targets.push_back(row.name);
    const auto found = std::find(targets.begin(), targets.end(), target);
    if (found == targets.end()) {
        error = "show expected one of " + listOf(targets) + " behind 'as', found " +
                vk_quoted(target) + nearestOf(target, targets);
        return false;
    }
    myShown[static_cast<std::size_t>(found - targets.begin())] = what;
    // A target may be fed with a constant, too.
    float number = 0;
    if (startsNumber(what))
        // Only checked: a feed reads it again when it is made.
        return vk_parseNumber(what, "show", -LARGEST, LARGEST, number, error);
    std::vector<std::string_view> outputs;
    for (const OSL_Parameter &parameter : shader.parameters()) {
        const osl_Type &type = parameter.type;
        // Texts, closures and arrays feed nothing.
        if (!parameter.isOutput || !(type.isTriple() || type.isScalar()))
            continue;
        outputs.push_back(parameter.name);
        if (parameter.name == what)
            return true;
    }
    error = myName + " has no output " + vk_quoted(what) +
            " that is a colour or a number; expected " + listOf(outputs) + nearestOf(what, outputs);
    return false;
}

std::string vk_OslBinding::unknown(const OSL_Shader &shader, const std::string &word)
{
    std::vector<std::string_view> names;
    for (const OSL_Parameter &parameter : shader.parameters())
        if (!parameter.isOutput)
            names.push_back(parameter.name);
    // Those of the statement, too: whoever writes the line need not know whose they are.
    vk_ParamList own;
    if (myOwn != nullptr)
        own = myOwn->params();
    for (const vk_Param &param : own)
        names.push_back(param.name);
    return myName + " has no parameter " + vk_quoted(word) + "; expected " + listOf(names) +
           nearestOf(word, names);
}
