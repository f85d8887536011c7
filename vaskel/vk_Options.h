// The command line of vaskel.
#pragma once

#include "vaskel/pixels/vk_Renderer.h"

enum vk_Action { VK_DRAW, VK_HELP, VK_VERSION, VK_LIST_SHADERS };

struct vk_Options {
    static constexpr float LONGEST_LIMIT = 1e6f; // seconds

    vk_Action action = VK_DRAW; // the last of several
    const char *scene = "-";    // a file's name; "-": standard input
    bool stats = false;
    int samples = 0;  // 0: up to the quality
    float limit = -1; // seconds until the program ends; 0: never, below: not said
    const vk_Quality *quality = &VK_DEFAULT_QUALITY;
};

// Takes the arguments, options and the scene in any order; "--" ends the
// options. VELDRIN_VASKEL_LIMIT stands for a --limit that is not there. False and a message that
// says what was expected when something is wrong, unless help, version or list was asked for.
[[nodiscard]] bool vk_parseOptions(int argc, const char *const argv[], vk_Options &options,
                                   std::string &error);

// What --help prints.
std::string vk_usage();
