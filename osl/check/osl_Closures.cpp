#include "osl/check/osl_Closures.h"

#include <map>

namespace
{
const struct {
    const char *name, *parameters, *keywords;
} CLOSURES[] = {
    {"emission", "", ""},
    {"background", "", ""},
    {"diffuse", "n N", "s label"},
    {"oren_nayar", "n N, f sigma", ""},
    {"translucent", "n N", ""},
    {"translucent", "", ""},
    {"phong", "n N, f exponent", "s label"},
    {"ward", "n N, v T, f xrough, f yrough", ""},
    {"microfacet", "s distribution, n N, v U, f xalpha, f yalpha, f eta, i refract", ""},
    {"reflection", "n N, f eta", ""},
    {"refraction", "n N, f eta", ""},
    {"transparent", "", ""},
    {"holdout", "", ""},
    {"debug", "s tag", ""},
    {"isotropic", "", ""},
    {"henyey_greenstein", "f g", ""},
    {"absorption", "", ""},
    // With the names and parameters of MaterialX
    {"oren_nayar_diffuse_bsdf", "n N, c albedo, f roughness", "s label, i energy_compensation"},
    {"burley_diffuse_bsdf", "n N, c albedo, f roughness", "s label"},
    {"dielectric_bsdf",
     "n N, v U, c reflection_tint, c transmission_tint, f roughness_x, f roughness_y, f ior, "
     "s distribution",
     "f thinfilm_thickness, f thinfilm_ior, s label"},
    {"conductor_bsdf",
     "n N, v U, f roughness_x, f roughness_y, c ior, c extinction, s distribution",
     "f thinfilm_thickness, f thinfilm_ior, s label"},
    {"generalized_schlick_bsdf",
     "n N, v U, c reflection_tint, c transmission_tint, f roughness_x, f roughness_y, c f0, "
     "c f90, f exponent, s distribution",
     "f thinfilm_thickness, f thinfilm_ior, s label"},
    {"translucent_bsdf", "n N, c albedo", "s label"},
    {"transparent_bsdf", "", ""},
    {"subsurface_bssrdf", "n N, c albedo, c radius, f anisotropy", "s label"},
    {"subsurface_bssrdf", "n N, c albedo, f transmission_depth, c transmission_color, f anisotropy",
     "s label"},
    {"sheen_bsdf", "n N, c albedo, f roughness", "s label"},
    {"chiang_hair_bsdf",
     "n N, v curve_direction, c tint_R, c tint_TT, c tint_TRT, f ior, v roughness_R, "
     "v roughness_TT, v roughness_TRT, f cuticle_angle, c absorption_coefficient",
     "s label"},
    {"uniform_edf", "c emittance", "s label"},
    {"anisotropic_vdf", "c albedo, c extinction, f anisotropy", "s label"},
    {"medium_vdf",
     "c albedo, f transmission_depth, c transmission_color, f anisotropy, f ior, i priority",
     "s label"},
    {"layer", "C top, C base", ""},
    // Older and widely used
    {"ashikhmin_velvet", "n N, f sigma", ""},
    {"ashikhmin_shirley", "n N, v T, f xrough, f yrough", ""},
    {"westin_backscatter", "n N, f roughness", ""},
    {"westin_sheen", "n N, f edginess", ""},
    {"sheen", "n N, f roughness", ""},
    {"velvet", "n N, f sigma", ""},
    {"burley", "n N, f roughness", ""},
    {"cloth", "n N, f roughness", ""},
    {"microfacet_ggx", "n N, f alpha", ""},
    {"microfacet_ggx_aniso", "n N, v T, f xalpha, f yalpha", ""},
    {"microfacet_ggx_refraction", "n N, f alpha, f eta", ""},
    {"microfacet_beckmann", "n N, f alpha", ""},
    {"microfacet_beckmann_aniso", "n N, v T, f xalpha, f yalpha", ""},
    {"microfacet_beckmann_refraction", "n N, f alpha, f eta", ""},
    {"dielectric", "n N, f eta", ""},
    {"conductor", "n N, c eta, c k", ""},
    {"subsurface", "f eta, f g, c mfp, c albedo", ""},
    {"bssrdf_cubic", "n N, v radius, f texture_blur, f sharpness", ""},
    {"bssrdf_gaussian", "n N, v radius, f texture_blur", ""},
    {"hair_diffuse", "v T", ""},
    {"hair_specular", "v T, f offset, f exponent", ""},
};

const struct {
    char letter;
    osl_Type type;
} LETTERS[] = {{'n', osl_Type::NORMAL},   {'v', osl_Type::VECTOR}, {'c', osl_Type::COLOR},
               {'f', osl_Type::FLOAT},    {'i', osl_Type::INT},    {'s', osl_Type::STRING},
               {'C', osl_Type::closure()}};

void addParameter(osl_ClosureRow &row, std::string name, const osl_Type &type, bool isKeyword)
{
    row.parameters.push_back({std::move(name), type, isKeyword, row.words});
    row.words += type.components();
}

void addParameters(osl_ClosureRow &row, std::string_view text, bool areKeywords)
{
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find(", "));
        text.remove_prefix(std::min(item.size() + 2, text.size()));
        for (const auto &letter : LETTERS) {
            if (letter.letter == item[0])
                addParameter(row, std::string(item.substr(2)), letter.type, areKeywords);
        }
    }
}

std::multimap<std::string_view, osl_ClosureRow> makeRows()
{
    std::multimap<std::string_view, osl_ClosureRow> rows;
    for (const auto &source : CLOSURES) {
        osl_ClosureRow row;
        row.name = source.name;
        addParameters(row, source.parameters, false);
        addParameters(row, source.keywords, true);
        rows.emplace(source.name, std::move(row));
    }
    return rows;
}
} // namespace

void osl_findClosures(std::string_view name, std::deque<osl_Function> &functions)
{
    static const auto rows = makeRows();
    const auto range = rows.equal_range(name);
    for (auto row = range.first; row != range.second; ++row) {
        osl_Function function;
        function.name = row->second.name;
        function.result = osl_Type::closure();
        function.tail = osl_Function::KEYWORDS;
        function.closure = &row->second;
        for (const osl_ClosureParameter &parameter : row->second.parameters) {
            if (!parameter.isKeyword)
                function.parameters.push_back({parameter.type, false, false, false});
        }
        functions.push_back(std::move(function));
    }
}

std::unique_ptr<osl_ClosureRow> osl_unknownClosure(const osl_Function &function)
{
    auto row = std::make_unique<osl_ClosureRow>();
    row->name = function.name;
    row->isKnown = false;
    for (const osl_Function::Parameter &parameter : function.parameters)
        addParameter(*row, "", parameter.type.element(), false);
    return row;
}
