// Compressed texts.
#pragma once

#include <string>
#include <zlib.h>

// In the zlib format, RFC 1950: a head of 2 bytes, deflated data, 4 bytes of checksum.
inline std::string deflated(const std::string &text)
{
    uLongf size = compressBound(static_cast<uLong>(text.size()));
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef *>(&out[0]), &size,
             reinterpret_cast<const Bytef *>(text.data()), static_cast<uLong>(text.size()));
    return out.substr(0, size);
}

// In the gzip format, RFC 1952, with the fields that the flags announce.
inline std::string gzipped(const std::string &text, char flags = 0, const std::string &fields = "")
{
    const std::string head = {31, static_cast<char>(139), 8, flags, 1, 2, 3, 4, 0, 3};
    return head + fields + deflated(text).substr(2) + "trailer.";
}
