#include "vaskel/scene/vk_SceneReader.h"

#include "UT/UT_Process.h"
#include "vaskel/file/vk_Picture.h"
#include "vaskel/osl/vk_OslDisplace.h"
#include "vaskel/osl/vk_OslFog.h"
#include "vaskel/osl/vk_OslLight.h"
#include "vaskel/osl/vk_OslSurface.h"
#include "vaskel/scene/vk_Line.h"

#include <cerrno>
#include <cstring>
#include <iterator>

namespace
{
constexpr float NEUTRAL = .214f; // half of the scale in the file

// Where the lights that follow stand and aim.
struct LightPlace : vk_Parametrised {
    vk_Vec from, to = {0, 1, 0};

    void describe(vk_ParamList &list) override
    {
        list.point("from", from, "where lights stand");
        list.point("to", to, "where they aim");
    }
};
} // namespace

struct vk_SceneReader::Statement {
    const char *word;
    const char *arguments;
    Handler handler;
    const char *what;
    bool takesLine = false; // as it stands, whatever its quotes
};

// doc/scene.md has the same rows.
const vk_SceneReader::Statement vk_SceneReader::STATEMENTS[] = {
    {"picture", "NAME", &vk_SceneReader::doPicture, "the picture to write", true},
    {"comment", "TEXT", &vk_SceneReader::doComment, "a line of text within the picture's file",
     true},
    {"size", "WIDTH HEIGHT", &vk_SceneReader::doSize, "picture size in pixels"},
    {"samples", "COUNT", &vk_SceneReader::doSamples, "the most samples that a pixel gets"},
    {"exposure", "STOPS", &vk_SceneReader::doExposure, "brighter by powers of two"},
    {"camera", "PARAMETERS", &vk_SceneReader::doCamera, "the viewer"},
    {"background", "on|off [COLOUR]", &vk_SceneReader::doBackground, "what is seen behind"},
    {"environment", "SHADER", &vk_SceneReader::doEnvironment, "the surroundings"},
    {"floor", "SHADER", &vk_SceneReader::doFloor, "a floor at y = 0"},
    {"shadow", "SHADER", &vk_SceneReader::doShadow, "the shadows of all lights"},
    {"fog", "SHADER", &vk_SceneReader::doFog, "fills the space around the origin"},
    {"lightplace", "from X Y Z to X Y Z", &vk_SceneReader::doLightPlace, "of the next lights"},
    {"light", "SHADER", &vk_SceneReader::doLight, "adds a light"},
    {"surface", "SHADER", &vk_SceneReader::doSurface, "of the next shapes"},
    {"displace", "SHADER", &vk_SceneReader::doDisplace, "of the next shapes"},
    {"translate", "X Y Z", &vk_SceneReader::doTranslate, "moves the next shapes"},
    {"rotate", "DEGREES X Y Z", &vk_SceneReader::doRotate, "turns the next shapes"},
    {"scale", "FACTOR or X Y Z", &vk_SceneReader::doScale, "sizes the next shapes"},
    {"identity", "nothing", &vk_SceneReader::doIdentity, "forgets the transforms"},
    {"shaderball", "PARAMETERS", &vk_SceneReader::doShape, "a ball on a stand"},
    {"sphere", "PARAMETERS", &vk_SceneReader::doShape, "a ball"},
    {"grid", "PARAMETERS", &vk_SceneReader::doShape, "a sheet"},
    {"tube", "PARAMETERS", &vk_SceneReader::doShape, "an open cylinder"},
    {"teapot", "PARAMETERS", &vk_SceneReader::doShape, "the teapot"},
    {"source", "NAME.osl", &vk_SceneReader::doSource, "begins the source of a shader"},
    {"endsource", "nothing", &vk_SceneReader::doEndSource, "ends it"},
    {"default", "STATEMENT", &vk_SceneReader::doDefault, "counts if its word is new"},
    {"end", "nothing", &vk_SceneReader::doEnd, "the last one of every scene"},
};

