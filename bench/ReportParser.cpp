// The report reader against nlohmann's own document of the same bytes: time, and the most heap that either takes.

#include "bench/support/Allocations.h"
#include "bluetooth/SystemProfilerReport.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <string>

using namespace orv;

namespace {

std::string device(std::size_t number)
{
    const auto text = std::to_string(number);
    return R"({"Device )" + text + R"(": {"device_address": "AA:BB:CC:00:00:)" + text
        + R"(", "device_batteryLevelMain": "85%", "device_firmwareVersion": "1.2.3", "device_minorType": "Keyboard",)"
        + R"( "device_productID": "0x0267", "device_rssi": "-54", "device_services": "0x800020 < HID ACL >",)"
        + R"( "device_vendorID": "0x004C"}})";
}

std::string report(std::size_t bytes)
{
    std::string text = R"({"SPBluetoothDataType": [{"controller_properties": {"controller_state": "attrib_on"}, )"
                       R"("device_connected": [)";
    for (std::size_t number = 0; text.size() < bytes; ++number)
        text += (number == 0 ? "" : ", ") + device(number);
    return text + "]}]}";
}

template <typename Read> void measure(benchmark::State& state, Read read)
{
    const auto text = report(static_cast<std::size_t>(state.range(0)));
    const auto before = allocatedBytes();
    resetPeakOfAllocatedBytes();
    benchmark::DoNotOptimize(read(text));
    state.counters["peakHeap"] = static_cast<double>(peakOfAllocatedBytes() - before);
    for (auto _ : state)
        benchmark::DoNotOptimize(read(text));
}

void reportReader(benchmark::State& state)
{
    measure(state, [](const std::string& text) { return parseBluetoothReport(text); });
}

void documentOfReport(benchmark::State& state)
{
    measure(state, [](const std::string& text) { return nlohmann::json::parse(text); });
}

BENCHMARK(reportReader)->Arg(20'000)->Arg(2'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(documentOfReport)->Arg(20'000)->Arg(2'000'000)->Unit(benchmark::kMicrosecond);

} // namespace
