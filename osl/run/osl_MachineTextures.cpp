// Textures.
#include "osl/run/osl_Machine.h"

#include <algorithm>

namespace
{
// Options that are numbers, and the fields they set.
const struct {
    const char *name;
    float osl_TextureOptions::*first, osl_TextureOptions::*second;
} NUMBERS[] = {
    {"blur", &osl_TextureOptions::sBlur, &osl_TextureOptions::tBlur},
    {"sblur", &osl_TextureOptions::sBlur, nullptr},
    {"tblur", &osl_TextureOptions::tBlur, nullptr},
    {"width", &osl_TextureOptions::sWidth, &osl_TextureOptions::tWidth},
    {"swidth", &osl_TextureOptions::sWidth, nullptr},
    {"twidth", &osl_TextureOptions::tWidth, nullptr},
    {"fill", &osl_TextureOptions::fill, nullptr},
    {"missingalpha", &osl_TextureOptions::missingAlpha, nullptr},
};
const struct {
    const char *name;
    osl_Wrap osl_TextureOptions::*first, osl_TextureOptions::*second;
} WRAPS[] = {
    {"wrap", &osl_TextureOptions::sWrap, &osl_TextureOptions::tWrap},
    {"swrap", &osl_TextureOptions::sWrap, nullptr},
    {"twrap", &osl_TextureOptions::tWrap, nullptr},
};
} // namespace

// Pairs of a name and a value behind the fixed arguments (of which in.number tells).
osl_TextureOptions osl_Machine::textureOptions(In in, int lane)
{
    osl_TextureOptions options;
    const osl_Operand *o = operands(in);
    for (int i = 1 + in.number; i + 1 < in.count; i += 2) {
        const std::string_view name = textAt(o[i], lane);
        const osl_Operand &value = o[i + 1];
        const osl_Type type = typeOf(value);
        const float number = type.isInt()          ? static_cast<float>(intAt(value, lane))
                             : type.isFloatBased() ? floatAt(value, lane)
                                                   : 0.0f;
        for (const auto &row : NUMBERS) {
            if (name != row.name)
                continue;
            options.*row.first = number;
            if (row.second != nullptr)
                options.*row.second = number;
        }
        for (const auto &row : WRAPS) {
            if (name != row.name || !type.isString())
                continue;
            static_cast<void>(osl_wrapByName(textAt(value, lane), options.*row.first));
            if (row.second != nullptr)
                options.*row.second = options.*row.first;
        }
        if (name == "interp" && type.isString())
            static_cast<void>(osl_interpByName(textAt(value, lane), options.interp));
        else if (name == "alpha")
            options.wantsAlpha = true;
        else if (name == "firstchannel")
            options.firstChannel = static_cast<int>(number);
        else if (name == "colorspace" && type.isString())
            options.isSRGB = textAt(value, lane) == "sRGB" || textAt(value, lane) == "srgb";
        else if (name == "missingcolor" && type.isFloatBased()) {
            options.hasMissingColour = true;
            options.missingColour = vectorAt(value, lane);
        }
    }
    return options;
}

const osl_Texture *osl_Machine::textureOf(std::string_view name, std::string &error)
{
    const auto [entry, isNew] = myTextures.try_emplace(std::string(name));
    if (isNew)
        entry->second.first = myRenderer.texture(name, entry->second.second);
    error = entry->second.second;
    return entry->second.first.get();
}

// The result and the outputs among the options.
void osl_Machine::setTexel(In in, int lane, const osl_TextureValue &value,
                           const std::string &message, const osl_TexturePlace &place)
{
    const osl_Operand *o = operands(in);
    bool isReported = message.empty();
    for (int i = 1 + in.number; i + 1 < in.count; i += 2) {
        const std::string_view name = textAt(o[i], lane);
        if (name == "alpha" && typeOf(o[i + 1]).isFloat() && o[i + 1].reg >= 0) {
            setFloat(o[i + 1], lane, value.value[in.words]);
            setDerivatives(o[i + 1], lane, 0, 0, 0);
        } else if (name == "errormessage" && typeOf(o[i + 1]).isString()) {
            setText(o[i + 1], lane, message);
            isReported = true;
        }
    }
    if (!isReported)
        error(in, lane, message);
    for (int word = 0; word < in.words; ++word) {
        const float ds = value.ds[word];
        const float dt = value.dt[word];
        setFloat(o[0], lane, value.value[word], word);
        setDerivatives(o[0], lane, word, ds * place.dsdx + dt * place.dtdx,
                       ds * place.dsdy + dt * place.dtdy);
    }
}

// Operands: result, name, s, t, their four derivatives if given, options.
void osl_Machine::texture(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        osl_TexturePlace place;
        const osl_Dual s = dualAt(o[2], lane);
        const osl_Dual t = dualAt(o[3], lane);
        place = {s.val, t.val, s.dx, t.dx, s.dy, t.dy};
        if (in.number == 7) {
            place.dsdx = floatAt(o[4], lane);
            place.dtdx = floatAt(o[5], lane);
            place.dsdy = floatAt(o[6], lane);
            place.dtdy = floatAt(o[7], lane);
        }
        std::string error;
        const osl_Texture *texture = textureOf(textAt(o[1], lane), error);
        osl_TextureValue value;
        const osl_TextureOptions options = textureOptions(in, lane);
        const int channels = in.words;
        if (osl_textureLookup(texture, options, place, channels, value))
            error.clear();
        setTexel(in, lane, value, error, place);
    });
}

// Volumes have no file format here.
void osl_Machine::texture3d(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const osl_TextureOptions options = textureOptions(in, lane);
        osl_TextureValue value;
        std::string message;
        if (options.hasMissingColour) {
            const osl_Vec &c = options.missingColour;
            value = {{c.x, c.y, c.z, options.missingAlpha}, {}, {}};
        } else {
            message = "no volume textures: \"" + std::string(textAt(o[1], lane)) + "\"";
        }
        setTexel(in, lane, value, message, {});
    });
}

void osl_Machine::environment(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        std::string error;
        const osl_Texture *texture = textureOf(textAt(o[1], lane), error);
        osl_TextureValue value;
        const osl_TextureOptions options = textureOptions(in, lane);
        const int channels = in.words;
        if (osl_environmentLookup(texture, options, dualVectorAt(o[2], lane), channels, value))
            error.clear();
        setTexel(in, lane, value, error, {});
    });
}

// Operands: result, name, s and t if given, parameter, destination.
void osl_Machine::textureInfo(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Operand &to = o[in.count - 1];
    const osl_Type type = typeOf(to);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, 0);
        std::string error;
        const osl_Texture *texture = textureOf(textAt(o[1], lane), error);
        const std::string_view name = textAt(o[in.count - 2], lane);
        int numbers[16];
        float reals[16];
        std::string text;
        const int count = std::min(to.words, 16);
        const bool isFound =
            type.base == osl_Type::INT      ? osl_textureInfo(texture, name, count, numbers)
            : type.base == osl_Type::STRING ? osl_textureInfo(texture, name, text)
                                            : osl_textureInfo(texture, name, count, reals);
        if (!isFound)
            return;
        for (int word = 0; word < count; ++word) {
            if (type.base == osl_Type::INT)
                setInt(to, lane, numbers[word], word);
            else if (type.base == osl_Type::STRING)
                setText(to, lane, text, word);
            else
                setFloat(to, lane, reals[word], word);
        }
        setInt(o[0], lane, 1);
    });
}
