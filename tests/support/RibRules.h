// What the RenderMan Interface 3.2 says about a stream's requests, the parameters that
// it declares and the shaders that every renderer has.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

struct RibRequest {
    // What it takes, a letter each: n number, i integer, s text, h number of a light, c
    // colour, m matrix, and * at the end for a parameter list.
    const char *arguments;
    // Where it may stand: o outside of the world, w inside, b both.
    char where = 'b';
};

struct RibType {
    std::string storage; // constant, uniform, varying or vertex
    std::string type;    // float, color, ...
};

// What a shader's parameters are called, by its name, behind the kind of request that
// takes it. Their types are those that RIB declares for all.
struct RibShader {
    const char *request;
    std::vector<const char *> parameters;
};

extern const std::map<std::string, RibRequest> RIB_REQUESTS;
extern const std::map<std::string, RibShader> RIB_SHADERS;

// A request's text that is one of a few, by "REQUEST N" for its Nth value.
extern const std::map<std::string, std::vector<std::string>> RIB_CHOICES;

// What shapes have besides their numbers.
extern const std::set<std::string> RIB_SHAPE_PARAMETERS;

// What options and attributes are called, behind their request and group: "Option
// searchpath". Others may stand for something, but not in a template of ours.
extern const std::map<std::string, std::vector<std::string>> RIB_SETTINGS;

// What ends and what begins it.
extern const std::map<std::string, std::string> RIB_BLOCKS;

// Of a parameter's token: "Kd", or "uniform color Cs" with its own declaration.
// Without a type when nobody has declared it.
RibType ribType(const std::string &token);
std::string ribName(const std::string &token);

// The type that a parameter of the standard's shaders has.
std::string ribShaderType(const std::string &name);

// Numbers, or texts, that a value of a type has.
int ribWidth(const std::string &type);
