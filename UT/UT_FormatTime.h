// Dates and times as text: strftime with English names, whatever the locale.
//
// The format's characters are copied, except for these conversions (local time):
//
//   %a %A  day of the week, short and full      %b %h %B  month, short and full
//   %d %e  day of the month, 05 and " 5"        %m        month, 01-12
//   %y %Y  year, 26 and 2026                    %C        century, 20
//   %H %I  hour, 00-23 and 01-12                %p        AM or PM
//   %M %S  minute and second, two digits        %j        day of the year, from 01
//   %u %w  day of the week, Monday 1 to Sunday 7, and Sunday 0 to Saturday 6
//   %n %t %%  newline, tab, percent sign        %Z        name of the time zone
//
// and those that stand for several others:
//
//   %c  %a %b %e %T %Y       %D %x  %m/%d/%y       %r  %I:%M:%S %p
//   %T %X  %H:%M:%S          %R     %H:%M
//
// Any other character behind a percent sign is copied along with it. %j differs
// from POSIX strftime: it has at least two digits, not three.
//
// A run of thumbrender comes here for a template's __DATE__ or __TIME__ only.
#pragma once

#include <ctime>
#include <iosfwd>

// Writes at most 512 characters with the NUL that always ends them; what is longer
// is cut. Returns the number of conversions: one for each in the format, and one
// for each that it stands for, so "%T" counts 4. A time that has no calendar date
// gives an empty text and 0.
int UTformatTime(char *buffer, const char *format, time_t when);

// The same to a stream, of any length.
std::ostream &UTformatTime(std::ostream &os, const char *format, time_t when);
