// What the manual of mental ray's scene description language says about the parts of a
// scene that the templates write, and about the shaders of its base library.
#pragma once

#include <map>
#include <string>
#include <vector>

// A statement inside of a block and what it takes, a letter each: n number, i integer,
// f number with a point, b on or off, s text; "|" stands between two forms, a word for
// itself, and = for the call of a shader.
struct MiStatement {
    const char *block;
    const char *word;
    std::vector<std::string> forms;
};
extern const std::vector<MiStatement> MI_STATEMENTS;

// Statements that a block cannot do without.
extern const std::map<std::string, std::vector<std::string>> MI_NEEDED;

// What "output" takes: a type of picture, and a format of file.
extern const std::vector<std::string> MI_PICTURE_TYPES;
extern const std::vector<std::string> MI_FILE_FORMATS;

struct MiShader {
    std::string type;                              // of what it gives
    std::map<std::string, std::string> parameters; // name: type
    std::string use = "";                          // "light", "volume" or any other: ""
    std::vector<std::string> places = {};          // statements that such a light needs
};
extern const std::map<std::string, MiShader> MI_BASE_SHADERS;

// What a value of a type is, in the letters above, in the forms that it may have. "" for
// a type that nobody knows; a list of lights has a form of its own.
std::vector<std::string> miForms(const std::string &type);
