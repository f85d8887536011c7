// The examples look as they did when scripts/renew-pictures.sh was run last.
#include "tests/support/ProgramRun.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <vector>

#include <jpeglib.h>

namespace fs = std::filesystem;

namespace
{
constexpr int SIDE = 64, BLOCK = 8;

// Red, green and blue of all pixels; none when it is no picture of that size.
std::vector<unsigned char> pixelsOf(const std::string &path)
{
    std::string file = fileContents(path);
    std::vector<unsigned char> pixels;
    if (file.substr(0, 2) != "\xff\xd8")
        return pixels;
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, reinterpret_cast<unsigned char *>(file.data()), file.size());
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    if (jpeg.output_width == SIDE && jpeg.output_height == SIDE)
        pixels.resize(3 * SIDE * SIDE);
    while (!pixels.empty() && jpeg.output_scanline < SIDE) {
        JSAMPROW row = &pixels[3 * SIDE * jpeg.output_scanline];
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_destroy_decompress(&jpeg);
    return pixels;
}

// The largest mean difference of a block: noise is gone there, what moved is not.
double difference(const std::vector<unsigned char> &a, const std::vector<unsigned char> &b)
{
    std::map<std::size_t, double> sums; // by block and colour
    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::size_t pixel = i / 3, row = pixel / SIDE / BLOCK, column = pixel % SIDE / BLOCK;
        sums[3 * (row * SIDE + column) + i % 3] += (a[i] - b[i]) / double{BLOCK * BLOCK};
    }
    double largest = 0;
    for (const auto &sum : sums)
        largest = std::max(largest, std::abs(sum.second));
    return largest;
}
} // namespace

TEST(Pictures, LookAsTheyDid)
{
    const ScratchDirectory folder;
    const ProgramRun script = runLine("exec '" SOURCE_DIR "/scripts/render-small.sh' .",
                                      {"PATH=" BIN_DIR ":/usr/bin:/bin", "VDX=" SOURCE_DIR "/share",
                                       "HOME=" + folder.makeDirectory("home")},
                                      folder.path());
    EXPECT_EQ("", script.err);
    int examples = 0;
    for (const auto &entry : fs::directory_iterator(SOURCE_DIR "/examples")) {
        if (entry.path().extension() != ".palette")
            continue; // a shader's source
        const std::string name = entry.path().stem().string() + ".jpg";
        SCOPED_TRACE(name + ": if it is better now, run scripts/renew-pictures.sh");
        const auto now = pixelsOf(folder.path(name)),
                   then = pixelsOf(TEST_DATA "/pictures/" + name);
        ++examples;
        ASSERT_TRUE(!now.empty() && now.size() == then.size());
        EXPECT_LT(difference(now, then), 5);
    }
    EXPECT_GT(examples, 25);
}
