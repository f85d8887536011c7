#include "tests/support/MiReader.h"

#include "tests/support/MiRules.h"
#include "tests/support/SceneTokens.h"

#include <algorithm>
#include <set>

namespace
{
class Reader
{
public:
    explicit Reader(const std::string &scene) : myTokens(sceneTokens(scene)) {}
    MiScene read();

private:
    // Grammar: false stops, and what was wrong is told once.
    using Rule = bool (Reader::*)();
    bool readCommand();
    bool readLink();
    bool readInclude();
    bool readDeclare();
    bool readShader();
    bool readBlock();
    bool readStatement(const std::string &block);
    bool readForm(const MiStatement &statement);
    bool readValues(const std::string &form);
    bool readCall(const std::string &use);
    bool readParameter(const std::string &shader, const MiShader &known);
    bool readLights();
    bool readObject();
    void forget(const std::vector<std::string> &kinds);
    bool readBasis();
    bool readGroup();
    bool readPoints();
    bool readVertices();
    bool readGeometry();
    bool readPolygon();
    bool readSurface();
    bool readRange();
    bool readApproximation();
    bool readInstance();
    bool readGroupOfInstances();
    bool readRender();

    const SceneToken &at(size_t ahead = 0) const
    {
        return myTokens[std::min(myNext + ahead, myTokens.size() - 1)];
    }
    const SceneToken &last() const { return myTokens[myNext - 1]; }
    bool take(const char *word);
    bool takeKind(char kind);
    bool takeName(const char *kind);           // of something that is there
    bool takeNewName(const std::string &kind); // of something that comes to be
    bool takeIndex(size_t count);
    bool takeEnd(const std::string &block);
    bool found(const std::string &what, size_t back = 0);

