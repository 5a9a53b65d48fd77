#include "tests/proof/ChangedMachine.h"

#include "base/Fatal.h"
#include "bluetooth/SystemProfilerReport.h"
#include "platform/JSON.h"
#include "smc/FourCharCode.h"
#include "smc/SMCValueEncoding.h"
#include "json/JSONReader.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace orv {

namespace {

constexpr const char* newAddress = "00:00:00:00:0A:42";
constexpr std::uint32_t keyCountKey = fourCharCode("#KEY");

[[noreturn]] void unexpected(ChangeKind kind)
{
    fatalError(std::string(identifierOf(kind)).append(" cannot be applied").c_str());
}

std::string nativeBytes(std::uint32_t number)
{
    std::string bytes(sizeof(number), '\0');
    std::memcpy(bytes.data(), &number, sizeof(number));
    return bytes;
}

std::uint32_t reportedSize(const SMCRow& row)
{
    return row.size.value_or(static_cast<std::uint32_t>(row.readings.front().bytes.size()));
}

double decoded(std::uint32_t type, std::uint32_t size, const std::string& bytes)
{
    SMCVal val{.key = "TEST", .dataSize = size, .dataType = fourCharString(type)};
    std::copy_n(bytes.begin(), std::min({bytes.size(), val.bytes.size(), std::size_t{size}}), val.bytes.begin());
    return decodeValue(val).value_or(-1);
}

// Above the threshold by as little as the type and the size allow, or by a lot: both must do.
void raise(SMCRow& row, double threshold)
{
    const auto size = reportedSize(row);
    const auto* format = smcValueFormat(fourCharString(row.type));
    for (const double number : {threshold + 0.01, threshold + 1, 300.0, 70'000.0, 2e7}) {
        const auto bytes = format ? encodeValue(*format, number) : std::nullopt;
        if (bytes && decoded(row.type, size, *bytes) > threshold) {
            row.readings = {{*bytes}};
            row.size = size;
            return;
        }
    }
    row.type = fourCharCode("sp78");
    row.readings = {{std::string("\x32\x00", 2)}};
    row.size = 2;
}

SMCRow* findRow(MachineFile& machine, std::uint32_t key)
{
    if (!machine.smc)
        return nullptr;
    const auto found = std::ranges::find(*machine.smc, key, &SMCRow::key);
    return found == machine.smc->end() ? nullptr : &*found;
}

// One key more than before, whatever the count says; nothing when it cannot be made to.
bool countOneMore(MachineFile& machine)
{
    auto* count = findRow(machine, keyCountKey);
    if (!count)
        return true; // counted anew
    const auto size = reportedSize(*count);
    const auto number = decoded(count->type, size, count->readings.front().bytes);
    const auto* format = smcValueFormat(fourCharString(count->type));
    if (count->fails || number < 0 || !format)
        return false;
    const auto bytes = encodeValue(*format, number + 1);
    if (!bytes || decoded(count->type, size, *bytes) != number + 1)
        return false;
    count->readings = {{*bytes}};
    count->size = size;
    return true;
}

class KeyChange {
public:
    KeyChange(const MachineFile& start, const std::string& wanted)
        : machine(start)
        , key(fourCharCode(wanted))
    {
    }

    MachineFile machine;

    void apply(const ChangeStep& step)
    {
        switch (step.kind) {
        case ChangeKind::listed:
            return list();
        case ChangeKind::readable:
            row().fails = false;
            return;
        case ChangeKind::ofType:
            row().size = reportedSize(row());
            row().type = fourCharCode(step.name);
            return;
        case ChangeKind::ofSize:
            row().size = static_cast<std::uint32_t>(step.number);
            return;
        case ChangeKind::above:
            return raise(row(), step.degrees);
        case ChangeKind::keyGone:
            // Under another name, so that no index changes.
            findRow(machine, fourCharCode(step.name))->key = fourCharCode("~") << 24 | gone++;
            return;
        case ChangeKind::efficiencyCores:
            machine.systemValues["hw.perflevel1.logicalcpu"] = nativeBytes(static_cast<std::uint32_t>(step.number));
            return;
        case ChangeKind::performanceCores:
            machine.systemValues["hw.perflevel0.logicalcpu"] = nativeBytes(static_cast<std::uint32_t>(step.number));
            return;
        case ChangeKind::otherChip:
            return changeChip(step.name);
        default:
            unexpected(step.kind);
        }
    }

private:
    SMCRow& row() { return *findRow(machine, key); }

    void list()
    {
        if (machine.smc)
            std::erase_if(*machine.smc, [this](const SMCRow& each) { return each.key == key; });
        if (!machine.smc || !countOneMore(machine))
            machine.smc.emplace(); // nothing is listed, whatever is there
        SMCRow added;
        added.key = key;
        added.type = fourCharCode("sp78");
        added.readings = {{std::string(2, '\0')}};
        machine.smc->insert(machine.smc->begin(), added);
    }

    void changeChip(const std::string& chip)
    {
        auto& name = machine.systemValues["machdep.cpu.brand_string"];
        for (auto place = name.find(chip); place != std::string::npos; place = name.find(chip))
            name.replace(place, chip.size(), "M9");
    }

    const std::uint32_t key;
    std::uint32_t gone = 0;
};

std::uint32_t codeOf(const HIDRow& service)
{
    if (const auto* integer = service.locationID.as<std::int64_t>(); integer && *integer > 0)
        return static_cast<std::uint32_t>(*integer);
    const auto* real = service.locationID.as<double>();
    return real && *real > 0 && *real < 9e18 ? static_cast<std::uint32_t>(static_cast<std::int64_t>(*real)) : 0;
}

std::string applyToService(MachineFile& machine, std::size_t place, const Change& change)
{
    for (const auto& step : change) {
        if (step.kind == ChangeKind::serviceWithCode) {
            place = machine.hid.size();
            machine.hid.emplace_back().locationID = std::int64_t{fourCharCode(step.name)};
        } else if (step.kind == ChangeKind::location) {
            machine.hid[place].locationID = step.number;
        } else if (step.kind == ChangeKind::eventAbove) {
            machine.hid[place].temperature = step.degrees + 0.001;
        } else if (step.kind == ChangeKind::laterServicesGone) {
            const auto code = codeOf(machine.hid[place]);
            for (auto later = machine.hid.size(); later-- > place + 1;) {
                if (codeOf(machine.hid[later]) == code)
                    machine.hid.erase(machine.hid.begin() + static_cast<std::ptrdiff_t>(later));
            }
        } else {
            unexpected(step.kind);
        }
    }
    return fourCharString(codeOf(machine.hid[place]));
}

// Values are changed by making them anew.
Value withMember(const Value& object, const std::string& name, Value content)
{
    const auto* members = object.as<Dictionary>();
    auto result = members ? *members : Dictionary();
    result.set(name, std::move(content));
    return result;
}

Array listIn(const Value& report, std::size_t part, const std::string& name)
{
    const auto& parts = *report.as<Dictionary>()->findAs<Array>(dataTypeMember);
    const auto* members = parts[part].as<Dictionary>();
    const auto* list = members ? members->findAs<Array>(name) : nullptr;
    return list ? *list : Array();
}

Value withConnected(const Value& report, Array list)
{
    auto parts = *report.as<Dictionary>()->findAs<Array>(dataTypeMember);
    parts.front() = withMember(parts.front(), std::string(connectedMember), std::move(list));
    return withMember(report, std::string(dataTypeMember), std::move(parts));
}

const Dictionary* propertiesOf(const Value& element)
{
    const auto* device = element.as<Dictionary>();
    return device && !device->empty() ? device->begin()->value.as<Dictionary>() : nullptr;
}

std::string keyOfElement(const Value& element)
{
    const auto* properties = propertiesOf(element);
    const auto* address = properties ? properties->findAs<std::string>(addressProperty) : nullptr;
    return address ? deviceKey(*address) : "";
}

void setProperty(Value& element, const std::string& name, const char* text)
{
    const auto& device = *element.as<Dictionary>();
    element = withMember(element, device.begin()->key, withMember(device.begin()->value, name, std::string(text)));
}

void applyToElement(Array& list, std::size_t place, const ChangeStep& step)
{
    switch (step.kind) {
    case ChangeKind::elementsAreObjects:
        for (auto& element : list) {
            if (!element.as<Dictionary>() && &element != &list[place])
                element = Dictionary();
        }
        return;
    case ChangeKind::device: {
        const auto* device = list[place].as<Dictionary>();
        Dictionary named;
        named.set(device && !device->empty() ? device->begin()->key : "Device", Dictionary());
        list[place] = std::move(named);
        return;
    }
    case ChangeKind::textMember:
        return setProperty(list[place], step.name, step.name == addressProperty ? newAddress : "7");
    case ChangeKind::address:
        return setProperty(list[place], std::string(addressProperty), newAddress);
    case ChangeKind::level:
        return setProperty(list[place], "device_batteryLevelMain", "50%");
    case ChangeKind::laterElementsGone: {
        const auto key = keyOfElement(list[place]);
        for (auto later = place + 1; later < list.size(); ++later) {
            if (keyOfElement(list[later]) == key)
                list[later] = Dictionary();
        }
        return;
    }
    default:
        unexpected(step.kind);
    }
}

Value withoutNulls(const Value& value)
{
    if (std::holds_alternative<std::nullptr_t>(value.data))
        return std::int64_t{7};
    if (const auto* members = value.as<Dictionary>()) {
        Dictionary result;
        for (const auto& [name, content] : *members)
            result.set(name, withoutNulls(content));
        return result;
    }
    const auto* items = value.as<Array>();
    if (!items)
        return value;
    Array result;
    for (const auto& item : *items)
        result.push_back(withoutNulls(item));
    return result;
}

MachineFile withoutDevice(MachineFile machine, const std::string& key)
{
    const auto report = parseJSON(machine.profilerOutput);
    auto list = listIn(*report, 0, std::string(connectedMember));
    for (auto& element : list) {
        if (keyOfElement(element) == key)
            element = Dictionary();
    }
    machine.profilerOutput = writeJSON(withConnected(*report, std::move(list)), KeyOrder::asListed);
    return machine;
}

} // namespace

Expectation changed(const MachineFile& machine, const SensorRow& row)
{
    if (row.service || (!row.change->empty() && row.change->front().kind == ChangeKind::serviceWithCode)) {
        auto other = machine;
        auto key = applyToService(other, row.service.value_or(0), *row.change);
        return {std::move(other), std::move(key), {}};
    }
    KeyChange change(machine, row.key);
    for (const auto& step : *row.change)
        change.apply(step);
    return {std::move(change.machine), row.key, {}};
}

Expectation changed(const MachineFile& machine, const DeviceRow& row)
{
    const auto report = *parseJSON(machine.profilerOutput);
    auto list = listIn(report, row.part, row.list);
    auto place = row.element;
    for (const auto& step : *row.change) {
        if (step.kind == ChangeKind::connected) {
            auto element = list[place];
            list = listIn(report, 0, std::string(connectedMember));
            place = list.size();
            list.push_back(std::move(element));
        } else {
            applyToElement(list, place, step);
        }
    }
    auto key = keyOfElement(list[place]);
    auto other = machine;
    other.profilerOutput = writeJSON(withConnected(report, std::move(list)), KeyOrder::asListed);
    return {std::move(other), std::move(key), {}};
}

Expectation changed(const MachineFile& machine, const WatchRow& row)
{
    if (row.key.empty()) {
        auto other = machine;
        other.watchFile = R"({"proof": {"batteryLevel": 5}})";
        return {std::move(other), "proof", {}};
    }
    auto other = machine;
    auto content = *parseJSON(*machine.watchFile);
    std::string entry;
    for (const auto& step : *row.change) {
        if (step.kind == ChangeKind::deviceGone) {
            other = withoutDevice(std::move(other), step.name);
        } else if (step.kind == ChangeKind::noNull) {
            content = withoutNulls(content);
            entry = writeJSON(*content.as<Dictionary>()->find(row.key), KeyOrder::sorted);
        } else if (step.kind == ChangeKind::objectMember) {
            for (const auto& member : Dictionary(*content.as<Dictionary>())) {
                if (!member.value.as<Dictionary>())
                    content = withMember(content, member.key, Dictionary());
            }
        } else {
            unexpected(step.kind);
        }
    }
    other.watchFile = writeJSON(content, KeyOrder::asListed);
    return {std::move(other), row.key, std::move(entry)};
}

MachineFile withGoodValue(const MachineFile& machine, const SensorRow& row)
{
    auto other = machine;
    if (row.service) {
        other.hid[*row.service].temperature = 50;
    } else if (auto* found = findRow(other, fourCharCode(row.key))) {
        const bool isFan = row.key.starts_with('F');
        found->fails = false;
        found->type = fourCharCode(isFan ? "fpe2" : "sp78");
        found->size = 2;
        found->readings = {{std::string("\x32\x00", 2)}};
    }
    return other;
}

} // namespace orv
