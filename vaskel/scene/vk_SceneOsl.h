// The OSL shaders of a scene while it is read: sources that stand in its text, and what its
// statements bind to shaders. Nothing is compiled before the scene has ended: a source may stand
// behind the statement that uses it, and the picture's name, which comes late, tells where files
// may lie.
#pragma once

#include "vaskel/osl/vk_OslBinding.h"
#include "vaskel/scene/vk_Scene.h"

#include <functional>
#include <string>
#include <vector>

class vk_SceneOsl
{
public:
    // For a statement in a line: `words` are the shader's name, in front of which the name of a
    // shop may stand, and its parameters; `own` is as in vk_OslBinding. load() fills the binding.
    std::shared_ptr<const vk_OslBinding> bind(int line, vk_Words words,
                                              const vk_OslTargets &targets,
                                              std::shared_ptr<vk_Parametrised> own);

    // The lines that follow are a source of that name, up to "endsource".
    void beginSource(const std::string &name);
    bool isInSource() const { return !mySourceName.empty(); }
    const std::string &sourceName() const { return mySourceName; }

    // A line within a source, as it stands. False when it ends a source, and all so far are
    // longer than may be together.
    // REQUIRES: isInSource()
    [[nodiscard]] bool takeLine(const std::string &line);

    // Once, when the scene is whole: compiles and binds what the statements asked for, and hands it
    // to the scene. Mistakes are reported with the line of their statement.
    void load(vk_Scene &scene,
              const std::function<void(int line, const std::string &message)> &report);

private:
    static constexpr std::size_t LONGEST = 4 << 20; // bytes of all sources together

    struct Bound {
        int line;
        std::shared_ptr<vk_OslBinding> binding;
    };

    const std::shared_ptr<vk_OslLibrary> &library();

    std::shared_ptr<vk_OslLibrary> myLibrary; // null until there is a shader or a source
    std::vector<Bound> myBound;
    std::string mySourceName; // of the source that is being read, or ""
    std::string mySource;
    std::size_t mySize = 0; // of all
};
