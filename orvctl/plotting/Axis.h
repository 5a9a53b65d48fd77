#pragma once

#include <vector>

namespace orv {

/// What an edge of a panel shows, from its low to its high end, and how far apart its marks are.
struct Axis {
    double low = 0;
    double high = 1;
    double step = 1;

    /// 0 at the low end, 1 at the high one.
    double place(double value) const { return (value - low) / (high - low); }
};

/// The smallest of 1, 2 and 5 times a power of ten that is not below a positive length.
double roundStep(double length);

/// An axis with round ends that holds both values, in at most so many steps, which are 2 or more. Values are finite.
Axis axisAround(double least, double most, int steps);

/// Where the marks are: the multiples of the step that the axis holds.
std::vector<double> marksOf(const Axis& axis);

} // namespace orv
