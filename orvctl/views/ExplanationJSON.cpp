#include "orvctl/views/ExplanationJSON.h"

#include "orvctl/views/Selection.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace orv {

namespace {

constexpr std::array<std::string_view, 3> wayNames{"intel", "m1", "apple-silicon"};
constexpr std::array<std::string_view, 3> sourceNames{"smc", "hid", "catalogue"};
constexpr std::array<std::string_view, 5> reportNames{
    "walked", "not-json", "not-an-object", "no-data-type", "no-connected-list"};

template <typename Enumeration, std::size_t count>
std::string nameOf(Enumeration value, const std::array<std::string_view, count>& names)
{
    return std::string(names[static_cast<std::size_t>(value)]);
}

template <typename Number> std::int64_t integer(Number number)
{
    return static_cast<std::int64_t>(number);
}

Value textOrNull(const std::string& text)
{
    return text.empty() ? Value() : Value(text);
}

// A number that JSON does not have is null, with the reason beside it.
void setNumber(Dictionary& object, const std::string& member, const Value& number)
{
    const auto* real = number.as<double>();
    if (!real || std::isfinite(*real)) {
        object.set(member, number);
        return;
    }
    object.set(member, Value());
    object.set(member + "Reason", std::string(std::isnan(*real) ? "not a number" : "infinite"));
}

std::string hexadecimal(const SMCVal& val)
{
    std::string digits;
    for (std::size_t index = 0; index < std::min<std::size_t>(val.dataSize, val.bytes.size()); ++index) {
        digits += "0123456789abcdef"[val.bytes[index] >> 4];
        digits += "0123456789abcdef"[val.bytes[index] & 15];
    }
    return digits;
}

Value stepDocument(const ChangeStep& step)
{
    Dictionary object;
    object.set("kind", std::string(identifierOf(step.kind)));
    if (!step.name.empty())
        object.set("name", step.name);
    if (step.number != 0)
        object.set("number", step.number);
    if (step.degrees != 0)
        object.set("degrees", step.degrees);
    if (step.count != 1)
        object.set("count", step.count);
    return object;
}

void setChange(Dictionary& object, const std::optional<Change>& change)
{
    object.set("change", change ? Value(describe(*change)) : Value());
    if (!change)
        return;
    Array steps;
    for (const auto& step : *change)
        steps.push_back(stepDocument(step));
    object.set("steps", std::move(steps));
}

void setVerdict(Dictionary& object, Verdict verdict)
{
    object.set("verdict", std::string(identifierOf(verdict)));
    object.set("reason", std::string(textOf(verdict)));
}

void setSMCValue(Dictionary& object, const SensorRow& row)
{
    const bool hasInfo = row.val && !row.val->dataType.empty();
    object.set("type", hasInfo ? Value(row.val->dataType) : Value());
    object.set("size", hasInfo ? Value(integer(row.val->dataSize)) : Value());
    object.set("bytes", row.hasBytes ? Value(hexadecimal(*row.val)) : Value());
}

void setFan(Dictionary& object, const SensorRow& row)
{
    Array unread;
    for (const auto& [isRead, name] : {std::pair(row.readSpeeds.actual, "value"), {row.readSpeeds.minimum, "minvalue"},
             {row.readSpeeds.maximum, "maxvalue"}}) {
        if (!isRead)
            unread.push_back(std::string(name));
    }
    object.set("minvalue", row.fan->minvalue);
    object.set("maxvalue", row.fan->maxvalue);
    object.set("unread", std::move(unread));
}

Value sensorDocument(const SensorRow& row)
{
    Dictionary object;
    object.set("source", nameOf(row.source, sourceNames));
    object.set("key", textOrNull(row.key));
    if (row.service)
        object.set("service", integer(*row.service));
    if (row.source == SensorSource::smc)
        setSMCValue(object, row);
    if (row.table)
        object.set("catalogue", std::string(row.table == &Orv_SMCProfileKeys::hidSensorNames ? "hid" : "smc"));
    setNumber(object, "value", row.value);
    if (row.reading != Value())
        setNumber(object, "reading", row.reading);
    setVerdict(object, row.verdict);
    object.set("title", textOrNull(row.title));
    if (!row.from.empty())
        object.set("from", row.from);
    if (!row.rival.empty())
        object.set("by", row.rival);
    if (row.rivalService)
        object.set("byService", integer(*row.rivalService));
    if (row.fan)
        setFan(object, row);
    setChange(object, row.change);
    return object;
}

Value deviceDocument(const DeviceRow& row)
{
    Dictionary object;
    object.set("key", textOrNull(row.key));
    object.set("name", textOrNull(row.name));
    object.set("address", textOrNull(row.address));
    object.set("part", integer(row.part));
    object.set("list", row.list);
    object.set("element", integer(row.element));
    object.set("levels", row.levels);
    setVerdict(object, row.verdict);
    if (!row.member.empty())
        object.set("member", row.member);
    if (row.rival)
        object.set("byElement", integer(*row.rival));
    setChange(object, row.change);
    return object;
}

Value watchDocument(const WatchRow& row)
{
    Dictionary object;
    const bool isNull = row.verdict == Verdict::nullLeftOut;
    object.set("key", textOrNull(isNull ? row.key + '.' + row.member : row.key));
    if (isNull)
        object.set("entry", row.key);
    setVerdict(object, row.verdict);
    if (!row.member.empty())
        object.set("member", row.member);
    if (!row.detail.empty())
        object.set("where", row.detail);
    setChange(object, row.change);
    return object;
}

Value machineDocument(const MachineFacts& facts)
{
    Dictionary object;
    object.set("model", facts.model);
    object.set("processor", facts.processor);
    object.set("way", nameOf(facts.way, wayNames));
    object.set("because", facts.reason);
    object.set("efficiencyCores", facts.efficiencyCores);
    object.set("performanceCores", facts.performanceCores);
    object.set("smcOpen", facts.isSMCOpen);
    const auto whole = facts.smcKeys ? Value(*facts.smcKeys) : Value();
    setNumber(object, "smcKeys", facts.smcKeys ? Value(integer(*facts.smcKeys)) : whole);
    object.set("listedTemperatures", integer(facts.listedTemperatures));
    object.set("listedFans", integer(facts.listedFans));
    object.set("hidAsked", facts.isHIDAsked);
    object.set("services", facts.isHIDAsked ? Value(integer(facts.services)) : Value());
    object.set("profilerRun", facts.isProfilerRun);
    object.set("report", facts.isProfilerRun ? Value(nameOf(facts.report, reportNames)) : Value());
    Array obstacles;
    for (const auto& obstacle : facts.obstacles) {
        Dictionary each;
        each.set("id", obstacle.identifier);
        each.set("text", obstacle.text);
        each.set("command", textOrNull(obstacle.command));
        obstacles.push_back(std::move(each));
    }
    object.set("obstacles", std::move(obstacles));
    return object;
}

template <typename Row>
Array documents(const std::vector<Row>& rows, const std::vector<std::size_t>& places, Value (*documentOf)(const Row&))
{
    Array result;
    result.reserve(places.size());
    for (const auto place : places)
        result.push_back(documentOf(rows[place]));
    return result;
}

} // namespace

Value explanationDocument(const Explanation& explanation, const std::vector<Answer>& answers, Filter filter)
{
    const auto selection = select(explanation, answers, filter);
    Dictionary document;
    document.set("schema", std::string("orv.explain/1"));
    document.set("machine", machineDocument(explanation.machine));
    if (!answers.empty()) {
        Array said;
        for (const auto& answer : answers) {
            Dictionary each;
            each.set("what", answer.what);
            each.set("found", answer.isFound);
            Array lines;
            for (const auto& line : answer.lines)
                lines.push_back(line);
            each.set("lines", std::move(lines));
            said.push_back(std::move(each));
        }
        document.set("answers", std::move(said));
    }
    document.set("sensors", documents(explanation.sensors, selection.sensors, sensorDocument));
    document.set("bluetooth", documents(explanation.bluetooth, selection.devices, deviceDocument));
    document.set("watch", documents(explanation.watch, selection.watch, watchDocument));
    return document;
}

} // namespace orv
