// The page of a library: one static index.html for a browser, with all palettes' names,
// shaders and failures in it and the pictures beside it or below.
//
// The page needs no other file, no server and no network. It runs its own script and
// nothing else: whatever a palette is called or holds is shown as text.
#pragma once

#include <string>
#include <vector>

// Paths as the caller has them. A picture that does not exist (yet) is named all the
// same: the page shows that it is missing, and tells folders by the pictures' places.
struct tm_PageEntry {
    std::string palette;
    std::string picture;
    std::string message; // why there is no good picture; empty when nothing failed
};

// Writes the page into `folder`, which exists. Types and shaders are read from the
// palettes; one that cannot be read is shown as failed. The dates are those of the files.
//
// An older page is replaced when the new one is whole. False, with the reason in `error`
// and no file changed: the page could not be written, or index.html is there and is no
// page of ours.
[[nodiscard]] bool tm_writePage(const std::string &folder, const std::vector<tm_PageEntry> &entries,
                                std::string &error);
