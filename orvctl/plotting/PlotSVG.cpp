#include "orvctl/plotting/PlotSVG.h"

#include "orvctl/plotting/Markup.h"
#include "orvctl/plotting/Panel.h"
#include "orvctl/plotting/StyleSheet.h"

#include <fmt/core.h>

#include <utility>

namespace orv {

namespace {

constexpr int mostTimeMarks = 9;
constexpr double headingHeight = 34;
constexpr double panelGap = 12;
constexpr double timeHeight = 56; // labels and caption below the last panel

std::vector<Line> linesOf(const std::vector<const Series*>& drawn, Quantity quantity)
{
    std::vector<Line> lines;
    for (std::size_t number = 0; number < drawn.size(); ++number) {
        if (drawn[number]->quantity == quantity)
            lines.push_back({drawn[number], number});
    }
    return lines;
}

std::string timeLabels(const Plot& plot, const TimeAxis& time, double top)
{
    std::string text;
    for (const auto& mark : time.marks) {
        const double x = Panel::left + (mark.at - plot.range.from) / plot.range.length() * plotColumns;
        text += textAt(x, top + 18, "label middle", mark.label);
    }
    return text + textAt(Panel::left + plotColumns / 2.0, top + 40, "label middle", time.caption);
}

std::string descriptionOf(const std::vector<const Series*>& drawn)
{
    std::string text;
    for (const auto* series : drawn)
        text += fmt::format("{}{} {}, {:.1f} to {:.1f} {}", text.empty() ? "" : "; ", series->title, series->key,
            series->least, series->most, rowOf(series->quantity).symbol);
    return text;
}

} // namespace

std::string plotSVG(const Plot& plot, const std::string& heading)
{
    const auto drawn = drawnSeries(plot);
    const auto time = timeAxis(plot.range, plot.beginning, mostTimeMarks);
    std::string panels;
    double bottom = headingHeight;
    for (const auto& row : quantities) {
        auto lines = linesOf(drawn, row.quantity);
        if (lines.empty())
            continue;
        const Panel panel(plot, std::move(lines), time, bottom);
        panels += panel.svg();
        bottom = panel.bottom() + panelGap;
    }
    bottom -= panelGap;
    const double height = bottom + timeHeight;
    return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
                       "version=\"1.1\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" xml:lang=\"en\">\n",
               pixels(Panel::width), pixels(height))
        + fmt::format("<title>{}</title>\n<desc>{}</desc>\n", escaped(heading), escaped(descriptionOf(drawn)))
        + fmt::format("<style type=\"text/css\">{}</style>\n", plotStyleSheet)
        + "<rect width=\"100%\" height=\"100%\" class=\"paper\"/>\n" + textAt(Panel::left, 26, "title", heading)
        + panels + timeLabels(plot, time, bottom) + "</svg>\n";
}

} // namespace orv
