// Reads the scene language (doc/scene.md) into a scene.
//
// A line is split into words; the first one picks a row of the table of
// statements; the row's function takes the rest. Whatever is wrong becomes a
// message "file:line: error: ..." that says what was expected and names the
// nearest known word; reading goes on behind it, so that one run shows more
// than one mistake and whoever writes to a pipe can finish.
//
// Only a scene that was read up to its last statement, `end`, counts: half of one looks
// like another scene.
#pragma once

#include "vaskel/osl/vk_OslBinding.h"
#include "vaskel/scene/vk_Scene.h"
#include "vaskel/scene/vk_SceneOsl.h"

#include <cstdio>
#include <set>
#include <string>
#include <vector>

class vk_SceneReader
{
public:
    // `name` is what messages call the file; null: the picture's name, as far as the
    // scene has one.
    vk_SceneReader(const char *name, vk_Scene &scene);

    // Reads to the end of the file, or to the tenth mistake. False when something was
    // wrong; the scene is then not to be drawn.
    [[nodiscard]] bool read(std::FILE *file);

    // The messages, in order, without newlines.
    std::vector<std::string> messages() const;

    // For tests and lists: the words of all statements.
    static std::vector<std::string_view> words();

private:
    static constexpr std::size_t MOST_MESSAGES = 10;
    static constexpr std::size_t MOST_SKIPPED = 1
                                                << 28; // bytes, behind which no name is looked for
    static constexpr std::size_t LONGEST_LINE = 1000000;

    // A statement's function finds the line in myLine and its words in myWords.
    // It gives false, and myError says why, when something is wrong.
    using Handler = bool (vk_SceneReader::*)();
    struct Statement;
    static const Statement STATEMENTS[];

    // What the next light and the next shape get.
    struct State {
        vk_Words lightPlace;
        vk_Transform transform;
        std::shared_ptr<const vk_SurfaceShader> surface;
        std::shared_ptr<const vk_DisplaceShader> displace;
    };

    bool readLine(std::FILE *file);
    void takeLine();
    bool obey();
    bool takesLine() const;
    void report(const std::string &message);
    void checkWhole();
    void checkBehindEnd();
    void takeName();

    bool wrong(const std::string &message);
    bool takesNumbers(int least, int most, float smallest, float largest);
    bool doTransform(const vk_Transform &by);
    template <class Type, class Pointer>
    bool doShader(const vk_ShaderTable<Type> &table, Pointer &shader);

    bool isOsl() const;
    std::shared_ptr<const vk_OslBinding> bindOsl(const vk_OslTargets &targets,
                                                 std::shared_ptr<vk_Parametrised> own = nullptr);

    bool doPicture();
    bool keepComment(std::string text);
    bool doComment();
    bool doSize();
    bool doSamples();
    bool doExposure();
    bool doCamera();
    bool doBackground();
    bool doEnvironment();
    bool doFloor();
    bool doShadow();
    bool doFog();
    bool doLightPlace();
    bool doLight();
    bool doSurface();
    bool doDisplace();
    bool doTranslate();
    bool doRotate();
    bool doScale();
    bool doIdentity();
    bool doShape();
    bool doSource();
    bool doEndSource();
    bool doDefault();
    bool doEnd();

    std::string myName;
    vk_Scene *myScene;
    int myLineNumber = 0;
    std::string myLine;
    vk_Words myWords;
    float myNumbers[3] = {0, 0, 0}; // of takesNumbers()
    std::string myError;
    std::vector<std::string> myMessages; // without the file's name
    std::set<std::string> mySeen;        // words of statements used without `default`
    bool myEnded = false;
    bool isGivenUp = false; // what comes is not obeyed any more
    State myState;
    vk_SceneOsl myOsl;
};
