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
    void remove() const; // nobody is found on PATH any more

    const std::string &folder() const { return myFolder; }

    // Of all runs, in order: command lines, a line each; standard inputs; and of
    // the last one its environment and what its descriptors refer to.
    std::string commands() const { return record("commands"); }
    std::string scene() const { return record("scene"); }
    std::string environment() const { return record("environment"); }
    std::string descriptors() const { return record("descriptors"); }

private:
    std::string record(const char *name) const;

    ScratchDirectory myScratch;
    std::string myFolder;
};
