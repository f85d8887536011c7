// The command line of thumbmake.
#pragma once

#include <string>
#include <vector>

struct tm_Options {
    std::vector<std::string> inputs; // folders and palettes

    // What pictures are made with: change one, and they are made again.
    std::string geometry; // as for thumbrender -g; empty: its default
    std::string renderer; // -r
    std::string quality;  // of vaskel; empty: its default
    std::string format = "jpg";
    int size = 0; // pixels; 0: as the palette says
    bool hasBackground = true;
    bool hasShadows = true;

    std::string output; // folder that mirrors the inputs; empty: beside the palettes
    int jobs = 0;       // at a time; 0: one for each processor
    int failures = 0;   // after which it stops; 0: never
    bool isForced = false;
    bool isDryRun = false;
    bool isQuiet = false;
    bool isVerbose = false;
    bool deletesOnError = false;

    std::string page;   // folder whose page is written afterwards
    std::string submit; // the engine of a farm
    bool waits = false; // for the farm

    // A part of a farm's job: part chunk (from 1) of chunkCount of the list inputs[0].
    int chunk = 0, chunkCount = 0;

    bool wantsHelp = false, wantsVersion = false;
};

// False, with the reason, when the words make no command.
[[nodiscard]] bool tm_parseOptions(const std::vector<std::string> &words, tm_Options &options,
                                   std::string &error);

// What --help prints.
std::string tm_usage();
