// The steps of a recording. What is refused must say why in one line; what is accepted must leave the machine as a
// second reading of the lines says, and what is recorded while it is played must replay the same.

#include "fuzz/support/Fuzzer.h"
#include "orvctl/collecting/RecordSimulatedMac.h"
#include "orvctl/collecting/Replay.h"
#include "simulated/RecordedMac.h"
#include "smc/FourCharCode.h"

#include <nlohmann/json.hpp>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace orv;

namespace {

const std::string machine = R"({"sysctl": {"hw.model": "MacBookPro17,1", "machdep.cpu.brand_string": "Apple M1"},
 "smc": [{"key": "TB0T", "type": "flt ", "bytes": "0000f841"}, {"key": "TB1T", "type": "sp78", "bytes": "1e80"},
  {"key": "F0Ac", "type": "fpe2", "bytes": "1f40"}, {"key": "F0Mn", "type": "fpe2", "bytes": "0fa0"}],
 "hid": [{"locationID": 1416638569, "temperature": 41.5}, {"locationID": 1416638569, "temperature": 40}, {}],
 "bluetooth": {"SPBluetoothDataType": [{"device_connected": [
  {"a": {"device_address": "A", "device_batteryLevelMain": "50"}}]}]}, "watch": {"w": {"level": 80}}}
)";

/// A file in memory, with a path.
class MemoryFile {
public:
    explicit MemoryFile(const char* name)
        : descriptor(memfd_create(name, MFD_CLOEXEC))
        , path("/proc/self/fd/" + std::to_string(descriptor))
    {
    }

    void set(const std::string& text) const
    {
        require(ftruncate(descriptor, 0) == 0, "a file is emptied");
        require(
            pwrite(descriptor, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()), "a file is written");
    }

private:
    const int descriptor;

public:
    const std::string path;
};

std::string hexadecimal(SimulatedMac& mac, const std::string& key, std::size_t size)
{
    Hardware::Bytes bytes{};
    if (mac.readBytes(fourCharCode(key), bytes).status != 0)
        return "fails";
    std::string text;
    for (std::size_t index = 0; index < size; ++index) {
        text += "0123456789abcdef"[bytes[index] >> 4];
        text += "0123456789abcdef"[bytes[index] & 15];
    }
    return text;
}

std::string lower(std::string text)
{
    std::ranges::transform(
        text, text.begin(), [](char each) { return each >= 'A' && each <= 'F' ? static_cast<char>(each + 32) : each; });
    return text;
}

void requireLastBytes(const std::string& path, const std::string& steps)
{
    nlohmann::json last;
    for (std::size_t start = 0; start < steps.size();) {
        const auto end = std::min(steps.find('\n', start), steps.size());
        const auto step = nlohmann::json::parse(steps.substr(start, end - start), nullptr, false);
        if (step.is_object() && step.contains("smc"))
            last.update(step["smc"]);
        start = end + 1;
    }
    std::string fault;
    const auto mac = RecordedMac::open(path, fault);
    mac->player.skipTo(mac->recording.length());
    for (const auto& [key, bytes] : last.items()) {
        const auto expected = bytes.is_null() ? "fails" : lower(bytes.get<std::string>());
        require(hexadecimal(mac->simulation.mac, key, expected.size() / 2) == expected, "a key has its last bytes");
    }
}

// Without what stand-ins stand for.
std::string shape(const nlohmann::json& value)
{
    if (value.is_string())
        return "text";
    if (!value.is_structured())
        return value.dump();
    std::vector<std::string> members;
    for (const auto& member : value)
        members.push_back(shape(member));
    if (value.is_object())
        std::ranges::sort(members);
    std::string text = "(";
    for (const auto& member : members)
        text += member + " ";
    return text + ")";
}

std::vector<std::string> replayed(const std::string& path, double to, bool isThermal)
{
    std::vector<std::string> lines;
    std::string fault;
    const auto keep = [&](const std::string& line) { return lines.push_back(line), true; };
    require(replay({path, 0, to, isThermal, !isThermal}, keep, fault), "a recording that can be read can be played");
    if (isThermal)
        return lines;
    for (auto& line : lines)
        line = shape(nlohmann::json::parse(line, nullptr, false));
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr double longest = 120; // seconds that are played: each costs
    static const MemoryFile given("given");
    static const MemoryFile recorded("recorded");
    const std::string steps(textOf(data, size));
    given.set(machine + steps);
    std::string fault;
    const auto recording = Recording::open(given.path, fault);
    require(recording.has_value() == fault.empty(), "a file is either used or refused");
    require(std::ranges::all_of(fault, [](char each) { return each >= ' ' && each <= '~'; }), "a fault is one line");
    if (!recording || !recording->notice().empty())
        return 0;
    requireLastBytes(given.path, steps);
    const double length = std::min(recording->length(), longest);
    std::string text;
    recordSimulatedMac(
        given.path, [&](const std::string& more) { text += more; }, {length, 5, [](double) { return false; }}, fault);
    recorded.set(text);
    for (const bool isThermal : {true, false})
        require(replayed(given.path, length, isThermal) == replayed(recorded.path, length, isThermal),
            "what was recorded replays the same");
    return 0;
}
