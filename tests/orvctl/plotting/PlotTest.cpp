#include "orvctl/plotting/CSVFields.h"
#include "orvctl/plotting/CSVPlot.h"
#include "orvctl/plotting/Markup.h"
#include "orvctl/plotting/PlotSVG.h"
#include "orvctl/plotting/Trace.h"
#include "orvctl/watching/WallTime.h"
#include "tests/support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace orv;

namespace {

Figure celsius(const std::string& key, const std::string& title, double value)
{
    return {key, title, "celsius", value, {}};
}

Figure rpm(const std::string& key, double value)
{
    return {key, "Fan " + key, "rpm", value, {}};
}

std::string drawn(const Plot& plot)
{
    std::string keys;
    for (const auto* series : drawnSeries(plot))
        keys += series->key + ' ';
    return keys;
}

std::string pathOf(const Trace& trace)
{
    return trace.path({0, 10, 1}, 0, 0, 10);
}

} // namespace

TEST(Trace, DrawsPointsGapsAndDots)
{
    Trace trace(20);
    EXPECT_EQ(pathOf(trace), "");
    trace.add(0, 0, false);
    trace.add(2.25, 5, true);
    trace.add(4, 5, true);
    trace.add(5, 5, true); // straight on
    trace.add(6, 7, true);
    trace.add(9, 1, false); // alone
    trace.add(12, 2, false);
    trace.add(20, 2, true); // at the very end
    EXPECT_EQ(pathOf(trace), "M0,10l2.3,-5h2.7l1,-2M9,9h0M12,8h8");
}

TEST(Trace, DrawsFromExtremeToExtremeWhateverLiesWithinAPixel)
{
    Trace trace(2);
    for (int point = 0; point < 100000; ++point)
        trace.add(point / 50000.0, 5 + 4 * std::sin(point), point > 0);
    EXPECT_EQ(pathOf(trace), "M0.5,1v8h1v-8");
    Trace busy(720);
    for (int point = 0; point < 720000; ++point)
        busy.add(point / 1000.0, point % 10007 * 7919 % 10007 / 1001.0, point > 0);
    EXPECT_LT(pathOf(busy).size(), 720u * 24);
}

TEST(Plot, DrawsTheHottestOfEachGroupThenFansOrWhatWasChosen)
{
    const auto fill = [](Plot& plot) {
        plot.add(0,
            {celsius("TC0P", "CPU Proximity", 50), celsius("TC1C", "CPU Core 1", 40), celsius("TG0D", "GPU Diode", 45),
                rpm("F0Ac", 1200), {"aa-bb", "Left", "percent", 90, {}}});
        plot.add(5, {celsius("TC0P", "CPU Proximity", 50), celsius("TC1C", "CPU Core 1", 60)});
    };
    Plot all({0, 10}, std::nullopt, {});
    fill(all);
    EXPECT_EQ(drawn(all), "TC1C TG0D F0Ac ");
    Plot some({0, 10}, std::nullopt, {"aa-bb", "CPU Proximity", "TG0D", "TG9D"});
    fill(some);
    EXPECT_EQ(drawn(some), "aa-bb TC0P TG0D ");
    EXPECT_EQ(some.unknown(), std::set<std::string>{"TG9D"});
    Plot levels({0, 10}, std::nullopt, {});
    levels.add(0, {{"aa-bb", "Left", "percent", 90, {}}});
    EXPECT_EQ(drawn(levels), "aa-bb ");
    Plot fans({0, 10}, std::nullopt, {});
    for (int fan = 0; fan < 20; ++fan)
        fans.add(0, {rpm(std::to_string(fan), 1000)});
    EXPECT_EQ(drawn(fans), "0 1 2 3 4 5 6 7 8 9 10 11 ");
}

TEST(Plot, EndsLinesWhereNothingPlausibleWas)
{
    Plot plot({0, 720}, std::nullopt, {});
    const auto sensor = [&](double at, double value) { plot.add(at, {celsius("TC0P", "CPU Proximity", value)}); };
    sensor(10, 0);
    sensor(20, 10);
    plot.add(30, {});
    sensor(40, 0);
    sensor(50, 10);
    sensor(55, 1e300);
    sensor(60, 0);
    plot.breakOff();
    sensor(70, 10);
    sensor(721, 0); // outside
    EXPECT_EQ(pathOf(plot.series.front().trace), "M10,10l10,-10M40,10l10,-10M60,10h0M70,0h0");
    EXPECT_EQ(plot.series.front().most, 10);
    plot.addSleep({-5, 2.5});
    plot.addSleep({100.2, 100.4});
    plot.addSleep({800, 900});
    EXPECT_EQ(std::ranges::count(plot.sleepingColumns, true), 4);
}