    const std::vector<SceneToken> myTokens;
    size_t myNext = 0;
    MiScene myScene;
    std::set<std::string> myNames; // "material ball"
    std::map<std::string, MiShader> myShaders;
    std::map<std::string, std::vector<double>> myNumbers; // of the statements read last
    std::vector<ScenePoint> myPoints;                     // of the group at hand
    std::vector<size_t> myVertices;                       // points of its vertices
    size_t myIndex = 0;                                   // that was taken last
    bool myIsRendered = false;
};

bool Reader::found(const std::string &what, size_t back)
{
    const SceneToken &token = myTokens[myNext - std::min(back, myNext)];
    myScene.findings.push_back(std::to_string(token.line) + ' ' + token.text + ": " + what);
    return false;
}

bool Reader::take(const char *word)
{
    const bool fits = at().kind != 's' && at().text == word;
    myNext += fits;
    return fits;
}

bool Reader::takeKind(char kind)
{
    const bool fits = kind == 'n' ? at().isNumber() : at().kind == kind;
    if (fits)
        ++myNext;
    return fits;
}

bool Reader::takeName(const char *kind)
{
    if (!takeKind('s'))
        return found(std::string("not the name of a ") + kind);
    if (myNames.count(std::string(kind) + ' ' + last().text) == 0)
        found(std::string("no such ") + kind, 1);
    return true;
}

bool Reader::takeNewName(const std::string &kind)
{
    if (!takeKind('s'))
        return found("not a name for a " + kind);
    if (!myNames.insert(kind + ' ' + last().text).second)
        found("a second " + kind, 1);
    return true;
}

// Of something in this group, counted from 0.
bool Reader::takeIndex(size_t count)
{
    if (at().kind != 'i' || at().number() < 0 || at().number() >= static_cast<double>(count))
        return false;
    myIndex = static_cast<size_t>(at().number());
    ++myNext;
    return true;
}

bool Reader::takeEnd(const std::string &block)
{
    return (take("end") && take(block.c_str())) || found("not the end of " + block);
}

MiScene Reader::read()
{
    while (at().kind != 'e' && readCommand())
        continue;
    if (!myIsRendered && myScene.findings.empty())
        found("no render");
    return myScene;
}

bool Reader::readCommand()
{
    static const std::map<std::string, Rule> COMMANDS = {
        {"link", &Reader::readLink},         {"$include", &Reader::readInclude},
        {"declare", &Reader::readDeclare},   {"options", &Reader::readBlock},
        {"camera", &Reader::readBlock},      {"light", &Reader::readBlock},
        {"material", &Reader::readBlock},    {"object", &Reader::readObject},
        {"instance", &Reader::readInstance}, {"instgroup", &Reader::readGroupOfInstances},
        {"shader", &Reader::readShader},     {"render", &Reader::readRender},
    };
    const auto command = COMMANDS.find(at().text);
    if (at().kind != 'w' || command == COMMANDS.end())
        return found("no command");
    ++myNext;
    return (this->*command->second)();
}

bool Reader::readLink()
{
    return takeKind('s') || found("not a library");
}

// What stands between angles is looked for in the standard place.
bool Reader::readInclude()
{
    if (at().text != "<base.mi>")
        found("is not looked for in the standard place");
    ++myNext;
    myShaders = MI_BASE_SHADERS;
    return true;
}

bool Reader::readDeclare()
{
    if (!take("shader") || !takeKind('w'))
        return found("not the declaration of a shader");
    MiShader shader;
    shader.type = last().text;
    const std::string name = at().text;
    if (!takeKind('s') || !take("("))
        return found("not the name of a shader");
    while (!take(")")) {
        const std::string type = at().text, parameter = at(1).text;
        if (!takeKind('w') || !takeKind('s'))
            return found("not a parameter");
        shader.parameters[parameter] = type;
        take(",");
    }
    myShaders[name] = shader;
    return takeEnd("declare");
}

bool Reader::readShader()
{
    return takeNewName("shader") && readCall("shader");
}

bool Reader::readBlock()
{
    const std::string block = last().text;
    const bool isElement = block == "camera" || block == "light";
    if (!takeNewName(isElement ? "element" : block))
        return false;
    while (!at().isWord("end")) {
        if (!readStatement(block))
            return false;
    }
    if (block == "camera")
        myScene.tangent = myNumbers["aperture"][0] / 2 / myNumbers["focal"][0];
    return takeEnd(block);
}

// The longest word that fits counts.
bool Reader::readStatement(const std::string &block)
{
    const MiStatement *fitting = nullptr;
    for (const MiStatement &statement : MI_STATEMENTS) {
        const std::string word = statement.word;
        const bool isTwo = word.find(' ') != std::string::npos;
        const std::string here =
            at().kind == 's' ? "" : (isTwo ? at().text + ' ' + at(1).text : at().text);
        if (block == statement.block && word == here && (fitting == nullptr || isTwo))
            fitting = &statement;
    }
    if (fitting == nullptr)
        return found("no statement of " + block);
    const std::string word = fitting->word;
    myNext += word.empty() ? 0 : 1 + static_cast<size_t>(std::count(word.begin(), word.end(), ' '));
    return readForm(*fitting);
}

bool Reader::readForm(const MiStatement &statement)
{
    if (statement.forms[0] == "=")
        return readCall(statement.word[0] == '\0' ? statement.block : statement.word);
    const size_t from = myNext;
    for (const std::string &form : statement.forms) {
        myNext = from;
        if (!readValues(form))
            continue;
        std::vector<double> &numbers = myNumbers[statement.word];
        numbers.clear();
        for (size_t i = from; i < myNext && myTokens[i].isNumber(); ++i)
            numbers.push_back(myTokens[i].number());
        return true;
    }
    myNext = from;
    return found("not what " + std::string(statement.word) + " takes");
}

bool Reader::readValues(const std::string &form)
{
    for (char letter : form) {
        const bool isSwitch = at().isWord("on") || at().isWord("off");
        if (letter == 'b' ? !isSwitch : !takeKind(letter))
            return false;
        myNext += letter == 'b';
    }
    return true;
}

// What displaces gives a number, all others a colour.
bool Reader::readCall(const std::string &use)
{
    const std::string name = at().text;
    if (!takeKind('s') || !take("("))
        return found("not the call of a shader");
    const auto known = myShaders.find(name);
    if (known == myShaders.end())
        return found("nobody has declared " + name, 2);
    if (known->second.type != (use == "displace" ? "scalar" : "color"))
        found("not for " + use, 2);
    if (take(")"))
        return true;
    do {
        if (!readParameter(name, known->second))
            return false;
    } while (take(","));
    return take(")") || found("not the end of a call");
}

bool Reader::readParameter(const std::string &shader, const MiShader &known)
{
    const auto parameter = known.parameters.find(at().text);
    if (at().kind != 's' || parameter == known.parameters.end())
        return found("no parameter of " + shader);
    ++myNext;
    if (take("="))
        return takeName("shader");
    if (parameter->second == "lights")
        return readLights();
    const size_t from = myNext;
    for (const std::string &form : miForms(parameter->second)) {
        myNext = from;
        if (readValues(form))
            return true;
    }
    myNext = from;
    return found("not a " + parameter->second);
}

bool Reader::readLights()
{
    if (!take("["))
        return found("not a list of lights");
    do {
        if (!takeName("instance"))
            return false;
    } while (take(","));
    return take("]") || found("not the end of a list");
}

bool Reader::readObject()
{
    if (!takeNewName("element"))
        return false;
    forget({"basis ", "surface "});
    while (!at().isWord("group")) {
        if (!(at().isWord("basis") ? readBasis() : readStatement("object")))
            return false;
    }
    return readGroup() && takeEnd("object");
}

// Names that hold inside of one object.
void Reader::forget(const std::vector<std::string> &kinds)
{
    for (const std::string &kind : kinds)
        myNames.erase(myNames.lower_bound(kind), myNames.lower_bound(kind + '\x7f'));
}

bool Reader::readBasis()
{
    take("basis");
    return takeNewName("basis") && take("bezier") && readValues("i");
}

bool Reader::readGroup()
{
    take("group");
    myPoints.clear();
    myVertices.clear();
    if (!readPoints() || !readVertices() || !readGeometry())
        return false;
    return takeEnd("group");
}

bool Reader::readPoints()
{
    while (at().isNumber()) {
        const size_t from = myNext;
        if (!readValues("nnn"))
            return found("not a point");
        myPoints.push_back({myTokens[from].number(), myTokens[from + 1].number(), last().number()});
    }
    return true;
}

bool Reader::readVertices()
{
    while (take("v")) {
        if (!takeIndex(myPoints.size()))
            return found("not a vertex");
        myVertices.push_back(myIndex);
    }
    return true;
}

bool Reader::readGeometry()
{
    while (!at().isWord("end")) {
        const bool isRead = take("p")         ? readPolygon()
                            : take("surface") ? readSurface()
                                              : take("approximate") && readApproximation();
        if (!isRead)
            return found("no geometry");
    }
    return true;
}

bool Reader::readPolygon()
{
    if (!takeName("material"))
        return false;
    std::vector<ScenePoint> corners;
    while (takeIndex(myVertices.size()))
        corners.push_back(myPoints[myVertices[myIndex]]);
    if (!arePlanar(corners))
        found("not planar", 1);
    return true;
}

// One sheet of third degree: two ranges, and 16 vertices.
bool Reader::readSurface()
{
    if (!takeNewName("surface") || !takeName("material") || !readRange() || !readRange())
        return false;
    int count = 0;
    while (takeIndex(myVertices.size()))
        ++count;
    return count == 16 || found("not 16 vertices");
}

// From and to, then where segments begin and end. An integer would begin the vertices.
bool Reader::readRange()
{
    return takeName("basis") && (readValues("nnff") || found("not a range"));
}

bool Reader::readApproximation()
{
    return take("surface") && take("parametric") && readValues("nn") && takeName("surface");
}

bool Reader::readInstance()
{
    if (!takeNewName("instance"))
        return false;
    const std::string what = at().text;
    if (!takeName("element"))
        return false;
    while (!at().isWord("end")) {
        if (!readStatement("instance"))
            return false;
        if (what == "camera")
            std::copy_n(myNumbers["transform"].begin(), 16, myScene.camera.begin());
    }
    return takeEnd("instance");
}

bool Reader::readGroupOfInstances()
{
    if (!takeNewName("element"))
        return false;
    while (at().kind == 's') {
        if (!takeName("instance"))
            return false;
    }
    return takeEnd("instgroup");
}

bool Reader::readRender()
{
    myIsRendered = true;
    return takeName("element") && takeName("instance") && takeName("options");
}
} // namespace

MiScene readMi(const std::string &scene)
{
    return Reader(scene).read();
}
