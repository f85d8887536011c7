// Textures: PNG and JPEG files as filtered pictures.
//
// (s, t) = (0, 0) is the upper left corner of the picture, (1, 1) the lower
// right one; texel centres stand at half numbers. Values are those of the file,
// 0 to 1, without a change of colour space (see osl_TextureOptions).
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
    osl_Wrap sWrap = OSL_WRAP_DEFAULT; // "default" is black, as no file says otherwise
    osl_Wrap tWrap = OSL_WRAP_DEFAULT;
    osl_Interp interp = OSL_INTERP_SMARTCUBIC; // cubic where the picture is magnified
    float sBlur = 0;                           // added to the footprint, in pictures
    float tBlur = 0;
    float sWidth = 1; // multiplies the footprint
    float tWidth = 1;
    int firstChannel = 0;
    float fill = 0;      // for channels that the file does not have
    bool isSRGB = false; // colour channels are made linear
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

// Up to four channels from firstChannel on, and their derivatives by s and t.
struct osl_TextureValue {
    float value[4] = {};
    float ds[4] = {};
    float dt[4] = {};
};

// A picture in memory with its mip levels; each is half as large as the one before,
// rounded down, down to 1 x 1.
class osl_Texture;

class osl_TextureCache
{
public:
    // Keeps about `bytes` of pictures at most.
    explicit osl_TextureCache(size_t bytes = size_t(512) << 20);
    ~osl_TextureCache();
    osl_TextureCache(const osl_TextureCache &) = delete;
    osl_TextureCache &operator=(const osl_TextureCache &) = delete;

    // The file of a path that is used as it is. Null, and `error` says why with the path
    // in it, for a file that is missing, broken, no PNG or JPEG, or larger than 16384
    // texels in a direction or 64 million in all. Failures are remembered. Without
    // the picture libraries (32-bit builds) every file fails.
    std::shared_ptr<const osl_Texture> find(const std::string &path, std::string &error);

private:
    struct Data;
    std::unique_ptr<Data> myData;
};

// False, and `error` is set, for a picture that could not be read (null) unless the
// options hold a missing colour, which then is the value. `count` channels, 1 to 4.
[[nodiscard]] bool osl_textureLookup(const osl_Texture *texture, const osl_TextureOptions &options,
                                     const osl_TexturePlace &place, int count,
                                     osl_TextureValue &value);

// A picture of all directions by longitude and latitude: the middle is +z of the
// direction's space... y is up. Derivatives of the direction give the footprint.
[[nodiscard]] bool osl_environmentLookup(const osl_Texture *texture,
                                         const osl_TextureOptions &options,
                                         const osl_DualVec &direction, int count,
                                         osl_TextureValue &value);

// gettextureinfo: how many numbers `name` has in the file's answer (0: unknown name or
// another type), written into `to`, which has room for 16. Texts go into `text`.
// "exists" is answered for null as well.
int osl_textureInfo(const osl_Texture *texture, std::string_view name, int *to);
int osl_textureInfo(const osl_Texture *texture, std::string_view name, float *to);
int osl_textureInfo(const osl_Texture *texture, std::string_view name, std::string &text);
