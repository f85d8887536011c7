#include "UT/UT_StringFormat.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>

#pragma GCC diagnostic ignored "-Wformat-nonliteral" // the formats are the data here

namespace
{
std::string printed(const char *format, double value)
{
    char text[200];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string printed(const char *format, int value)
{
    char text[200];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

template <typename Number>
std::string streamed(const char *format, Number value)
{
    std::ostringstream out;
    out << std::hex << std::left << std::uppercase << std::setfill('*') << std::showpos;
    EXPECT_TRUE(UTapplyFormat(out, format));
    out << value;
    return out.str();
}
} // namespace

TEST(StringFormat, AStreamWritesNumbersAsPrintfDoes)
{
    for (const char *flags : {"", "#", "+", "-", "0", "+0", "-0", "#0", "#-+"}) {
        for (const char *size : {"", "1", "12", ".0", ".3", "14.2"}) {
            for (const char conversion : std::string("eEfgG")) {
                const std::string format = std::string("%") + flags + size + conversion;
                for (const double value : {0.0, -1.5, 123456789.25, 1e-7})
                    EXPECT_EQ(printed(format.c_str(), value), streamed(format.c_str(), value))
                        << format;
            }
        }
        for (const char *size : {"", "1", "12"}) {
            for (const char conversion : std::string("doxX")) {
                const std::string format = std::string("%") + flags + size + conversion;
                for (const int value : {0, 7, 255, -255})
                    EXPECT_EQ(printed(format.c_str(), value), streamed(format.c_str(), value))
                        << format;
            }
        }
    }
}

TEST(StringFormat, WarnsOfTextAroundTheSpecification)
{
    const struct {
        const char *format, *warnings;
    } cases[] = {
        {"%5d", ""},
        {"n=%5d", "Warning: extra text \"n=\" before format string \"%5d\" ignored.\n\r"},
        {"%d%%", "Warning: extra text \"%%\" after format string \"%d\" ignored.\n"},
        {"a \"b %.3f c d",
         "Warning: extra text \"\"a \\\"b \"\" before format string \"%.3f\" ignored.\n\r"
         "Warning: extra text \" c d\" after format string \"%.3f\" ignored.\n"},
    };
    for (const auto &c : cases) {
        std::ostringstream out;
        testing::internal::CaptureStderr();
        EXPECT_TRUE(UTapplyFormat(out, c.format));
        EXPECT_EQ(c.warnings, testing::internal::GetCapturedStderr());
    }
}

TEST(StringFormat, WithoutASpecificationTheStreamStaysAsItIs)
{
    for (const char *format :
         {"", "d", "x %", "%5", "%q", "%5.2s", static_cast<const char *>(nullptr)}) {
        std::ostringstream out;
        out << std::setw(4) << std::setfill('.');
        testing::internal::CaptureStderr();
        EXPECT_FALSE(UTapplyFormat(out, format));
        EXPECT_EQ("", testing::internal::GetCapturedStderr());
        out << 7;
        EXPECT_EQ("...7", out.str());
    }
}
