#include "osl/lib/osl_PictureFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// One for each format; where the libraries are missing, both fail.
bool osl_decodePNG(const std::vector<unsigned char> &file, osl_Picture &picture,
                   std::string &error);
bool osl_decodeJPEG(const std::vector<unsigned char> &file, osl_Picture &picture,
                    std::string &error);

namespace
{
constexpr off_t LARGEST_FILE = off_t(256) << 20;

struct Format {
    const char *signature;
    bool (*decode)(const std::vector<unsigned char> &, osl_Picture &, std::string &);
};
constexpr Format FORMATS[] = {{"\x89PNG\r\n", osl_decodePNG}, {"\xff\xd8\xff", osl_decodeJPEG}};

bool readAll(int fd, std::vector<unsigned char> &bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = read(fd, bytes.data() + done, bytes.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<size_t>(got);
    }
    return done == bytes.size();
}

bool readOpen(int fd, std::vector<unsigned char> &bytes, std::string &error)
{
    struct stat info;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))
        error = "not a regular file";
    else if (info.st_size > LARGEST_FILE)
        error = "larger than 256 MB";
    if (!error.empty())
        return false;
    bytes.resize(static_cast<size_t>(info.st_size));
    if (!readAll(fd, bytes))
        error = "cannot be read";
    return error.empty();
}

// A device or a pipe must not make us wait.
bool readFile(const std::string &path, std::vector<unsigned char> &bytes, std::string &error)
{
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        error = std::strerror(errno);
        return false;
    }
    const bool isRead = readOpen(fd, bytes, error);
    close(fd);
    return isRead;
}

void multiplyByAlpha(osl_Picture &picture)
{
    const size_t channels = static_cast<size_t>(picture.channels);
    if (channels % 2 != 0)
        return;
    for (size_t at = 0; at < picture.texels.size(); at += channels) {
        const uint32_t alpha = picture.texels[at + channels - 1];
        for (size_t c = 0; c + 1 < channels; ++c) {
            uint16_t &texel = picture.texels[at + c];
            texel = static_cast<uint16_t>((texel * alpha + 32767) / 65535);
        }
    }
}
} // namespace

bool osl_readPicture(const std::string &path, osl_Picture &picture, std::string &error)
{
    std::vector<unsigned char> bytes;
    error.clear();
    if (!readFile(path, bytes, error))
        return false;
    for (const Format &format : FORMATS) {
        const size_t length = std::strlen(format.signature);
        if (bytes.size() < length || std::memcmp(bytes.data(), format.signature, length) != 0)
            continue;
        if (!format.decode(bytes, picture, error))
            return false;
        multiplyByAlpha(picture);
        return true;
    }
    error = "neither PNG nor JPEG";
    return false;
}
