#include "osl/lib/osl_Texture.h"

#include "osl/lib/osl_MipMap.h"
#include "tests/support/Deflated.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>
#include <thread>

namespace
{
std::string bigEndian(size_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

std::string chunk(const std::string &name, const std::string &data)
{
    const std::string body = name + data;
    const auto *bytes = reinterpret_cast<const Bytef *>(body.data());
    return bigEndian(data.size()) + body +
           bigEndian(crc32(0, bytes, static_cast<uInt>(body.size())));
}

// An 8-bit PNG; type 0 is grey, 2 RGB, 4 grey and alpha, 6 RGBA.
std::string png(size_t width, size_t height, char type, const std::string &rows)
{
    const std::string head =
        bigEndian(width) + bigEndian(height) + '\x08' + type + std::string(3, '\0');
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", head) + chunk("IDAT", deflated(rows)) +
           chunk("IEND", "");
}

// Rows of bytes, each behind the filter's 0.
std::string rows(const std::vector<std::vector<int>> &bytes)
{
    std::string all;
    for (const auto &row : bytes) {
        all += '\0';
        for (const int b : row)
            all += static_cast<char>(b);
    }
    return all;
}

// Grey, 4 wide and 2 high:  0  51 102 153
//                         204 255   0   0
const std::string GREY = png(4, 2, 0, rows({{0, 51, 102, 153}, {204, 255, 0, 0}}));

std::string bytes(const std::vector<int> &values)
{
    return std::string(values.begin(), values.end());
}

// A JPEG of one grey texel: quantisation, frame, two Huffman tables of one code each, and a
// scan in which both codes stand once.
const std::string JPEG = bytes({0xff, 0xd8, 0xff, 0xdb, 0, 0x43, 0}) + std::string(64, '\x08') +
                         bytes({0xff, 0xc0, 0, 11, 8, 0, 1, 0, 1, 1, 1, 0x11, 0}) +
                         bytes({0xff, 0xc4, 0, 20, 0, 1}) + std::string(16, '\0') +
                         bytes({0xff, 0xc4, 0, 20, 0x10, 1}) + std::string(16, '\0') +
                         bytes({0xff, 0xda, 0, 8, 1, 1, 0, 0, 63, 0, 0x3f, 0xff, 0xd9});

class Texture : public testing::Test
{
protected:
    std::shared_ptr<const osl_Texture> load(const std::string &bytes)
    {
        return cache.find(scratch.write("p" + std::to_string(++files), bytes), error);
    }

    float grey(float s, float t, const osl_TextureOptions &options)
    {
        const auto texture = load(GREY);
        osl_TextureValue value;
        EXPECT_TRUE(osl_textureLookup(texture.get(), options, {s, t, 0, 0, 0, 0}, 1, value));
        return value.value[0];
    }

    ScratchDirectory scratch;
    osl_TextureCache cache;
    std::string error;
    int files = 0;
};
} // namespace

#ifdef OSL_HAS_PICTURES

TEST_F(Texture, IsAsTheFileSays)
{
    const std::string rgba = png(1, 1, 6, rows({{255, 102, 0, 128}}));
    osl_Picture picture;
    ASSERT_TRUE(osl_readPicture(scratch.write("rgba.png", rgba), picture, error)) << error;
    EXPECT_EQ(4, picture.channels);
    EXPECT_EQ((std::vector<uint16_t>{128 * 257, 13158, 0, 128 * 257}), picture.texels)
        << "colour is multiplied by alpha";
    ASSERT_TRUE(osl_readPicture(scratch.write("grey.jpg", JPEG), picture, error)) << error;
    EXPECT_EQ((std::vector<uint16_t>{128 * 257}), picture.texels);
}

TEST_F(Texture, IsBlendedAndWrapped)
{
    const struct {
        const char *what, *interp, *wrap;
        float s, t, value;
    } cases[] = {
        {"centre of a texel", "linear", "black", 0.375f, 0.25f, 0.2f},
        {"between two", "linear", "black", 0.5f, 0.25f, 0.3f},
        {"between four", "linear", "black", 0.25f, 0.5f, 0.5f},
        {"at the edge, half black", "linear", "default", 1, 0.25f, 0.3f},
        {"outside", "linear", "black", 2, 0.25f, 0},
        {"held", "linear", "clamp", 2, 0.25f, 0.6f},
        {"again", "linear", "periodic", 2.375f, 1.25f, 0.2f},
        {"again, far away", "closest", "periodic", -99.625f, 0.25f, 0.2f},
        {"over the seam", "linear", "periodic", 1, 0.25f, 0.3f},
        {"mirrored", "linear", "mirror", 1.625f, -0.25f, 0.2f},
        {"nearest", "closest", "black", 0.49f, 0.3f, 0.2f},
        {"spline", "cubic", "clamp", 0.625f, 0.0f, (0.2f + 4 * 0.4f + 0.6f) / 6},
        {"spline where magnified", "smartcubic", "clamp", 0.625f, 0.0f,
         (0.2f + 4 * 0.4f + 0.6f) / 6},
    };
    for (const auto &c : cases) {
        osl_TextureOptions options;
        ASSERT_TRUE(osl_interpByName(c.interp, options.interp));
        ASSERT_TRUE(osl_wrapByName(c.wrap, options.sWrap));
        options.tWrap = options.sWrap;
        const float tolerance = c.t == 0 ? 0.05f : 1e-4f; // rows differ there
        EXPECT_NEAR(c.value, grey(c.s, c.t, options), tolerance) << c.what;
    }
    osl_Wrap wrap;
    EXPECT_FALSE(osl_wrapByName("Periodic", wrap));
}

TEST_F(Texture, BlursUnderALargeFootprint)
{
    std::vector<std::vector<int>> checks(64, std::vector<int>(64));
    for (size_t y = 0; y < 64; ++y) {
        for (size_t x = 0; x < 64; ++x)
            checks[y][x] = (x + y) % 2 != 0 ? 255 : 0;
    }
    const auto texture = load(png(64, 64, 0, rows(checks)));
    osl_TextureOptions options;
    options.sWrap = options.tWrap = OSL_WRAP_PERIODIC;
    osl_TextureValue sharp, blurred, wide;
    const float s = 10.5f / 64, t = 11.5f / 64;
    options.interp = OSL_INTERP_LINEAR;
    EXPECT_TRUE(osl_textureLookup(texture.get(), options, {s, t, 0, 0, 0, 0}, 1, sharp));
    EXPECT_TRUE(osl_textureLookup(texture.get(), options, {s, t, 0.05f, 0, 0, 0.05f}, 1, blurred));
    options.sBlur = options.tBlur = 0.1f;
    EXPECT_TRUE(osl_textureLookup(texture.get(), options, {s, t, 0, 0, 0, 0}, 1, wide));
    EXPECT_NEAR(1, sharp.value[0], 1e-4f);
    EXPECT_NEAR(0.5f, blurred.value[0], 0.02f);
    EXPECT_NEAR(0.5f, wide.value[0], 0.02f);
}

// A long footprint must blur along itself only.
TEST_F(Texture, KeepsStripesAlongTheFootprint)
{
    const auto texture = load(png(64, 64, 0, rows(std::vector<std::vector<int>>(64, [] {
                                      std::vector<int> row(64, 0);
                                      std::fill(row.begin() + 24, row.begin() + 40, 255);
                                      return row;
                                  }()))));
    osl_TextureOptions options;
    options.interp = OSL_INTERP_LINEAR;
    options.sWrap = options.tWrap = OSL_WRAP_PERIODIC;
    osl_TextureValue along, across;
    EXPECT_TRUE(
        osl_textureLookup(texture.get(), options, {0.5f, 0.5f, 0, 0.5f, 0.03f, 0}, 1, along));
    EXPECT_TRUE(
        osl_textureLookup(texture.get(), options, {0.5f, 0.5f, 0.9f, 0, 0, 0.03f}, 1, across));
    EXPECT_NEAR(1, along.value[0], 0.02f);
    EXPECT_NEAR(0.25f, across.value[0], 0.1f);
}

TEST_F(Texture, HasDerivatives)
{
    const auto texture = load(GREY);
    osl_TextureOptions options;
    options.sWrap = options.tWrap = OSL_WRAP_CLAMP;
    for (const osl_Interp interp : {OSL_INTERP_LINEAR, OSL_INTERP_CUBIC}) {
        options.interp = interp;
        osl_TextureValue value[3];
        for (size_t i = 0; i < 3; ++i)
            EXPECT_TRUE(osl_textureLookup(texture.get(), options,
                                          {0.55f + 0.01f * static_cast<float>(i), 0.4f, 0, 0, 0, 0},
                                          1, value[i]));
        EXPECT_NEAR((value[2].value[0] - value[0].value[0]) / 0.02f, value[1].ds[0], 1e-2f);
        EXPECT_LT(value[1].dt[0], 0);
    }
}

TEST_F(Texture, GivesTheChannelsThatAreAskedFor)
{
    const auto texture = load(png(1, 1, 6, rows({{255, 51, 0, 255}})));
    const auto grey = load(png(1, 1, 0, rows({{51}})));
    osl_TextureOptions options;
    options.sWrap = options.tWrap = OSL_WRAP_CLAMP;
    options.fill = 0.7f;
    options.wantsAlpha = true;
    osl_TextureValue value;
    const osl_TexturePlace middle = {0.5f, 0.5f, 0, 0, 0, 0};
    const auto expectValue = [&](const osl_Texture *from, int count, std::vector<float> wanted) {
        EXPECT_TRUE(osl_textureLookup(from, options, middle, count, value));
        for (size_t i = 0; i < wanted.size(); ++i)
            EXPECT_NEAR(wanted[i], value.value[i], 1e-4f) << i;
    };
    expectValue(texture.get(), 3, {1, 0.2f, 0, 1});
    expectValue(grey.get(), 3, {0.2f, 0.7f, 0.7f, 0.7f});
    options.firstChannel = 1;
    expectValue(texture.get(), 1, {0.2f, 0});
    options.firstChannel = 1000000;
    expectValue(texture.get(), 3, {0.7f, 0.7f, 0.7f, 0.7f});
    options.firstChannel = 0;
    options.isSRGB = true;
    expectValue(texture.get(), 3, {1, 0.033105f, 0, 1});
}

TEST_F(Texture, TellsAboutItself)
{
    const auto texture = load(png(2, 1, 6, rows({{255, 0, 0, 255, 0, 0, 255, 51}})));
    int numbers[6] = {9, 9, 9, 9, 9, 9};
    float colour[3];
    std::string text;
    EXPECT_TRUE(osl_textureInfo(texture.get(), "resolution", 3, numbers));
    EXPECT_EQ((std::vector<int>{2, 1, 1}), std::vector<int>(numbers, numbers + 3));
    EXPECT_TRUE(osl_textureInfo(texture.get(), "datawindow", 4, numbers));
    EXPECT_EQ((std::vector<int>{0, 0, 1, 0}), std::vector<int>(numbers, numbers + 4));
    EXPECT_TRUE(osl_textureInfo(texture.get(), "channels", 1, numbers));
    EXPECT_EQ(4, numbers[0]);
    EXPECT_TRUE(osl_textureInfo(texture.get(), "averagecolor", 3, colour));
    EXPECT_NEAR(0.5f, colour[0], 1e-4f);
    EXPECT_NEAR(0.1f, colour[2], 1e-4f);
    EXPECT_TRUE(osl_textureInfo(texture.get(), "averagealpha", 1, colour));
    EXPECT_NEAR(0.6f, colour[0], 1e-4f);
    EXPECT_TRUE(osl_textureInfo(texture.get(), "type", text));
    EXPECT_EQ("Plain Texture", text);
    EXPECT_FALSE(osl_textureInfo(texture.get(), "resolution", 1, numbers));
    EXPECT_FALSE(osl_textureInfo(texture.get(), "resolution", 3, colour));
    EXPECT_FALSE(osl_textureInfo(texture.get(), "spam", text));
}

// Columns from the left: the quarters from -z over +x, +z and -x back to -z.
TEST_F(Texture, OfAllDirectionsHasUpAtItsTop)
{
    const auto texture = load(png(4, 2, 0, rows({{10, 20, 30, 40}, {110, 120, 130, 140}})));
    osl_TextureOptions options;
    options.interp = OSL_INTERP_CLOSEST;
    const struct {
        osl_DualVec direction;
        int byte;
    } cases[] = {{{1, 1, -2}, 10},   {{1, 1, 2}, 20},    {{-1, 1, 2}, 30},    {{-1, 1, -2}, 40},
                 {{1, -1, -2}, 110}, {{-1, -1, 2}, 130}, {{-1, -1, -2}, 140}, {{1, -9, 2}, 120}};
    for (const auto &c : cases) {
        osl_TextureValue value;
        EXPECT_TRUE(osl_environmentLookup(texture.get(), options, c.direction, 1, value));
        EXPECT_EQ(c.byte, std::lrint(value.value[0] * 255));
    }
}

TEST_F(Texture, ThatIsBrokenTellsWhy)
{
    const struct {
        std::string bytes;
        const char *message;
    } cases[] = {
        {"", "neither PNG nor JPEG"},
        {"GIF89a", "neither PNG nor JPEG"},
        {GREY.substr(0, 30), "ends too early"},
        {GREY.substr(0, GREY.size() - 30), ""},
        {png(20000, 1, 0, ""), ""},
        {png(16384, 16384, 6, ""), "too many texels"},
        {png(0, 1, 0, ""), ""},
        {std::string("\xff\xd8\xff\xdb"), ""},
        {"\xff\xd8\xff\xc0" + std::string("\0\x0b\x08\xff\xff\xff\xff\1\1\x11\0", 11), ""},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(nullptr, load(c.bytes));
        EXPECT_NE(std::string::npos, error.find(c.message)) << error;
        EXPECT_EQ('"' + scratch.path(), error.substr(0, 1 + scratch.path().size()));
    }
}

TEST_F(Texture, LetsTheOldestFilesGo)
{
    osl_TextureCache small(100);
    const std::string first = scratch.write("first", GREY), second = scratch.write("second", GREY);
    const auto kept = small.find(first, error);
    EXPECT_EQ(kept, small.find(first, error));
    for (int i = 0; i < 10; ++i)
        EXPECT_NE(nullptr, small.find(scratch.write("more" + std::to_string(i), GREY), error));
    EXPECT_NE(kept, small.find(first, error)) << "was let go and read again";
    EXPECT_EQ(4, kept->level(0).width) << "stays as long as it is used";
}

TEST_F(Texture, IsReadOnceForManyThreads)
{
    const std::string path = scratch.write("shared", GREY);
    std::vector<std::shared_ptr<const osl_Texture>> found(8);
    std::vector<std::thread> threads;
    for (auto &texture : found)
        threads.emplace_back([&] {
            std::string message;
            texture = cache.find(path, message);
        });
    for (std::thread &thread : threads)
        thread.join();
    for (const auto &texture : found)
        EXPECT_EQ(found[0], texture);
}

#else

TEST_F(Texture, NeedsThePictureLibraries)
{
    EXPECT_EQ(nullptr, load(GREY));
    EXPECT_NE(std::string::npos, error.find("built without textures")) << error;
}

#endif

TEST_F(Texture, MayBeMissing)
{
    EXPECT_EQ(nullptr, cache.find(scratch.path("none.png"), error));
    EXPECT_EQ('"' + scratch.path("none.png") + "\": No such file or directory", error);
    EXPECT_EQ(nullptr, cache.find(scratch.path(), error));
    EXPECT_NE(std::string::npos, error.find("not a regular file"));
    osl_TextureOptions options;
    osl_TextureValue value;
    EXPECT_FALSE(osl_textureLookup(nullptr, options, {}, 3, value));
    options.hasMissingColour = options.wantsAlpha = true;
    options.missingColour = {1, 0.5f, 0.2f};
    options.missingAlpha = 0.4f;
    EXPECT_TRUE(osl_textureLookup(nullptr, options, {}, 1, value));
    EXPECT_EQ(1, value.value[0]);
    EXPECT_EQ(0.4f, value.value[1]);
    int exists = 9;
    EXPECT_TRUE(osl_textureInfo(nullptr, "exists", 1, &exists));
    EXPECT_EQ(0, exists);
    EXPECT_FALSE(osl_textureInfo(nullptr, "channels", 1, &exists));
}
