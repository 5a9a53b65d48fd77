#include "explain/BluetoothExplanation.h"

#include "bluetooth/SystemProfilerReport.h"
#include "explain/ReportLog.h"
#include "platform/JSON.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace orv {

namespace {

constexpr std::array<std::pair<DeviceOutcome, Verdict>, 6> outcomeVerdicts{{
    {DeviceOutcome::shown, Verdict::shown},
    {DeviceOutcome::spoiltList, Verdict::spoiltList},
    {DeviceOutcome::notADevice, Verdict::notADevice},
    {DeviceOutcome::notText, Verdict::notText},
    {DeviceOutcome::noAddress, Verdict::noAddress},
    {DeviceOutcome::noLevel, Verdict::noLevel},
}};

Verdict verdictOf(DeviceOutcome outcome)
{
    return std::ranges::find(outcomeVerdicts, outcome, &std::pair<DeviceOutcome, Verdict>::first)->second;
}

ReportLog logOf(const Value& report)
{
    ReportLog log;
    walkBluetoothReport(report, &log);
    return log;
}

Value reportOf(Array devices)
{
    Dictionary part;
    part.set(std::string(connectedMember), std::move(devices));
    Dictionary report;
    report.set(std::string(dataTypeMember), Array{std::move(part)});
    return report;
}

const Dictionary* propertiesOf(const Value& element)
{
    const auto* device = element.as<Dictionary>();
    return device && !device->empty() ? device->begin()->value.as<Dictionary>() : nullptr;
}

// An element on the way to being shown, asked about in a report of its own.
class ElementWay {
public:
    explicit ElementWay(const Value& start)
        : element(start)
    {
    }

    Change change;
    bool isAddressMadeUp = false;

    /// The key under which it is shown at last.
    std::string show()
    {
        for (;;) {
            const auto log = logOf(reportOf({element}));
            const auto& device = log.devices.front();
            if (device.outcome == DeviceOutcome::shown)
                return device.key;
            remove(device);
        }
    }

private:
    void remove(const ReportLog::Device& device)
    {
        switch (device.outcome) {
        case DeviceOutcome::shown:
            break;
        case DeviceOutcome::spoiltList: // by itself
        case DeviceOutcome::notADevice:
            change.push_back({.kind = ChangeKind::device});
            set(Dictionary());
            break;
        case DeviceOutcome::notText:
            change.push_back({.kind = ChangeKind::textMember, .name = device.member});
            setProperty(device.member);
            break;
        case DeviceOutcome::noAddress:
            change.push_back({.kind = ChangeKind::address});
            setProperty(std::string(addressProperty));
            isAddressMadeUp = true;
            break;
        case DeviceOutcome::noLevel:
            change.push_back({.kind = ChangeKind::level});
            setProperty("device_batteryLevelMain");
            break;
        }
    }

    void setProperty(const std::string& name)
    {
        auto properties = *propertiesOf(element);
        properties.set(name, std::string());
        set(std::move(properties));
    }

    void set(Dictionary properties)
    {
        const auto* device = element.as<Dictionary>();
        Dictionary named;
        named.set(device && !device->empty() ? device->begin()->key : "Device", std::move(properties));
        element = std::move(named);
    }

    Value element;
};

class Rows {
public:
    Rows(const Value& walked, bool areChangesWanted)
        : report(walked)
        , log(logOf(walked))
        , wantsChanges(areChangesWanted)
    {
    }

    std::vector<DeviceRow> take(ReportOutcome& outcome)
    {
        outcome = log.outcome;
        if (log.connected)
            addConnected();
        const auto* top = report.as<Dictionary>();
        const auto* parts = top ? top->findAs<Array>(dataTypeMember) : nullptr;
        for (std::size_t place = 0; parts && place < parts->size(); ++place)
            addOthers((*parts)[place], place);
        return std::move(rows);
    }

private:
    void addConnected()
    {
        findHolders();
        for (std::size_t place = 0; place < log.connected->size(); ++place) {
            auto row = describe((*log.connected)[place], std::string(connectedMember), 0, place);
            row.verdict = verdictOf(log.devices[place].outcome);
            row.member = log.devices[place].member;
            if (row.verdict == Verdict::spoiltList)
                row.rival = log.spoiler;
            const auto holder = holders.find(log.devices[place].key);
            if (row.verdict == Verdict::shown && holder->second.front() != place) {
                row.verdict = Verdict::otherSource;
                row.rival = nextHolder(holder->second, place);
            }
            if (wantsChanges && row.verdict != Verdict::shown)
                row.change = changeForConnected((*log.connected)[place], row);
            rows.push_back(std::move(row));
        }
    }

