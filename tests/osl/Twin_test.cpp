// The machine against its plain twin, over random expressions and programs.
#include "PlainProgram.h"
#include "Shading.h"

#include <cstdio>
#include <gtest/gtest.h>

TEST(Twin, SaysWhatExpressionsAreWorth)
{
    Random random;
    SCOPED_TRACE(random.seed());
    for (int round = 0; round < 200; ++round) {
        const PlainExpression expression(random, 5, {"u"});
        std::string expected;
        constexpr int POINTS = 9;
        for (int i = 0; i < POINTS; ++i) {
            char text[32];
            const float u = static_cast<float>(i) / (POINTS - 1);
            const float x = expression.at(&u);
            std::snprintf(text, sizeof text, "%.6g ", static_cast<double>(x));
            expected += text;
        }
        const std::string body = "float x = " + expression.text() + "; printf(\"%.6g \", x);";
        ASSERT_EQ(expected, printedBy(body, POINTS)) << body;
    }
}

TEST(Twin, SaysWhatProgramsPrint)
{
    Random random;
    SCOPED_TRACE(random.seed());
    for (int round = 0; round < 300; ++round) {
        const PlainProgram program(random);
        const std::string source = program.text();
        std::string expected;
        constexpr int POINTS = 17;
        for (int i = 0; i < POINTS; ++i)
            expected += program.printedAt(static_cast<float>(i) / (POINTS - 1));
        for (const int width : {1, 8, 16}) {
            const Shaded shaded = shade(source, POINTS, width);
            ASSERT_EQ("", shaded.compiler) << source;
            ASSERT_EQ(expected, shaded.printed) << "at width " << width << "\n" << source;
        }
    }
}
