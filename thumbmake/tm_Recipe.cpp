#include "thumbmake/tm_Recipe.h"

#include "UT/UT_Environment.h"
#include "UT/UT_PathSearch.h"
#include "UT/UT_String.h"
#include "thumbmake/tm_Options.h"
#include "thumbmake/tm_Text.h"

#include <cstring>
#include <filesystem>

#include <link.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
const char *const PROGRAMS[] = {"thumbrender", "thumbmake"};
const char *const TEMPLATES[] = {"shop/palette/shadeball.ifd", "shop/palette/shadeball.rib",
                                 "shop/palette/shadeball.mi",  "shop/palette/shadeball.inc",
                                 "shop/palette/site.rib",      "shop/palette/site.mi"};
// Those that choose the renderer or where it looks; templates stand for the rest.
const char *const SETTINGS[] = {"VELDRIN_THUMB_RENDER",
                                "VELDRIN_RI_SHADERPATH",
                                "VELDRIN_ZEL_PATH",
                                "VELDRIN_VASKEL_OPTIONS",
                                "VELDRIN_PATH",
                                "VDX",
                                "VIP",
                                "VSITE"};

std::string ownFolder()
{
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::string findOnPath(const std::string &name)
{
    const char *const path = UTgetenv("PATH");
    for (const std::string &folder : tm_split(path != nullptr ? path : "", ':'))
        if (!folder.empty() && access((folder + "/" + name).c_str(), X_OK) == 0)
            return folder + "/" + name;
    return "";
}

// Our shared libraries that this program runs with; none when it was linked statically.
std::vector<std::string> ownLibraries()
{
    std::vector<std::string> files;
    const auto find = [](dl_phdr_info *info, size_t, void *found) {
        for (const char *const name : {"/libUT.so", "/libCPP.so"})
            if (std::strstr(info->dlpi_name, name) != nullptr)
                static_cast<std::vector<std::string> *>(found)->emplace_back(info->dlpi_name);
        return 0;
    };
    dl_iterate_phdr(find, &files);
    return files;
}

// A line of the text: a letter for the field, a blank, the word.
constexpr char THUMBRENDER = 'T', RENDERER = 'R', VASKEL = 'V', OUTPUT = 'O', FINGERPRINT = 'F';
} // namespace

std::string tm_fingerprint()
{
    std::uint64_t hash = tm_hash("");
    const auto add = [&hash](const std::string &text) {
        hash = tm_hash(text, tm_hash({"\0", 1}, hash));
    };
    const auto addFile = [&add](const std::string &file) {
        std::string bytes;
        static_cast<void>(!tm_readFile(file, bytes)); // a job will tell
        add(bytes);
    };
    for (const char *const program : PROGRAMS)
        addFile(tm_findProgram(program));
    for (const std::string &library : ownLibraries())
        addFile(library);
    // thumbrender starts the one that PATH leads to; one beside it is the last resort.
    const std::string renderer = findOnPath("vaskel");
    addFile(renderer.empty() ? tm_findProgram("vaskel") : renderer);
    for (const char *const name : TEMPLATES) {
        UT_String path;
        UT_PathSearch::getInstance(UT_VELDRIN_PATH).findFile(path, name);
        add(path.isNonEmpty() ? path.text() : "");
    }
    for (const char *const name : SETTINGS) {
        const char *const value = UTgetenv(name);
        add(value != nullptr ? value : "");
    }
    return tm_hex(hash);
}

tm_Recipe tm_makeRecipe(const tm_Options &options)
{
    tm_Recipe recipe;
    const auto add = [](std::vector<std::string> &words, const char *option, std::string value) {
        if (!value.empty())
            words.insert(words.end(), {option, std::move(value)});
    };
    add(recipe.thumbrender, "-g", options.geometry);
    recipe.renderer = options.renderer;
    if (!options.hasBackground)
        recipe.thumbrender.push_back("-b");
    if (!options.hasShadows)
        recipe.thumbrender.push_back("-s");
    add(recipe.vaskel, "--quality", options.quality);
    add(recipe.vaskel, "--size", options.size > 0 ? std::to_string(options.size) : "");
    add(recipe.vaskel, "--format", options.format == "jpg" ? "" : options.format);
    recipe.hasOutput = !options.output.empty();
    recipe.fingerprint = tm_fingerprint();
    return recipe;
}

std::string tm_recipeText(const tm_Recipe &recipe)
{
    std::string text;
    const auto line = [&text](char field, const std::string &word) {
        text += std::string(1, field) + " " + word + "\n";
    };
    for (const std::string &word : recipe.thumbrender)
        line(THUMBRENDER, word);
    if (!recipe.renderer.empty())
        line(RENDERER, recipe.renderer);
    for (const std::string &word : recipe.vaskel)
        line(VASKEL, word);
    if (recipe.hasOutput)
        line(OUTPUT, "");
    line(FINGERPRINT, recipe.fingerprint);
    return text;
}

bool tm_parseRecipe(const std::string &text, tm_Recipe &recipe)
{
    for (const std::string &line : tm_split(text, '\n')) {
        const std::string word = line.size() > 2 ? line.substr(2) : "";
        switch (line.empty() ? '\n' : line[0]) {
        case THUMBRENDER:
            recipe.thumbrender.push_back(word);
            break;
        case RENDERER:
            recipe.renderer = word;
            break;
        case VASKEL:
            recipe.vaskel.push_back(word);
            break;
        case OUTPUT:
            recipe.hasOutput = true;
            break;
        case FINGERPRINT:
            recipe.fingerprint = word;
            break;
        case '\n':
            break;
        default:
            return false;
        }
    }
    return !recipe.fingerprint.empty();
}

std::string tm_findProgram(const std::string &name)
{
    const std::string beside = ownFolder() + "/" + name;
    if (access(beside.c_str(), X_OK) == 0)
        return beside;
    const std::string found = findOnPath(name);
    return found.empty() ? name : found;
}
