// Pictures made by many machines that share files.
//
// What is out of date becomes a list; each task of a job runs `thumbmake --chunk K/N LIST`,
// which makes its part of it. A task may run twice, at once too. The list lies in the
// cache, which all machines must see, as they must see palettes, pictures and programs:
//
//     RECIPE-FILE
//     NAME <tab> PALETTE <tab> PICTURE <tab> STAMP
//     ...
//
// thumbmake then takes over what the tasks made, and makes what they did not.
#pragma once

#include "thumbmake/tm_Library.h"

#include <string>
#include <vector>

struct tm_Options;

bool tm_isEngine(const std::string &name);
std::string tm_engineNames(); // "slurm, opencue, ..."

// Writes the list into a folder of its own below the cache. False, and errno.
[[nodiscard]] bool tm_writeList(const std::string &cache, const std::string &recipeFile,
                                const std::vector<tm_Item> &items, std::string &list);

// Hands the list to the engine: Slurm gets a job, of others the job is printed in their own
// form. Returns the exit status.
int tm_submit(const tm_Options &options, const std::string &list, size_t pictures);

// Makes a part of the list. Returns the exit status: 1 when any picture failed.
int tm_makeChunk(const tm_Options &options);
