#include "UT/UT_StringFormat.h"

#include "tests/support/Cases.h"

#include <cstdio>
#include <iomanip>
#include <sstream>

#pragma GCC diagnostic ignored "-Wformat-nonliteral" // the formats are the data here

// Every flag and size in front of the conversions: a stream writes what printf does.
template <typename Number>
static void expectPrintfs(const std::string &conversions, std::initializer_list<const char *> sizes,
                          std::initializer_list<Number> values)
{
    for (const std::string flags : {"", "#", "+", "-", "0", "+0", "-0", "#0", "#-+"})
        for (const char *size : sizes)
            for (const char conversion : conversions)
                for (const Number value : values) {
                    const std::string format = '%' + flags + size + conversion;
                    char printed[200];
                    std::snprintf(printed, sizeof printed, format.c_str(), value);
                    std::ostringstream out;
                    out << std::hex << std::left << std::uppercase << std::setfill('*')
                        << std::showpos;
                    EXPECT_TRUE(UTapplyFormat(out, format.c_str()));
                    out << value;
                    EXPECT_EQ(printed, out.str()) << format;
                }
}

TEST(StringFormat, AStreamWritesNumbersAsPrintfDoes)
{
    expectPrintfs("eEfgG", {"", "1", "12", ".0", ".3", "14.2"}, {0.0, -1.5, 123456789.25, 1e-7});
    expectPrintfs("doxX", {"", "1", "12"}, {0, 7, 255, -255});
}

TEST(StringFormat, WarnsOfTextAroundTheConversion)
{
    expectTable(TEST_DATA "/data/formats", {{"7 in four dots", [](const char *format) {
                                                 std::ostringstream out;
                                                 out << std::setw(4) << std::setfill('.');
                                                 testing::internal::CaptureStderr();
                                                 if (!UTapplyFormat(out, format))
                                                     out << 7;
                                                 return out.str() +
                                                        testing::internal::GetCapturedStderr();
                                             }}});
}
