#include "osl/check/osl_Builtins.h"

#include <cstring>

const osl_OpRow OSL_OP_ROWS[OSL_OPS] = {
#define OSL_OP(name, derivatives, kind) {#name, osl_OpRow::derivatives, osl_OpRow::kind},
#include "osl/check/osl_Ops.def"
#undef OSL_OP
};

namespace
{
#define NOISE_FORMS "Tf Tff Tp Tpf"
#define NOISE_NAMED "Tsf. Tsff. Tsp. Tspf."
#define PNOISE_FORMS "Tff Tffff Tpp Tpfpf"
#define PNOISE_NAMED "Tsff. Tsffff. Tspp. Tspfpf."

const osl_Builtin BUILTINS[] = {
    // Mathematics
    {"radians", OSL_RADIANS, "TT"},
    {"degrees", OSL_DEGREES, "TT"},
    {"cos", OSL_COS, "TT"},
    {"sin", OSL_SIN, "TT"},
    {"tan", OSL_TAN, "TT"},
    {"acos", OSL_ACOS, "TT"},
    {"asin", OSL_ASIN, "TT"},
    {"atan", OSL_ATAN, "TT"},
    {"atan2", OSL_ATAN2, "TTT"},
    {"cosh", OSL_COSH, "TT"},
    {"sinh", OSL_SINH, "TT"},
    {"tanh", OSL_TANH, "TT"},
    {"sincos", OSL_SINCOS, "xT&T&T"},
    {"pow", OSL_POW, "TTT VVf"},
    {"exp", OSL_EXP, "TT"},
    {"exp2", OSL_EXP2, "TT"},
    {"expm1", OSL_EXPM1, "TT"},
    {"log", OSL_LOG, "TT TTf"},
    {"log2", OSL_LOG2, "TT"},
    {"log10", OSL_LOG10, "TT"},
    {"logb", OSL_LOGB, "TT"},
    {"sqrt", OSL_SQRT, "TT"},
    {"inversesqrt", OSL_INVERSESQRT, "TT"},
    {"cbrt", OSL_CBRT, "TT"},
    {"hypot", OSL_HYPOT, "fff"},
    {"abs", OSL_ABS, "TT ii"},
    {"fabs", OSL_ABS, "TT ii"},
    {"sign", OSL_SIGN, "TT"},
    {"floor", OSL_FLOOR, "TT"},
    {"ceil", OSL_CEIL, "TT"},
    {"round", OSL_ROUND, "TT"},
    {"trunc", OSL_TRUNC, "TT"},
    {"fmod", OSL_FMOD, "TTT VVf"},
    {"mod", OSL_MOD, "TTT VVf iii"},
    {"min", OSL_MIN, "TTT iii"},
    {"max", OSL_MAX, "TTT iii"},
    {"clamp", OSL_CLAMP, "TTTT iiii"},
    {"mix", OSL_MIX, "TTTT VVVf"},
    {"select", OSL_SELECT, "TTTT VVVf TTTi iiii"},
    {"isnan", OSL_ISNAN, "if"},
    {"isinf", OSL_ISINF, "if"},
    {"isfinite", OSL_ISFINITE, "if"},
    {"erf", OSL_ERF, "ff"},
    {"erfc", OSL_ERFC, "ff"},
    // Geometry
    {"dot", OSL_DOT, "fvv"},
    {"cross", OSL_CROSS, "vvv"},
    {"length", OSL_LENGTH, "fv"},
    {"distance", OSL_DISTANCE, "fpp"},
    {"normalize", OSL_NORMALIZE, "nn vv"},
    {"transform", OSL_TRANSFORM, "psp vsv nsn pssp vssv nssn pmp vmv nmn"},
    {"transformu", OSL_TRANSFORMU, "fsf fssf"},
    // Colours and matrices
    {"transformc", OSL_TRANSFORMC, "csc cssc"},
    {"blackbody", OSL_BLACKBODY, "cf"},
    {"wavelength_color", OSL_WAVELENGTH, "cf"},
    {"luminance", OSL_LUMINANCE, "fc"},
    {"getmatrix", OSL_GETMATRIX, "iss&m is&m"},
    {"determinant", OSL_DETERMINANT, "fm"},
    {"transpose", OSL_TRANSPOSE, "mm"},
    // Patterns
    {"step", OSL_STEP, "TTT"},
    {"linearstep", OSL_LINEARSTEP, "TTTT"},
    {"smoothstep", OSL_SMOOTHSTEP, "TTTT"},
    {"noise", OSL_NOISE, NOISE_NAMED " " NOISE_FORMS},
    {"snoise", OSL_NOISE, NOISE_FORMS},
    {"cellnoise", OSL_NOISE, NOISE_FORMS},
    {"hashnoise", OSL_NOISE, NOISE_FORMS},
    {"pnoise", OSL_NOISE, PNOISE_NAMED " " PNOISE_FORMS},
    {"psnoise", OSL_NOISE, PNOISE_FORMS},
    {"hash", OSL_HASHF, "if iff ip ipf ii is"},
    {"spline", OSL_SPLINE, "TsfT[] TsfiT[] TsfTT+"},
    {"splineinverse", OSL_SPLINEINVERSE, "fsff[] fsfif[] fsfff+"},
    // Derivatives
    {"Dx", OSL_DX, "ff vp vv vn cc"},
    {"Dy", OSL_DY, "ff vp vv vn cc"},
    {"Dz", OSL_DZ, "ff vp vv vn cc"},
    {"filterwidth", OSL_FILTERWIDTH, "ff vp vv"},
    {"area", OSL_AREA, "fp"},
    {"calculatenormal", OSL_CALCULATENORMAL, "vp"},
    // Texts
    {"printf", OSL_PRINTF, "xs*"},
    {"format", OSL_FORMAT, "ss*"},
    {"error", OSL_ERROR, "xs*"},
    {"warning", OSL_WARNING, "xs*"},
    {"fprintf", OSL_FPRINTF, "xss*"},
    {"concat", OSL_CONCAT, "sss+"},
    {"strlen", OSL_STRLEN, "is"},
    {"startswith", OSL_STARTSWITH, "iss"},
    {"endswith", OSL_ENDSWITH, "iss"},
    {"stoi", OSL_STOI, "is"},
    {"stof", OSL_STOF, "fs"},
    {"split", OSL_SPLIT, "is&s[]si is&s[]s is&s[]"},
    {"substr", OSL_SUBSTR, "ssii ssi"},
    {"getchar", OSL_GETCHAR, "isi"},
    {"regex_search", OSL_REGEX_SEARCH, "iss is&i[]s"},
    {"regex_match", OSL_REGEX_MATCH, "iss is&i[]s"},
    // Textures
    {"texture", OSL_TEXTURE, "fsff. fsffffff. csff. csffffff. vsff. vsffffff."},
    {"texture3d", OSL_TEXTURE3D, "fsp. fspvvv. csp. cspvvv. vsp. vspvvv."},
    {"environment", OSL_ENVIRONMENT, "fsv. fsvvv. csv. csvvv. vsv. vsvvv."},
    {"gettextureinfo", OSL_TEXTUREINFO, "iss&? isffs&?"},
    {"pointcloud_search", OSL_POINTCLOUD, "ispfi. ispfii."},
    {"pointcloud_get", OSL_POINTCLOUD, "isi[]is?*"},
    {"pointcloud_write", OSL_POINTCLOUD, "isp."},
    // The renderer
    {"getattribute", OSL_GETATTRIBUTE, "is&? iss&? isi&? issi&?"},
    {"setmessage", OSL_SETMESSAGE, "xs$"},
    {"getmessage", OSL_GETMESSAGE, "is&? iss&?"},
    {"surfacearea", OSL_SURFACEAREA, "f"},
    {"backfacing", OSL_BACKFACING, "i"},
    {"raytype", OSL_RAYTYPE, "is"},
    {"isconnected", OSL_ISCONNECTED, "i?"},
    {"isconstant", OSL_ISCONSTANT, "i?"},
    {"trace", OSL_TRACE, "ipv."},
    {"dict_find", OSL_DICT_FIND, "iss iis"},
    {"dict_next", OSL_DICT_NEXT, "ii"},
    {"dict_value", OSL_DICT_VALUE, "iis&?"},
    {"arraylength", OSL_ARRAYLENGTH, "i?[]"},
    {"exit", OSL_EXIT, "x"},
};

const struct {
    char letter;
    osl_Type::Base base;
} LETTERS[] = {{'x', osl_Type::VOID},   {'i', osl_Type::INT},    {'f', osl_Type::FLOAT},
               {'c', osl_Type::COLOR},  {'p', osl_Type::POINT},  {'v', osl_Type::VECTOR},
               {'n', osl_Type::NORMAL}, {'m', osl_Type::MATRIX}, {'s', osl_Type::STRING}};

osl_Type typeOf(char letter)
{
    for (const auto &row : LETTERS) {
        if (row.letter == letter)
            return row.base;
    }
    return letter == 'C' ? osl_Type::closure() : osl_Type();
}

// One overload; `turn` stands for T and V.
osl_Function makeOverload(const osl_Builtin &row, std::string_view letters, char turn)
{
    osl_Function function;
    function.name = row.name;
    function.builtin = &row;
    bool isOutput = false;
    bool isResult = true;
    for (size_t i = 0; i < letters.size(); ++i) {
        char letter = letters[i];
        if (letter == '&') {
            isOutput = true;
            continue;
        }
        if (letter == '.')
            function.tail = osl_Function::KEYWORDS;
        else if (letter == '*')
            function.tail = osl_Function::ANYTHING;
        else if (letter == '+')
            function.tail = osl_Function::MORE;
        if (std::strchr(".*+[]", letter) != nullptr)
            continue;
        letter = letter == 'T' || letter == 'V' ? turn : letter;
        osl_Type type = typeOf(letter);
        if (letters.substr(i + 1, 1) == "[")
            type.array = osl_Type::UNSIZED;
        if (isResult)
            function.result = type;
        else
            function.parameters.push_back(
                {type, isOutput, letter == '?' || letter == '$', letter == '$'});
        isResult = isOutput = false;
    }
    return function;
}
} // namespace

const osl_Builtin *osl_findBuiltin(std::string_view name)
{
    static const auto index = [] {
        std::unordered_map<std::string_view, const osl_Builtin *> rows;
        for (const osl_Builtin &row : BUILTINS)
            rows[row.name] = &row;
        return rows;
    }();
    const auto found = index.find(name);
    return found == index.end() ? nullptr : found->second;
}

void osl_expandBuiltin(const osl_Builtin &row, std::deque<osl_Function> &functions)
{
    std::string_view rest = row.overloads;
    while (!rest.empty()) {
        const std::string_view letters = rest.substr(0, rest.find(' '));
        rest.remove_prefix(std::min(letters.size() + 1, rest.size()));
        const char *turns = letters.find('T') != std::string_view::npos   ? "fcpvn"
                            : letters.find('V') != std::string_view::npos ? "cpvn"
                                                                          : " ";
        for (; *turns != '\0'; ++turns)
            functions.push_back(makeOverload(row, letters, *turns));
    }
}
