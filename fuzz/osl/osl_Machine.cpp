// Random programs: the machine prints, at every width, what its plain twin does.
#include "fuzz/fuzz.h"
#include "tests/osl/PlainProgram.h"
#include "tests/osl/Shading.h"

void fuzz(const std::string &bytes)
{
    unsigned seed = 0;
    for (const char c : bytes)
        seed = seed * 257 + static_cast<unsigned char>(c);
    Random random(seed);
    const PlainProgram program(random);
    constexpr int POINTS = 17;
    std::string expected;
    for (int i = 0; i < POINTS; ++i)
        expected += program.printedAt(static_cast<float>(i) / (POINTS - 1));
    for (const int width : {1, 8, 16})
        fuzzExpectEqual(expected, shade(program.text(), POINTS, width).printed);
}
