#include "orvctl/top/Top.h"

#include "orvctl/views/ColumnWidth.h"
#include "tests/orvctl/top/TopText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

using namespace orv;

namespace {

constexpr Timing freshly{std::chrono::seconds(1), std::chrono::seconds(5)};

/// A large machine with names that are wide, combining, long or hostile.
WatchedReplies largeMachine()
{
    std::vector<std::string> sensors;
    for (int core = 0; core < 120; ++core) {
        const auto number = std::to_string(core);
        const std::string filling(static_cast<std::size_t>(core), 'x');
        sensors.push_back(sensor("Tp" + number, "Core Performance " + number, 40 + core % 50));
        sensors.push_back(sensor("Tg" + number, "GPU " + number, 30 + core % 40));
        sensors.push_back(sensor("Tz" + number, filling + "漢字e\u0301\\u001b[2J", 1e300));
    }
    sensors.push_back(
        R"("F0Ac": {"type": "fans", "title": "Left", "value": 3000, "minvalue": 1000, "maxvalue": 5000})");
    return {dictionary(joined(sensors)),
        dictionary(R"({"aa-bb-cc-dd-ee-01": {"batteryLevelLeft": 90, "batteryLevel": 7},
            "watch-1": {"name": "Uhr 漢字", "batteryLevel": 80}})"),
        freshly};
}

WatchedReplies smallMachine()
{
    return {dictionary(joined({sensor("TC0P", "CPU Proximity", 47.55), sensor("TC10", "CPU Core 10", 90),
                sensor("TC2c", "CPU Core 2", 60), sensor("TG0P", "GPU Proximity", 41)})),
        {}, freshly};
}

WatchedReplies oneSensor(double degrees)
{
    return {dictionary(joined({sensor("TC0P", "CPU Proximity", degrees)})), {}, freshly};
}

KeyPress pressed(char character)
{
    if (character == '\n')
        return {Key::enter};
    return {Key::character, static_cast<char32_t>(character)};
}

void hear(Top& top, const WatchedReplies& replies, double at)
{
    top.arrived(topReadings(replies), replies.timing, Seconds(at));
}

struct Shown {
    explicit Shown(const WatchedReplies& replies, TopOptions options = {"Mac", false, false})
        : top(std::move(options))
    {
        hear(top, replies, 100);
    }

    Command press(std::string_view characters)
    {
        Command command;
        for (const char character : characters)
            command = top.press(pressed(character));
        return command;
    }

    std::vector<std::string> lines(ScreenSize size = {80, 24}, double at = 100)
    {
        std::vector<std::string> lines;
        for (const auto& line : top.frame(size, Seconds(at)).lines)
            lines.push_back(line.plainText());
        return lines;
    }

    std::string selected()
    {
        const auto frame = top.frame({80, 24}, Seconds(100));
        const auto found = std::ranges::find(frame.lines, true, &StyledLine::isSelected);
        return found == frame.lines.end() ? "" : found->plainText();
    }

    bool shows(std::string_view text, ScreenSize size = {80, 24})
    {
        return std::ranges::any_of(lines(size), [&](const auto& line) { return line.find(text) != line.npos; });
    }

    Top top;
};

} // namespace

TEST(Top, ShowsReadingsByGroupsWithWhatWasSeenOfThem)
{
    Shown shown(smallMachine());
    auto later = oneSensor(57.55);
    later.thermal.set(
        "F0Ac", dictionary(R"({"type": "fans", "title": "Left", "value": 3000, "minvalue": 1000, "maxvalue": 5000})"));
    hear(shown.top, later, 131);
    EXPECT_EQ(shown.lines({80, 10}, 131),
        (std::vector<std::string>{
            "Mac                                               up to 5 s old, next within 5 s",
            "  Reading        Key        Now Range         10 min                  Low   High",
            "▾ CPU 1",
            "  CPU Proximity  TC0P   57.5 °C █████████████                   ▃▇   47.5   57.5",
            "▾ Fans 1",
            "  Left           F0Ac  3000 rpm ██████▌                          ▁   3000   3000",
            "",
            "",
            "",
            "q end  ? help  / filter  s by title  f freeze  e explain",
        }));
}

TEST(Top, ALineThatIsKeptShowsWhatWasSeenMeanwhile)
{
    Shown shown(oneSensor(50));
    EXPECT_TRUE(shown.shows("50.0   50.0"));
    hear(shown.top, oneSensor(50), 105);
    EXPECT_TRUE(shown.shows("50.0   50.0"));
    hear(shown.top, oneSensor(70), 110);
    hear(shown.top, oneSensor(50), 115); // before anything is drawn
    EXPECT_TRUE(shown.shows("50.0   70.0"));
    shown.top.beginAnew();
    hear(shown.top, oneSensor(50), 116);
    EXPECT_TRUE(shown.shows("50.0   50.0"));
}

