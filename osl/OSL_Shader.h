// A shader, from its source to a program that a machine runs.
//
//     OSL_Shader shader;
//     if (!shader.compileFile("wood.osl", options))
//         report(shader.messages());
//     std::shared_ptr<const OSL_Program> program = shader.link({{"rings",
//     OSL_Value::ofFloat(12)}}); OSL_Context context(program, renderer);        // one for each
//     thread context.run(points);                           // up to context.width() points const
//     OSL_Output *diff = context.output("diff");
//
// compile: reads the source and says what is wrong with it. link: makes code with the
// values that parameters have for good; what follows from them is worked out there.
// A shader may be linked any number of times; a program never changes and may be
// run by any number of threads, each with an OSL_Context of its own.
#pragma once

#include "osl/OSL_Value.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct osl_Code;
struct osl_Compilation;

struct OSL_CompileOptions {
    std::vector<std::string> includePaths;
    std::vector<std::string> definitions; // "NAME" or "NAME=VALUE"

    // Which files may be included; empty allows all. The source itself is always read.
    std::function<bool(const std::string &path)> mayRead;
};

struct OSL_Metadatum {
    std::string name;
    OSL_Value value;
};

struct OSL_Parameter {
    std::string name; // "ray.pos" for the field of a struct
    osl_Type type;
    bool isOutput = false;
    bool isInterpolated = false; // lockgeom = 0: asked of the renderer at each point
    bool hasDefault = false;     // a constant one, in `value`
    OSL_Value value;
    std::vector<OSL_Metadatum> metadata;
};

using OSL_Binding = std::pair<std::string, OSL_Value>;

// Code for a machine. Nothing but OSL_Context looks into it.
class OSL_Program
{
public:
    explicit OSL_Program(std::unique_ptr<const osl_Code> code);
    ~OSL_Program();
    const osl_Code &code() const { return *myCode; }
    int instructions() const;

private:
    std::unique_ptr<const osl_Code> myCode;
};

class OSL_Shader
{
public:
    OSL_Shader();
    ~OSL_Shader();
    OSL_Shader(const OSL_Shader &) = delete;
    OSL_Shader &operator=(const OSL_Shader &) = delete;

    // The last shader of a source counts. False when there were errors. The time and
    // memory that a source can take are bounded.
    [[nodiscard]] bool compileFile(const std::string &path, const OSL_CompileOptions &options);
    [[nodiscard]] bool compileText(const std::string &text, const std::string &name,
                                   const OSL_CompileOptions &options);

    // Errors and warnings, "file:line: error: text" and a newline each.
    const std::string &messages() const;

    // ---- Of a shader that compiled --------------------------------------------

    const std::string &name() const { return myName; }
    const std::string &kind() const { return myKind; } // "surface", "shader" ...
    const std::vector<OSL_Parameter> &parameters() const { return myParameters; }
    const std::vector<OSL_Metadatum> &metadata() const { return myMetadata; }
    const OSL_Parameter *findParameter(const std::string &name) const; // null for none

    // With values for some parameters, converted to their types; of a name the last
    // counts. Null, and messages() says why, for a name or a type that does not fit and for code
    // beyond all bounds. The shader may go; the program stays.
    std::shared_ptr<const OSL_Program> link(const std::vector<OSL_Binding> &bindings);

private:
    bool compile();
    void describe();

    std::unique_ptr<osl_Compilation> myCompilation;
    std::string myMessages;
    std::string myName;
    std::string myKind;
    std::vector<OSL_Parameter> myParameters;
    std::vector<OSL_Metadatum> myMetadata;
};