    // Which elements would be shown under which key, if nothing spoilt the list; the last one first.
    void findHolders()
    {
        Array objects;
        std::vector<std::size_t> places;
        for (std::size_t place = 0; place < log.connected->size(); ++place) {
            if ((*log.connected)[place].as<Dictionary>()) {
                objects.push_back((*log.connected)[place]);
                places.push_back(place);
            } else if (spoilers.size() < 2) {
                spoilers.push_back(place);
            }
        }
        const auto unspoilt = reportOf(std::move(objects));
        const auto devices = logOf(unspoilt).devices;
        for (std::size_t count = devices.size(); count-- > 0;) {
            if (devices[count].outcome == DeviceOutcome::shown)
                holders[devices[count].key].push_back(places[count]);
        }
    }

    // The first of those behind a place.
    static std::size_t nextHolder(const std::vector<std::size_t>& lastFirst, std::size_t place)
    {
        return *std::ranges::prev(std::ranges::lower_bound(lastFirst, place, std::ranges::greater()));
    }

    Change changeForConnected(const Value& element, const DeviceRow& row) const
    {
        auto change = othersAreObjects(row.element);
        ElementWay way(element);
        const auto key = way.show();
        change.insert(change.end(), way.change.begin(), way.change.end());
        const auto holder = holders.find(key);
        if (way.isAddressMadeUp || holder == holders.end() || holder->second.front() <= row.element)
            return change;
        const auto behind = std::ranges::lower_bound(holder->second, row.element, std::ranges::greater());
        change.push_back({.kind = ChangeKind::laterElementsGone,
            .number = static_cast<std::int64_t>(*std::ranges::prev(behind)),
            .count = behind - holder->second.begin()});
        return change;
    }

    // All elements but one.
    Change othersAreObjects(std::optional<std::size_t> element) const
    {
        for (const auto spoiler : spoilers) {
            if (spoiler != element)
                return {{.kind = ChangeKind::elementsAreObjects, .number = static_cast<std::int64_t>(spoiler)}};
        }
        return {};
    }

    // All lists but the one that was walked.
    void addOthers(const Value& part, std::size_t place)
    {
        const auto* members = part.as<Dictionary>();
        if (!members)
            return;
        for (const auto& [name, list] : *members) {
            const auto* elements = list.as<Array>();
            if (elements && elements != log.connected)
                addUnconnected(*elements, name, place);
        }
    }

    void addUnconnected(const Array& elements, const std::string& list, std::size_t part)
    {
        for (std::size_t place = 0; place < elements.size(); ++place) {
            if (!propertiesOf(elements[place]))
                continue;
            auto row = describe(elements[place], list, part, place);
            row.verdict = Verdict::notConnected;
            if (wantsChanges)
                row.change = changeForUnconnected(elements[place]);
            rows.push_back(std::move(row));
        }
    }

    Change changeForUnconnected(const Value& element) const
    {
        Change change{{.kind = ChangeKind::connected}};
        for (auto& step : othersAreObjects(std::nullopt))
            change.push_back(std::move(step));
        ElementWay way(element);
        way.show();
        change.insert(change.end(), way.change.begin(), way.change.end());
        return change;
    }

    static DeviceRow describe(const Value& element, std::string list, std::size_t part, std::size_t place)
    {
        DeviceRow row{.part = part, .list = std::move(list), .element = place};
        const auto* device = element.as<Dictionary>();
        if (device && !device->empty())
            row.name = device->begin()->key;
        if (const auto* properties = propertiesOf(element)) {
            if (const auto* address = properties->findAs<std::string>(addressProperty)) {
                row.address = *address;
                row.key = deviceKey(*address);
            }
            if (const auto* form = properties->findAs<std::string>("device_minorType"))
                row.form = *form;
            row.levels = batteryLevels(*properties);
        }
        return row;
    }

    const Value& report;
    const ReportLog log;
    const bool wantsChanges;
    std::vector<std::size_t> spoilers; // the first two
    std::map<std::string, std::vector<std::size_t>> holders;
    std::vector<DeviceRow> rows;
};

} // namespace

std::vector<DeviceRow> explainDevices(const Inspection& inspection, Changes changes, ReportOutcome& outcome)
{
    const auto report = inspection.report ? parseJSON(*inspection.report) : std::nullopt;
    if (report)
        return Rows(*report, changes == Changes::found).take(outcome);
    outcome = ReportOutcome::notJSON;
    return {};
}

} // namespace orv