TEST(Top, NoLineIsWiderThanAnyScreen)
{
    for (const bool isASCII : {false, true}) {
        Shown shown(largeMachine(), {"A Mac 漢字 with a long name", isASCII, true});
        shown.top.played({10, 100, 20, false});
        for (const auto* keys : {"", "u", "/x\n", "?", "qje"}) {
            shown.press(keys);
            for (const std::size_t height : {1U, 10U, 60U}) {
                for (const std::size_t width : {1U, 2U, 3U, 12U, 39U, 40U, 41U, 49U, 63U, 80U, 300U}) {
                    const auto lines = shown.lines({width, height});
                    ASSERT_EQ(lines.size(), height);
                    for (const auto& line : lines) {
                        ASSERT_LE(columnCount(line), width) << line;
                        ASSERT_EQ(line.find('\x1b'), line.npos);
                        ASSERT_TRUE(!isASCII || std::ranges::all_of(line, [](char c) { return c >= ' ' && c < 0x7F; }));
                    }
                }
            }
        }
    }
}

TEST(Top, FoldsTheLargestGroupsUntilTheRestFits)
{
    Shown shown(largeMachine());
    EXPECT_TRUE(shown.shows("▸ CPU 120: 40 to 89 °C, mean 62, hottest Core Performance"));
    EXPECT_TRUE(shown.shows("▾ Bluetooth 2"));
    EXPECT_TRUE(shown.shows("  Uhr 漢字"));
    EXPECT_TRUE(shown.shows("▸ Bluetooth 2: 7 to 90 %, lowest aa-bb-cc-dd-ee-01", {80, 9}));
    EXPECT_FALSE(shown.shows("▸", {80, 400}));
    shown.press("u");
    EXPECT_TRUE(shown.shows("▾ CPU 120"));
    shown.press("a");
    EXPECT_TRUE(shown.shows("▸ CPU 120"));
}

TEST(Top, KeysSelectFoldSortAndFilter)
{
    Shown shown(smallMachine());
    const std::vector<std::pair<std::string_view, std::string_view>> steps{{"", "▾ CPU 3"}, {"j", "  CPU Core 2"},
        {"j", "  CPU Core 10"}, {"sj", "  CPU Core 2"}, // by value
        {"k", "  CPU Core 10"}, {"sk", "  CPU Core 2"}, {"k", "  CPU Proximity"}, // by key
        {"h", "▸ CPU 3: 48 to 90 °C, mean 66, hottest CPU Core 10"}, {"l", "▾ CPU 3"}, {"\n", "▸ CPU 3"},
        {"G", "  GPU Proximity"}, {"k", "▾ GPU 1"}, {"kk", "▸ CPU 3"}, {"/gPU\nj", "  GPU Proximity"}};
    for (const auto& [keys, line] : steps) {
        shown.press(keys);
        EXPECT_TRUE(shown.selected().starts_with(line)) << keys << ": " << shown.selected();
    }
    EXPECT_FALSE(shown.shows("CPU"));
    shown.top.press({Key::escape});
    EXPECT_TRUE(shown.shows("▸ CPU 3"));
    EXPECT_TRUE(shown.selected().starts_with("  GPU Proximity"));
}

TEST(Top, KeepsTheSelectionInSightAndWhereItWas)
{
    Shown shown(largeMachine());
    shown.press("u");
    for (const auto* keys : {"G", "kkkkkkk", "g", "jjjjjjjjjjjjjjjjjjjjjjjjjjjjjjj"}) {
        shown.press(keys);
        EXPECT_NE(shown.selected(), "") << keys;
    }
    for (int pages = 0; pages < 3; ++pages) {
        shown.top.press({Key::pageDown});
        EXPECT_NE(shown.selected(), "");
    }
    hear(shown.top, oneSensor(20), 105); // the selected one is gone
    EXPECT_TRUE(shown.selected().starts_with("  CPU Proximity"));
    hear(shown.top, {}, 110);
    EXPECT_EQ(shown.press("jke\n").kind, Command::Kind::none);
    EXPECT_TRUE(shown.shows("No readings."));
}

TEST(Top, FilterTakesAnyCharacterAndForgetsIt)
{
    Shown shown(largeMachine());
    shown.press("/");
    for (const char32_t character : {U'字', U'ü', U'\U0001F600', U'\x01'})
        shown.top.press({Key::character, character});
    EXPECT_EQ(shown.lines().back(), "/字ü😀");
    EXPECT_EQ(shown.top.frame({80, 24}, Seconds(100)).cursor, 6U);
    EXPECT_TRUE(shown.shows("Nothing is called \"字ü😀\"."));
    for (int count = 0; count < 2; ++count)
        shown.top.press({Key::backspace});
    EXPECT_EQ(shown.lines().back(), "/字");
    EXPECT_TRUE(shown.shows("  Uhr 漢字"));
    for (int count = 0; count < 3; ++count)
        shown.top.press({Key::backspace});
    EXPECT_TRUE(shown.shows("▸ CPU 120"));
    EXPECT_EQ(shown.press("q").kind, Command::Kind::none); // a letter of the text
    EXPECT_EQ(shown.press("\nq").kind, Command::Kind::quit);
}

