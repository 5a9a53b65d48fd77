#include "orvctl/watching/Watch.h"

#include "orvctl/watching/WallTime.h"
#include "tests/support/ParsedDictionary.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

using namespace orv;
using namespace std::chrono_literals;

namespace {

constexpr const char* thermalText = R"({
    "TC0P": {"title": "CPU Proximity", "type": "temperature", "unit": "celcius", "value": 45.25},
    "TB0T": {"title": "Battery, \"main\" <1>", "type": "temperature", "unit": "celcius", "value": 31.0},
    "TA0P": {"title": "Ambient 1", "type": "temperature", "unit": "celcius", "value": -0.25},
    "F0Ac": {"title": "Left Side", "type": "fans", "unit": "rpm", "value": 1200, "minvalue": 1000, "maxvalue": 5000},
    "F1Ac": {"title": "Right Side", "type": "fans", "unit": "rpm", "value": 0, "minvalue": 0, "maxvalue": 5000}})";
constexpr const char* bluetoothText = R"({"watch-1": {"batteryLevel": 80, "note": "x"},
    "aa-bb": {"batteryLevelRight": 41, "batteryLevelLeft": 40, "batteryLevelCase": 255}})";

Timing aged(std::chrono::microseconds age, bool isAsleep = false)
{
    return {age, 5s, isAsleep};
}

/// A watch whose outputs are kept, on a wall clock that is set by hand.
struct TestWatch {
    explicit TestWatch(std::unique_ptr<WatchFormat> watchFormat, std::vector<std::string> chosen = {})
        : format(std::move(watchFormat))
        , watch(*format, std::move(chosen),
              {[this](const std::string& text) { return written += text, isRead; },
                  [this](const std::string& line) { complaints.push_back(line); }, [this] { return now; }})
    {
    }

    std::string arrive(const char* thermal = thermalText, const char* bluetooth = bluetoothText,
        std::optional<Timing> timing = aged(1ms))
    {
        written.clear();
        watch.repliesArrived({dictionary(thermal), dictionary(bluetooth), timing});
        return written;
    }
    std::string wait(Timing timing)
    {
        written.clear();
        watch.nothingArrived(timing);
        return written;
    }
    std::string miss()
    {
        written.clear();
        watch.serviceMissing("none");
        return written;
    }

    WallTime now{1'700'000'000'123ms};
    bool isRead = true;
    std::string written;
    std::vector<std::string> complaints;
    std::unique_ptr<WatchFormat> format;
    Watch watch;
};

using Lines = std::vector<std::string>;

} // namespace

TEST(WallTime, IsWrittenAsRFC3339InUTC)
{
    EXPECT_EQ(rfc3339(WallTime(1'700'000'000'123ms)), "2023-11-14T22:13:20.123Z");
    EXPECT_EQ(rfc3339(WallTime(0ms)), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(rfc3339(WallTime(-1ms)), "1969-12-31T23:59:59.999Z");
}

TEST(JSONLinesFormat, HasBothRepliesAndAnAgeThatIsNeverTooSmall)
{
    TestWatch test(makeJSONLines());
    const auto line = test.arrive(R"({"b": {"value": 40.0}, "a": {}})", "{}", aged(1234001us));
    EXPECT_EQ(line,
        R"({"schema": "orv.reading/1", "at": "2023-11-14T22:13:20.123Z", "age": 1.235, )"
        R"("thermal": {"a": {}, "b": {"value": 40.0}}, "bluetooth": {}})"
        "\n");
    EXPECT_NE(test.arrive("{}", "{}", std::nullopt).find(R"("age": null, "thermal": {}, "bluetooth": {})"),
        std::string::npos);
}

TEST(JSONLinesFormat, SaysNothingBetweenRefreshesAndWithoutAService)
{
    TestWatch test(makeJSONLines());
    test.arrive();
    EXPECT_EQ(test.wait(aged(1h)), "");
    EXPECT_EQ(test.miss(), "");
    EXPECT_EQ(test.miss(), "");
    EXPECT_EQ(test.complaints, Lines{"none"});
    test.arrive();
    test.miss();
    EXPECT_EQ(test.complaints, (Lines{"none", "none"}));
}

TEST(JSONLinesFormat, HasAnAgeThatNoWallClockMoves)
{
    TestWatch test(makeJSONLines());
    const auto before = test.arrive();
    test.now -= 48h;
    const auto after = test.arrive();
    EXPECT_NE(before.find(R"("age": 0.001,)"), std::string::npos);
    EXPECT_NE(after.find(R"("at": "2023-11-12T22:13:20.123Z", "age": 0.001,)"), std::string::npos);
}

TEST(CSVFormat, LaysOutTheColumnsOfTheFirstOutputThatHasAReading)
{
    TestWatch test(makeCSV());
    EXPECT_EQ(test.arrive("{}", "{}"), "");
    EXPECT_EQ(test.arrive(),
        "time,TA0P Ambient 1 [celsius],\"TB0T Battery, \"\"main\"\" <1> [celsius]\",TC0P CPU Proximity [celsius],"
        "F0Ac Left Side [rpm],F1Ac Right Side [rpm],aa-bb Left [percent],aa-bb Right [percent],aa-bb Case [percent],"
        "watch-1 Main [percent]\r\n"
        "2023-11-14T22:13:20.123Z,-0.25,31.0,45.25,1200,0,40,41,255,80\r\n");
    EXPECT_EQ(test.arrive("{}", "{}"), "2023-11-14T22:13:20.123Z,,,,,,,,,\r\n");
    EXPECT_EQ(test.arrive(R"({"TC0P": {"title": "CPU Proximity", "type": "temperature", "value": 41.0},
        "TG0D": {"title": "GPU Diode", "type": "temperature", "value": 50.0}})"),
        "2023-11-14T22:13:20.123Z,,,41.0,,,40,41,255,80\r\n");
    test.arrive(R"({"TG0D": {"title": "GPU Diode", "type": "temperature", "value": 51.0}})");
    EXPECT_EQ(test.complaints, Lines{"TG0D GPU Diode [celsius] has no column: it appeared after the first output"});
}

