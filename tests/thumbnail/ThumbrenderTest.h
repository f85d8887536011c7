// A fixture with all that a run of thumbrender needs: a folder for palettes, the
// three templates on the main search path, and recording renderers.
#pragma once

#include "tests/support/ProgramRun.h"
#include "tests/support/RecordingRenderer.h"
#include "tests/support/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

class ThumbrenderTest : public ::testing::Test
{
protected:
    ThumbrenderTest();

    // Writes a palette (or any other file) into the folder of the runs.
    void withPalette(const std::string &name, const std::string &text) const;

    // Replaces the templates of all three scene languages. The first ones show
    // each definition in a line: its name in single quotes, a blank, its value.
    void withTemplate(const std::string &text) const;

    // Runs thumbrender in that folder. `settings` ("NAME=value") take the place of
    // HOME, PATH and VDX or come beside them.
    ProgramRun thumbrender(const std::vector<std::string> &arguments,
                           const std::vector<std::string> &settings = {}) const;

    // A file below the folder that holds everything.
    std::string path(const std::string &name) const { return scratch.path(name); }

    const ScratchDirectory scratch;
    RecordingRenderer renderer;
};
