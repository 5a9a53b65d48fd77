// usage: bench-recorded-day KEYS HOURS
// Prints the recording of an Intel Mac of so many T and F keys. Every 5 seconds half of them change, now and then some
// fail; every two hours it sleeps for ten minutes, and every quarter of an hour a device connects.

#include "smc/Fans.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

using namespace orv;

namespace {

constexpr unsigned interval = 5; // seconds
constexpr unsigned sleepEvery = 2 * 3600;
constexpr unsigned sleepLength = 600;
constexpr unsigned connectEvery = 900;
constexpr std::size_t fans = 3;

// As many as a Mac has, then those of the catalogue, then others.
std::vector<std::string> keysOfMac(std::size_t count)
{
    std::vector<std::string> keys;
    for (std::int64_t fan = 0; fan < static_cast<std::int64_t>(fans); ++fan)
        for (const auto speed : {Orv_SMCHelper::actualSpeed, Orv_SMCHelper::minimumSpeed, Orv_SMCHelper::maximumSpeed})
            keys.push_back(Orv_SMCHelper::fanKey(fan, speed));
    for (const auto& row : Orv_SMCProfileKeys::intelSensorKeys.rows)
        if (std::string_view(row.key).size() == 4)
            keys.emplace_back(row.key);
    for (unsigned number = 0; keys.size() < count; ++number) {
        char key[8];
        std::snprintf(key, sizeof(key), "Tz%02x", number & 0xFF);
        keys.emplace_back(key);
    }
    keys.resize(count);
    return keys;
}

// A little-endian float, as the newer Macs report nearly everything.
std::string reading(const std::string& key, std::size_t place, unsigned step)
{
    const float base = key.starts_with('F') ? 1200.0F : 30.0F;
    const auto bits = std::bit_cast<std::uint32_t>(base + static_cast<float>((place * 31 + step * 7) % 1000) / 64);
    char text[9];
    std::snprintf(text, sizeof(text), "%02x%02x%02x%02x", bits & 0xFF, bits >> 8 & 0xFF, bits >> 16 & 0xFF, bits >> 24);
    return text;
}

std::string report(unsigned level)
{
    const auto percent = std::to_string(level % 100);
    return R"({"SPBluetoothDataType":[{"device_connected":[{"Device 1":{"device_address":"00:00:00:00:00:01",)"
           R"("device_batteryLevelMain":")"
        + percent + R"("}},{"Device 2":{"device_address":"00:00:00:00:00:02","device_batteryLevelLeft":")" + percent
        + R"(","device_batteryLevelRight":"80"}}]}]})";
}

void printMachine(const std::vector<std::string>& keys)
{
    std::printf(R"({"format":1,"sysctl":{"hw.model":"iMac18,3","machdep.cpu.brand_string":"Intel"},"smc":[)");
    for (std::size_t place = 0; place < keys.size(); ++place)
        std::printf(R"(%s{"key":"%s","type":"flt ","bytes":"%s"})", place == 0 ? "" : ",", keys[place].c_str(),
            reading(keys[place], place, 0).c_str());
    std::printf("],\"bluetooth\":%s,\"watch\":{\"Watch\":{\"batteryLevel\":50}}}\n", report(50).c_str());
}

void printStep(const std::vector<std::string>& keys, unsigned at, const char* event)
{
    const auto step = at / interval;
    std::printf(R"({"at":%u,"smc":{)", at);
    for (std::size_t place = step % 2; place < keys.size(); place += 2) {
        const bool fails = (place + step) % 997 == 0;
        const auto value = fails ? "null" : '"' + reading(keys[place], place, step) + '"';
        std::printf(R"(%s"%s":%s)", place < 2 ? "" : ",", keys[place].c_str(), value.c_str());
    }
    std::fputs(event ? "},\"event\":\"wake\"}\n" : "}}\n", stdout);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const auto count = argumentCount == 3 ? std::strtoul(arguments[1], nullptr, 10) : 0;
    const auto seconds = argumentCount == 3 ? std::strtoul(arguments[2], nullptr, 10) * 3600 : 0;
    if (count == 0 || count > 400 || seconds == 0)
        return std::fputs("usage: bench-recorded-day KEYS HOURS\n", stderr), 2;
    const auto keys = keysOfMac(count);
    printMachine(keys);
    for (unsigned at = interval; at <= seconds; at += interval) {
        const auto intoSleep = at % sleepEvery;
        if (at >= sleepEvery && intoSleep == 0)
            std::printf("{\"at\":%u,\"event\":\"sleep\"}\n", at);
        if (at >= sleepEvery && intoSleep < sleepLength)
            continue;
        printStep(keys, at, at >= sleepEvery && intoSleep == sleepLength ? "wake" : nullptr);
        if (at % connectEvery == 0)
            std::printf("{\"at\":%u,\"bluetooth\":%s,\"event\":\"connect\"}\n", at, report(at / connectEvery).c_str());
    }
    return 0;
}
