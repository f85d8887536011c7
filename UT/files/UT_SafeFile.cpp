#include "UT/UT_SafeFile.h"

#include "UT/UT_SignalPause.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{
constexpr mode_t NEW_FILE = 0666; // less what the umask or the folder's default takes away
constexpr mode_t GROUP_SHIFT = 3; // from the bits of others to those of the group
constexpr int MOST_LINKS = 40;    // followed, as many as the system does
constexpr int MOST_NAMES = 100;   // tried, when somebody has laid files of these names

std::string folderOf(const std::string &target)
{
    const std::string folder = target.substr(0, target.rfind('/') + 1); // npos + 1 is 0
    return folder.empty() ? "./" : folder;
}

// One that nobody can guess. Up to 200 bytes of the target's: with what is around it, 255
// are allowed.
std::string nameBeside(const std::string &target)
{
    std::uint64_t number = 0;
    static_cast<void>(!getrandom(&number, sizeof number, 0)); // then it is taken, at worst
    char end[24];
    std::snprintf(end, sizeof end, "-%016llx", static_cast<unsigned long long>(number));
    const std::size_t begin = target.rfind('/') + 1;
    return target.substr(0, begin) + "." + target.substr(begin, 200) + end;
}

// Calls make(NAME) until a name is not taken. False and an empty name, and errno, when it
// fails otherwise. No memory is taken behind make(): one that runs out would leave the file.
template <class Make>
bool makeBeside(const std::string &target, std::string &name, Make make)
{
    for (int i = 0; i < MOST_NAMES; ++i) {
        name = nameBeside(target);
        if (make(name.c_str()))
            return true;
        if (errno != EEXIST)
            break;
    }
    name.clear();
    return false;
}

// What a name stands for when the links at its end are followed.
enum End {
    A_FILE,      // or where one would be made
    OPEN_STREAM, // of somebody's, through /proc (/dev/stdout, /dev/fd/3): its file must not be
                 // replaced under the writer
    NOTHING      // links in a circle
};

End followLinks(std::string &name)
{
    for (int i = 0; i < MOST_LINKS; ++i) {
        struct statfs around;
        if (statfs(folderOf(name).c_str(), &around) == 0 && around.f_type == PROC_SUPER_MAGIC)
            return OPEN_STREAM;
        char link[PATH_MAX];
        const ssize_t length = readlink(name.c_str(), link, sizeof link);
        if (length <= 0)
            return A_FILE;
        const std::string next(link, static_cast<size_t>(length));
        name = next[0] == '/' ? next : folderOf(name) + next;
    }
    errno = ELOOP;
    return NOTHING;
}

// What is there; no mode at all when nothing is. False, and errno, when that cannot be told.
bool look(const std::string &name, struct stat &there)
{
    there = {};
    return lstat(name.c_str(), &there) == 0 || errno == ENOENT;
}

// The group's bits of a file with a list of its own tell the most that anybody has.
bool hasAccessList(const std::string &name)
{
    return lgetxattr(name.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
}

// `made` is what the new file is by itself. The old file's bits were given to its owner and
// to its group: another owner's mean nothing here, and another group gets no more than
// everybody, nor does any where a list says who the group's bits are for.
mode_t permissions(const struct stat &old, const struct stat &made, bool hasList)
{
    const mode_t bits = old.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (old.st_gid == made.st_gid && !hasList)
        return bits;
    return bits & (~static_cast<mode_t>(S_IRWXG) | (bits & S_IRWXO) << GROUP_SHIFT);
}

// Of the file that `file` shall replace.
bool givePermissions(int file, const std::string &target)
{
    struct stat old, made;
    if (!look(target, old) || fstat(file, &made) != 0)
        return false;
    if (!S_ISREG(old.st_mode) || old.st_uid != made.st_uid)
        return true;
    // Some file systems know no such bits; more than the old ones is a failure.
    const mode_t bits = permissions(old, made, hasAccessList(target));
    return fchmod(file, bits) == 0 || (made.st_mode & ~bits & (S_IRWXU | S_IRWXG | S_IRWXO)) == 0;
}

// Of a file with a name: what shall replace one of our own is nobody else's before it has
// that one's permissions.
mode_t firstPermissions(const std::string &target)
{
    struct stat old;
    const bool isOwn = look(target, old) && S_ISREG(old.st_mode) && old.st_uid == geteuid();
    return isOwn ? S_IRUSR | S_IWUSR : NEW_FILE;
}

// In a folder such as /tmp only the owners of a file and of the folder may replace it.
bool isForOthersToReplace(const std::string &folder, const struct stat &there)
{
    struct stat around;
    const uid_t self = geteuid();
    return self != 0 && there.st_mode != 0 && there.st_uid != self &&
           stat(folder.c_str(), &around) == 0 && (around.st_mode & S_ISVTX) != 0 &&
           around.st_uid != self;
}
} // namespace

