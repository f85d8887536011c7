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
    bool readOutput();
    bool checkBlock(const std::string &block);
    bool readCall(const std::string &use);
    void checkUse(const MiShader &shader, const std::string &use);
    bool readParameter(const std::string &shader, const MiShader &known);
    bool readLights();
    bool readObject();
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
    bool takeInstance(const char *kind);
    bool takeLocal(const std::string &kind); // of something inside of this object
    bool takeNewLocal(const std::string &kind);
    bool takeIndex(size_t count);
    bool takeEnd(const std::string &block);
    bool found(const std::string &what, size_t back = 0);

    const std::vector<SceneToken> myTokens;
    size_t myNext = 0;
    MiScene myScene;
    std::map<std::string, std::string> myKinds;     // of what has a name; one has one
    std::map<std::string, std::string> myInstances; // kinds of what they are instances of
    std::map<std::string, std::string> myPaints;    // types of what named shaders give
    std::set<std::string> myGrouped;                // instances that a group has
    std::set<std::string> myLocals;                 // "basis bezier"
    std::map<std::string, MiShader> myShaders;
    const MiShader *myCalled = nullptr;                   // by the block at hand
    std::map<std::string, std::vector<double>> myNumbers; // of the statements read last
    std::set<std::string> mySeen;                         // statements of the block at hand
    std::vector<ScenePoint> myPoints;                     // of the group at hand
    std::vector<size_t> myVertices;                       // points of its vertices
    size_t myIndex = 0;                                   // that was taken last
    bool myIsLinked = false;                              // with the base library
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
    const auto named = myKinds.find(last().text);
    if (named == myKinds.end() || named->second != kind)
        found(std::string("no such ") + kind, 1);
    return true;
}

// Whatever they are, no two have the same name.
bool Reader::takeNewName(const std::string &kind)
{
    if (!takeKind('s'))
        return found("not a name for a " + kind);
    const auto [named, isNew] = myKinds.insert({last().text, kind});
    if (!isNew)
        found(named->second == kind ? "a second " + kind : "the name of a " + named->second, 1);
    return true;
}

bool Reader::takeLocal(const std::string &kind)
{
    if (!takeKind('s'))
        return found("not the name of a " + kind);
    if (myLocals.count(kind + ' ' + last().text) == 0)
        found("no such " + kind, 1);
    return true;
}

bool Reader::takeNewLocal(const std::string &kind)
{
    if (!takeKind('s'))
        return found("not a name for a " + kind);
    if (!myLocals.insert(kind + ' ' + last().text).second)
        found("a second " + kind, 1);
    return true;
}

bool Reader::takeInstance(const char *kind)
{
    if (!takeName("instance"))
        return false;
    const auto instance = myInstances.find(last().text);
    if (instance != myInstances.end() && instance->second != kind)
        found(std::string("not of a ") + kind, 1);
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
    myIsLinked = myIsLinked || at().text == "base.so";
    return takeKind('s') || found("not a library");
}

// What stands between angles is looked for in the standard place.
bool Reader::readInclude()
{
    if (at().kind != 'w' || at().text != "<base.mi>")
        found("is not looked for in the standard place");
    if (!myIsLinked)
        found("its shaders are not linked");
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
        if (type != "lights" && miForms(type).empty())
            found("no type " + type, 1);
        shader.parameters[parameter] = type;
        take(",");
    }
    shader.use = "any";
    myShaders[name] = shader;
    return takeEnd("declare");
}

bool Reader::readShader()
{
    if (!takeNewName("shader"))
        return false;
    const std::string name = last().text;
    if (!readCall("shader"))
        return false;
    if (myCalled != nullptr)
        myPaints[name] = myCalled->type;
    return true;
}

bool Reader::readBlock()
{
    const std::string block = last().text;
    if (!takeNewName(block))
        return false;
    mySeen.clear();
    myCalled = nullptr;
    while (!at().isWord("end")) {
        if (!readStatement(block))
            return false;
    }
    return checkBlock(block) && takeEnd(block);
}

bool Reader::checkBlock(const std::string &block)
{
    std::vector<std::string> needed;
    if (const auto all = MI_NEEDED.find(block); all != MI_NEEDED.end())
        needed = all->second;
    if (block == "light" && myCalled != nullptr)
        needed.insert(needed.end(), myCalled->places.begin(), myCalled->places.end());
    for (const std::string &word : needed) {
        if (mySeen.count(word) == 0)
            return found(block + (word.empty() ? " without a shader" : " without " + word));
    }
    if (block == "camera")
        myScene.tangent = myNumbers["aperture"][0] / 2 / myNumbers["focal"][0];
    return true;
}

// The longest word that fits counts.
bool Reader::readStatement(const std::string &block)
{
    const MiStatement *fitting = nullptr;
    for (const MiStatement &statement : MI_STATEMENTS) {
        const std::string word = statement.word;
        const bool isTwo = word.find(' ') != std::string::npos;
        const std::string here = at().kind == 's'             ? ""
                                 : isTwo && at(1).kind == 'w' ? at().text + ' ' + at(1).text
                                                              : at().text;
        if (block == statement.block && word == here && (fitting == nullptr || isTwo))
            fitting = &statement;
    }
    if (fitting == nullptr)
        return found("no statement of " + block);
    const std::string word = fitting->word;
    if (!mySeen.insert(word).second)
        found("a second time in " + block);
    myNext += word.empty() ? 0 : 1 + static_cast<size_t>(std::count(word.begin(), word.end(), ' '));
    return readForm(*fitting);
}

