#include "vaskel/file/vk_Picture.h"

#include <csetjmp>
#include <cstdio>
#include <string_view>

#include <jpeglib.h>
#include <png.h>
#include <zlib.h>

namespace
{
// Where blocks and rims no longer show at 400 %.
constexpr int JPEG_QUALITY = 95;

// Says that colours are sRGB, as Exif 2.3 (CIPA DC-008) does: a TIFF header, a first
// directory that leads to Exif's own, and that with its version and ColorSpace = 1.
constexpr std::uint8_t EXIF_SRGB[] = {
    'E',  'x',  'i', 'f', 0, 0,                           // the marker's name
    'M',  'M',  0,   42,  0, 0, 0, 8,                     // big endian; first directory at 8
    0,    1,                                              // one entry:
    0x87, 0x69, 0,   4,   0, 0, 0, 1, 0,   0,   0,   26,  // ExifIFD, a long: at 26
    0,    0,    0,   0,                                   // no further directory
    0,    2,                                              // two entries:
    0x90, 0,    0,   7,   0, 0, 0, 4, '0', '2', '3', '0', // ExifVersion
    0xa0, 1,    0,   3,   0, 0, 0, 1, 0,   1,   0,   0,   // ColorSpace, a short: sRGB
    0,    0,    0,   0,                                   // no further directory
};

using Bytes = std::vector<std::uint8_t>;

// libjpeg calls error_exit and expects it not to return.
struct JpegErrors {
    jpeg_error_mgr base; // first: libjpeg hands out a pointer to it
    std::jmp_buf escape;
    char message[JMSG_LENGTH_MAX];
};

extern "C" void escapeFromJpeg(j_common_ptr info)
{
    auto *const errors = reinterpret_cast<JpegErrors *>(info->err);
    info->err->format_message(info, errors->message);
    std::longjmp(errors->escape, 1);
}

// Appends to a file in memory. Not jpeg_mem_dest(), which tells its caller of a buffer that grew
// only at the end: after an error in between the caller would free one that is gone.
struct JpegFile {
    jpeg_destination_mgr base; // first, as above
    Bytes *file;
    JOCTET buffer[4096];
};

extern "C" void beginJpegFile(j_compress_ptr info)
{
    auto *const to = reinterpret_cast<JpegFile *>(info->dest);
    to->base.next_output_byte = to->buffer;
    to->base.free_in_buffer = sizeof to->buffer;
}

// All of the buffer is full then, whatever free_in_buffer says.
extern "C" boolean appendJpegBuffer(j_compress_ptr info)
{
    auto *const to = reinterpret_cast<JpegFile *>(info->dest);
    to->file->insert(to->file->end(), to->buffer, to->buffer + sizeof to->buffer);
    beginJpegFile(info);
    return TRUE;
}

extern "C" void endJpegFile(j_compress_ptr info)
{
    auto *const to = reinterpret_cast<JpegFile *>(info->dest);
    to->file->insert(to->file->end(), to->buffer, to->base.next_output_byte);
}

// It owns nothing: escapeFromJpeg() leaves it by a jump, past all destructors.
void compressRows(jpeg_compress_struct &info, const vk_Film &film, const std::string &comment)
{
    info.image_width = static_cast<JDIMENSION>(film.width);
    info.image_height = static_cast<JDIMENSION>(film.height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    // TRUE keeps to the baseline of T.81, tables of 8 bits, which every decoder reads.
    jpeg_set_quality(&info, JPEG_QUALITY, TRUE);
    // A second pass over a small picture costs a millisecond and saves a tenth of the file.
    info.optimize_coding = TRUE;
    // Chroma at full resolution: red edges stay sharp.
    info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&info, TRUE);
    // libjpeg takes markers only between the start, which writes JFIF's own, and the first row.
    jpeg_write_marker(&info, JPEG_APP0 + 1, EXIF_SRGB, sizeof EXIF_SRGB);
    if (!comment.empty())
        jpeg_write_marker(&info, JPEG_COM, reinterpret_cast<const JOCTET *>(comment.data()),
                          static_cast<unsigned>(comment.size()));
    while (info.next_scanline < info.image_height) {
        const std::size_t row = std::size_t{3} * info.image_width * info.next_scanline;
        // libjpeg takes rows that it could write to, and only reads them.
        JSAMPROW pixels = const_cast<JSAMPROW>(film.bytes.data() + row);
        jpeg_write_scanlines(&info, &pixels, 1);
    }
    jpeg_finish_compress(&info);
}

// Into memory: the file is written in one go when all of it is there.
bool encodeJpeg(const vk_Film &film, const std::string &comment, Bytes &file, std::string &error)
{
    jpeg_compress_struct info = {};
    JpegErrors errors = {};
    JpegFile to = {{nullptr, 0, beginJpegFile, appendJpegBuffer, endJpegFile}, &file, {}};
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = escapeFromJpeg;
    // No object with a destructor comes to life between here and the jump.
    if (setjmp(errors.escape) != 0) {
        jpeg_destroy_compress(&info);
        error = errors.message;
        return false;
    }
    jpeg_create_compress(&info);
    info.dest = &to.base;
    compressRows(info, film, comment);
    jpeg_destroy_compress(&info);
    return true;
}

extern "C" void appendPng(png_structp png, png_bytep bytes, png_size_t count)
{
    auto *const file = static_cast<Bytes *>(png_get_io_ptr(png));
    file->insert(file->end(), bytes, bytes + count);
}

extern "C" void escapeFromPng(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void writeComment(png_structp png, png_infop info, const std::string &comment)
{
    // One of those that RFC 2083 lists. libpng wants to be given what it could write to.
    char keyword[] = "Comment";
    png_text text = {};
    // Plain, so that anybody finds it with grep.
    text.compression = PNG_TEXT_COMPRESSION_NONE;
    text.key = keyword;
    text.text = const_cast<char *>(comment.c_str()); // libpng copies it
    png_set_text(png, info, &text, 1);
}

bool encodePng(const vk_Film &film, const std::string &comment, Bytes &file, std::string &error)
{
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, escapeFromPng, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    // Both libraries leave by longjmp; this one without a message of its own that would help.
    if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_write_struct(&png, &info);
        error = "the PNG encoder failed (out of memory?)";
        return false;
    }
    png_set_write_fn(png, &file, appendPng, nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(film.width),
                 static_cast<png_uint_32>(film.height), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // The intent that the format recommends for pictures like photographs.
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    // A third of the time, which counts beside that of drawing; some per cent more bytes, and a
    // quarter more where pictures are plain.
    png_set_compression_strategy(png, Z_RLE);
    if (!comment.empty())
        writeComment(png, info, comment);
    png_write_info(png, info);
    for (int y = 0; y < film.height; ++y)
        png_write_row(png, film.bytes.data() + 3 * static_cast<std::size_t>(y * film.width));
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

struct Format {
    std::string_view suffix;
    bool (*encode)(const vk_Film &, const std::string &, Bytes &, std::string &);
};
constexpr Format FORMATS[] = {
    {".jpg", encodeJpeg},
    {".jpeg", encodeJpeg},
    {".png", encodePng},
};

const Format *formatOf(const std::string &name)
{
    for (const Format &format : FORMATS) {
        const std::size_t length = format.suffix.size();
        // The suffix alone is no name.
        if (name.size() > length && name.substr(name.size() - length) == format.suffix)
            return &format;
    }
    return nullptr;
}
} // namespace

bool vk_encode(const vk_Film &film, const std::string &name, const std::string &comment,
               Bytes &file, std::string &error)
{
    const Format *const format = formatOf(name);
    if (format != nullptr)
        return format->encode(film, comment, file, error);
    error = "expected a name that ends in .jpg, .jpeg or .png";
    return false;
}

bool vk_isPictureName(const std::string &name)
{
    return formatOf(name) != nullptr;
}
