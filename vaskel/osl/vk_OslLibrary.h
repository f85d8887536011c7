// The OSL shaders of a scene: sources, textures, and what shaders say while they run.
//
// Sources are added while the scene is read; once its picture is known, files may be opened
// and shaders compiled, each source once. Then everything from texture() on may be called
// by several threads.
#pragma once

#include "osl/OSL_Shader.h"
#include "osl/lib/osl_Texture.h"
#include "vaskel/osl/vk_OslFiles.h"

#include <atomic>
#include <map>
#include <set>

struct vk_Scene;

class vk_OslLibrary
{
public:
    // ---- While the scene is read

    // A source that stands in the scene; it counts in place of a file of that name.
    void addSource(const std::string &name, std::string text) { mySources[name] = std::move(text); }

    // The scene is whole. Keeps a reference to it for what shaders may ask.
    void open(const vk_Scene &scene);

    // A shader by the name of its source. Null, and messages a line each, when it cannot be
    // read or does not compile.
    OSL_Shader *shader(const std::string &name, std::vector<std::string> &messages);

    // ---- While it is drawn

    std::shared_ptr<const osl_Texture> texture(const std::string &name, std::string &error);

    // False when there is no such file that may be read.
    bool dictionary(const std::string &name, std::string &text);

    // Puts a line on standard error: "PICTURE: KIND: TEXT". Each once, and not too many.
    void say(const char *kind, std::string_view text);

    // A shader was stopped, as one that never ends is: there will be no picture.
    void stop() { myIsStopped = true; }
    bool isStopped() const { return myIsStopped; }

    const vk_Scene &scene() const { return *myScene; }

    // All files that were read.
    std::vector<std::string> opened() const;

private:
    struct Entry {
        OSL_Shader shader;
        bool isGood = false;
        std::vector<std::string> messages;
    };
    void compile(const std::string &name, Entry &entry);

    std::map<std::string, std::string> mySources;
    std::map<std::string, Entry> myEntries;
    std::unique_ptr<vk_OslFiles> myFiles;
    const vk_Scene *myScene = nullptr;
    std::string mySubject; // the picture, for messages
    osl_TextureCache myTextures{std::size_t{256} << 20};
    std::mutex myMutex; // of what was said
    std::set<std::string> mySaid;
    std::atomic<bool> myIsStopped{false};
};
