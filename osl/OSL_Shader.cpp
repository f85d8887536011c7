#include "osl/OSL_Shader.h"

#include "osl/check/osl_Checker.h"
#include "osl/code/osl_Generator.h"
#include "osl/syntax/osl_Parser.h"
#include "osl/text/osl_Preprocessor.h"

#include <algorithm>

// All that is kept of a source.
struct osl_Compilation {
    osl_Messages messages;
    std::unique_ptr<osl_Lines> lines;
    std::unique_ptr<osl_Preprocessor> preprocessor;
    std::vector<osl_Token> tokens;
    osl_Tree tree;
    std::unique_ptr<osl_Checker> checker;
};

namespace
{
const char *const CONSTANTS[] = {
    "M_PI=3.1415926535897932",       "M_PI_2=1.5707963267948966",    "M_PI_4=0.7853981633974483",
    "M_2_PI=0.6366197723675813",     "M_2PI=6.2831853071795865",     "M_4PI=12.566370614359173",
    "M_2_SQRTPI=1.1283791670955126", "M_E=2.7182818284590452",       "M_LN2=0.6931471805599453",
    "M_LN10=2.3025850929940457",     "M_LOG2E=1.4426950408889634",   "M_LOG10E=0.4342944819032518",
    "M_SQRT2=1.4142135623730950",    "M_SQRT1_2=0.7071067811865475", "OSL_VERSION_MAJOR=1",
    "OSL_VERSION_MINOR=14",          "OSL_VERSION_PATCH=0",          "OSL_VERSION=11400",
};

void define(osl_Compilation &made, const std::string &definition)
{
    made.lines->define(definition);
    made.preprocessor->define(definition);
}

void prepare(osl_Compilation &made, const OSL_CompileOptions &options)
{
    made.lines = std::make_unique<osl_Lines>(made.messages);
    made.preprocessor = std::make_unique<osl_Preprocessor>(*made.lines, made.messages);
    for (const char *constant : CONSTANTS)
        define(made, constant);
    for (const std::string &definition : options.definitions)
        define(made, definition);
    for (const std::string &path : options.includePaths)
        made.lines->addIncludePath(path);
    if (options.mayRead)
        made.lines->setFileRule(options.mayRead);
}

// A literal, a list of them or a constructor of literals; false for anything else.
bool constantOf(const osl_Node *node, OSL_Value &value)
{
    switch (node->kind) {
    case osl_Node::INT:
        value.ints.push_back(node->number);
        return true;
    case osl_Node::FLOAT:
        value.floats.push_back(node->real);
        return true;
    case osl_Node::STRING:
        value.strings.emplace_back(node->text);
        return true;
    case osl_Node::UNARY: {
        OSL_Value inner;
        if (node->punct != osl_punct("-") || !constantOf(node->a, inner))
            return false;
        for (const int number : inner.ints)
            value.ints.push_back(static_cast<int>(0u - static_cast<unsigned>(number)));
        for (const float number : inner.floats)
            value.floats.push_back(-number);
        return inner.strings.empty();
    }
    case osl_Node::COMPOUND:
    case osl_Node::CONSTRUCT: {
        if (node->type.isStruct())
            return false;
        const int count = osl_listLength(node->a);
        const bool isList = node->kind == osl_Node::COMPOUND;
        for (const osl_Node *item = node->a; item != nullptr; item = item->next) {
            OSL_Value part;
            if (!constantOf(item, part) || (!isList && !part.strings.empty()))
                return false;
            const bool isReal = (!isList || node->type.isFloatBased()) && !part.ints.empty();
            if (isReal && (!isList || node->type.base != osl_Type::INT)) {
                part.floats.push_back(static_cast<float>(part.ints[0]));
                part.ints.clear();
            }
            const bool isSingle = isList ? node->type.isArray() : count == 1;
            if (isSingle && node->type.isFloatBased() && part.floats.size() == 1) {
                part.type = osl_Type::FLOAT;
                static_cast<void>(part.convertTo(node->type.element())); // a number always fits
            }
            value.ints.insert(value.ints.end(), part.ints.begin(), part.ints.end());
            value.floats.insert(value.floats.end(), part.floats.begin(), part.floats.end());
            value.strings.insert(value.strings.end(), part.strings.begin(), part.strings.end());
        }
        return true;
    }
    default:
        return false;
    }
}

template <class T>
void repeat(std::vector<T> &items, int times)
{
    const std::vector<T> once = items;
    for (int i = 1; i < times; ++i)
        items.insert(items.end(), once.begin(), once.end());
}

bool valueOf(const osl_Node *node, const osl_Type &type, OSL_Value &value)
{
    const bool isFilled = type.isArray() && node != nullptr && node->kind != osl_Node::COMPOUND;
    if (isFilled && !node->type.isArray()) { // by one value
        if (!valueOf(node, type.element(), value))
            return false;
        value.type = type.arrayOf(std::max(type.array, 1));
        repeat(value.ints, type.array);
        repeat(value.floats, type.array);
        repeat(value.strings, type.array);
        return true;
    }
    if (node == nullptr || type.isStruct() || type.isClosure || !constantOf(node, value))
        return false;
    const size_t numbers = value.ints.size() + value.floats.size() + value.strings.size();
    if (type.isArray()) {
        const auto components = static_cast<size_t>(type.components());
        if (type.isFloatBased()) {
            for (const int number : value.ints)
                value.floats.push_back(static_cast<float>(number));
            value.ints.clear();
        }
        value.type = type.arrayOf(static_cast<int>((numbers + components - 1) / components));
        const int wanted = type.array;
        return wanted == osl_Type::UNSIZED || value.type.array == wanted || value.convertTo(type);
    }
    value.type = !value.strings.empty() ? osl_Type(osl_Type::STRING)
                 : !value.ints.empty()  ? osl_Type(osl_Type::INT)
                                        : osl_Type(osl_Type::FLOAT);
    if (numbers == static_cast<size_t>(type.components()) && type.isFloatBased() &&
        value.ints.empty())
        value.type = type;
    return numbers > 0 && value.convertTo(type);
}

std::vector<OSL_Metadatum> metadataOf(const osl_Node *list)
{
    std::vector<OSL_Metadatum> all;
    for (; list != nullptr; list = list->next) {
        OSL_Metadatum item;
        item.name = list->name;
        if (valueOf(list->a, list->type, item.value))
            all.push_back(std::move(item));
    }
    return all;
}

void addParameters(const osl_Node *node, const std::string &name, const osl_Type &type,
                   std::vector<OSL_Parameter> &all)
{
    if (type.isStruct()) {
        for (const osl_Field &field : type.record->fields)
            addParameters(node, name + "." + std::string(field.name),
                          type.isArray() ? field.type.arrayOf(type.array) : field.type, all);
        return;
    }
    OSL_Parameter made;
    made.name = name;
    made.type = type;
    made.isOutput = node->isOutput;
    made.metadata = metadataOf(node->c);
    made.hasDefault = !node->type.isStruct() && valueOf(node->a, type, made.value);
    for (const OSL_Metadatum &item : made.metadata)
        made.isInterpolated = made.isInterpolated ||
                              (item.name == "lockgeom" && item.value.ints == std::vector<int>{0});
    all.push_back(std::move(made));
}
} // namespace

