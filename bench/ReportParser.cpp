// The report reader against nlohmann's own document of the same bytes: time, and the most heap that either takes.

#include "bench/support/Allocations.h"
#include "bench/support/SampleReport.h"
#include "bluetooth/SystemProfilerReport.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <string>

using namespace orv;

namespace {

template <typename Read> void measure(benchmark::State& state, Read read)
{
    const auto text = sampleReport(static_cast<std::size_t>(state.range(0)));
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