vk_SceneReader::vk_SceneReader(const char *name, vk_Scene &scene)
    : myName(name != nullptr ? name : ""), myScene(&scene)
{
    scene.backdrop = vk_grey(NEUTRAL);
    // What a scene does not mention is the first row of its table.
    scene.environment = VK_ENVIRONMENT_SHADERS.rows->make();
    scene.shadow = VK_SHADOW_SHADERS.rows->make();
    myState.surface = VK_SURFACE_SHADERS.rows->make();
}

std::vector<std::string_view> vk_SceneReader::words()
{
    std::vector<std::string_view> all;
    for (const Statement &statement : STATEMENTS)
        all.push_back(statement.word);
    return all;
}

bool vk_SceneReader::read(std::FILE *file)
{
    std::size_t skipped = 0;
    while (skipped < MOST_SKIPPED && readLine(file)) {
        ++myLineNumber;
        // The writer of a pipe would die of SIGPIPE if we left; but it is not read for ever.
        skipped += isGivenUp ? myLine.size() + 1 : 0;
        if (isGivenUp)
            takeName();
        else
            takeLine();
        if (!isGivenUp && myMessages.size() >= MOST_MESSAGES) {
            report("too many errors, reading stopped");
            isGivenUp = true;
        }
    }
    if (std::ferror(file) != 0)
        report(std::string("cannot be read: ") + std::strerror(errno));
    // After a mistake what seems to be missing may only not have been understood.
    if (myMessages.empty())
        checkWhole();
    return myMessages.empty();
}

// Of a scene that is not drawn only the picture's name counts, for the messages. It may
// come late: the text in front of it is somebody else's.
void vk_SceneReader::takeName()
{
    std::string name, ignored;
    // By its first letters: other lines of what is given up are not worth taking apart.
    if (myLine.compare(0, 8, "picture ") == 0 && vk_fileName(myLine, name, ignored) &&
        vk_isPictureName(name))
        myScene->picture = name;
}

// One line without its newline, or as much of it as shows that it is too long.
bool vk_SceneReader::readLine(std::FILE *file)
{
    myLine.clear();
    int c = std::getc(file);
    if (c == EOF)
        return false;
    // A line that has no end must not fill the memory.
    // Byte by byte: fgets() would lose what stands behind a zero byte.
    for (; c != EOF && c != '\n' && myLine.size() <= LONGEST_LINE; c = std::getc(file))
        myLine += static_cast<char>(c);
    return true;
}

void vk_SceneReader::takeLine()
{
    if (myLine.size() > LONGEST_LINE) {
        // The rest of it would be read as further lines.
        report("expected a line of at most a million bytes");
        isGivenUp = true;
        return;
    }
    if (myEnded) {
        checkBehindEnd();
        return;
    }
    // Before it is split: within a source, quotes are the shader's.
    if (myOsl.isInSource()) {
        if (!myOsl.takeLine(myLine))
            report("expected sources of at most 4 MB together");
        return;
    }
    // Quotes mean nothing in names and comments, so a lone one is no mistake there.
    if (!vk_splitLine(myLine, myWords, myError) && !takesLine()) {
        report(myError);
        return;
    }
    if (myWords.empty())
        return;
    // A copy, as handlers change the words. Of a default it is "default", so that those do not
    // displace one another.
    const std::string word = myWords[0];
    if (!obey())
        report(myError);
    // Also after a mistake: the default in its place would only hide it.
    mySeen.insert(word);
}

bool vk_SceneReader::takesLine() const
{
    const std::size_t word = !myWords.empty() && myWords[0] == "default" ? 1 : 0;
    for (const Statement &statement : STATEMENTS)
        if (word < myWords.size() && myWords[word] == statement.word)
            return statement.takesLine;
    return false;
}

