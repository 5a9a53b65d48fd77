#include "orvctl/watching/WallTime.h"

#include <fmt/core.h>

#include <ctime>

namespace orv {

namespace {

using namespace std::chrono;

// A mark, if there has to be one, and so many digits, which are taken off the text.
std::optional<int> takeNumber(std::string_view& text, std::string_view mark, std::size_t digits)
{
    if (!text.starts_with(mark) || text.size() < mark.size() + digits)
        return std::nullopt;
    int number = 0;
    for (const char digit : text.substr(mark.size(), digits)) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    text.remove_prefix(mark.size() + digits);
    return number;
}

std::optional<sys_days> takeDate(std::string_view& text)
{
    const auto years = takeNumber(text, "", 4);
    const auto months = takeNumber(text, "-", 2);
    const auto days = takeNumber(text, "-", 2);
    if (!years || !months || !days)
        return std::nullopt;
    const year_month_day date{year(*years), month(static_cast<unsigned>(*months)), day(static_cast<unsigned>(*days))};
    // The clock counts nanoseconds in 64 bits on some systems, which end in 2262.
    return date.ok() && *years >= 1970 && *years < 2200 ? std::optional(sys_days(date)) : std::nullopt;
}

microseconds takeFraction(std::string_view& text)
{
    microseconds fraction{};
    if (!text.starts_with('.'))
        return fraction;
    text.remove_prefix(1);
    for (auto unit = microseconds(100000); !text.empty() && text[0] >= '0' && text[0] <= '9'; unit /= 10) {
        fraction += (text[0] - '0') * unit;
        text.remove_prefix(1);
    }
    return fraction;
}

// How far ahead of UTC, which is the end of the text.
std::optional<minutes> takeZone(std::string_view text)
{
    if (text == "Z" || text == "z")
        return minutes(0);
    const int sign = text.starts_with('-') ? -1 : 1;
    const auto hour = takeNumber(text, sign < 0 ? "-" : "+", 2);
    const auto minute = takeNumber(text, ":", 2);
    if (!hour || !minute || !text.empty() || *hour > 23 || *minute > 59)
        return std::nullopt;
    return sign * (hours(*hour) + minutes(*minute));
}

} // namespace

std::optional<WallTime> parseWallTime(std::string_view text)
{
    const auto date = takeDate(text);
    const auto hour = takeNumber(text, "T", 2);
    const auto minute = takeNumber(text, ":", 2);
    const auto second = text.starts_with(':') ? takeNumber(text, ":", 2) : 0;
    if (!date || !hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60)
        return std::nullopt;
    const auto fraction = takeFraction(text);
    const auto zone = takeZone(text);
    if (!zone)
        return std::nullopt;
    return WallTime(*date) + hours(*hour) + minutes(*minute) - *zone + seconds(*second)
        + duration_cast<WallTime::duration>(fraction);
}

std::string rfc3339(WallTime time)
{
    const auto whole = floor<seconds>(time);
    const std::time_t count = system_clock::to_time_t(whole);
    std::tm parts{};
    gmtime_r(&count, &parts);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", parts.tm_year + 1900, parts.tm_mon + 1,
        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, duration_cast<milliseconds>(time - whole).count());
}

} // namespace orv
