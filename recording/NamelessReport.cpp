#include "recording/NamelessReport.h"

#include "bluetooth/IntegerValue.h"
#include "bluetooth/SystemProfilerReport.h"
#include "platform/JSON.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace orv {

namespace {

// Written as it stands into a file, this is no JSON.
const std::string unreadable = "{";

/// What may stand in a report for a value of another type than the walk wants: it is of none that the walk wants.
const Value ofAnotherType = false;

Dictionary object(std::string_view key, Value value)
{
    std::vector<Member> members;
    members.push_back({std::string(key), std::move(value)});
    return Dictionary(std::move(members));
}

Value textProperty(std::string_view name, const std::string& text, StandIns& standIns)
{
    return name == addressProperty ? standIns.address(text) : std::to_string(integerValue(text));
}

// A text that the walk does not use goes; anything else spoils the device under whatever name, and so has to stay.
Value properties(const Value& given, StandIns& standIns)
{
    const auto* listed = given.as<Dictionary>();
    if (!listed)
        return ofAnotherType;
    std::vector<Member> kept;
    for (const auto& [name, value] : *listed) {
        const auto* text = value.as<std::string>();
        if (isUsedProperty(name))
            kept.push_back({name, text ? textProperty(name, *text, standIns) : ofAnotherType});
        else if (!text)
            kept.push_back({"property " + std::to_string(kept.size() + 1), ofAnotherType});
    }
    return Dictionary(std::move(kept));
}

Value device(const Value& element, StandIns& standIns)
{
    const auto* members = element.as<Dictionary>();
    if (!members)
        return ofAnotherType;
    if (members->empty())
        return Dictionary();
    const auto& [name, value] = *members->begin();
    return object(standIns.deviceName(name), properties(value, standIns));
}

Value connectedDevices(const Value& list, StandIns& standIns)
{
    const auto* elements = list.as<Array>();
    if (!elements)
        return ofAnotherType;
    Array devices;
    for (const auto& element : *elements)
        devices.push_back(device(element, standIns));
    return devices;
}

// The first data type alone is looked at.
Value dataTypes(const Value& list, StandIns& standIns)
{
    const auto* types = list.as<Array>();
    if (!types)
        return ofAnotherType;
    if (types->empty())
        return Array();
    const auto* first = types->front().as<Dictionary>();
    if (!first)
        return Array{ofAnotherType};
    const auto* devices = first->find(connectedMember);
    return Array{devices ? object(connectedMember, connectedDevices(*devices, standIns)) : Dictionary()};
}

Value nameless(const Value& value, StandIns& standIns);

Value namelessMembers(const Dictionary& members, StandIns& standIns, std::string (StandIns::*key)(std::string_view))
{
    std::vector<Member> replaced;
    replaced.reserve(members.size());
    for (const auto& [name, value] : members)
        replaced.push_back({(standIns.*key)(name), nameless(value, standIns)});
    return Dictionary(std::move(replaced));
}

Value nameless(const Value& value, StandIns& standIns)
{
    if (const auto* text = value.as<std::string>())
        return standIns.watchText(*text);
    if (const auto* members = value.as<Dictionary>())
        return namelessMembers(*members, standIns, &StandIns::watchKey);
    const auto* elements = value.as<Array>();
    if (!elements)
        return value;
    Array replaced;
    replaced.reserve(elements->size());
    for (const auto& element : *elements)
        replaced.push_back(nameless(element, standIns));
    return replaced;
}

} // namespace

Value namelessReport(std::string_view bytes, StandIns& standIns)
{
    const auto report = parseJSON(bytes);
    if (!report)
        return unreadable;
    const auto* top = report->as<Dictionary>();
    if (!top)
        return Array();
    const auto* types = top->find(dataTypeMember);
    return types ? object(dataTypeMember, dataTypes(*types, standIns)) : Dictionary();
}

// The keys of its entries are the ones that may meet those of devices.
Value namelessWatchFile(std::string_view bytes, StandIns& standIns)
{
    const auto content = parseJSON(bytes);
    if (!content)
        return unreadable;
    const auto* entries = content->as<Dictionary>();
    return entries ? namelessMembers(*entries, standIns, &StandIns::deviceKey) : nameless(*content, standIns);
}

} // namespace orv
