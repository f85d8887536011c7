// Any scene is read or refused with messages that name their line.
#include "vaskel/scene/vk_SceneReader.h"

#include "fuzz/fuzz.h"

void fuzz(const std::string &bytes)
{
    std::string text = bytes + '\n';
    FILE *file = fmemopen(text.data(), text.size(), "r");
    vk_Scene scene;
    vk_SceneReader reader("fuzz", scene);
    const bool isGood = reader.read(file);
    fclose(file);
    fuzzExpectEqual(isGood, reader.messages().empty());
    for (const std::string &message : reader.messages())
        fuzzExpectEqual("fuzz:", message.substr(0, 5));
}
