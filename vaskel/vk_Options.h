// The command line of vaskel.
#pragma once

#include "vaskel/pixels/vk_Renderer.h"

#include <string>

enum vk_Action { VK_DRAW, VK_HELP, VK_VERSION, VK_LIST_SHADERS };

struct vk_Options {
    static constexpr float LONGEST_LIMIT = 1e6f; // seconds
    static constexpr float INPUT_LIMIT = 600;    // for standard input, unless one is given
    static constexpr int LARGEST_SIZE = 4096;    // of a square within vk_Scene::MOST_PIXELS

    vk_Action action = VK_DRAW; // the last of several
    std::string scene = "-";    // a file's name; "-": standard input
    bool stats = false;
    int samples = 0;  // 0: up to the quality
    float limit = -1; // seconds until the program ends; 0: never, below: not said
    const vk_Quality *quality = &VK_DEFAULT_QUALITY;

    // In place of what the scene says.
    std::string output; // the picture's file; empty: the scene's
    std::string format; // "jpg", "png"; empty: by the file's suffix
    int size = 0;       // pixels of the longer side; 0: the scene's
};

// Takes the arguments, options and the scene in any order; "--" ends the options. The
// words of VELDRIN_VASKEL_OPTIONS are options in front of them, for a driver that starts
// us without any. False and a message that says what was expected when something is
// wrong, unless help, version or list was asked for.
[[nodiscard]] bool vk_parseOptions(int argc, const char *const argv[], vk_Options &options,
                                   std::string &error);

// What --help prints.
std::string vk_usage();
