// Any bytes may be taken for zlib or gzip data: reading them by lines ends, gives as
// many bytes as the position says, and gives the same again after a rewind.
#include "UT/UT_IGZStream.h"
#include "UT/UT_IZStream.h"
#include "fuzz/fuzz.h"
#include "tests/support/PlainReader.h"

static std::string readAll(UT_IStream &in)
{
    std::string all;
    char block[1000];
    for (int got; (got = in.bread(block, sizeof block)) > 0;)
        all.append(block, static_cast<size_t>(got));
    return all;
}

static void check(UT_IStream &&in)
{
    const std::string all = readAll(in);
    fuzzExpectEqual(static_cast<long long>(all.size()), in.tellg());
    if (in.seekg(0, 0))
        fuzzExpectEqual(all, readAll(in));
}

void fuzz(const std::string &bytes)
{
    UT_IStream forZLib = streamOver(bytes, true), forGZip = streamOver(bytes, true);
    check(UT_IZStream(forZLib));
    check(UT_IGZStream(forGZip));
}