TEST(Top, FrozenReadingsStayUntilTheyGoOn)
{
    Shown shown(smallMachine());
    shown.lines();
    shown.press("f");
    hear(shown.top, oneSensor(20), 105);
    EXPECT_EQ(shown.press("jje").subject, "TC10"); // what is selected is what is shown
    shown.press("q");
    EXPECT_TRUE(shown.shows("90.0 °C"));
    EXPECT_TRUE(shown.lines({80, 24}, 110)[0].ends_with("  frozen, measured 11 s ago"));
    shown.press("f");
    EXPECT_TRUE(shown.shows("20.0 °C"));
    EXPECT_FALSE(shown.shows("90.0 °C"));
}

TEST(Top, SaysAndGreysWhatIsNotFresh)
{
    const auto isGrey = [](Top& top, double at) {
        const auto frame = top.frame({80, 24}, Seconds(at));
        return std::ranges::all_of(frame.lines[3].texts, [](const auto& text) { return text.style == Style::faint; });
    };
    Shown shown(smallMachine());
    EXPECT_TRUE(shown.lines({80, 24}, 104.4)[0].ends_with("  up to 5 s old, next within 5 s"));
    EXPECT_TRUE(shown.lines({80, 24}, 104.5)[0].ends_with("  6 s old, next is due"));
    EXPECT_FALSE(isGrey(shown.top, 114));
    EXPECT_TRUE(shown.lines({80, 24}, 120)[0].ends_with("  stale, measured 21 s ago"));
    EXPECT_TRUE(isGrey(shown.top, 120));
    shown.top.aged({std::chrono::hours(5), std::chrono::seconds(5), true}, Seconds(120));
    EXPECT_TRUE(shown.lines({80, 24}, 120)[0].ends_with("  asleep, measured 5 h ago"));
    shown.top.missing("it has\nended");
    EXPECT_TRUE(shown.lines()[0].ends_with("  no service"));
    EXPECT_EQ(shown.lines().back(), "it has?ended");
    EXPECT_TRUE(isGrey(shown.top, 100));
    hear(shown.top, smallMachine(), 130);
    EXPECT_FALSE(isGrey(shown.top, 130));
}

TEST(Top, PagesAreWrappedMovedAndClosed)
{
    Shown shown(smallMachine());
    shown.lines();
    EXPECT_EQ(shown.press("je").subject, "TC2c");
    shown.top.explained("A line of some words\n  - an indented one that is long enough to be wrapped once or so\n");
    const auto lines = shown.lines({40, 10});
    EXPECT_EQ(std::vector(lines.begin() + 1, lines.begin() + 5),
        (std::vector<std::string>{"Explanation of CPU Core 2", "A line of some words",
            "  - an indented one that is long enough", "    to be wrapped once or so"}));
    EXPECT_EQ(shown.press("q").kind, Command::Kind::none);
    shown.press("?");
    shown.top.explained("too late");
    EXPECT_TRUE(shown.shows("j, down          the next line"));
    EXPECT_FALSE(shown.shows("pause", {80, 100}));
    shown.press("G");
    EXPECT_EQ(shown.lines({40, 10})[8], "  half a minute.");
}

TEST(Top, KeysOfRecordingsAreTheirsAlone)
{
    using Kind = Command::Kind;
    const std::vector<std::tuple<char, Kind, double>> keys{{' ', Kind::pause, 0}, {'.', Kind::step, 0},
        {'<', Kind::seek, -60}, {'>', Kind::seek, 60}, {'[', Kind::seek, -600}, {']', Kind::seek, 600},
        {'5', Kind::seekTo, 0.5}, {'-', Kind::slower, 0}, {'+', Kind::faster, 0}};
    Shown live(smallMachine());
    Shown recording(smallMachine(), {"Mac", false, true});
    for (const auto& [key, kind, amount] : keys) {
        EXPECT_EQ(live.top.press(pressed(key)).kind, Kind::none);
        const auto command = recording.top.press(pressed(key));
        EXPECT_EQ(std::pair(command.kind, command.amount), std::pair(kind, amount)) << key;
    }
    recording.top.played({3725, 86400, 20, true});
    EXPECT_EQ(recording.lines()[1], "paused at 1:02:05 of 24:00:00, 20 times as fast");
}
