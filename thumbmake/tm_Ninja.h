// The work as a graph for ninja (https://ninja-build.org), and ninja at work.
//
// Ninja knows which stamps are older than what their pictures were made of, or were made
// by another command; it runs that many jobs at a time, stops at Ctrl-C and goes on next
// time where it was.
#pragma once

#include "thumbmake/tm_Library.h"

#include <string>
#include <vector>

struct tm_Options;

struct tm_Outcome {
    long made = 0;
    std::vector<std::string> failures; // "NAME: why"
    bool wasInterrupted = false;
    std::string error; // ninja could not be run or did not do its work
};

// Writes CACHE/build.ninja. The pictures' command names the recipe's file, which is named
// after what is in it, so that another recipe makes all of them out of date. Stamps whose
// pictures are gone, or all of them with --force, are removed. False, and errno.
[[nodiscard]] bool tm_writeGraph(const std::string &cache, const std::string &recipeFile,
                                 const tm_Library &library, const tm_Options &options);

// Runs ninja on it to its end and shows how far it is, as the options say.
tm_Outcome tm_runNinja(const std::string &cache, const tm_Options &options);

// What is out of date, by the names of its palettes, without making anything.
tm_Outcome tm_askNinja(const std::string &cache, std::vector<std::string> &names);
