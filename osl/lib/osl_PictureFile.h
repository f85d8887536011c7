// PNG and JPEG files as numbers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Rows from the top, without gaps; 65535 stands for 1. Channels are grey, grey and
// alpha, RGB or RGBA. Colours are multiplied by alpha, so that filters may blend them.
struct osl_Picture {
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<uint16_t> texels;
};

// Reads a file of at most 16384 texels in each direction and 2^25 in all. False, and
// `error` says why without the path, for anything that is not such a picture; a file
// that is not a regular one is not touched.
[[nodiscard]] bool osl_readPicture(const std::string &path, osl_Picture &picture,
                                   std::string &error);