bool Reader::readForm(const MiStatement &statement)
{
    if (statement.forms[0] == "sss")
        return readOutput();
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

static bool isOneOf(const std::string &text, const std::vector<std::string> &all)
{
    return std::find(all.begin(), all.end(), text) != all.end();
}

// A type, a format and a name, or the last two.
bool Reader::readOutput()
{
    const bool hasType = at(2).kind == 's';
    if (hasType && !isOneOf(at().text, MI_PICTURE_TYPES))
        found("no type of picture");
    if (!isOneOf(at(hasType).text, MI_FILE_FORMATS))
        found("not every renderer writes " + at(hasType).text);
    return readValues(hasType ? "sss" : "ss") || found("not what output takes");
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
    checkUse(known->second, use);
    if (take(")"))
        return true;
    std::set<std::string> given;
    do {
        if (!given.insert(at().text).second)
            found("a second time");
        if (!readParameter(name, known->second))
            return false;
    } while (take(","));
    return take(")") || found("not the end of a call");
}

void Reader::checkUse(const MiShader &shader, const std::string &use)
{
    const bool isSpecial = use == "light" || use == "volume";
    const bool fits = shader.type == (use == "displace" ? "scalar" : "color") || use == "shader";
    if (!fits || (shader.use != "any" && shader.use != (isSpecial ? use : "")))
        found("not for " + use, 2);
    myCalled = &shader;
}

bool Reader::readParameter(const std::string &shader, const MiShader &known)
{
    const auto parameter = known.parameters.find(at().text);
    if (at().kind != 's' || parameter == known.parameters.end())
        return found("no parameter of " + shader);
    ++myNext;
    if (take("=")) {
        if (!takeName("shader"))
            return false;
        const auto paint = myPaints.find(last().text);
        if (paint != myPaints.end() && paint->second != parameter->second)
            found("not a " + parameter->second, 1);
        return true;
    }
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
        if (!takeInstance("light"))
            return false;
    } while (take(","));
    return take("]") || found("not the end of a list");
}

bool Reader::readObject()
{
    if (!takeNewName("object"))
        return false;
    myLocals.clear();
    mySeen.clear();
    while (!at().isWord("group")) {
        if (!(at().isWord("basis") ? readBasis() : readStatement("object")))
            return false;
    }
    return readGroup() && takeEnd("object");
}

bool Reader::readBasis()
{
    take("basis");
    return (takeNewLocal("basis") && take("bezier") && readValues("i")) || found("no basis");
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
    if (!arePlanar(corners) || !isConvex(corners))
        found("not planar and convex", 1);
    return true;
}

// One sheet of third degree: two ranges, and 16 vertices.
bool Reader::readSurface()
{
    if (!takeNewLocal("surface") || !takeName("material") || !readRange() || !readRange())
        return false;
    int count = 0;
    while (takeIndex(myVertices.size()))
        ++count;
    return count == 16 || found("not 16 vertices");
}

// From and to, then where segments begin and end. An integer would begin the vertices.
bool Reader::readRange()
{
    return takeLocal("basis") && (readValues("nnff") || found("not a range"));
}

bool Reader::readApproximation()
{
    return take("surface") && take("parametric") && readValues("nn") && takeLocal("surface");
}

bool Reader::readInstance()
{
    if (!takeNewName("instance"))
        return false;
    const std::string name = last().text;
    const auto what = myKinds.find(at().text);
    static const std::set<std::string> ELEMENTS = {"camera", "light", "object", "instgroup"};
    if (what == myKinds.end() || ELEMENTS.count(what->second) == 0)
        found("nothing to place");
    if (!takeKind('s'))
        return false;
    const std::string kind = what == myKinds.end() ? "" : what->second;
    myInstances[name] = kind;
    mySeen.clear();
    while (!at().isWord("end")) {
        if (!readStatement("instance"))
            return false;
        if (kind == "camera")
            std::copy_n(myNumbers["transform"].begin(), 16, myScene.camera.begin());
    }
    return takeEnd("instance");
}

bool Reader::readGroupOfInstances()
{
    if (!takeNewName("instgroup"))
        return false;
    while (at().kind == 's') {
        if (!takeName("instance"))
            return false;
        if (!myGrouped.insert(last().text).second)
            found("a second time in a group", 1);
    }
    return takeEnd("instgroup");
}

bool Reader::readRender()
{
    myIsRendered = true;
    for (const auto &[name, kind] : myInstances) {
        if (myGrouped.count(name) == 0)
            found("no group has " + name);
    }
    return takeName("instgroup") && takeInstance("camera") && takeName("options");
}
} // namespace

MiScene readMi(const std::string &scene)
{
    return Reader(scene).read();
}
