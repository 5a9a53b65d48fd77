#include "orvctl/plotting/TimeAxis.h"

#include "orvctl/plotting/Axis.h"

#include <fmt/core.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <ctime>

namespace orv {

namespace {

constexpr double minute = 60;
constexpr double hour = 60 * minute;
constexpr double day = 24 * hour;

double timeStep(double length)
{
    for (const double unit : {1.0, minute}) {
        for (const double count : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0}) {
            if (count * unit >= length)
                return count * unit;
        }
    }
    for (const double count : {1.0, 2.0, 3.0, 6.0, 12.0}) {
        if (count * hour >= length)
            return count * hour;
    }
    return roundStep(std::max(1.0, length / day)) * day;
}

std::string elapsedLabel(double at, double step)
{
    const auto seconds = std::llround(at);
    if (seconds == 0)
        return "0";
    if (step >= day)
        return fmt::format("{} d", seconds / 86400);
    if (step >= hour)
        return fmt::format("{} h", seconds / 3600);
    if (step >= minute)
        return at < hour ? fmt::format("{} min", seconds / 60)
                         : fmt::format("{}:{:02} h", seconds / 3600, seconds / 60 % 60);
    return at < minute ? fmt::format("{} s", seconds) : fmt::format("{}:{:02} min", seconds / 60, seconds % 60);
}

std::tm localTime(WallTime time)
{
    const auto count = std::chrono::system_clock::to_time_t(std::chrono::round<std::chrono::seconds>(time));
    std::tm parts{};
    localtime_r(&count, &parts);
    return parts;
}

// Not by strftime, which knows the months of the user's locale alone.
std::string_view monthName(const std::tm& time)
{
    static constexpr std::array<std::string_view, 12> names{"January", "February", "March", "April", "May", "June",
        "July", "August", "September", "October", "November", "December"};
    return names.at(static_cast<std::size_t>(time.tm_mon));
}

std::string clockLabel(const std::tm& time, double step)
{
    if (step >= day || (time.tm_hour == 0 && time.tm_min == 0 && time.tm_sec == 0))
        return fmt::format("{} {}", time.tm_mday, monthName(time).substr(0, 3));
    if (step >= minute)
        return fmt::format("{:02}:{:02}", time.tm_hour, time.tm_min);
    return fmt::format("{:02}:{:02}:{:02}", time.tm_hour, time.tm_min, time.tm_sec);
}

std::string dateText(const std::tm& time)
{
    return fmt::format("{} {} {}", time.tm_mday, monthName(time), time.tm_year + 1900);
}

std::string datesText(const std::tm& first, const std::tm& last)
{
    char zone[64] = "";
    std::strftime(zone, sizeof(zone), "%Z", &first);
    const auto begins = dateText(first);
    const auto ends = dateText(last);
    return begins + (ends == begins ? "" : " to " + ends) + ", " + zone;
}

WallTime after(WallTime beginning, double seconds)
{
    return beginning + std::chrono::round<WallTime::duration>(std::chrono::duration<double>(seconds));
}

// How long before the beginning a day began, so that marks are at round times of it.
double secondsIntoDay(const std::tm& time)
{
    return time.tm_hour * hour + time.tm_min * minute + time.tm_sec;
}

} // namespace

TimeAxis timeAxis(TimeRange range, std::optional<WallTime> beginning, int mostMarks)
{
    const double step = timeStep(range.length() / mostMarks);
    TimeAxis axis{{}, "time since the beginning"};
    if (!beginning) {
        for (const double at : marksOf({range.from, range.to, step}))
            axis.marks.push_back({at, elapsedLabel(at, step)});
        return axis;
    }
    const auto whole = std::chrono::floor<std::chrono::seconds>(*beginning);
    const double origin = std::chrono::duration<double>(whole - *beginning).count() - secondsIntoDay(localTime(whole));
    for (const double mark : marksOf({range.from - origin, range.to - origin, step})) {
        const double at = mark + origin;
        axis.marks.push_back({at, clockLabel(localTime(after(*beginning, at)), step)});
    }
    axis.caption = datesText(localTime(after(*beginning, range.from)), localTime(after(*beginning, range.to)));
    return axis;
}

} // namespace orv
