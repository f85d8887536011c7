#include "osl/lib/osl_TextFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool osl_readText(const std::string &path, std::string &text)
{
    constexpr off_t MAX_BYTES = 32 << 20;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    struct stat info;
    bool isGood =
        fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= MAX_BYTES;
    if (isGood) {
        text.resize(static_cast<size_t>(info.st_size));
        size_t done = 0;
        ssize_t count = 1;
        while (done < text.size() &&
               (count = read(descriptor, &text[done], text.size() - done)) > 0)
            done += static_cast<size_t>(count);
        // A file of the system may be unreadable and claim to be empty.
        char more;
        isGood = count >= 0 && read(descriptor, &more, 1) == 0;
        text.resize(done);
    }
    close(descriptor);
    return isGood;
}