TEST(CSVFormat, KeepsAColumnForWhatWasChosenAndIsNotThere)
{
    TestWatch test(makeCSV(), {"watch-1", "nothing", "CPU Proximity"});
    EXPECT_EQ(test.arrive(R"({"TA0P": {"title": "Ambient 1", "type": "temperature", "value": 1.0}})"),
        "time,watch-1 Main [percent],nothing,CPU Proximity\r\n2023-11-14T22:13:20.123Z,80,,\r\n");
    EXPECT_EQ(test.arrive(), "2023-11-14T22:13:20.123Z,80,,45.25\r\n");
    EXPECT_EQ(test.complaints,
        (Lines{
            "no sensor, fan or device is called \"CPU Proximity\"", "no sensor, fan or device is called \"nothing\""}));
}

TEST(WaybarFormat, ShowsTheHottestTheFastestAndTheLowest)
{
    TestWatch test(makeWaybar());
    EXPECT_EQ(test.arrive(),
        R"({"text": "CPU Proximity 45 °C  1200 rpm  40 %", "alt": "ok", )"
        R"("tooltip": "CPU Proximity: 45 °C\u000aLeft Side: 1200 rpm\u000aaa-bb Left: 40 %", )"
        R"("class": "ok", "percentage": 40})"
        "\n");
    EXPECT_EQ(test.arrive("{}", "{}"),
        R"({"text": "", "alt": "ok", "tooltip": "", "class": "ok"})"
        "\n");
}

TEST(WaybarFormat, TellsFreshFromStaleFromAsleepFromOff)
{
    TestWatch test(makeWaybar(), {"TB0T"});
    test.arrive();
    EXPECT_EQ(test.wait(aged(15s)), "");
    EXPECT_EQ(test.wait(aged(15s + 1us)),
        R"~({"text": "Battery, \"main\" &lt;1&gt; 31 °C (16 s old)", "alt": "stale", )~"
        R"("tooltip": "Battery, \"main\" &lt;1&gt;: 31 °C\u000astale, measured 16 s ago", "class": "stale"})"
        "\n");
    EXPECT_NE(test.wait(aged(2h, true)).find(R"~(31 °C (asleep)", "alt": "ok")~"), std::string::npos);
    EXPECT_EQ(test.miss(),
        R"({"text": "", "alt": "off", "tooltip": "The service does not run.", "class": "off"})"
        "\n");
    EXPECT_NE(test.arrive(thermalText, bluetoothText, std::nullopt).find(R"("class": "ok")"), std::string::npos);
    EXPECT_TRUE(test.complaints.size() == 1);
}

TEST(I3barFormat, IsOneArrayALineOfAnEndlessOne)
{
    TestWatch test(makeI3bar(), {"F1Ac", "TC0P"});
    EXPECT_EQ(test.arrive(),
        "{\"version\":1}\n[\n"
        R"([{"full_text": "Right Side 0 rpm", "short_text": "0 rpm", "name": "orv", "instance": "F1Ac", )"
        R"("min_width": "Right Side 9999 rpm"}, {"full_text": "CPU Proximity 45 °C", "short_text": "45 °C", )"
        R"("name": "orv", "instance": "TC0P", "min_width": "CPU Proximity 100 °C"}])"
        "\n");
    EXPECT_EQ(test.miss(),
        R"(,[{"full_text": "", "short_text": "", "name": "orv", "instance": "off", "min_width": ""}])"
        "\n");
    EXPECT_EQ(test.arrive("{}", "{}"), ",[]\n");
}

TEST(Watch, EndsWhenNobodyReads)
{
    TestWatch test(makeJSONLines());
    test.isRead = false;
    EXPECT_FALSE(test.watch.repliesArrived({}));
}