OSL_Program::OSL_Program(std::unique_ptr<const osl_Code> code) : myCode(std::move(code)) {}

OSL_Program::~OSL_Program() = default;

int OSL_Program::instructions() const
{
    return static_cast<int>(myCode->instructions.size());
}

OSL_Shader::OSL_Shader() = default;
OSL_Shader::~OSL_Shader() = default;

const std::string &OSL_Shader::messages() const
{
    return myMessages;
}

bool OSL_Shader::compileFile(const std::string &path, const OSL_CompileOptions &options)
{
    myCompilation = std::make_unique<osl_Compilation>();
    OSL_CompileOptions own = options;
    if (options.mayRead)
        own.mayRead = [&options, path](const std::string &name) {
            return name == path || options.mayRead(name);
        };
    prepare(*myCompilation, own);
    if (!myCompilation->lines->openFile(path)) {
        myMessages = path + ":0: error: cannot read the file\n";
        return false;
    }
    return compile();
}

bool OSL_Shader::compileText(const std::string &text, const std::string &name,
                             const OSL_CompileOptions &options)
{
    myCompilation = std::make_unique<osl_Compilation>();
    prepare(*myCompilation, options);
    myCompilation->lines->openText(text, name);
    return compile();
}

bool OSL_Shader::compile()
{
    osl_Compilation &made = *myCompilation;
    made.tokens = made.preprocessor->takeAll();
    osl_Parser parser(made.tokens, made.tree, made.messages);
    made.checker = std::make_unique<osl_Checker>(made.tree, made.messages);
    bool isGood = parser.parse() && made.checker->run();
    if (isGood && made.messages.errors() == 0 && made.tree.shader == nullptr) {
        made.messages.error({}, "No shader function defined");
        isGood = false;
    }
    isGood = isGood && made.messages.errors() == 0;
    myMessages = made.messages.text();
    if (isGood)
        describe();
    return isGood;
}

void OSL_Shader::describe()
{
    const osl_Node *shader = myCompilation->tree.shader;
    myName = shader->name;
    myKind = shader->text;
    myMetadata = metadataOf(shader->c);
    myParameters.clear();
    for (const osl_Node *node = shader->a; node != nullptr; node = node->next)
        addParameters(node, std::string(node->name), node->type, myParameters);
}

const OSL_Parameter *OSL_Shader::findParameter(const std::string &name) const
{
    for (const OSL_Parameter &parameter : myParameters) {
        if (parameter.name == name)
            return &parameter;
    }
    return nullptr;
}

std::shared_ptr<const OSL_Program> OSL_Shader::link(const std::vector<OSL_Binding> &bindings)
{
    myMessages.clear();
    for (const OSL_Binding &binding : bindings) {
        const OSL_Parameter *parameter = findParameter(binding.first);
        OSL_Value value = binding.second;
        if (parameter == nullptr)
            myMessages += "the shader has no parameter '" + binding.first + "'\n";
        else if (!value.convertTo(parameter->type))
            myMessages += "parameter '" + binding.first + "' is a " + parameter->type.name() +
                          ", not a " + value.type.name() + "\n";
    }
    if (!myMessages.empty())
        return nullptr;
    osl_Generator generator(myCompilation->tree, myCompilation->messages, bindings);
    std::string error;
    std::unique_ptr<osl_Code> code = generator.run(error);
    if (code == nullptr) {
        myMessages = error + "\n";
        return nullptr;
    }
    return std::make_shared<OSL_Program>(std::move(code));
}
