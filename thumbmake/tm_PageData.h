// What a page knows of its palettes, as JSON that may stand inside HTML.
//
//     {"title": "lib", "entries": [
//     {"name": "gold", "folder": "metals", "type": "surface", "message": "",
//      "palette": "metals/gold.palette", "changed": 1700000000,
//      "picture": "metals/gold.jpg", "made": 1700000100,
//      "texts": [["VVaskel", "v_metal ..."]]}
//     ]}
//
// "palette" and "picture" are links, relative to the page. "changed" and "made" are these
// files' dates in seconds since 1970, 0 when there is no such file. "texts" are the shaders
// that the palette has and its text in front of the scene.
#pragma once

#include "thumbmake/tm_Page.h"

#include <string>
#include <string_view>

// The whole, entries in the order given, a line each.
std::string tm_pageData(const std::string &folder, const std::vector<tm_PageEntry> &entries);

// A text as JSON in quotes, ASCII where HTML or scripts would stumble: '<', controls, U+2028
// and U+2029 are escaped. A byte that is not UTF-8 becomes U+FFFD.
std::string tm_jsonText(std::string_view text);

// A path as a relative link: each byte but letters, digits and "-._~/" as %XX, so that no
// part of it is taken for a scheme, a query or a fragment.
std::string tm_linkTo(std::string_view relativePath);
