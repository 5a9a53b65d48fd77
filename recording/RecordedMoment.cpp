#include "recording/RecordedMoment.h"

#include "smc/FourCharCode.h"
#include "smc/SMCValueDecoding.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <algorithm>
#include <limits>
#include <set>

namespace orv {

namespace {

bool isUsedByCollections(std::string_view key)
{
    return key.starts_with('T') || key.starts_with('F') || key == "#KEY";
}

bool isWritable(std::string_view key)
{
    return key.size() == 4 && std::ranges::all_of(key, [](char each) { return each >= ' ' && each <= '~'; });
}

RecordedKey recorded(std::string_view name, const ReadKey& read)
{
    RecordedKey key{.type = read.val.dataType, .size = read.val.dataSize, .fails = read.fails};
    key.bytes.assign(std::min<std::size_t>(key.size, read.val.bytes.size()), '\0');
    if (!isUsedByCollections(name) || key.fails)
        return key;
    const auto used = bytesOfNumber(read.val);
    std::copy_n(read.val.bytes.begin(), std::min(used, key.bytes.size()), key.bytes.begin());
    key.isKept = used > 0;
    return key;
}

bool isSensorCode(std::string_view code)
{
    const auto isLetterOrDigit = [](char each) {
        return (each >= '0' && each <= '9') || (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z');
    };
    return code.starts_with('T') && std::ranges::all_of(code, isLetterOrDigit);
}

// A location that collections use is a positive integer, of which they use the code in its low four bytes.
std::int64_t recordedLocation(const Value& location)
{
    constexpr std::int64_t codeOfNoSensor = 1;
    const auto* integer = location.as<std::int64_t>();
    const auto* real = location.as<double>();
    const auto code = static_cast<std::uint32_t>(integer ? *integer : real ? static_cast<std::int64_t>(*real) : 0);
    return isSensorCode(fourCharString(code)) ? std::int64_t{code} : codeOfNoSensor;
}

std::optional<double> finite(std::optional<double> degrees)
{
    constexpr auto largest = std::numeric_limits<double>::max();
    if (!degrees || *degrees != *degrees) // what is no number is shown no more than what is not there
        return std::nullopt;
    return std::clamp(*degrees, -largest, largest);
}

} // namespace

std::vector<std::pair<std::string, RecordedKey>> recordedKeys(
    const std::vector<std::string>& names, const FirstReads& smc)
{
    std::vector<std::pair<std::string, RecordedKey>> keys;
    std::set<std::string_view> seen;
    for (const auto& name : names) {
        const auto read = smc.keys.find(name);
        if (read != smc.keys.end() && isWritable(name) && seen.insert(name).second)
            keys.emplace_back(name, recorded(name, read->second));
    }
    return keys;
}

std::vector<RecordedService> recordedServices(const std::vector<ReadService>& services)
{
    std::vector<RecordedService> recorded;
    for (const auto& service : services) {
        auto& written = recorded.emplace_back();
        if (!service.isAsked)
            continue; // for want of a usable location
        written.locationID = recordedLocation(service.locationID);
        written.degrees = finite(service.degrees);
    }
    return recorded;
}

} // namespace orv
