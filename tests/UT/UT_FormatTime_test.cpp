#include "UT/UT_FormatTime.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>

namespace
{
class FormatTime : public testing::Test
{
protected:
    FormatTime() { setZone("UTC0"); }
    ~FormatTime() override { unsetenv("TZ"); }

    static void setZone(const char *zone)
    {
        setenv("TZ", zone, 1);
        tzset();
    }
};

time_t localTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    tm t{second, minute, hour, day, month - 1, year - 1900, 0, 0, -1, 0, nullptr};
    return std::mktime(&t);
}

std::string formatted(const char *format, time_t when)
{
    char buffer[512];
    UTformatTime(buffer, format, when);
    return buffer;
}
} // namespace

TEST_F(FormatTime, EachConversion)
{
    const time_t morning = localTime(2026, 1, 5, 9, 7, 3);    // a Monday
    const time_t midnight = localTime(2005, 12, 25, 0, 0, 0); // a Sunday
    const struct {
        const char *format, *morning, *midnight;
        int conversions;
    } cases[] = {
        {"\"%b %e %Y\"", "\"Jan  5 2026\"", "\"Dec 25 2005\"", 3},
        {"\"%T\"", "\"09:07:03\"", "\"00:00:00\"", 4},
        {"%a %A", "Mon Monday", "Sun Sunday", 2},
        {"%h %B", "Jan January", "Dec December", 2},
        {"%c", "Mon Jan  5 09:07:03 2026", "Sun Dec 25 00:00:00 2005", 9},
        {"%C|%y", "20|26", "20|05", 2},
        {"%d|%m", "05|01", "25|12", 2},
        {"%D %x", "01/05/26 01/05/26", "12/25/05 12/25/05", 8},
        {"%H|%I|%p", "09|09|AM", "00|12|AM", 3},
        {"%j", "05", "359", 1},
        {"%M|%S", "07|03", "00|00", 2},
        {"%n%t%%", "\n\t%", "\n\t%", 3},
        {"%r", "09:07:03 AM", "12:00:00 AM", 5},
        {"%R %X", "09:07 09:07:03", "00:00 00:00:00", 7},
        {"%u|%w", "1|1", "7|0", 2},
        {"%Z", "UTC", "UTC", 1},
        {"%Q%E%\xe4%-d", "%Q%E%\xe4%-d", "%Q%E%\xe4%-d", 0},
        {"100%", "100%", "100%", 0},
        {"", "", "", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.format);
        EXPECT_EQ(c.morning, formatted(c.format, morning));
        EXPECT_EQ(c.midnight, formatted(c.format, midnight));
        char buffer[512];
        EXPECT_EQ(c.conversions, UTformatTime(buffer, c.format, morning));
    }
    EXPECT_EQ("12 PM 11", formatted("%I %p", localTime(2026, 2, 3, 12)) +
                              formatted(" %I", localTime(2026, 2, 3, 23)));
    EXPECT_EQ("34", formatted("%j", localTime(2026, 2, 3)));
}

TEST_F(FormatTime, ZoneNameFollowsDaylightSaving)
{
    setZone("WIN0SUM,M3.5.0,M10.5.0");
    EXPECT_EQ("WIN", formatted("%Z", localTime(2026, 1, 5)));
    EXPECT_EQ("SUM", formatted("%Z", localTime(2026, 7, 5)));
}

TEST_F(FormatTime, ABufferIsCutAt512CharactersAndAStreamIsNot)
{
    const std::string format = std::string(509, 'x') + "%Y%m";
    const time_t when = localTime(2026, 1, 5);
    EXPECT_EQ(std::string(509, 'x') + "20", formatted(format.c_str(), when));
    std::ostringstream stream;
    UTformatTime(stream, format.c_str(), when) << "|";
    EXPECT_EQ(std::string(509, 'x') + "202601|", stream.str());
}

TEST_F(FormatTime, ATimeBeyondTheCalendarGivesAnEmptyText)
{
    if (sizeof(time_t) < 8)
        GTEST_SKIP() << "each time has a date";
    EXPECT_EQ("", formatted("x%Y", std::numeric_limits<time_t>::max()));
}