UT_SafeFile::~UT_SafeFile()
{
    if (myStream != nullptr)
        std::fclose(myStream);
    removeTemporary();
}

void UT_SafeFile::removeTemporary()
{
    if (!myTemporary.empty())
        unlink(myTemporary.c_str());
    myTemporary.clear();
}

int UT_SafeFile::openBeside()
{
    // A file without a name gets one by way of /proc.
    const bool isNamedLater = access("/proc/self/fd", X_OK) == 0;
    const int nameless = isNamedLater ? ::open(folderOf(myTarget).c_str(),
                                               O_TMPFILE | O_WRONLY | O_CLOEXEC, NEW_FILE)
                                      : -1;
    if (nameless >= 0)
        return nameless;
    int file = -1;
    const mode_t mode = firstPermissions(myTarget);
    static_cast<void>(makeBeside(myTarget, myTemporary, [&file, mode](const char *name) {
        file = ::open(name, O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode);
        return file >= 0;
    }));
    return file;
}

// Gives a file without a name one beside the target.
bool UT_SafeFile::nameFile(int file)
{
    const std::string open = "/proc/self/fd/" + std::to_string(file);
    return makeBeside(myTarget, myTemporary, [&open](const char *name) {
        return linkat(AT_FDCWD, open.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    });
}

bool UT_SafeFile::fail(const char *what)
{
    const int code = errno;
    myError = std::string(what) + ": " + std::strerror(code);
    errno = code;
    return false;
}

bool UT_SafeFile::isWritable()
{
    struct stat there;
    if (!look(myTarget, there))
        return fail("cannot write");
    if (there.st_mode != 0 && !S_ISREG(there.st_mode) && !S_ISLNK(there.st_mode)) {
        myError = "cannot replace what is there: not a regular file";
        errno = EEXIST;
        return false;
    }
    const std::string folder = folderOf(myTarget);
    if (isForOthersToReplace(folder, there)) {
        errno = EPERM;
        return fail("cannot replace");
    }
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ||
           fail("cannot write");
}

FILE *UT_SafeFile::openNew()
{
    const int file = openBeside();
    if (file < 0)
        return nullptr;
    isReplacing = true;
    myStream = givePermissions(file, myTarget) ? fdopen(file, "w") : nullptr;
    if (myStream == nullptr) {
        const int code = errno;
        close(file);
        errno = code;
    }
    return myStream;
}

FILE *UT_SafeFile::open()
{
    if (myLinks == REPLACE_LINKS) {
        if (isWritable() && openNew() == nullptr)
            fail("cannot write");
        return myStream;
    }
    std::string name = myTarget;
    const End end = followLinks(name);
    struct stat there = {};
    const bool exists = stat(name.c_str(), &there) == 0;
    if (end == OPEN_STREAM || (exists && !S_ISREG(there.st_mode))) {
        myStream = std::fopen(myTarget.c_str(), "we");
    } else if (end == A_FILE && (!exists || access(name.c_str(), W_OK) == 0)) {
        // Who may not write the file shall not replace it either.
        myTarget = name;
        openNew();
    }
    if (myStream == nullptr)
        fail("cannot write");
    return myStream;
}

// Closes in any case.
bool UT_SafeFile::finish()
{
    bool isGood = std::fflush(myStream) == 0 && std::ferror(myStream) == 0;
    if (isGood && isReplacing && myTemporary.empty())
        isGood = nameFile(fileno(myStream));
    const int code = errno;
    const bool isClosed = std::fclose(myStream) == 0;
    myStream = nullptr;
    if (!isGood)
        errno = code;
    return isGood && isClosed;
}

bool UT_SafeFile::commit()
{
    const UT_SignalPause pause; // from here to the rename the file has a name
    const char *what = "cannot write";
    bool isGood = finish();
    if (isGood && isReplacing) {
        what = "cannot replace";
        isGood = std::rename(myTemporary.c_str(), myTarget.c_str()) == 0;
    }
    if (isGood) {
        myTemporary.clear();
        return true;
    }
    fail(what);
    const int code = errno;
    removeTemporary();
    errno = code;
    return false;
}
