#pragma once

#include "orvctl/top/Board.h"
#include "orvctl/top/Keys.h"
#include "orvctl/top/Page.h"
#include "orvctl/top/ReadingLines.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv {

struct ScreenSize {
    std::size_t width = 0;
    std::size_t height = 0;

    bool operator==(const ScreenSize&) const = default;
};

/// The smallest screen that is asked for. On a smaller one, what fits is shown.
inline constexpr ScreenSize smallestScreen{40, 10};

struct Frame {
    std::vector<StyledLine> lines; // as many as the screen has, none wider than it
    std::optional<std::size_t> cursor; // its column in the last line, while a text is typed
};

/// What a key asks of the program around.
struct Command {
    enum class Kind : std::uint8_t { none, quit, redraw, explain, pause, step, seek, seekTo, slower, faster };

    Kind kind = Kind::none;
    std::string subject{}; // to be explained
    double amount = 0; // seconds to seek by, or the part of a recording, from 0 to 1, to seek to
};

struct TopOptions {
    std::string machine; // its name; one line
    bool isASCII = false;
    bool isRecording = false; // one that is played, whose keys then work
};

/// The live view: hears of readings and keys, and says what the screen shows. Knows no terminal and no clock: times are
/// those of one clock of the caller's.
class Top {
public:
    explicit Top(TopOptions options);

    void arrived(std::vector<TopReading> readings, const std::optional<Timing>& timing, Seconds now);
    void aged(const Timing& timing, Seconds now);
    void missing(const std::string& why);
    void played(const PlaybackState& state) { playback = state; }
    /// Forgets what was seen: what comes next is of another time.
    void beginAnew();
    /// The answer to a command to explain, unless nobody waits for it any more.
    void explained(const std::string& text);

    Command press(const KeyPress& press);
    Frame frame(ScreenSize size, Seconds now);

private:
    /// A line of the body, and what it stands for.
    struct Place {
        std::size_t group = 0;
        const TopReading* reading = nullptr; // nothing for the group's heading

        std::string identity() const;
    };

    /// What the body was drawn for.
    struct Drawn {
        std::size_t width = 0;
        bool isFresh = false;

        bool operator==(const Drawn&) const = default;
    };

    /// The line of a reading, as long as nothing changes that is in it.
    struct DrawnReading {
        TopReading reading;
        StyledLine line;
    };
    using DrawnReadings = std::map<std::string, DrawnReading>; // by identity

    /// What all lines of readings were drawn for.
    struct DrawnAlike {
        std::size_t width = 0;
        LongestTexts longest;
        std::int64_t column = 0; // of the sparklines

        bool operator==(const DrawnAlike&) const = default;
    };

    const Board& shown() const { return frozen ? *frozen : live; }
    Command act(Action action, const KeyPress& press);
    Command actOnPage(Action action);
    Command explainSelected();
    void move(Action action);
    void turnPage(Action action);
    void change(Action action);
    void type(const KeyPress& press);
    void setFold(std::optional<bool> isFolded);
    void outlineReadings();
    void listPlaces();
    void select(std::size_t place);
    std::size_t selectedPlace() const;
    void scrollToSelection();
    StyledLine bodyLine(const Place& place, const Drawing& drawing, DrawnReadings& former);
    const std::vector<StyledLine>& bodyLines(std::size_t width, Seconds now);
    std::vector<StyledLine> drawBody(std::size_t width, bool isFresh);
    std::string nothingText() const;
    StyledLine topLine(std::size_t width, Seconds now) const;
    StyledLine playbackLine(std::size_t width) const;
    StyledLine bottomLine(std::size_t width) const;
    std::string hints() const;

    const TopOptions options;
    const Glyphs& signs;
    Board live;
    std::optional<Board> frozen;
    std::optional<PlaybackState> playback;
    Choice choice;
    std::optional<Page> page;
    bool isTyping = false;
    bool isAwaitingExplanation = false;

    bool isOutlined = false; // as the readings, the choice and the height are now
    std::vector<OutlinedGroup> groups;
    LongestTexts longest;
    std::vector<Place> places; // all lines of the body
    Drawn drawn;
    std::vector<StyledLine> body; // as it was drawn last
    DrawnAlike drawnAlike;
    DrawnReadings drawnReadings; // of the last frame, unless a key was pressed
    std::string selected; // the identity of a place
    std::size_t lastPlace = 0; // of the selection, for when it is gone
    std::size_t firstPlace = 0; // that is on the screen
    std::size_t bodyHeight = 1;
};

} // namespace orv
