#include "orvctl/views/ExplanationText.h"

#include "orvctl/views/ColumnWidth.h"
#include "orvctl/views/ExplanationGroup.h"
#include "orvctl/views/Printable.h"
#include "orvctl/views/Text.h"
#include "readings/Text.h"
#include "json/JSONWriter.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace orv {

namespace {

std::string wayText(const MachineFacts& facts)
{
    constexpr std::array<std::string_view, 3> texts{"as an Intel Mac", "as a first M1 model: SMC keys and HID services",
        "as Apple silicon: SMC keys, those of the chip included"};
    return fmt::format("{}; {}", texts[static_cast<std::size_t>(facts.way)], facts.reason);
}

std::string smcText(const MachineFacts& facts)
{
    if (!facts.isSMCOpen)
        return "cannot be opened, so no key is listed";
    const auto count =
        facts.smcKeys ? fmt::format("{:.0f} keys", *facts.smcKeys) : std::string("does not count its keys");
    return fmt::format(
        "{}; {} begin with T (temperatures), {} with F (fans)", count, facts.listedTemperatures, facts.listedFans);
}

std::string reportText(const MachineFacts& facts)
{
    constexpr std::array<std::string_view, 5> texts{"the profiler's report was read",
        "the profiler's report is not JSON", "the profiler's report is no object",
        "the profiler's report has no list SPBluetoothDataType",
        "the profiler's report lists no connected device (it has no device_connected)"};
    return std::string(
        facts.isProfilerRun ? texts[static_cast<std::size_t>(facts.report)] : "the profiler cannot be started");
}

// A fact under its name, broken into lines that begin below its first.
std::string fact(std::string_view name, std::string_view text)
{
    constexpr std::size_t width = 12;
    auto lines = paragraph(width, text);
    lines.replace(0, name.size() + 2, "  " + std::string(name));
    return lines;
}

std::string obstacleText(const MachineFacts& facts, Colour colour)
{
    std::string text;
    for (const auto& obstacle : facts.obstacles) {
        text += heading("In the way", colour) + paragraph(2, printable(obstacle.text));
        if (!obstacle.command.empty())
            text += "\n    " + obstacle.command + "\n"; // whole, to be copied
        text += '\n';
    }
    return text;
}

std::string machineText(const MachineFacts& facts, Colour colour)
{
    auto text = heading(cutTo(pageWidth, printable(facts.model + ", " + facts.processor)), colour);
    text += fact("Collected", printable(wayText(facts)));
    text += fact("Cores", fmt::format("{} efficiency, {} performance", facts.efficiencyCores, facts.performanceCores));
    text += fact("SMC", smcText(facts));
    text += fact("HID",
        facts.isHIDAsked ? fmt::format("{} services", facts.services) : std::string("not asked on this kind of Mac"));
    text += fact("Bluetooth", reportText(facts));
    return text;
}

std::string numberText(const Value& number)
{
    if (const auto* real = number.as<double>())
        return fmt::format("{:.1f}", *real);
    const auto* integer = number.as<std::int64_t>();
    return integer ? std::to_string(*integer) : "-";
}

std::string bytesText(const SensorRow& row)
{
    constexpr std::size_t most = 8;
    if (!row.hasBytes)
        return "-";
    std::string digits;
    const auto count = std::min<std::size_t>(row.val->dataSize, row.val->bytes.size());
    for (std::size_t index = 0; index < std::min(count, most); ++index)
        digits += fmt::format("{:02x}", row.val->bytes[index]);
    return count > most ? digits + "…" : digits;
}

std::string sizeText(const SensorRow& row)
{
    return row.val && !row.val->dataType.empty() ? std::to_string(row.val->dataSize) : "-";
}

std::string unreadText(const SensorRow& row)
{
    std::string text;
    for (const auto& [isRead, name] : {std::pair(row.readSpeeds.actual, "its speed"),
             {row.readSpeeds.minimum, "its minimum"}, {row.readSpeeds.maximum, "its maximum"}}) {
        if (!isRead)
            text += (text.empty() ? "" : " and ") + std::string(name);
    }
    return text.empty() ? text : text + " could not be read";
}

// What a sensor's own line says beyond its verdict.
std::string detailText(const SensorRow& row)
{
    if (!row.rival.empty())
        return "by " + row.rival;
    if (row.rivalService)
        return fmt::format("by service {}", *row.rivalService);
    if (!row.from.empty())
        return fmt::format("from {}; its own reads {}", row.from, numberText(row.reading));
    return row.fan ? unreadText(row) : "";
}

std::string titleAndDetail(const SensorRow& row)
{
    const auto detail = detailText(row);
    if (row.title.empty() || detail.empty())
        return row.title + detail;
    return row.title + " (" + detail + ')';
}

std::string sensorLine(const SensorRow& sensor)
{
    const auto key = sensor.key.empty() ? std::string("-") : printable(sensor.key);
    const auto value = numberText(sensor.value);
    if (sensor.source == SensorSource::hid)
        return row(fmt::format("  {}service {}{:>10}  {}", padded(6, key), padded(6, std::to_string(*sensor.service)),
            value, titleAndDetail(sensor)));
    const auto type = sensor.val ? printable(sensor.val->dataType) : std::string("-");
    return row(fmt::format("  {}{}{} {}{:>9}  {}", padded(6, key), padded(5, type), padded(3, sizeText(sensor)),
        padded(18, bytesText(sensor)), value, titleAndDetail(sensor)));
}

std::string levelsText(const Dictionary& levels)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> names{{{"batteryLevel", ""},
        {"batteryLevelLeft", "left "}, {"batteryLevelRight", "right "}, {"batteryLevelCase", "case "}}};
    std::string text;
    for (const auto& [member, name] : names) {
        if (const auto* level = levels.findAs<std::int64_t>(member))
            text += fmt::format("{}{}{} %", text.empty() ? "" : ", ", name, *level);
    }
    return text;
}

