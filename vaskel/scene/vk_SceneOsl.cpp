#include "vaskel/scene/vk_SceneOsl.h"

#include "vaskel/params/vk_Shader.h"
#include "vaskel/scene/vk_Line.h"

// Only for who needs it: most scenes have no shader of their own.
const std::shared_ptr<vk_OslLibrary> &vk_SceneOsl::library()
{
    if (myLibrary == nullptr)
        myLibrary = std::make_shared<vk_OslLibrary>();
    return myLibrary;
}

std::shared_ptr<const vk_OslBinding> vk_SceneOsl::bind(int line, vk_Words words,
                                                       const vk_OslTargets &targets,
                                                       std::shared_ptr<vk_Parametrised> own)
{
    words[0] = vk_shaderName(words[0]);
    const auto binding = std::make_shared<vk_OslBinding>(library(), words, targets, std::move(own));
    myBound.push_back({line, binding});
    return binding;
}

void vk_SceneOsl::beginSource(const std::string &name)
{
    mySourceName = name;
    mySource.clear();
}

bool vk_SceneOsl::takeLine(const std::string &line)
{
    vk_Words words;
    std::string ignored;
    // A line of C may hold a lone quote; only a line that is nothing but "endsource" ends it.
    static_cast<void>(vk_splitLine(line, words, ignored));
    // Of all sources: many short ones take as long to compile as a long one.
    mySize += line.size() + 1;
    if (words.size() != 1 || words[0] != "endsource") {
        // Beyond, lines are only counted, so that one message comes at the source's end.
        if (mySize <= LONGEST)
            mySource += line + "\n";
        return true;
    }
    library()->addSource(mySourceName, mySource);
    mySourceName.clear();
    return mySize <= LONGEST;
}

void vk_SceneOsl::load(vk_Scene &scene,
                       const std::function<void(int line, const std::string &message)> &report)
{
    if (myLibrary == nullptr)
        return;
    scene.osl = myLibrary;
    myLibrary->open(scene);
    // Those of defaults that gave way, too: they are checked all the same.
    for (const Bound &bound : myBound) {
        std::vector<std::string> messages;
        if (bound.binding->load(messages))
            continue;
        for (const std::string &message : messages)
            report(bound.line, message);
    }
}
