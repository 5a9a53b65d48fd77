#include "orvctl/plotting/Axis.h"

#include <algorithm>
#include <cmath>

namespace orv {

double roundStep(double length)
{
    const double power = std::pow(10.0, std::floor(std::log10(length)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= length)
            return factor * power;
    }
    return 10 * power;
}

Axis axisAround(double least, double most, int steps)
{
    // A constant stands in the middle of something.
    const double room = most > least ? 0 : std::max(1.0, std::abs(most) / 10);
    double step = roundStep((most - least + 2 * room) / steps);
    for (;; step = roundStep(step * 1.5)) {
        const Axis axis{std::floor((least - room) / step) * step, std::ceil((most + room) / step) * step, step};
        if (std::lround((axis.high - axis.low) / step) <= steps)
            return axis;
    }
}

std::vector<double> marksOf(const Axis& axis)
{
    constexpr double rounding = 1e-9;
    std::vector<double> marks;
    const double last = std::floor(axis.high / axis.step + rounding);
    for (double count = std::ceil(axis.low / axis.step - rounding); count <= last; ++count)
        marks.push_back(count * axis.step + 0.0); // never -0
    return marks;
}

} // namespace orv
