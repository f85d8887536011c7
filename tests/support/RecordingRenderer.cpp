#include "tests/support/RecordingRenderer.h"

#include <filesystem>

namespace fs = std::filesystem;

static const char *const RECORD = "cd \"${0%/*}/..\" || exit\n"
                                  "echo \"${0##*/}${*:+ $*}\" >>commands\n"
                                  "cat >>scene\n"
                                  "env >environment\n"
                                  "ls -l /proc/self/fd >descriptors\n";

RecordingRenderer::RecordingRenderer() : myFolder(myScratch.makeDirectory("renderers"))
{
    setScript(RECORD);
}

void RecordingRenderer::setScript(const std::string &script) const
{
    for (const char *command : {"vaskel", "render", "entropy", "renderdc", "ray"}) {
        const std::string file =
            myScratch.write(std::string("renderers/") + command, "#!/bin/sh\n" + script);
        fs::permissions(file, fs::perms::owner_all);
    }
}

std::string RecordingRenderer::record(const char *name) const
{
    return fileContents(myScratch.path(name));
}
