// A fixture with all that a run of thumbrender needs: a folder "runs" with the palettes of
// data/palettes, the three templates on the main search path, and recording renderers.
#pragma once

#include "tests/support/ProgramRun.h"
#include "tests/support/RecordingRenderer.h"
#include "tests/support/ScratchDirectory.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

class ThumbrenderTest : public ::testing::Test
{
protected:
    ThumbrenderTest();

    // Replaces the templates of all three scene languages. The first ones show
    // each definition in a line: its name in single quotes, a blank, its value.
    void withTemplate(const std::string &text) const;

    // All that thumbrender does in that folder with further settings ("NAME=value"), for
    // arguments as a shell takes them: "STATUS MESSAGES|COMMANDS|SCENES", where "usage"
    // stands for the usage text.
    std::string told(const std::string &arguments,
                     const std::vector<std::string> &settings = {}) const;

    // A file below the folder that holds everything.
    std::string path(const std::string &name) const { return scratch.path(name); }

    const ScratchDirectory scratch;
    RecordingRenderer renderer;
};
