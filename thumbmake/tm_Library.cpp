#include "thumbmake/tm_Library.h"

#include "UT/UT_Process.h"
#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Text.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace fs = std::filesystem;

namespace
{
constexpr std::string_view SUFFIX = ".palette";

bool isPalette(const std::string &name)
{
    return name.size() > SUFFIX.size() &&
           name.compare(name.size() - SUFFIX.size(), SUFFIX.size(), SUFFIX) == 0;
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
            takeFolder(input, myHere / input);
        else if (fs::exists(status))
            takePalette(input, myHere / input, fs::path(input).filename());
        else
            report(input, error ? error.message() : "no such file or folder");
    }

private:
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
            if (entry->is_directory(ignored) && !entry->is_symlink(ignored) && name[0] != '.')
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
        item.name = name.lexically_normal();
        item.palette = palette.lexically_normal();
        if (tm_hasControl(item.palette) || tm_hasControl(myOptions.output))
            return report(item.name, "a control character in the name");
        std::error_code error;
        if (!fs::exists(palette, error)) // a link; ninja would stop at it
            return report(item.name, error ? error.message() : "a link that leads nowhere");
        item.picture = pictureOf(item.palette);
        if (!myOptions.output.empty())
            item.picture = (myHere / myOptions.output / pictureOf(mirrored)).lexically_normal();
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

    void report(std::string name, const std::string &why)
    {
        UTmakePrintable(name.data(), name.size());
        myLibrary.problems.push_back(name + ": " + why);
    }

    const tm_Options &myOptions;
    const fs::path myHere;
    const std::string &myCache;
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