bool vk_SceneReader::obey()
{
    for (const Statement &statement : STATEMENTS)
        if (myWords[0] == statement.word)
            return (this->*statement.handler)();
    // All of those there are would fill a screen; the nearest is mostly what was meant.
    return wrong("unknown statement " + vk_quoted(myWords[0]) +
                 "; expected a statement of the scene language; nearest is " +
                 vk_quoted(vk_nearest(myWords[0], words())));
}

bool vk_SceneReader::wrong(const std::string &message)
{
    myError = message;
    return false;
}

void vk_SceneReader::report(const std::string &message)
{
    myMessages.push_back(std::to_string(myLineNumber) + ": error: " + message);
}

// Made at the end, when the picture's name is known.
std::vector<std::string> vk_SceneReader::messages() const
{
    const std::string &picture = myScene->picture;
    std::string name = !myName.empty() ? myName : !picture.empty() ? picture : "<stdin>";
    // A file's name may hold what a terminal obeys.
    UTmakePrintable(name.data(), name.size());
    std::vector<std::string> all;
    for (const std::string &message : myMessages)
        all.push_back(name + ":" + message);
    return all;
}

// A scene that was cut off, by a writer that died say, must not pass for a whole one.
void vk_SceneReader::checkWhole()
{
    if (myOsl.isInSource()) {
        report("expected the statement 'endsource' behind the source of " +
               vk_quoted(myOsl.sourceName()) + ", found the end of the text");
        return;
    }
    if (!myEnded) {
        report("expected the statement 'end' as the last one, found the end of the text");
        return;
    }
    // Each by itself: one run tells of both.
    if (myScene->picture.empty())
        report("expected a statement 'picture NAME' before the end");
    if (!myScene->hasCamera)
        report("expected a statement 'camera PARAMETERS' before the end");
    // Compiling takes longest: not for a scene that is wrong anyway.
    if (!myMessages.empty())
        return;
    myOsl.load(*myScene, [&](int line, const std::string &message) {
        // Where its statement was, not where the scene ended.
        myLineNumber = line;
        report(message);
    });
}

void vk_SceneReader::checkBehindEnd()
{
    const std::size_t first = myLine.find_first_not_of(" \t\r\v\f");
    if (first == std::string::npos)
        return;
    // Text in front of a scene may have ended it: the picture's own name then follows.
    takeName();
    isGivenUp = true;
    report("expected nothing behind 'end', found " + vk_quoted(myLine.substr(first)));
}

// Puts the words behind the first into myNumbers, `least` to `most` of them.
bool vk_SceneReader::takesNumbers(int least, int most, float smallest, float largest)
{
    const int count = static_cast<int>(myWords.size()) - 1;
    for (int i = 0; i < count && i < most; ++i)
        if (!vk_parseNumber(myWords[static_cast<std::size_t>(i) + 1], myWords[0], smallest, largest,
                            myNumbers[i], myError))
            return false;
    // The first wrong number is told before their count: it is nearer to the mistake.
    if (count >= least && count <= most)
        return true;
    for (const Statement &statement : STATEMENTS)
        if (myWords[0] == statement.word)
            myError = myWords[0] + " expected " + statement.arguments + ", found " +
                      std::to_string(count) + " words";
    return false;
}

bool vk_SceneReader::doPicture()
{
    std::string name;
    if (!vk_fileName(myLine, name, myError))
        return wrong("picture " + myError);
    if (!vk_isPictureName(name))
        return wrong("picture expected a name that ends in .jpg, .jpeg or .png, found " +
                     vk_quoted(name));
    // Text in front of the scene must not choose where the picture goes. Messages take
    // the later name.
    const bool isFirst = myScene->picture.empty();
    myScene->picture = name;
    if (!isFirst)
        return wrong("picture expected only once in a scene");
    // Without folders: a picture that goes out into the world must not tell where its palette lay.
    // Where comments leave no room it goes without.
    static_cast<void>(!keepComment("picture " + name.substr(name.rfind('/') + 1))); // npos + 1: 0
    return true;
}

