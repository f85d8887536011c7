#include "vaskel/file/vk_Picture.h"

#include <gtest/gtest.h>

// Else red edges were blurred: the frame's header has how often each component is sampled.
TEST(Picture, JpegHasColourAtFullResolution)
{
    vk_Film film;
    film.width = film.height = 16;
    film.bytes.assign(std::size_t{3} * 16 * 16, 200);
    std::vector<std::uint8_t> file;
    std::string error;
    ASSERT_TRUE(vk_encode(film, "p.jpg", "", file, error)) << error;
    const std::string text(file.begin(), file.end());
    const std::size_t frame = text.find(std::string("\xff\xc0\0\x11\x08", 5));
    ASSERT_NE(std::string::npos, frame);
    for (const std::size_t component : {11u, 14u, 17u})
        EXPECT_EQ(0x11, text[frame + component]) << component;
}
