#include "orvctl/top/Top.h"

#include "orvctl/views/ColumnWidth.h"
#include "orvctl/views/Printable.h"
#include "readings/Text.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace orv {

namespace {

constexpr std::array<std::string_view, 3> orderNames{"title", "value", "key"};
constexpr std::size_t longestFilter = 60; // characters

void appendUTF8(std::string& text, char32_t character)
{
    const auto add = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (character < 0x80)
        return add(character);
    if (character < 0x800) {
        add(0xC0 | character >> 6);
        return add(0x80 | (character & 0x3F));
    }
    if (character < 0x10000)
        add(0xE0 | character >> 12);
    else {
        add(0xF0 | character >> 18);
        add(0x80 | (character >> 12 & 0x3F));
    }
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
}

void removeLastCharacter(std::string& text)
{
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
        text.pop_back();
    if (!text.empty())
        text.pop_back();
}

void fade(StyledLine& line)
{
    for (auto& part : line.texts)
        part.style = Style::faint;
}

} // namespace

Top::Top(TopOptions topOptions)
    : options(std::move(topOptions))
    , signs(glyphs(options.isASCII))
{
}

std::string Top::Place::identity() const
{
    return reading ? reading->identity : '\n' + std::to_string(group);
}

void Top::arrived(std::vector<TopReading> readings, const std::optional<Timing>& timing, Seconds now)
{
    live.readings = std::move(readings);
    if (!std::exchange(isOutlined, false))
        drawnReadings.clear(); // what the frames did not show may have left a trace
    live.timing = timing;
    live.heardAt = now;
    live.missing.clear();
    live.history.take(live.readings, timing ? now - Seconds(timing->age) : now);
}

void Top::aged(const Timing& timing, Seconds now)
{
    live.timing = timing;
    live.heardAt = now;
}

void Top::missing(const std::string& why)
{
    live.missing = printable(why);
}

void Top::beginAnew()
{
    live = {};
    frozen.reset();
    isOutlined = false;
    drawnReadings.clear();
}

void Top::explained(const std::string& text)
{
    if (std::exchange(isAwaitingExplanation, false) && page)
        page->text = text;
}

Command Top::press(const KeyPress& press)
{
    if (isTyping) {
        type(press);
        isOutlined = false;
        return {};
    }
    const auto action = actionOf(press, options.isRecording);
    if (!action)
        return {};
    if (page)
        return actOnPage(*action);
    outlineReadings(); // those of the last frame may be gone
    auto command = act(*action, press);
    isOutlined = false;
    drawnReadings.clear();
    return command;
}

Command Top::actOnPage(Action action)
{
    constexpr std::array closing{Action::leave, Action::quit, Action::toggle, Action::help, Action::explain};
    if (action == Action::redraw)
        return {Command::Kind::redraw};
    if (std::ranges::find(closing, action) == closing.end()) {
        turnPage(action);
        return {};
    }
    page.reset();
    isAwaitingExplanation = false;
    return {};
}

Command Top::act(Action action, const KeyPress& press)
{
    switch (action) {
    case Action::quit:
        return {Command::Kind::quit};
    case Action::redraw:
        return {Command::Kind::redraw};
    case Action::explain:
        return explainSelected();
    case Action::pause:
        return {Command::Kind::pause};
    case Action::step:
        return {Command::Kind::step};
    case Action::minuteBack:
    case Action::minuteOn:
        return {Command::Kind::seek, {}, action == Action::minuteOn ? 60.0 : -60.0};
    case Action::tenMinutesBack:
    case Action::tenMinutesOn:
        return {Command::Kind::seek, {}, action == Action::tenMinutesOn ? 600.0 : -600.0};
    case Action::tenth:
        return {Command::Kind::seekTo, {}, static_cast<double>(press.character - '0') / 10};
    case Action::slower:
        return {Command::Kind::slower};
    case Action::faster:
        return {Command::Kind::faster};
    default:
        change(action);
        return {};
    }
}

void Top::change(Action action)
{
    switch (action) {
    case Action::toggle:
        return setFold(std::nullopt);
    case Action::fold:
        return setFold(true);
    case Action::unfold:
        return setFold(false);
    case Action::unfoldAll:
        for (std::size_t group = 0; group < topGroups.size(); ++group)
            choice.folds[group] = false;
        return;
    case Action::foldToFit:
        return choice.folds.clear();
    case Action::filter:
        isTyping = true;
        return;
    case Action::leave:
        return choice.filter.clear();
    case Action::sort:
        choice.order = static_cast<Order>((static_cast<std::size_t>(choice.order) + 1) % orderNames.size());
        return;
    case Action::freeze:
        frozen = frozen ? std::nullopt : std::optional(live);
        return;
    case Action::help:
        page = helpPage(options.isRecording);
        return;
    default:
        move(action);
    }
}

