#include "tests/support/RibRules.h"

#include "tests/support/PlainText.h"

const std::map<std::string, RibRequest> RIB_REQUESTS = {
    {"version", {"n", 'o'}},
    {"Declare", {"ss"}},
    {"FrameBegin", {"i", 'o'}},
    {"FrameEnd", {"", 'o'}},
    {"WorldBegin", {"", 'o'}},
    {"WorldEnd", {"", 'w'}},
    {"AttributeBegin", {""}},
    {"AttributeEnd", {""}},
    {"TransformBegin", {""}},
    {"TransformEnd", {""}},
    {"Format", {"iin", 'o'}},
    {"Display", {"sss*", 'o'}},
    {"Projection", {"s*", 'o'}},
    {"Clipping", {"nn", 'o'}},
    {"PixelSamples", {"nn", 'o'}},
    {"PixelFilter", {"snn", 'o'}},
    {"Exposure", {"nn", 'o'}},
    {"Imager", {"s*", 'o'}},
    {"Quantize", {"siiin", 'o'}},
    {"Hider", {"s*", 'o'}},
    {"Option", {"s*", 'o'}},
    {"Attribute", {"s*"}},
    {"Color", {"c"}},
    {"Opacity", {"c"}},
    {"LightSource", {"sh*"}},
    {"Illuminate", {"hi"}},
    {"Surface", {"s*"}},
    {"Displacement", {"s*"}},
    {"Atmosphere", {"s*"}},
    {"ShadingRate", {"n"}},
    {"Matte", {"i"}},
    {"Sides", {"i"}},
    {"Orientation", {"s"}},
    {"Identity", {""}},
    {"Transform", {"m"}},
    {"ConcatTransform", {"m"}},
    {"Translate", {"nnn"}},
    {"Rotate", {"nnnn"}},
    {"Scale", {"nnn"}},
    {"CoordinateSystem", {"s"}},
    {"Polygon", {"*", 'w'}},
    {"Patch", {"s*", 'w'}},
    {"PatchMesh", {"sisis*", 'w'}},
    {"Sphere", {"nnnn*", 'w'}},
    {"Cylinder", {"nnnn*", 'w'}},
    {"Disk", {"nnn*", 'w'}},
};

const std::map<std::string, std::vector<std::string>> RIB_CHOICES = {
    {"Display 1", {"file", "framebuffer"}},
    {"Display 2", {"rgb", "rgba", "rgbz", "rgbaz", "a", "z", "az"}},
    {"Projection 0", {"perspective", "orthographic"}},
    {"PixelFilter 0", {"box", "triangle", "catmull-rom", "gaussian", "sinc"}},
    {"Quantize 0", {"rgba", "z"}},
    {"Hider 0", {"hidden", "paint"}},
    {"Orientation 0", {"outside", "inside", "lh", "rh"}},
    {"Patch 0", {"bilinear", "bicubic"}},
    {"PatchMesh 0", {"bilinear", "bicubic"}},
    {"PatchMesh 2", {"periodic", "nonperiodic"}},
    {"PatchMesh 4", {"periodic", "nonperiodic"}},
};

const std::set<std::string> RIB_SHAPE_PARAMETERS = {"P",  "Pz", "N", "Np", "Cs",
                                                    "Os", "s",  "t", "st"};

const std::map<std::string, std::vector<std::string>> RIB_SETTINGS = {
    {"Option searchpath", {"shader", "texture", "archive"}},
    {"Attribute displacementbound", {"sphere", "coordinatesystem"}},
    {"Attribute light", {"shadows"}},
    {"Attribute visibility", {"transmission"}},
};

const std::map<std::string, std::string> RIB_BLOCKS = {
    {"FrameEnd", "FrameBegin"},
    {"WorldEnd", "WorldBegin"},
    {"AttributeEnd", "AttributeBegin"},
    {"TransformEnd", "TransformBegin"},
};

