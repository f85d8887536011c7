#include "tests/support/RibReader.h"

#include "tests/support/RibRules.h"
#include "tests/support/SceneTokens.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace
{
// What stands between two words that a request reads as one.
struct Value {
    bool isArray = false;
    bool isTexts = false;
    bool isIntegers = true; // none of the numbers has a point
    std::vector<double> numbers;
    std::vector<std::string> texts;

    size_t size() const { return isTexts ? texts.size() : numbers.size(); }
    bool isNumber() const { return !isArray && !isTexts; }
};

// How many values a shape's parameters have, by storage.
struct Counts {
    size_t uniform = 1, varying = 1, vertex = 1;

    size_t of(const std::string &storage) const
    {
        if (storage == "vertex")
            return vertex;
        return storage == "varying" ? varying : (storage == "uniform" ? uniform : 1);
    }
};

class Reader
{
public:
    explicit Reader(const std::string &scene) : myTokens(sceneTokens(scene)) {}
    RibScene read();

private:
    struct Block {
        std::string begin;
        SceneMatrix place;
    };

    void found(const std::string &what);
    bool isInWorld() const;

    void readRequest();
    bool readValues();
    bool readArray(Value &value);
    bool addToken(Value &value);
    bool takeArguments(const std::string &form);
    bool takeParameters(size_t from);
    bool fits(char letter, const Value &value) const;

    void carryOut();
    void nest();
    void move();
    void declare();
    void checkChoices();
    void checkSetting();
    void checkShader();
    void checkLight();
    void checkHandle();
    void checkView();
    void checkParameters(const Counts &counts);
    void checkParameter(const std::string &token, const Value &value, const Counts &counts);
    void checkShape();
    Counts countsOfShape();
    Counts countsOfMesh();
    void checkPoints();
    std::vector<ScenePoint> corners() const;

    double number(size_t i) const { return myValues[i].numbers[0]; }
    const std::string &text(size_t i) const { return myValues[i].texts[0]; }
    const Value *parameter(const std::string &name) const;
    RibType typeOf(const std::string &token) const;

    const std::vector<SceneToken> myTokens;
    size_t myNext = 0;
    RibScene myScene;

    // The request at hand: its word, its values, and of these its parameters.
    SceneToken myWord;
    std::vector<Value> myValues;
    std::vector<std::pair<std::string, Value>> myParameters;

    std::vector<Block> myBlocks;
    SceneMatrix myPlace = SCENE_IDENTITY; // from where we are to the camera
    std::set<std::string> mySeen;         // requests, and handles of lights
    std::map<std::string, RibType> myDeclared;
};

void Reader::found(const std::string &what)
{
    myScene.findings.push_back(std::to_string(myWord.line) + ' ' + myWord.text + ": " + what);
}

bool Reader::isInWorld() const
{
    return std::any_of(myBlocks.begin(), myBlocks.end(),
                       [](const Block &block) { return block.begin == "WorldBegin"; });
}

RibScene Reader::read()
{
    while (myTokens[myNext].kind != 'e') {
        myWord = myTokens[myNext++];
        readRequest();
    }
    myWord = myTokens[myNext];
    if (!myBlocks.empty())
        found("no end of " + myBlocks.back().begin);
    for (const char *needed : {"Display", "WorldEnd"}) {
        if (mySeen.count(needed) == 0)
            found(std::string("no ") + needed);
    }
    return myScene;
}

// What is wrong goes on to the next word.
void Reader::readRequest()
{
    const bool isRead = readValues();
    const auto known = myWord.kind == 'w' ? RIB_REQUESTS.find(myWord.text) : RIB_REQUESTS.end();
    if (known == RIB_REQUESTS.end())
        return found("no request");
    if (!isRead || !takeArguments(known->second.arguments))
        return found("takes " + std::string(known->second.arguments));
    if (known->second.where != 'b' && (known->second.where == 'w') != isInWorld())
        found("may not stand here");
    mySeen.insert(myWord.text);
    checkChoices();
    carryOut();
}

bool Reader::readValues()
{
    myValues.clear();
    for (;; ++myNext) {
        const SceneToken &token = myTokens[myNext];
        if (token.kind == 'w' || token.kind == 'e')
            return true;
        Value value;
        if (!(token.kind == '[' ? readArray(value) : addToken(value)))
            return false;
        myValues.push_back(value);
    }
}

bool Reader::readArray(Value &value)
{
    value.isArray = true;
    for (++myNext; myTokens[myNext].kind != ']'; ++myNext) {
        if (!addToken(value))
            return false;
    }
    return value.size() > 0;
}

bool Reader::addToken(Value &value)
{
    const SceneToken &token = myTokens[myNext];
    const bool isText = token.kind == 's';
    if (!isText && !token.isNumber())
        return false;
    if (value.size() > 0 && value.isTexts != isText)
        return false;
    value.isTexts = isText;
    if (isText) {
        value.texts.push_back(token.text);
    } else {
        value.numbers.push_back(token.number());
        value.isIntegers = value.isIntegers && token.kind == 'i';
    }
    return true;
}

bool Reader::takeArguments(const std::string &form)
{
    myParameters.clear();
    const size_t star = form.find('*'), count = std::min(star, form.size());
    if (myValues.size() < count || (star == std::string::npos && myValues.size() > count))
        return false;
    for (size_t i = 0; i < count; ++i) {
        if (!fits(form[i], myValues[i]))
            return false;
    }
    return takeParameters(count);
}

bool Reader::takeParameters(size_t from)
{
    for (size_t i = from; i < myValues.size(); i += 2) {
        const Value &token = myValues[i];
        if (!token.isTexts || token.isArray || i + 1 == myValues.size())
            return false;
        if (parameter(ribName(token.texts[0])) != nullptr)
            found("a second " + token.texts[0]);
        myParameters.emplace_back(token.texts[0], myValues[i + 1]);
    }
    return true;
}

bool Reader::fits(char letter, const Value &value) const
{
    switch (letter) {
    case 's':
        return value.isTexts && !value.isArray;
    case 'n':
        return value.isNumber();
    case 'i':
    case 'h':
        return value.isNumber() && value.isIntegers;
    case 'c':
        return value.isArray && !value.isTexts && value.size() == 3;
    default:
        return value.isArray && !value.isTexts && value.size() == 16;
    }
}

void Reader::carryOut()
{
    using Step = void (Reader::*)();
    static const std::map<std::string, Step> STEPS = {
        {"Translate", &Reader::move},
        {"Rotate", &Reader::move},
        {"Scale", &Reader::move},
        {"Surface", &Reader::checkShader},
        {"Atmosphere", &Reader::checkShader},
        {"Displacement", &Reader::checkShader},
        {"Imager", &Reader::checkShader},
        {"LightSource", &Reader::checkLight},
        {"Illuminate", &Reader::checkHandle},
        {"Declare", &Reader::declare},
        {"Option", &Reader::checkSetting},
        {"Attribute", &Reader::checkSetting},
        {"Projection", &Reader::checkView},
        {"Polygon", &Reader::checkShape},
        {"Patch", &Reader::checkShape},
        {"PatchMesh", &Reader::checkShape},
        {"Sphere", &Reader::checkShape},
        {"Cylinder", &Reader::checkShape},
        {"Disk", &Reader::checkShape},
    };
    const auto step = STEPS.find(myWord.text);
    if (step != STEPS.end())
        return (this->*step->second)();
    checkParameters({});
    nest();
}

void Reader::checkChoices()
{
    for (size_t i = 0; i < myValues.size(); ++i) {
        const auto choices = RIB_CHOICES.find(myWord.text + ' ' + std::to_string(i));
        if (choices == RIB_CHOICES.end())
            continue;
        const auto &all = choices->second;
        if (std::find(all.begin(), all.end(), text(i)) == all.end())
            found("not every renderer has a " + text(i));
    }
}

void Reader::checkView()
{
    checkParameters({});
    const Value *const fov = parameter("fov");
    if (fov != nullptr && fov->numbers.size() == 1)
        myScene.fieldOfView = fov->numbers[0];
}

void Reader::declare()
{
    const RibType type = ribType(text(1) + ' ' + text(0));
    if (ribWidth(type.type) == 0)
        return found("no type " + text(1));
    myDeclared[text(0)] = type;
}

void Reader::checkSetting()
{
    checkParameters({});
    const auto known = RIB_SETTINGS.find(myWord.text + ' ' + text(0));
    if (known == RIB_SETTINGS.end())
        return found("nobody knows " + text(0));
    for (const auto &[token, value] : myParameters) {
        const auto &all = known->second;
        if (std::find(all.begin(), all.end(), ribName(token)) == all.end())
            found(text(0) + " has no " + ribName(token));
    }
}

void Reader::nest()
{
    const auto end = RIB_BLOCKS.find(myWord.text);
    if (end != RIB_BLOCKS.end()) {
        if (myBlocks.empty() || myBlocks.back().begin != end->second)
            return found("no " + end->second);
        myPlace = myBlocks.back().place;
        myBlocks.pop_back();
    } else if (myWord.text.size() > 5 && myWord.text.substr(myWord.text.size() - 5) == "Begin") {
        if (myWord.text == "FrameBegin" && !myBlocks.empty())
            found("may not stand here");
        myBlocks.push_back({myWord.text, myPlace});
        if (myWord.text == "WorldBegin")
            myScene.camera = myPlace;
    }
}

void Reader::move()
{
    if (myWord.text == "Translate")
        myPlace = sceneTranslation(number(0), number(1), number(2)) * myPlace;
    else if (myWord.text == "Scale")
        myPlace = sceneScale(number(0), number(1), number(2)) * myPlace;
    else
        myPlace = sceneRotation(number(0), {number(1), number(2), number(3)}) * myPlace;
}

void Reader::checkShader()
{
    checkParameters({});
    const auto known = RIB_SHADERS.find(text(0));
    if (known == RIB_SHADERS.end() || known->second.request != myWord.text)
        return found("not every renderer has a shader " + text(0));
    for (const auto &[token, value] : myParameters) {
        const std::string name = ribName(token);
        const auto &all = known->second.parameters;
        if (std::find(all.begin(), all.end(), name) == all.end())
            found(text(0) + " has no " + name);
        else if (const std::string type = typeOf(token).type; type != ribShaderType(name))
            found(name + " is no " + type);
    }
}

void Reader::checkLight()
{
    checkShader();
    const std::string handle = "light " + std::to_string(static_cast<int>(number(1)));
    if (!mySeen.insert(handle).second)
        found("a second " + handle);
}

void Reader::checkHandle()
{
    const std::string handle = "light " + std::to_string(static_cast<int>(number(0)));
    if (mySeen.count(handle) == 0)
        found("no " + handle);
}

void Reader::checkParameters(const Counts &counts)
{
    for (const auto &[token, value] : myParameters)
        checkParameter(token, value, counts);
}

void Reader::checkParameter(const std::string &token, const Value &value, const Counts &counts)
{
    const RibType type = typeOf(token);
    const auto width = static_cast<size_t>(ribWidth(type.type));
    if (width == 0)
        return found("nobody has declared " + token);
    if (value.isTexts != (type.type == "string"))
        return found(token + " is no " + type.type);
    if (type.type.substr(0, 3) == "int" && !value.isIntegers)
        return found(token + " is no integer");
    const size_t needed = width * counts.of(type.storage);
    if (value.size() != needed)
        found(token + " takes " + std::to_string(needed) + ", not " + std::to_string(value.size()));
}

RibType Reader::typeOf(const std::string &token) const
{
    const auto declared = myDeclared.find(token);
    return declared != myDeclared.end() ? declared->second : ribType(token);
}

const Value *Reader::parameter(const std::string &name) const
{
    for (const auto &[token, value] : myParameters) {
        if (ribName(token) == name)
            return &value;
    }
    return nullptr;
}

void Reader::checkShape()
{
    checkParameters(countsOfShape());
    for (const auto &[token, value] : myParameters) {
        if (RIB_SHAPE_PARAMETERS.count(ribName(token)) == 0)
            found("no shape has " + token);
    }
    const bool isQuadric = myValues.size() >= 3 && myValues[0].isNumber();
    if (!isQuadric && parameter("P") == nullptr)
        return found("no points");
    checkPoints();
}

Counts Reader::countsOfShape()
{
    const Value *const points = parameter("P");
    const size_t count = points != nullptr ? points->size() / 3 : 0;
    if (myWord.text == "Polygon")
        return {1, count, count};
    if (myWord.text == "Patch")
        return {1, 4, text(0) == "bicubic" ? size_t{16} : size_t{4}};
    return myWord.text == "PatchMesh" ? countsOfMesh() : Counts{1, 4, 4};
}

// Of a bilinear mesh that does not close: the only ones that we write.
Counts Reader::countsOfMesh()
{
    if (text(0) != "bilinear" || text(2) != "nonperiodic" || text(4) != "nonperiodic")
        return {};
    if (number(1) < 2 || number(3) < 2) {
        found("too few points");
        return {};
    }
    const auto nu = static_cast<size_t>(number(1)), nv = static_cast<size_t>(number(3));
    return {(nu - 1) * (nv - 1), nu * nv, nu * nv};
}

void Reader::checkPoints()
{
    const Value *const given = parameter("P");
    const auto points = given != nullptr ? scenePoints(given->numbers) : corners();
    for (const ScenePoint &point : points) {
        if ((point * myPlace)[2] <= 0)
            return found("reaches behind the eye");
    }
    if (myWord.text == "Polygon" && !arePlanar(points))
        found("not planar");
    else if (myWord.text == "Polygon" && !isConvex(points))
        found("not convex");
}

// Of the box around a quadric: radius, then from and to along z.
std::vector<ScenePoint> Reader::corners() const
{
    std::vector<ScenePoint> all;
    const double r = myWord.text == "Disk" ? number(1) : number(0);
    const double low = myWord.text == "Disk" ? number(0) : number(1);
    const double high = myWord.text == "Disk" ? number(0) : number(2);
    for (double z : {low, high})
        for (double x : {-r, r})
            for (double y : {-r, r})
                all.push_back({x, y, z});
    return all;
}
} // namespace

RibScene readRib(const std::string &scene)
{
    return Reader(scene).read();
}