Command Top::explainSelected()
{
    if (places.empty())
        return {};
    const auto& place = places[selectedPlace()];
    if (!place.reading) {
        page = Page{"Explanation", "Select a reading below this heading, then press e.\n"};
        return {};
    }
    page = Page{"Explanation of " + place.reading->title, "Looking at the machine" + std::string(signs.cut) + "\n"};
    isAwaitingExplanation = true;
    return {Command::Kind::explain, place.reading->subject};
}

// Where a selection was made, its place follows it; without one it stands on the first line.
void Top::move(Action action)
{
    if (places.empty())
        return;
    const auto last = places.size() - 1;
    const auto place = selectedPlace();
    switch (action) {
    case Action::up:
        return select(place - std::min<std::size_t>(place, 1));
    case Action::down:
        return select(std::min(place + 1, last));
    case Action::pageUp:
        return select(place - std::min(place, bodyHeight));
    case Action::pageDown:
        return select(std::min(place + bodyHeight, last));
    case Action::first:
        return select(0);
    case Action::last:
        return select(last);
    default:
        return;
    }
}

void Top::turnPage(Action action)
{
    auto& line = page->firstLine;
    switch (action) {
    case Action::up:
        line -= std::min<std::size_t>(line, 1);
        return;
    case Action::down:
        ++line;
        return;
    case Action::pageUp:
        line -= std::min(line, bodyHeight);
        return;
    case Action::pageDown:
        line += bodyHeight;
        return;
    case Action::first:
        line = 0;
        return;
    case Action::last:
        line = page->text.size(); // beyond its end, which drawing mends
        return;
    default:
        return;
    }
}

void Top::type(const KeyPress& press)
{
    if (press.key == Key::enter || press.key == Key::escape) {
        isTyping = false;
        if (press.key == Key::escape)
            choice.filter.clear();
    } else if (press.key == Key::backspace)
        removeLastCharacter(choice.filter);
    else if (press.key == Key::character && columnsOf(press.character) && characterCount(choice.filter) < longestFilter)
        appendUTF8(choice.filter, press.character);
}

// Without a word of how, the other way round. The selection goes to the heading of a group that is folded.
void Top::setFold(std::optional<bool> isFolded)
{
    if (places.empty())
        return;
    const auto group = places[selectedPlace()].group;
    const auto entry = std::ranges::find(groups, group, &OutlinedGroup::group);
    const bool becomesFolded = isFolded.value_or(!entry->isFolded);
    choice.folds[group] = becomesFolded;
    if (becomesFolded)
        selected = Place{group}.identity();
}

void Top::outlineReadings()
{
    if (std::exchange(isOutlined, true))
        return;
    groups = outline(shown().readings, choice, bodyHeight);
    longest = longestTexts(shown().readings);
    listPlaces();
    if (!places.empty())
        select(selectedPlace());
}

void Top::listPlaces()
{
    places.clear();
    for (const auto& group : groups) {
        places.push_back({group.group, nullptr});
        for (const auto* reading : group.isFolded ? std::vector<const TopReading*>() : group.readings)
            places.push_back({group.group, reading});
    }
}

void Top::select(std::size_t place)
{
    selected = places[place].identity();
    lastPlace = place;
}

// A reading that is gone leaves the selection where it stood.
std::size_t Top::selectedPlace() const
{
    const auto found = std::ranges::find(places, selected, &Place::identity);
    return found != places.end() ? static_cast<std::size_t>(found - places.begin())
                                 : std::min(lastPlace, places.size() - 1);
}

void Top::scrollToSelection()
{
    if (places.empty())
        return;
    const auto place = selectedPlace();
    const auto lastFirst = places.size() - std::min(places.size(), bodyHeight);
    firstPlace = std::clamp(firstPlace, place - std::min(place, bodyHeight - 1), place);
    firstPlace = std::min(firstPlace, lastFirst);
}

// Of most readings nothing changes from one frame to the next. One that no frame showed meanwhile is drawn anew: its
// extremes may have changed.
StyledLine Top::bodyLine(const Place& place, const Drawing& drawing, DrawnReadings& former)
{
    if (!place.reading)
        return groupLine(*std::ranges::find(groups, place.group, &OutlinedGroup::group), drawing);
    auto kept = former.extract(place.reading->identity);
    if (kept && kept.mapped().reading == *place.reading)
        return drawnReadings.insert(std::move(kept)).position->second.line;
    auto line = readingLine(*place.reading, shown().history, drawing);
    drawnReadings.insert_or_assign(place.reading->identity, DrawnReading{*place.reading, line});
    return line;
}