bool vk_SceneReader::doComment()
{
    // From the line, as quotes and slashes belong to the text.
    const std::size_t start = myLine.find_first_not_of(" \t", myLine.find("comment") + 7);
    return keepComment(start == std::string::npos ? "" : myLine.substr(start)) ||
           wrong("comment expected texts of at most " + std::to_string(VK_LONGEST_COMMENT) +
                 " bytes together");
}

bool vk_SceneReader::keepComment(std::string text)
{
    // Whoever looks at the picture's file later may do so on a terminal.
    UTmakePrintable(text.data(), text.size());
    if (!myScene->comment.empty())
        text.insert(0, "\n");
    const bool hasRoom = myScene->comment.size() + text.size() <= VK_LONGEST_COMMENT;
    if (hasRoom)
        myScene->comment += text;
    return hasRoom;
}

bool vk_SceneReader::doSize()
{
    if (!takesNumbers(2, 2, 1, vk_Scene::LONGEST_SIDE))
        return false;
    const int width = static_cast<int>(myNumbers[0]), height = static_cast<int>(myNumbers[1]);
    if (static_cast<float>(width) != myNumbers[0] || static_cast<float>(height) != myNumbers[1])
        return wrong("size expected whole numbers");
    // Cannot overflow: each side is at most 8192.
    if (width * height > vk_Scene::MOST_PIXELS)
        return wrong("size expected at most " + std::to_string(vk_Scene::MOST_PIXELS) + " pixels");
    myScene->width = width;
    myScene->height = height;
    return true;
}

bool vk_SceneReader::doSamples()
{
    if (!takesNumbers(1, 1, 1, vk_Scene::MOST_SAMPLES))
        return false;
    myScene->samples = static_cast<int>(myNumbers[0]);
    return static_cast<float>(myScene->samples) == myNumbers[0] ||
           wrong("samples expected a whole number");
}

bool vk_SceneReader::doExposure()
{
    // Beyond, all is white or all is black.
    if (!takesNumbers(1, 1, -20, 20))
        return false;
    myScene->exposure = myNumbers[0];
    return true;
}

bool vk_SceneReader::doCamera()
{
    // A new one: what this line leaves out does not come from an earlier one.
    vk_Camera camera;
    if (!vk_parseParams(camera.params(), "camera", myWords, 1, myError))
        return false;
    const vk_Vec view = vk_normalize(camera.at - camera.from);
    if (vk_length(camera.at - camera.from) < 1e-4f)
        return wrong("camera expected 'from' and 'at' to be apart");
    // Else no direction of the picture would be up. A null vector's direction is z, so its length
    // is asked as well.
    if (vk_length(vk_cross(view, vk_normalize(camera.up))) < 1e-3f || vk_length(camera.up) < 1e-6f)
        return wrong("camera expected 'up' to point away from the way it looks");
    myScene->camera = camera;
    return myScene->hasCamera = true;
}

bool vk_SceneReader::doBackground()
{
    const std::string choice = myWords.size() > 1 ? myWords[1] : "";
    // The colour is that of "off": behind "on" it would be lost without a word.
    if (choice == "on" && myWords.size() == 2)
        return myScene->showsEnvironment = true;
    if (choice == "on")
        return wrong("background expected nothing after 'on', found " + vk_quoted(myWords[2]));
    if (choice != "off")
        return wrong("background expected 'on', or 'off' and a colour" +
                     (choice.empty() ? "" : ", found " + vk_quoted(choice)));
    vk_Colour backdrop = vk_grey(NEUTRAL);
    // A colour is read as those of parameters are, names and greys included.
    vk_ParamList off;
    off.colour("off", backdrop, 0, 1000, "");
    if (myWords.size() > 2 && !vk_parseParams(off, "background", myWords, 1, myError))
        return false;
    myScene->showsEnvironment = false;
    myScene->backdrop = backdrop;
    return true;
}

