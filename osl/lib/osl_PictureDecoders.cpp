// The PNG and the JPEG library, as osl_PictureFile.cpp calls them.
//
// Both report errors by longjmp: functions that may be left that way hold nothing
// that has to be destroyed.
#include "osl/lib/osl_PictureFile.h"

#ifdef OSL_HAS_PICTURES

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <jpeglib.h>
#include <png.h>

namespace
{
constexpr unsigned LARGEST_SIDE = 16384;
constexpr size_t MOST_TEXELS = size_t(1) << 25;

bool isTooLarge(size_t width, size_t height)
{
    return width > LARGEST_SIDE || height > LARGEST_SIDE || width * height > MOST_TEXELS;
}

// False when it is too large.
bool allocate(size_t width, size_t height, int channels, osl_Picture &picture)
{
    if (isTooLarge(width, height))
        return false;
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.channels = channels;
    picture.texels.assign(width * height * static_cast<size_t>(channels), 0);
    return true;
}

struct Input {
    const std::vector<unsigned char> &bytes;
    size_t at;
    char message[200];
};

void setMessage(Input &input, const char *message)
{
    std::snprintf(input.message, sizeof input.message, "%s", message);
}

// ---- PNG ----

extern "C" void readPNG(png_structp png, png_bytep to, png_size_t count)
{
    Input &input = *static_cast<Input *>(png_get_io_ptr(png));
    if (count > input.bytes.size() - input.at)
        png_error(png, "ends too early");
    std::memcpy(to, input.bytes.data() + input.at, count);
    input.at += count;
}

extern "C" void failPNG(png_structp png, png_const_charp message)
{
    setMessage(*static_cast<Input *>(png_get_error_ptr(png)), message);
    png_longjmp(png, 1);
}

extern "C" void ignorePNG(png_structp, png_const_charp) {}

// All formats as 16 bits a channel, without a palette.
void setUpPNG(png_structp png, png_infop info)
{
    png_read_info(png, info);
    png_set_expand_16(png);
    png_set_swap(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
}

bool readHead(png_structp png, png_infop info, Input &input)
{
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_set_read_fn(png, &input, readPNG);
    png_set_user_limits(png, LARGEST_SIDE, LARGEST_SIDE);
    setUpPNG(png, info);
    return true;
}

// Lines come again and again from interlaced files; libpng keeps what is there.
bool readLines(png_structp png, png_infop info, osl_Picture &picture)
{
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    const int passes = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE ? 7 : 1;
    const size_t stride = static_cast<size_t>(picture.width * picture.channels);
    for (int pass = 0; pass < passes; ++pass) {
        for (size_t y = 0; y < static_cast<size_t>(picture.height); ++y)
            png_read_row(png, reinterpret_cast<png_bytep>(&picture.texels[y * stride]), nullptr);
    }
    return true;
}

bool decode(png_structp png, png_infop info, Input &input, osl_Picture &picture)
{
    if (!readHead(png, info, input))
        return false;
    if (!allocate(png_get_image_width(png, info), png_get_image_height(png, info),
                  png_get_channels(png, info), picture)) {
        setMessage(input, "too many texels");
        return false;
    }
    return readLines(png, info, picture);
}

// ---- JPEG ----

struct JPEG {
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf escape;
    Input *input;
};

extern "C" void failJPEG(j_common_ptr info)
{
    JPEG &jpeg = *static_cast<JPEG *>(info->client_data);
    char message[JMSG_LENGTH_MAX];
    info->err->format_message(info, message);
    setMessage(*jpeg.input, message);
    std::longjmp(jpeg.escape, 1);
}

extern "C" void ignoreJPEG(j_common_ptr, int) {}

// A small file may hold any number of scans over a large picture.
extern "C" void watchJPEG(j_common_ptr info)
{
    JPEG &jpeg = *static_cast<JPEG *>(info->client_data);
    if (jpeg.info.input_scan_number <= 200)
        return;
    setMessage(*jpeg.input, "too many scans");
    std::longjmp(jpeg.escape, 1);
}

bool readHead(JPEG &jpeg)
{
    if (setjmp(jpeg.escape) != 0)
        return false;
    jpeg_create_decompress(&jpeg.info);
    jpeg.info.progress = &jpeg.progress;
    jpeg_mem_src(&jpeg.info, jpeg.input->bytes.data(), jpeg.input->bytes.size());
    jpeg_read_header(&jpeg.info, TRUE);
    if (isTooLarge(jpeg.info.image_width, jpeg.info.image_height)) {
        setMessage(*jpeg.input, "too many texels");
        return false;
    }
    jpeg.info.out_color_space = jpeg.info.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&jpeg.info);
    return true;
}

// Bytes come to stand at the end of their line, and are widened from its begin on.
void widen(uint16_t *line, const unsigned char *bytes, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        line[i] = static_cast<uint16_t>(bytes[i] * 257);
}

bool readLines(JPEG &jpeg, osl_Picture &picture)
{
    if (setjmp(jpeg.escape) != 0)
        return false;
    const size_t stride = static_cast<size_t>(picture.width * picture.channels);
    while (jpeg.info.output_scanline < jpeg.info.output_height) {
        uint16_t *line = &picture.texels[jpeg.info.output_scanline * stride];
        unsigned char *bytes = reinterpret_cast<unsigned char *>(line) + stride;
        jpeg_read_scanlines(&jpeg.info, &bytes, 1);
        widen(line, bytes, stride);
    }
    return true;
}
} // namespace

bool osl_decodePNG(const std::vector<unsigned char> &file, osl_Picture &picture, std::string &error)
{
    Input input = {file, 0, ""};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &input, failPNG, ignorePNG);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    const bool isRead = info != nullptr && decode(png, info, input, picture);
    png_destroy_read_struct(&png, &info, nullptr);
    error = input.message;
    return isRead;
}

bool osl_decodeJPEG(const std::vector<unsigned char> &file, osl_Picture &picture,
                    std::string &error)
{
    Input input = {file, 0, ""};
    JPEG jpeg = {};
    jpeg.input = &input;
    jpeg.info.client_data = &jpeg;
    jpeg.info.err = jpeg_std_error(&jpeg.errors);
    jpeg.errors.error_exit = failJPEG;
    jpeg.errors.emit_message = ignoreJPEG;
    jpeg.progress.progress_monitor = watchJPEG;
    const bool isRead = readHead(jpeg) &&
                        allocate(jpeg.info.output_width, jpeg.info.output_height,
                                 jpeg.info.output_components, picture) &&
                        readLines(jpeg, picture);
    jpeg_destroy_decompress(&jpeg.info);
    error = input.message;
    return isRead;
}

#else

bool osl_decodePNG(const std::vector<unsigned char> &, osl_Picture &, std::string &error)
{
    error = "this program was built without textures";
    return false;
}

bool osl_decodeJPEG(const std::vector<unsigned char> &, osl_Picture &, std::string &error)
{
    error = "this program was built without textures";
    return false;
}

#endif
