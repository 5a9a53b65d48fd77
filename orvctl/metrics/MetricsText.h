#pragma once

#include <initializer_list>
#include <set>
#include <string>
#include <string_view>

namespace orv {

/// A gauge. Its help has neither a quote nor a backslash nor a newline, which readers write in different ways.
struct MetricFamily {
    std::string_view name; // ends with its unit
    std::string_view unit; // empty for a number that has none
    std::string_view help;
};

struct MetricLabel {
    std::string_view name;
    std::string_view value; // UTF-8; may hold anything
};

/// The part that two formats share, Prometheus' text format 0.0.4 and OpenMetrics 1.0: gauges alone, without times.
class MetricsText {
public:
    /// Samples of one family follow each other. Of those whose labels read alike the first is kept: one that comes
    /// twice would cost a reader the whole text.
    void add(const MetricFamily& family, std::initializer_list<MetricLabel> labels, double value);

    /// The whole text, which ends here.
    std::string finish();

private:
    std::string text;
    std::string_view begun; // the name of the last sample's family
    std::set<std::string> written; // the labels of its samples
};

} // namespace orv