TEST(PlotSVG, StaysSmallAndEscapesWhateverASensorIsCalled)
{
    Plot plot({0, 86400}, std::nullopt, {});
    for (int refresh = 0; refresh < 17280; ++refresh) {
        std::vector<Figure> figures{celsius("T<&\">", "a]]>\x1b\xff\xef\xbf\xbf<script>", refresh * 7919 % 100)};
        for (const auto* title : {"CPU 1", "GPU 1", "Memory 1", "Battery 1", "SSD 1", "PMU 1", "Ambient", "Airport"})
            figures.push_back(celsius(title, title, refresh * 104729 % 101 / 2.0));
        plot.add(refresh * 5.0, figures);
    }
    const auto svg = plotSVG(plot, "<b>");
    EXPECT_LT(svg.size(), 160000u);
    EXPECT_EQ(svg.find("<script"), std::string::npos);
    EXPECT_NE(svg.find("a]]&gt;?"), std::string::npos);
    EXPECT_EQ(escaped("T<&\">\x1b\xff"), "T&lt;&amp;&quot;&gt;??");
}

TEST(CSVFields, AreThoseOfTheStandard)
{
    using Fields = std::vector<std::string>;
    EXPECT_EQ(csvFields(""), (Fields{""}));
    EXPECT_EQ(csvFields("a,,b,"), (Fields{"a", "", "b", ""}));
    EXPECT_EQ(csvFields(R"("a,""b""",c,"")"), (Fields{"a,\"b\"", "c", ""}));
    EXPECT_EQ(csvFields(R"("a"x,"b)"), (Fields{"a", "b"}));
}

TEST(CSVPlot, ReadsWhatWatchWrites)
{
    const TemporaryFile file("time,TC0P CPU Proximity [celsius],a b Left [percent],TX9X\r\n"
                             "2026-11-21T22:10:00.000Z,40.5,,\r\n"
                             "2026-11-21T22:10:05.000Z,41,80,\r\n"
                             "2026-11-21T22:12:00.000Z,42,inf,\r\n"
                             "time,TC0P CPU Proximity [celsius]\r\n"
                             "2026-11-21T22:12:05.000Z,43\r\n"
                             "2026-11-21T22:12:10.000Z,9");
    std::string fault;
    const auto plot = plotOfCSV(file.path, {}, fault);
    ASSERT_TRUE(plot) << fault;
    EXPECT_EQ(plot->range.to, 125);
    ASSERT_EQ(plot->series.size(), 2u);
    EXPECT_EQ(plot->series[0].title + plot->series[1].key + plot->series[1].title, "CPU Proximitya bLeft");
    EXPECT_EQ(plot->series[0].latest, 43);
    EXPECT_EQ(plot->series[0].trace.path({40, 50, 1}, 0, 0, 10), "M0,9.5l28.8,-0.5M691.2,8l28.8,-1") << "a gap between";
    const auto part = plotOfCSV(file.path, {{}, *parseWallTime("2026-11-21T22:10:05Z"), 60.0}, fault);
    ASSERT_TRUE(part) << fault;
    EXPECT_EQ(std::pair(part->range.from, part->range.to), std::pair(5.0, 60.0));
    EXPECT_EQ(part->series[0].least, 41);
}

TEST(CSVPlot, RefusesInOneLine)
{
    const std::string row = "2026-11-21T22:10:00.000Z,1\n";
    const std::string later = "2026-11-21T22:10:05.000Z,1\n";
    struct Case {
        std::string text, fault;
        PlotPlan plan = {};
    };
    for (const auto& [text, expected, plan] : {Case{"time,a b [rpm]\n" + row, "no two rows"},
             {"time,a b [rpm]\n" + row + "x,1\n", "line 3: does not begin with a time"},
             {"time,a b [rpm]\n" + row + later + row.substr(0, 25) + "x\n", "line 4: cell 2 is no number"},
             {"time,a b [rpm]\n" + row + later + "2026-11-21T22:10:05.000Z,1,2\n",
                 "line 4: has 3 cells below 2 headings"},
             {"time" + std::string(2001, ',') + "\n" + row + later, "more than 2000 columns"},
             {"time,a b [rpm]\n" + row + later, "ends 5 seconds after", {{}, 5.0, {}}},
             {"time,a b [rpm]\n" + row + later, "no time from --from to --to", {{}, 3.0, 2.0}}}) {
        const TemporaryFile file(text);
        std::string fault;
        EXPECT_FALSE(plotOfCSV(file.path, plan, fault));
        EXPECT_NE(fault.find(expected), std::string::npos) << fault;
        EXPECT_EQ(fault.find(file.path + ": "), 0u) << fault;
    }
    std::string fault;
    EXPECT_FALSE(rangeOf({{}, *parseWallTime("2026-11-21T22:10Z"), {}}, 60, std::nullopt, fault));
    EXPECT_NE(fault.find("no time of day"), std::string::npos);
}
