// Textures: PNG and JPEG files as filtered pictures.
//
// (s, t) = (0, 0) is the upper left corner of the picture, (1, 1) the lower
// right one; texel centres stand at half numbers. Values are those of the file,
// 0 to 1, multiplied by its alpha, without a change of colour space (see
// osl_TextureOptions).
//
// A file is read at its first use and kept with all its mip levels, up to a
// bound on memory; then the one that was used least recently goes. Everything
// here may be called by several threads.
#pragma once

#include "osl/lib/osl_Vec.h"

#include <memory>
#include <string>
#include <string_view>

enum osl_Wrap {
    OSL_WRAP_DEFAULT,
    OSL_WRAP_BLACK,
    OSL_WRAP_CLAMP,
    OSL_WRAP_PERIODIC,
    OSL_WRAP_MIRROR
};
enum osl_Interp { OSL_INTERP_SMARTCUBIC, OSL_INTERP_CUBIC, OSL_INTERP_LINEAR, OSL_INTERP_CLOSEST };

// By the language's names; false for an unknown one.
[[nodiscard]] bool osl_wrapByName(std::string_view name, osl_Wrap &wrap);
[[nodiscard]] bool osl_interpByName(std::string_view name, osl_Interp &interp);

struct osl_TextureOptions {
    osl_Wrap sWrap = OSL_WRAP_DEFAULT; // black: no file says otherwise
    osl_Wrap tWrap = OSL_WRAP_DEFAULT;
    osl_Interp interp = OSL_INTERP_SMARTCUBIC; // cubic (B-spline) where it is magnified
    float sBlur = 0;                           // added to the footprint, in pictures
    float tBlur = 0;
    float sWidth = 1; // multiplies the footprint
    float tWidth = 1;
    int firstChannel = 0;
    float fill = 0;          // for channels that the file does not have
    bool isSRGB = false;     // colour channels are made linear
    bool wantsAlpha = false; // one channel more than asked for
    bool hasMissingColour = false;
    osl_Vec missingColour;
    float missingAlpha = 0;
};

// Where to look, and how far that reaches over one pixel.
struct osl_TexturePlace {
    float s = 0;
    float t = 0;
    float dsdx = 0;
    float dtdx = 0;
    float dsdy = 0;
    float dtdy = 0;
};

// The channels from firstChannel on, then alpha when it is wanted; with their
// derivatives by s and t.
struct osl_TextureValue {
    float value[4] = {};
    float ds[4] = {};
    float dt[4] = {};
};

// A picture in memory with its mip levels.
class osl_MipMap;
using osl_Texture = osl_MipMap;

class osl_TextureCache
{
public:
    // Keeps about `bytes` of pictures at most, beside those that are in use.
    explicit osl_TextureCache(size_t bytes = size_t(512) << 20);
    ~osl_TextureCache();
    osl_TextureCache(const osl_TextureCache &) = delete;
    osl_TextureCache &operator=(const osl_TextureCache &) = delete;

    // The file of a path that is used as it is. Null, and `error` says why with the path
    // in it, for a file that osl_readPicture() does not take. Failures are remembered. Without
    // the picture libraries (32-bit builds) every file fails.
    std::shared_ptr<const osl_Texture> find(const std::string &path, std::string &error);

private:
    struct Data;
    std::unique_ptr<Data> myData;
};

// `count` channels, 1 to 3 (4 without alpha). False for a picture that could not be read
// (null), when the options hold no missing colour; all is 0 then.
[[nodiscard]] bool osl_textureLookup(const osl_Texture *texture, const osl_TextureOptions &options,
                                     const osl_TexturePlace &place, int count,
                                     osl_TextureValue &value);

// A picture of all directions by longitude and latitude, y up, +z in the middle. The
// direction's derivatives give the footprint; wrap modes do not matter, nor are there
// derivatives in the result.
[[nodiscard]] bool osl_environmentLookup(const osl_Texture *texture,
                                         const osl_TextureOptions &options,
                                         const osl_DualVec &direction, int count,
                                         osl_TextureValue &value);

// gettextureinfo: false, and `to` stays, unless `name` means `count` numbers or a text.
// "exists" is answered for null as well.
[[nodiscard]] bool osl_textureInfo(const osl_Texture *texture, std::string_view name, int count,
                                   int *to);
[[nodiscard]] bool osl_textureInfo(const osl_Texture *texture, std::string_view name, int count,
                                   float *to);
[[nodiscard]] bool osl_textureInfo(const osl_Texture *texture, std::string_view name,
                                   std::string &to);
