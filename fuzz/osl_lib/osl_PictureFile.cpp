// Any bytes are a picture of the size it tells, or an error with a message.
#include "osl/lib/osl_PictureFile.h"

#include "fuzz/fuzz.h"
#include "tests/support/ScratchDirectory.h"

void fuzz(const std::string &bytes)
{
    static const ScratchDirectory scratch;
    osl_Picture picture;
    std::string error;
    if (osl_readPicture(scratch.write("picture", bytes), picture, error))
        fuzzExpectEqual(static_cast<long long>(picture.width) * picture.height * picture.channels,
                        static_cast<long long>(picture.texels.size()));
    else
        fuzzExpectEqual(false, error.empty());
}
