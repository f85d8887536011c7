// Stands in for every renderer: a folder for the front of PATH with a script
// under each renderer's name, which records how it was started.
#pragma once

#include "tests/support/ScratchDirectory.h"

#include <string>

class RecordingRenderer
{
public:
    RecordingRenderer();

    // Replaces what all of them do by a shell script's text. The script finds the
    // folder of the records in $0.
    void setScript(const std::string &script) const;

    const std::string &folder() const { return myFolder; }

    // Of all runs, in order: "commands" (lines), "scene" (what they read); and of the
    // last one its "environment" and what its "descriptors" refer to.
    std::string record(const char *name) const;

private:
    ScratchDirectory myScratch;
    std::string myFolder;
};
