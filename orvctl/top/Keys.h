#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace orv {

enum class Key : std::uint8_t {
    character,
    up,
    down,
    left,
    right,
    pageUp,
    pageDown,
    home,
    end,
    enter,
    escape,
    backspace
};

struct KeyPress {
    Key key = Key::character;
    char32_t character = 0;

    bool operator==(const KeyPress&) const = default;
};

enum class Action : std::uint8_t {
    up,
    down,
    pageUp,
    pageDown,
    first,
    last,
    toggle,
    fold,
    unfold,
    unfoldAll,
    foldToFit,
    filter,
    leave, // what was chosen or opened last
    sort,
    freeze,
    explain,
    help,
    redraw,
    quit,
    pause,
    step,
    minuteBack,
    minuteOn,
    tenMinutesBack,
    tenMinutesOn,
    slower,
    faster,
    tenth,
};

/// A line of the help page. What several lines do is told by the first.
struct KeyRow {
    KeyPress press;
    Action action;
    std::string_view names; // empty: told with the row before it
    std::string_view what;
    bool isOfRecordings = false;
};

/// Every key that means something while readings are shown.
std::span<const KeyRow> keyRows();

/// What a key means, among those of recordings only when one is played.
std::optional<Action> actionOf(const KeyPress& press, bool isRecording);

} // namespace orv
