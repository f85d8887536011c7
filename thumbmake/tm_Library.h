// The palettes of a library, and where each one's picture goes.
#pragma once

#include <string>
#include <vector>

struct tm_Options;

// One picture to have.
struct tm_Item {
    std::string name;    // the palette as people know it: below the folder they named
    std::string palette; // absolute, like the rest
    std::string picture;
    std::string stamp; // in the cache, as old as what is known of the picture
};

struct tm_Library {
    std::vector<tm_Item> items;        // by their names, folder by folder
    std::vector<std::string> problems; // "NAME: why": what was found and cannot be made
    std::vector<std::string> warnings; // likewise, of what will be made
};

// Looks at the inputs: files as they are, in folders all that ends in .palette, at any
// depth, hidden folders and links to folders left out. A picture lies beside its palette,
// or in the output folder as the palette in the folder named. Relative names begin at
// `here`, stamps go below `cache`.
//
// Problems: an input that is not there, a folder that cannot be read, a name with control
// characters, two palettes for one picture.
tm_Library tm_findPalettes(const tm_Options &options, const std::string &here,
                           const std::string &cache);
