#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orv {

struct ReplayPlan {
    std::string path;
    double from = 0; // seconds since the recording's beginning: what is printed, since all of it is played
    std::optional<double> to; // without: to its end, and on to the refresh that shows it
    bool showsThermal = true;
    bool showsBluetooth = true;
    std::function<void(double reached, double end)> progress = nullptr; // told now and then
};

/// Plays a recording on the manual clock through the whole server and hands over one line of JSON for each refresh,
/// until `print` says no. False when the file cannot be used or ends before `from`; `fault` then is one line.
bool replay(const ReplayPlan& plan, const std::function<bool(const std::string& line)>& print, std::string& fault);

} // namespace orv