const std::map<std::string, RibShader> RIB_SHADERS = {
    {"constant", {"Surface", {}}},
    {"matte", {"Surface", {"Ka", "Kd"}}},
    {"metal", {"Surface", {"Ka", "Ks", "roughness"}}},
    {"shinymetal", {"Surface", {"Ka", "Ks", "Kr", "roughness", "texturename"}}},
    {"plastic", {"Surface", {"Ka", "Kd", "Ks", "roughness", "specularcolor"}}},
    {"paintedplastic",
     {"Surface", {"Ka", "Kd", "Ks", "roughness", "specularcolor", "texturename"}}},
    {"ambientlight", {"LightSource", {"intensity", "lightcolor"}}},
    {"distantlight", {"LightSource", {"intensity", "lightcolor", "from", "to"}}},
    {"pointlight", {"LightSource", {"intensity", "lightcolor", "from"}}},
    {"spotlight",
     {"LightSource",
      {"intensity", "lightcolor", "from", "to", "coneangle", "conedeltaangle",
       "beamdistribution"}}},
    {"depthcue", {"Atmosphere", {"mindistance", "maxdistance", "background"}}},
    {"fog", {"Atmosphere", {"distance", "background"}}},
    {"bumpy", {"Displacement", {"Km", "texturename"}}},
    {"background", {"Imager", {"bgcolor"}}},
};

static const std::map<std::string, RibType> DECLARED = {
    {"P", {"vertex", "point"}},
    {"Pz", {"vertex", "float"}},
    {"N", {"varying", "normal"}},
    {"Np", {"uniform", "normal"}},
    {"Cs", {"varying", "color"}},
    {"Os", {"varying", "color"}},
    {"s", {"varying", "float"}},
    {"t", {"varying", "float"}},
    {"st", {"varying", "pair"}},
    {"fov", {"uniform", "float"}},
    {"Ka", {"uniform", "float"}},
    {"Kd", {"uniform", "float"}},
    {"Ks", {"uniform", "float"}},
    {"Kr", {"uniform", "float"}},
    {"roughness", {"uniform", "float"}},
    {"texturename", {"uniform", "string"}},
    {"specularcolor", {"uniform", "color"}},
    {"intensity", {"uniform", "float"}},
    {"lightcolor", {"uniform", "color"}},
    {"from", {"uniform", "point"}},
    {"to", {"uniform", "point"}},
    {"coneangle", {"uniform", "float"}},
    {"conedeltaangle", {"uniform", "float"}},
    {"beamdistribution", {"uniform", "float"}},
    {"mindistance", {"uniform", "float"}},
    {"maxdistance", {"uniform", "float"}},
    {"distance", {"uniform", "float"}},
    {"background", {"uniform", "color"}},
};

RibType ribType(const std::string &token)
{
    static const std::set<std::string> STORAGES = {"constant", "uniform", "varying", "vertex"};
    const auto words = plainSplitWords(token);
    if (words.size() == 3 && STORAGES.count(words[0]) != 0)
        return {words[0], words[1]};
    if (words.size() == 2)
        return {"uniform", words[0]};
    const auto known = DECLARED.find(token);
    return known != DECLARED.end() ? known->second : RibType{};
}

std::string ribName(const std::string &token)
{
    return token.substr(token.find_last_of(' ') + 1);
}

// Two of them are declared by nobody.
std::string ribShaderType(const std::string &name)
{
    if (name == "Km")
        return "float";
    return name == "bgcolor" ? "color" : ribType(name).type;
}

int ribWidth(const std::string &type)
{
    static const std::map<std::string, int> WIDTHS = {
        {"float", 1}, {"integer", 1}, {"int", 1},    {"string", 1}, {"point", 3},   {"color", 3},
        {"pair", 2},  {"vector", 3},  {"normal", 3}, {"hpoint", 4}, {"matrix", 16},
    };
    const auto known = WIDTHS.find(type);
    return known != WIDTHS.end() ? known->second : 0;
}
