// Any palette: the renderer that the plain reading of its head chooses gets the extra
// text, if it is our own, and the scene; or none is started.
#include "thumbnail/PaletteReader.h"

#include "UT/UT_Args.h"
#include "fuzz/fuzz.h"
#include "tests/support/PlainReader.h"
#include "tests/support/PlainText.h"
#include "tests/support/RecordingRenderer.h"
#include "tests/support/ScopedVariable.h"
#include "thumbnail/ThumbState.h"

#include <cstring>

static std::string plainRun(const std::string &text)
{
    std::map<std::string, std::string> values;
    std::string extra;
    bool isExtra = false;
    PlainReader reader{text};
    for (std::string whole; reader.getLine(whole, '\n');) {
        const std::string line = whole.c_str();
        const std::vector<std::string> words = plainSplitWords(line + '\n');
        if (isExtra) {
            isExtra = line.compare(0, 11, "EndIfdExtra") != 0;
            extra += isExtra ? line + '\n' : "";
        } else if (line[0] != '#' && !words.empty()) {
            isExtra = words[0] == "BeginIfdExtra";
            if (words[0] == "ShopData")
                break;
            if (words.size() == 2)
                values[words[0]] = words[1];
        }
    }
    for (const char *type : {"surface", "displace", "light", "shadow", "fog"})
        if (values["ShaderType"] == type) {
            if (!values["VVaskel"].empty())
                return "vaskel\n" + (extra.empty() ? "" : extra + '\n') + "scene\n";
            return !values["RIB"].empty()  ? "render\nscene\n"
                   : !values["MI"].empty() ? "ray\nscene\n"
                                           : "";
        }
    return "";
}

void fuzz(const std::string &text)
{
    static const ScratchDirectory scratch;
    static const ScopedVariable home("HOME", scratch.path().c_str());
    static const ScopedVariable templates("VELDRIN_PATH", scratch.path().c_str());
    for (const char *name : {"ifd", "rib", "mi"})
        scratch.write(std::string("shop/palette/shadeball.") + name, "scene\n");
    const RecordingRenderer renderer;
    const ScopedVariable path("PATH", (renderer.folder() + ":/usr/bin:/bin").c_str());
    theQuietFlag = 1;
    UT_Args args;
    readPalette(scratch.write("x.palette", text).c_str(), args);
    fuzzExpectEqual(plainRun(text), renderer.record("commands") + renderer.record("scene"));
}
