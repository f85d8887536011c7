#include "thumbmake/tm_Library.h"

#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>
#include <system_error>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{
constexpr std::string_view SUFFIX = ".palette";

bool isPalette(const std::string &name)
{
    return name.size() > SUFFIX.size() &&
           name.compare(name.size() - SUFFIX.size(), SUFFIX.size(), SUFFIX) == 0;
}

// A folder that ".." leaves may be a link; only the file system knows what lies above it.
bool leavesFolders(const fs::path &path)
{
    return std::find(path.begin(), path.end(), "..") != path.end();
}

fs::path shortened(const fs::path &path)
{
    return leavesFolders(path) ? path : path.lexically_normal();
}

class Search
{
public:
    Search(const tm_Options &options, const std::string &here, const std::string &cache,
           tm_Library &library)
        : myOptions(options), myHere(here), myCache(cache), myLibrary(library)
    {
    }

    void take(const std::string &input)
    {
        std::error_code error;
        const fs::file_status status = fs::status(input, error);
        if (fs::is_directory(status))
            takeFolder(input, absolute(input));
        else if (fs::exists(status))
            takePalette(input, absolute(fs::path(input).parent_path()) / fs::path(input).filename(),
                        fs::path(input).filename());
        else
            report(input, error ? error.message() : "no such file or folder");
    }

private:
    // Of a folder that is there.
    fs::path absolute(const fs::path &folder) const
    {
        const fs::path path = myHere / folder;
        std::error_code error;
        const fs::path real = leavesFolders(path) ? fs::canonical(path, error) : fs::path();
        return real.empty() ? path.lexically_normal() : real;
    }

    // Folder by folder, without recursion however deep they lie.
    void takeFolder(const std::string &input, const fs::path &top)
    {
        std::vector<fs::path> open = {""};
        while (!open.empty()) {
            const fs::path below = open.back();
            open.pop_back();
            std::vector<fs::path> folders = listFolder(input, top, below);
            std::sort(folders.rbegin(), folders.rend());
            open.insert(open.end(), folders.begin(), folders.end());
        }
    }

    // Takes the palettes of one folder, in order; returns its folders.
    std::vector<fs::path> listFolder(const std::string &input, const fs::path &top,
                                     const fs::path &below)
    {
        std::vector<fs::path> folders, palettes;
        std::error_code error;
        for (fs::directory_iterator entry(top / below, error), end; !error && entry != end;
             entry.increment(error)) {
            const std::string name = entry->path().filename();
            std::error_code ignored;
            if (name[0] == '.') // also what editors lay beside a palette
                continue;
            if (entry->is_directory(ignored) && !entry->is_symlink(ignored))
                folders.push_back(below / name);
            else if (isPalette(name) && !entry->is_directory(ignored))
                palettes.push_back(below / name);
        }
        if (error)
            report(fs::path(input) / below, error.message());
        std::sort(palettes.begin(), palettes.end());
        for (const fs::path &palette : palettes)
            takePalette(fs::path(input) / palette, top / palette, palette);
        return folders;
    }

    void takePalette(const fs::path &name, const fs::path &palette, const fs::path &mirrored)
    {
        tm_Item item;
        item.name = shortened(name);
        item.palette = palette;
        if (tm_hasControl(item.palette) || tm_hasControl(myOptions.output))
            return report(item.name, "a control character in the name");
        struct stat info = {};
        if (stat(palette.c_str(), &info) != 0) // a link; ninja would stop at it
            return report(item.name,
                          errno == ENOENT ? "a link that leads nowhere" : std::strerror(errno));
        if (info.st_mtime > myNow)
            myLibrary.warnings.push_back(tm_printable(item.name) +
                                         ": dated in the future, so made again each time");
        item.picture = pictureOf(item.palette);
        if (!myOptions.output.empty())
            item.picture = absolute(myOptions.output) / pictureOf(mirrored);
        if (!myPictures.insert(item.picture).second)
            return myPalettes.count(item.palette) != 0
                       ? void()
                       : report(item.name, "its picture is another palette's too");
        myPalettes.insert(item.palette);
        const std::string key = tm_hex(tm_hash(item.picture));
        item.stamp = myCache + "/stamps/" + key.substr(0, 2) + "/" + key;
        myLibrary.items.push_back(item);
    }

    // As thumbrender names it, with the suffix of the format.
    std::string pictureOf(const std::string &palette) const
    {
        const size_t length = isPalette(palette) ? palette.size() - SUFFIX.size() : palette.size();
        return palette.substr(0, length) + "." + myOptions.format;
    }

    void report(const std::string &name, const std::string &why)
    {
        myLibrary.problems.push_back(tm_printable(name) + ": " + why);
    }

    const tm_Options &myOptions;
    const fs::path myHere;
    const std::string &myCache;
    const time_t myNow = time(nullptr);
    tm_Library &myLibrary;
    std::set<std::string> myPictures, myPalettes;
};
} // namespace

tm_Library tm_findPalettes(const tm_Options &options, const std::string &here,
                           const std::string &cache)
{
    tm_Library library;
    Search search(options, here, cache, library);
    for (const std::string &input : options.inputs)
        search.take(input);
    return library;
}
