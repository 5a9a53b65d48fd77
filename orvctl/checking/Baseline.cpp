#include "orvctl/checking/Baseline.h"

#include "base/File.h"
#include "platform/JSON.h"
#include "readings/Text.h"
#include "json/JSONWriter.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace orv {

namespace {

constexpr std::string_view schemaFamily = "orv.baseline/";
constexpr std::int64_t schemaNumber = 1;
constexpr std::size_t mostBytes = 1 << 20;

/// Why a text is no baseline, or nothing.
std::string refusal(const Value& document)
{
    const auto* members = document.as<Dictionary>();
    const auto* schema = members ? members->findAs<std::string>("schema") : nullptr;
    if (!schema || !schema->starts_with(schemaFamily))
        return "is no baseline: orvctl check --save writes one";
    const auto number = decimalInteger(std::string_view(*schema).substr(schemaFamily.size()));
    if (!number || *number < 1)
        return "is no baseline: orvctl check --save writes one";
    if (*number > schemaNumber)
        return "was written by a later version";
    return members->findAs<Dictionary>("sensors") ? "" : "has no sensors";
}

std::optional<Baseline> sensorsOf(const Dictionary& sensors)
{
    Baseline baseline;
    for (const auto& [key, title] : sensors) {
        const auto* text = title.as<std::string>();
        if (!text)
            return std::nullopt;
        baseline[key] = *text;
    }
    return baseline;
}

} // namespace

Baseline baselineOf(const Dictionary& thermal)
{
    Baseline baseline;
    for (const auto& [key, value] : thermal) {
        const auto* entry = value.as<Dictionary>();
        const auto* title = entry ? entry->findAs<std::string>("title") : nullptr;
        baseline[key] = title ? *title : "";
    }
    return baseline;
}

std::string baselineText(const Baseline& baseline)
{
    std::vector<Member> sensors;
    for (const auto& [key, title] : baseline)
        sensors.push_back({key, title});
    Dictionary document;
    document.set("schema", std::string(schemaFamily) + std::to_string(schemaNumber));
    document.set("sensors", Dictionary(std::move(sensors)));
    return writeJSON(document, KeyOrder::asListed) + '\n';
}

std::optional<Baseline> readBaseline(const std::string& path, std::string& fault)
{
    const auto text = readFile(path, mostBytes);
    const auto document = text ? parseJSON(*text) : std::nullopt;
    fault = !text ? std::strerror(errno) : !document ? "is no JSON, or was cut off" : refusal(*document);
    auto baseline =
        fault.empty() ? sensorsOf(*document->as<Dictionary>()->findAs<Dictionary>("sensors")) : std::nullopt;
    if (!baseline)
        fault = path + ": " + (fault.empty() ? "a sensor has no title" : fault);
    return baseline;
}

} // namespace orv