template <class Type, class Pointer>
bool vk_SceneReader::doShader(const vk_ShaderTable<Type> &table, Pointer &shader)
{
    std::unique_ptr<Type> made = vk_parseShader(table, myWords, myError);
    if (made == nullptr)
        return false;
    // After all parameters: each alone may be what makes them right together.
    if (const std::string fault = made->fault(); !fault.empty())
        return wrong(myWords[0] + ' ' + fault);
    shader = std::move(made);
    return true;
}

bool vk_SceneReader::isOsl() const
{
    return myWords.size() > 1 && vk_OslBinding::isName(myWords[1]);
}

// Everything but the statement's word; it is loaded at the end of the scene.
std::shared_ptr<const vk_OslBinding> vk_SceneReader::bindOsl(const vk_OslTargets &targets,
                                                             std::shared_ptr<vk_Parametrised> own)
{
    return myOsl.bind(myLineNumber, {myWords.begin() + 1, myWords.end()}, targets, std::move(own));
}

bool vk_SceneReader::doEnvironment()
{
    return doShader(VK_ENVIRONMENT_SHADERS, myScene->environment);
}

bool vk_SceneReader::doFloor()
{
    if (!isOsl())
        return doShader(VK_SURFACE_SHADERS, myScene->floor);
    myScene->floor = std::make_unique<vk_OslSurface>(bindOsl(vk_OslSurface::TARGETS));
    return true;
}
bool vk_SceneReader::doShadow()
{
    return doShader(VK_SHADOW_SHADERS, myScene->shadow);
}
bool vk_SceneReader::doFog()
{
    if (!isOsl())
        return doShader(VK_FOG_SHADERS, myScene->fog);
    // The binding fills them when it is loaded; the fog reads them later still.
    const auto params = std::make_shared<vk_OslFogParams>();
    myScene->fog = std::make_unique<vk_OslFog>(bindOsl(vk_OslFog::TARGETS, params), params);
    return true;
}
bool vk_SceneReader::doSurface()
{
    if (!isOsl())
        return doShader(VK_SURFACE_SHADERS, myState.surface);
    myState.surface = std::make_shared<vk_OslSurface>(bindOsl(vk_OslSurface::TARGETS));
    return true;
}
bool vk_SceneReader::doDisplace()
{
    if (!isOsl())
        return doShader(VK_DISPLACE_SHADERS, myState.displace);
    myState.displace = std::make_shared<vk_OslDisplace>(bindOsl(vk_OslDisplace::TARGETS));
    return true;
}

bool vk_SceneReader::doLightPlace()
{
    LightPlace place; // only to find mistakes: the words go to each light
    if (!vk_parseParams(place.params(), "lightplace", myWords, 1, myError))
        return false;
    myState.lightPlace.assign(myWords.begin() + 1, myWords.end());
    return true;
}

bool vk_SceneReader::doLight()
{
    // The place goes before the light's own parameters, so that those win. Without a name it would
    // be taken for that.
    if (myWords.size() > 1)
        myWords.insert(myWords.begin() + 2, myState.lightPlace.begin(), myState.lightPlace.end());
    if (myScene->lights.size() == vk_Scene::MOST_LIGHTS)
        return wrong("expected at most " + std::to_string(vk_Scene::MOST_LIGHTS) + " lights");
    if (isOsl()) {
        const auto params = vk_OslLight::makeParameters();
        myScene->lights.push_back(
            std::make_unique<vk_OslLight>(bindOsl(vk_OslLight::TARGETS, params), params));
        return true;
    }
    std::unique_ptr<vk_LightShader> light;
    if (!doShader(VK_LIGHT_SHADERS, light))
        return false;
    myScene->lights.push_back(light->make());
    return true;
}

bool vk_SceneReader::doTransform(const vk_Transform &by)
{
    // The statement nearest to the shape touches it first, as in other scene languages.
    const vk_Transform nested = myState.transform * by;
    // Floats near the limits would tear shapes apart, and no message would tell why.
    if (!nested.isUsable())
        return wrong(myWords[0] + " expected a shape that stays between a thousandth and ten "
                                  "thousand lengths in size, is no sheet or thread, and lies "
                                  "within a million of the origin");
    myState.transform = nested;
    return true;
}

