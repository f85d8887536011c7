// A film as the bytes of a picture file.
#pragma once

#include "vaskel/file/vk_Film.h"

#include <cstdint>
#include <string>
#include <vector>

// Encodes for the suffix of the name, `comment` within (a JPEG's COM, a PNG's tEXt with
// the keyword Comment), unless it is empty: JPEG (ITU-T T.81) in the highest quality
// that still saves, colours at full resolution; or PNG (RFC 2083), marked as
// sRGB. False and a message when the encoder fails or the suffix is neither
// .jpg, .jpeg nor .png. REQUIRES: a comment of at most VK_LONGEST_COMMENT bytes
[[nodiscard]] bool vk_encode(const vk_Film &film, const std::string &name,
                             const std::string &comment, std::vector<std::uint8_t> &file,
                             std::string &error);

// What fits a JPEG's marker, and is plenty.
constexpr std::size_t VK_LONGEST_COMMENT = 16384;

// Whether vk_encode() knows the name's suffix.
bool vk_isPictureName(const std::string &name);
