#include "tests/support/MiRules.h"

const std::vector<MiStatement> MI_STATEMENTS = {
    {"options", "samples", {"ii", "i"}},
    {"options", "contrast", {"nnnn", "nnn"}},
    {"options", "shadow", {"b"}},
    {"options", "trace", {"b"}},
    {"options", "trace depth", {"iii", "ii", "i"}},
    {"options", "object space", {""}},
    {"options", "gamma", {"n"}},
    {"camera", "output", {"sss", "ss"}},
    {"camera", "focal", {"n"}},
    {"camera", "aperture", {"n"}},
    {"camera", "aspect", {"n"}},
    {"camera", "resolution", {"ii"}},
    {"camera", "volume", {"="}},
    {"camera", "environment", {"="}},
    {"light", "origin", {"nnn"}},
    {"light", "direction", {"nnn"}},
    {"light", "spread", {"n"}},
    {"light", "", {"="}},
    {"material", "", {"="}},
    {"material", "displace", {"="}},
    {"material", "shadow", {"="}},
    {"material", "volume", {"="}},
    {"material", "environment", {"="}},
    {"instance", "transform", {"nnnnnnnnnnnnnnnn"}},
    {"object", "visible", {"b"}},
    {"object", "shadow", {"b"}},
    {"object", "trace", {"b"}},
};

const std::map<std::string, std::vector<std::string>> MI_NEEDED = {
    {"camera", {"output", "focal", "aperture", "resolution"}},
    {"light", {""}},
    {"material", {""}},
};

const std::vector<std::string> MI_PICTURE_TYPES = {"rgb", "rgba"};
const std::vector<std::string> MI_FILE_FORMATS = {"jpg", "tif", "rla", "pic", "ppm"};

static const std::map<std::string, std::string> LIT = {
    {"ambience", "color"}, {"ambient", "color"}, {"diffuse", "color"},
    {"mode", "integer"},   {"lights", "lights"},
};

static std::map<std::string, std::string> lit(std::map<std::string, std::string> more)
{
    more.insert(LIT.begin(), LIT.end());
    return more;
}

static const std::map<std::string, std::string> INFINITE = {
    {"color", "color"}, {"shadow", "boolean"}, {"factor", "scalar"}};

static std::map<std::string, std::string> fading(std::map<std::string, std::string> more)
{
    more.insert(INFINITE.begin(), INFINITE.end());
    more.insert({{"atten", "boolean"}, {"start", "scalar"}, {"stop", "scalar"}});
    return more;
}

const std::map<std::string, MiShader> MI_BASE_SHADERS = {
    {"mib_illum_lambert", {"color", LIT}},
    {"mib_illum_phong", {"color", lit({{"specular", "color"}, {"exponent", "scalar"}})}},
    {"mib_light_infinite", {"color", INFINITE, "light", {"direction"}}},
    {"mib_light_point", {"color", fading({}), "light", {"origin"}}},
    {"mib_light_spot",
     {"color", fading({{"cone", "scalar"}}), "light", {"origin", "direction", "spread"}}},
    {"mib_reflect", {"color", {{"input", "color"}, {"reflect", "color"}, {"notrace", "boolean"}}}},
    {"mib_refract", {"color", {{"input", "color"}, {"refract", "color"}, {"ior", "scalar"}}}},
    {"mib_transparency", {"color", {{"input", "color"}, {"transp", "color"}}}},
    {"mib_volume",
     {"color", {{"color", "color"}, {"max", "scalar"}, {"lightrays", "boolean"}}, "volume"}},
};

std::vector<std::string> miForms(const std::string &type)
{
    static const std::map<std::string, std::vector<std::string>> FORMS = {
        {"color", {"nnnn", "nnn"}}, {"vector", {"nnn"}}, {"scalar", {"n"}},
        {"integer", {"i"}},         {"boolean", {"b"}},  {"string", {"s"}},
    };
    const auto known = FORMS.find(type);
    return known != FORMS.end() ? known->second : std::vector<std::string>{};
}
