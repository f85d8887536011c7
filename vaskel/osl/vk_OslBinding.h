// An OSL shader as one statement of a scene names it:
//
//     NAME.osl [PARAMETER VALUE]... [show WHAT as TARGET]...
//
// Parameters are the shader's own. WHAT is an output of the shader or a number, TARGET what
// it stands for, such as `diff` of a surface. What follows from that is known once the
// scene is whole, when the binding is loaded.
#pragma once

#include "osl/OSL_Context.h"
#include "vaskel/osl/vk_OslLibrary.h"
#include "vaskel/params/vk_Params.h"

// What an output may stand for.
struct vk_OslTarget {
    std::string_view name;
    bool goesWithClosures; // is shown beside them, not in their place
    bool isNumber;         // by itself, numbers come before colours
};
using vk_OslTargets = std::vector<vk_OslTarget>;

class vk_OslBinding
{
public:
    // `words` are those behind the statement's. Of the targets, which live for good, the
    // first gets what the shader shows by itself. Further parameters of the statement go
    // to `own`, which may be null.
    vk_OslBinding(std::shared_ptr<vk_OslLibrary> library, const vk_Words &words,
                  const vk_OslTargets &targets, std::shared_ptr<vk_Parametrised> own = nullptr);

    // Whether a statement names an OSL shader.
    static bool isName(const std::string &word);

    // Compiles the shader and checks the words. False, and messages a line each without
    // file and line, when something is wrong.
    [[nodiscard]] bool load(std::vector<std::string> &messages);

    // ---- Once loaded

    const std::shared_ptr<const OSL_Program> &program() const { return myProgram; }
    vk_OslLibrary &library() const { return *myLibrary; }

    const vk_OslTargets &targets() const { return *myTargets; }

    // What feeds a target, an output or a number as text; "" for nothing.
    std::string feedOf(std::size_t target) const;
    bool isDefault(std::size_t target) const { return myShown[target].empty(); }

    // The closure that says it all; "" when outputs do.
    const std::string &closure() const { return myClosure; }

private:
    bool parse(OSL_Shader &shader, std::string &error);
    bool parseParameter(const OSL_Shader &shader, std::size_t &at, std::string &error);
    bool parseOwn(std::size_t &at, std::string &error);
    bool parseShow(const OSL_Shader &shader, std::size_t &at, std::string &error);
    std::string unknown(const OSL_Shader &shader, const std::string &word);
    void chooseOutputs(const OSL_Shader &shader);

    std::shared_ptr<vk_OslLibrary> myLibrary;
    std::string myName;
    vk_Words myWords;
    const vk_OslTargets *myTargets;
    std::shared_ptr<vk_Parametrised> myOwn;
    std::vector<OSL_Binding> myValues;
    std::vector<std::string> myShown; // by target
    std::string myDefault;            // of the first target
    std::string myClosure;
    std::shared_ptr<const OSL_Program> myProgram;
};
