// The machine against its plain twin, over random expressions.
#include "PlainExpression.h"
#include "Shading.h"

#include <cstdio>
#include <gtest/gtest.h>

TEST(Expressions, AreWorthWhatTheTwinSays)
{
    Random random;
    SCOPED_TRACE(random.seed());
    for (int round = 0; round < 200; ++round) {
        const PlainExpression expression(random, 5);
        std::string expected;
        constexpr int POINTS = 9;
        for (int i = 0; i < POINTS; ++i) {
            char text[32];
            const float x = expression.at(static_cast<float>(i) / (POINTS - 1));
            std::snprintf(text, sizeof text, "%.6g ", static_cast<double>(x));
            expected += text;
        }
        const std::string body = "float x = " + expression.text() + "; printf(\"%.6g \", x);";
        ASSERT_EQ(expected, printedBy(body, POINTS)) << body;
    }
}