// Most frames are told of nothing but the time.
const std::vector<StyledLine>& Top::bodyLines(std::size_t width, Seconds now)
{
    const Drawn wanted{width, shown().isFresh(now)};
    if (!isOutlined || wanted != drawn) {
        body = drawBody(width, wanted.isFresh);
        drawn = wanted;
    }
    return body;
}

std::vector<StyledLine> Top::drawBody(std::size_t width, bool isFresh)
{
    outlineReadings();
    scrollToSelection();
    const auto drawing = drawingFor(width, longest, signs);
    const DrawnAlike wanted{width, longest, shown().history.newestColumn()};
    auto former = std::exchange(drawnReadings, {});
    if (std::exchange(drawnAlike, wanted) != wanted)
        former.clear();
    std::vector<StyledLine> lines{headingLine(drawing)};
    for (auto place = firstPlace; place < places.size() && lines.size() <= bodyHeight; ++place) {
        auto line = bodyLine(places[place], drawing, former);
        if (!isFresh)
            fade(line);
        line.isSelected = places[place].identity() == selected;
        lines.push_back(std::move(line));
    }
    if (places.empty())
        lines.push_back(LineWriter(width, signs).put(Style::plain, nothingText()).take());
    return lines;
}

std::string Top::nothingText() const
{
    if (!choice.filter.empty())
        return "Nothing is called \"" + choice.filter + "\".";
    return shown().heardAt == Seconds::zero() ? "Waiting for the first readings." : "No readings.";
}

StyledLine Top::topLine(std::size_t width, Seconds now) const
{
    const auto& board = shown();
    const auto state = stateText(board, now, frozen.has_value());
    const auto stateWidth = std::min(columnCount(state), width);
    LineWriter line(width, signs);
    const auto room = width - stateWidth - (stateWidth > 0 && stateWidth < width);
    line.put(Style::strong, options.machine, room);
    line.skip(line.columnsLeft() - stateWidth);
    line.put(board.isFresh(now) && !frozen ? Style::plain : Style::alarm, state, stateWidth);
    return line.take();
}

StyledLine Top::playbackLine(std::size_t width) const
{
    return LineWriter(width, signs).put(Style::plain, playbackText(*playback), width).take();
}

std::string Top::hints() const
{
    const auto order = orderNames[static_cast<std::size_t>(choice.order)];
    const auto filter = choice.filter.empty() ? std::string("/ filter") : "Esc all";
    return fmt::format("q end  ? help  {}  s by {}  f {}  e explain{}", filter, order, frozen ? "go on" : "freeze",
        options.isRecording ? "  Space pause  . step  <> seek  -+ speed" : "");
}

StyledLine Top::bottomLine(std::size_t width) const
{
    LineWriter line(width, signs);
    if (page)
        line.put(Style::faint, "Esc closes this page, j and k move it");
    else if (isTyping)
        line.put(Style::strong, "/" + choice.filter);
    else if (!shown().missing.empty())
        line.put(Style::alarm, shown().missing, width);
    else if (!choice.filter.empty())
        line.put(Style::strong, "/" + choice.filter + "  ").put(Style::faint, hints(), line.columnsLeft());
    else
        line.put(Style::faint, hints(), width);
    return line.take();
}

Frame Top::frame(ScreenSize size, Seconds now)
{
    const auto [width, height] = size;
    Frame frame;
    frame.lines.push_back(topLine(width, now));
    if (playback)
        frame.lines.push_back(playbackLine(width));
    const auto used = frame.lines.size() + 2; // a heading and the bottom line
    const auto former = std::exchange(bodyHeight, std::max<std::size_t>(height - std::min(height, used), 1));
    isOutlined = isOutlined && former == bodyHeight;
    if (page)
        frame.lines.push_back(LineWriter(width, signs).put(Style::strong, page->title, width).take());
    const auto add = [&](const std::vector<StyledLine>& lines) {
        frame.lines.insert(frame.lines.end(), lines.begin(), lines.end());
    };
    if (page)
        add(pageLines(*page, width, bodyHeight, signs));
    else
        add(bodyLines(width, now));
    frame.lines.resize(std::max<std::size_t>(height, 1) - 1);
    frame.lines.push_back(bottomLine(width));
    if (isTyping)
        frame.cursor = std::min(columnCount(drawable(choice.filter, signs)) + 1, width - 1);
    return frame;
}

} // namespace orv
