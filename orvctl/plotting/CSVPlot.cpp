#include "orvctl/plotting/CSVPlot.h"

#include "orvctl/plotting/WatchCSV.h"

namespace orv {

std::unique_ptr<Plot> plotOfCSV(const std::string& path, const PlotPlan& plan, std::string& fault)
{
    auto csv = WatchCSV::open(path, fault);
    if (!csv)
        return nullptr;
    const auto seconds = [&](WallTime time) { return std::chrono::duration<double>(time - csv->beginning()).count(); };
    const auto range = rangeOf(plan, seconds(csv->end()), csv->beginning(), fault);
    if (!range) {
        fault = path + ": " + fault;
        return nullptr;
    }
    auto plot = std::make_unique<Plot>(*range, csv->beginning(), plan.chosen);
    while (const auto row = csv->next(fault)) {
        if (!row->follows)
            plot->breakOff();
        plot->add(seconds(row->at), row->figures);
    }
    return fault.empty() ? std::move(plot) : nullptr;
}

} // namespace orv
