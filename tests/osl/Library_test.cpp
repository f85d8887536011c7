// The library's functions: what they give for arguments whose answer is known.
#include "Shading.h"
#include "tests/support/Cases.h"

#include <gtest/gtest.h>

TEST(Library, FunctionsGiveWhatIsKnown)
{
    const Show body = [](const char *text) { return printedBy(text); };
    const Show arguments = [](const char *text) {
        return printedBy("printf(" + std::string(text) + ");");
    };
    expectTable(TEST_DATA "/library", {
                                          {"Mathematics", arguments},
                                          {"ValuesOutsideTheRangeAreTamed", arguments},
                                          {"Geometry", arguments},
                                          {"Colours", arguments},
                                          {"Texts", arguments},
                                          {"Noise", arguments},
                                          {"Splines", arguments},
                                          {"Derivatives", arguments},
                                          {"FunctionsThatWriteTheirArguments", body},
                                      });
}

TEST(Library, TexturesThatAreMissing)
{
    const char *body = "color c = texture(\"none\", u, v, \"missingcolor\", color(1, 0, 2)); "
                       "string e; float f = texture(\"none\", u, v, \"errormessage\", e); "
                       "printf(\"%g %g %d\", c, f, strlen(e) > 0);";
    EXPECT_EQ("1 0 2 0 1", printedBy(body));
    EXPECT_EQ("0",
              printedBy("int r[2]; printf(\"%d\", gettextureinfo(\"none\", \"resolution\", r));"));
    EXPECT_EQ("1 0",
              printedBy("int i = 1; printf(\"%d \", gettextureinfo(\"none\", \"exists\", i)); "
                        "printf(\"%d\", i);"));
}