bool vk_SceneReader::doTranslate()
{
    return takesNumbers(3, 3, -1e6f, 1e6f) &&
           doTransform(vk_Transform::translation({myNumbers[0], myNumbers[1], myNumbers[2]}));
}

bool vk_SceneReader::doRotate()
{
    // For its message.
    if (myWords.size() != 5)
        return takesNumbers(4, 4, -1e6f, 1e6f);
    // Up to a hundred turns: a larger angle has few bits left for its fraction.
    float degrees = 0;
    if (!vk_parseNumber(myWords[1], "rotate", -36000, 36000, degrees, myError))
        return false;
    // The angle has bounds of its own; what is left is read as any three numbers.
    myWords.erase(myWords.begin() + 1);
    if (!takesNumbers(3, 3, -1e6f, 1e6f))
        return false;
    const vk_Vec axis = {myNumbers[0], myNumbers[1], myNumbers[2]};
    if (vk_length(axis) < 1e-6f)
        return wrong("rotate expected an axis that points somewhere");
    return doTransform(vk_Transform::rotation(degrees, axis));
}

bool vk_SceneReader::doScale()
{
    if (myWords.size() == 2)
        myWords.insert(myWords.end(), 2, myWords[1]);
    // Factors below 0 mirror.
    return takesNumbers(3, 3, -1e4f, 1e4f) &&
           doTransform(vk_Transform::scaling({myNumbers[0], myNumbers[1], myNumbers[2]}));
}

bool vk_SceneReader::doIdentity()
{
    // Before the check: it does no harm in a scene that is not drawn.
    myState.transform = vk_Transform();
    return takesNumbers(0, 0, 0, 0);
}

bool vk_SceneReader::doShape()
{
    vk_ShapeEntry entry;
    // It is there: a shape's word is that of its statement.
    const vk_ShaderRow<vk_Shape> &row = *vk_findShape(myWords[0]);
    entry.shape = row.make();
    if (!vk_parseParams(entry.shape->params(), row.name, myWords, 1, myError))
        return false;
    if (myScene->shapes.size() == vk_Scene::MOST_SHAPES)
        return wrong("expected at most " + std::to_string(vk_Scene::MOST_SHAPES) + " shapes");
    // As they stand now; statements that follow are about other shapes.
    entry.transform = myState.transform;
    entry.surface = myState.surface;
    entry.displace = myState.displace;
    myScene->shapes.push_back(std::move(entry));
    return true;
}

bool vk_SceneReader::doSource()
{
    if (myWords.size() != 2 || !vk_OslBinding::isName(myWords[1]))
        return wrong("source expected a name that ends in .osl" +
                     (myWords.size() > 1 ? ", found " + vk_quoted(myWords[1]) : ""));
    myOsl.beginSource(myWords[1]);
    return true;
}

bool vk_SceneReader::doEndSource()
{
    // Within a source its line is not obeyed: it ends the source.
    return wrong("expected a statement 'source NAME.osl' before endsource");
}

bool vk_SceneReader::doDefault()
{
    // Statements that take the whole line look for their own word in it.
    myLine.erase(0, myLine.find("default") + 7);
    myWords.erase(myWords.begin());
    // A source has many lines, of which only the first would give way.
    if (myWords.empty() || myWords[0] == "default" || myWords[0] == "source")
        return wrong("default expected a statement behind it");
    if (mySeen.count(myWords[0]) == 0)
        return obey();
    // Checked all the same, on a scene and a state that are thrown away.
    vk_Scene scratch;
    vk_Scene *const scene = myScene;
    const State state = myState;
    const bool ended = myEnded;
    myScene = &scratch;
    const bool good = obey();
    myScene = scene;
    myState = state;
    myEnded = ended;
    return good;
}

bool vk_SceneReader::doEnd()
{
    // With words behind it it is no end, and what follows is looked at, too.
    return myEnded = takesNumbers(0, 0, 0, 0);
}
