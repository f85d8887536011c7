// Any scene is read or refused with messages that name their line.
#include "vaskel/vk_SceneReader.h"

#include "fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string text = fuzzText(data, size) + '\n';
    FILE *file = fmemopen(text.data(), text.size(), "r");
    vk_Scene scene;
    vk_SceneReader reader("fuzz", scene);
    const bool isGood = reader.read(file);
    fclose(file);
    fuzzExpectEqual(isGood, reader.messages().empty());
    for (const std::string &message : reader.messages())
        fuzzExpectEqual("fuzz:", message.substr(0, 5));
    return 0;
}