// Which list a device is in that is not connected, and the level that it had when it was.
std::string whereaboutsText(const DeviceRow& device)
{
    constexpr std::string_view ordinaryList = "device_not_connected";
    std::string text;
    if (device.part > 0)
        text = fmt::format("in part {} of the report, of which the first alone counts", device.part + 1);
    else if (device.list != ordinaryList)
        text = "in " + printable(device.list);
    const auto levels = levelsText(device.levels);
    if (levels.empty())
        return text;
    return text + (text.empty() ? "was " : "; was ") + levels;
}

std::string detailText(const DeviceRow& device)
{
    if (device.verdict == Verdict::notConnected)
        return whereaboutsText(device);
    if (!device.member.empty())
        return printable(device.member);
    return device.rival ? fmt::format("element {}", *device.rival) : levelsText(device.levels);
}

std::string deviceLine(const DeviceRow& device)
{
    const auto name = device.name.empty() ? fmt::format("element {}", device.element) : printable(device.name);
    const auto beginning = fmt::format("  {}{}", padded(28, name), padded(19, printable(device.key)));
    const auto detail = detailText(device);
    const bool fits = columnCount(beginning) + columnCount(detail) <= pageWidth;
    return fits ? row(beginning + detail) : row(beginning) + paragraph(changeIndent, detail);
}

std::string watchLine(const WatchRow& watch)
{
    if (watch.key.empty())
        return watch.detail.empty() ? "" : paragraph(2, printable(watch.detail));
    auto text = "  " + printable(watch.key);
    if (!watch.member.empty())
        text += ": " + printable(watch.member);
    else if (watch.verdict == Verdict::shown)
        text += "  " + printable(writeJSON(watch.content, KeyOrder::asListed));
    return row(text);
}

enum class Subject { temperatures, fans, services, catalogue, bluetooth, watch };

std::string_view subjectText(Subject subject)
{
    constexpr std::array<std::string_view, 6> texts{
        "Temperatures", "Fan keys", "HID services", "Catalogue", "Bluetooth", "Watch"};
    return texts[static_cast<std::size_t>(subject)];
}

Subject subjectOf(const SensorRow& row)
{
    if (row.source == SensorSource::smc)
        return row.key.starts_with('T') ? Subject::temperatures : Subject::fans;
    return row.source == SensorSource::hid ? Subject::services : Subject::catalogue;
}

/// Everything of a selection, grouped by what it is and by its verdict.
class Page {
public:
    Page(const Explanation& explanation, const Selection& selection, bool isFolded)
    {
        for (const auto place : selection.sensors) {
            const auto& sensor = explanation.sensors[place];
            if (sensor.source == SensorSource::catalogue)
                groups[{Subject::catalogue, sensor.verdict}].addCell(
                    padded(6, sensor.key) + sensor.title, sensor.change);
            else
                add(subjectOf(sensor), sensor, isFolded, sensorLine);
        }
        for (const auto place : selection.devices)
            add(Subject::bluetooth, explanation.bluetooth[place], isFolded, deviceLine);
        for (const auto place : selection.watch)
            add(Subject::watch, explanation.watch[place], isFolded, watchLine);
    }

    std::string text(Colour colour) const
    {
        std::string result;
        for (const auto& [place, group] : groups)
            result += group.text(subjectText(place.first), place.second, colour);
        return result;
    }

    std::string foldedText() const
    {
        std::string text;
        for (const auto& [subject, count] : folded)
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, nounOf(subject, count));
        return text.empty() ? "nothing" : text;
    }

private:
    template <typename Row> void add(Subject subject, const Row& entry, bool isFolded, std::string (*line)(const Row&))
    {
        if (isFolded && entry.verdict == Verdict::shown)
            ++folded[subject];
        else
            groups[{subject, entry.verdict}].add(line(entry), entry.change);
    }

    static std::string nounOf(Subject subject, std::size_t count)
    {
        constexpr std::array<std::string_view, 6> nouns{
            "temperature", "fan", "HID temperature", "row", "Bluetooth device", "watch entr"};
        std::string noun(nouns[static_cast<std::size_t>(subject)]);
        if (subject == Subject::watch)
            return noun + (count == 1 ? "y" : "ies");
        return noun + (count == 1 ? "" : "s");
    }

    std::map<std::pair<Subject, Verdict>, ExplanationGroup> groups;
    std::map<Subject, std::size_t> folded;
};

std::string answersText(const std::vector<Answer>& answers)
{
    std::string text;
    for (const auto& answer : answers) {
        for (const auto& line : answer.lines)
            text += paragraph(0, printable(line));
    }
    return text;
}

} // namespace

std::string explanationText(
    const Explanation& explanation, const std::vector<Answer>& answers, Filter filter, Colour colour)
{
    const bool isFolded = filter == Filter::all && answers.empty();
    const Page page(explanation, select(explanation, answers, filter), isFolded);
    auto text = obstacleText(explanation.machine, colour) + machineText(explanation.machine, colour);
    if (const auto said = answersText(answers); !said.empty())
        text += '\n' + said;
    if (isFolded)
        text += '\n' + paragraph(0, fmt::format("Shown: {} (--shown lists them)", page.foldedText()));
    return text + page.text(colour);
}

} // namespace orv
