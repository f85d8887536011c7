// What the RenderMan Interface 3.2 says about a stream's requests, the parameters that
// it declares and the shaders that every renderer has.
#pragma once

#include <map>
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
// takes it.
struct RibShader {
    const char *request;
    std::vector<const char *> parameters;
};

extern const std::map<std::string, RibRequest> RIB_REQUESTS;
extern const std::map<std::string, RibShader> RIB_SHADERS;

// What ends and what begins it.
extern const std::map<std::string, std::string> RIB_BLOCKS;

// Of a parameter's token: "Kd", or "uniform color Cs" with its own declaration.
// Without a type when nobody has declared it.
RibType ribType(const std::string &token);
std::string ribName(const std::string &token);

// Numbers, or texts, that a value of a type has.
int ribWidth(const std::string &type);
