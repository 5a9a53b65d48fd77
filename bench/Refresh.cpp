// One refresh of a simulated Mac and the body of its reply, against the bare loop: the same exchanges, one after the
// other, and the same entries appended straight to a message.

#include "bench/support/Allocations.h"
#include "bench/support/AppendByHand.h"
#include "bench/support/CatalogueMac.h"
#include "linux/bus/BusMessageSink.h"
#include "platform/ProcessLauncher.h"
#include "service/Published.h"
#include "service/Replies.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"
#include "smc/FourCharCode.h"
#include "smc/SMC.h"
#include "smc/SMCParamBlock.h"
#include "tests/support/UnansweredBus.h"
#include "thermal/Collection.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

using namespace orv;

namespace {

class NoLauncher final : public ProcessLauncher {
public:
    void start(const std::string&, const std::vector<std::string>&, std::function<void(std::string)>) override { }
};

MachineFile measuredMachine()
{
    std::string fault;
    return *parseMachine(CatalogueMac{}.text(), fault);
}

/// Counts what the simulated Mac behind it is asked.
class CountingHardware final : public Hardware {
public:
    explicit CountingHardware(Hardware& machine)
        : behind(machine)
    {
    }

    bool hasSMC() override { return behind.hasSMC(); }
    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override { return ++exchanges, behind.keyInfo(key, info); }
    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override { return ++exchanges, behind.readBytes(key, bytes); }
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) override
    {
        return ++exchanges, behind.keyAtIndex(index, key);
    }
    std::optional<std::string> systemValue(const std::string& name) override { return behind.systemValue(name); }

    std::size_t exchanges = 0;

private:
    Hardware& behind;
};

struct Measured {
    const MachineFile machine = measuredMachine();
    ManualRunLoop runLoop;
    NoLauncher launcher;
    SimulatedPlatform simulation{machine, "org.orv.Measured", runLoop, launcher};
    CountingHardware hardware{simulation.mac};
    const OrvTemperatureFans profile;
    SMC smc;
    Published<ThermalDictionary> published;
    sd_bus* const bus = unansweredBus();

    void refresh() { published.replace(Orv_SMCHelper::collectThermalReadings(profile, smc, simulation.mac)); }

    void reply()
    {
        const auto message = newMessage(bus);
        BusMessageSink sink(message.get());
        writeThermalReply(*published.take(), sink);
        benchmark::DoNotOptimize(sink.isComplete());
    }
};

Measured& measured()
{
    static auto& instance = *new Measured;
    setHardware(instance.hardware); // other measurements set theirs
    return instance;
}

void exchange(const SMC& smc, SMCParamBlock& block, std::uint8_t command)
{
    std::size_t size = sizeof(block);
    block.data8 = command;
    SMCParamBlock output;
    IOConnectCallStructMethod(smc.conn, kSMCUserClientSelector, &block, sizeof(block), &output, &size);
    benchmark::DoNotOptimize(output);
    block.keyInfo.dataSize = output.keyInfo.dataSize;
}

void exchangeKeys(const MachineFile& machine, const SMC& smc)
{
    for (const auto& row : *machine.smc) {
        SMCParamBlock block{};
        block.key = row.key;
        exchange(smc, block, kSMCGetKeyInfo);
        exchange(smc, block, kSMCReadBytes);
    }
}

void refreshAndReply(benchmark::State& state)
{
    auto& mac = measured();
    mac.refresh();
    const auto exchangesBefore = mac.hardware.exchanges;
    const auto allocationsBefore = allocationCount();
    for (auto _ : state) {
        mac.refresh();
        mac.reply();
    }
    const auto refreshes = static_cast<double>(state.iterations());
    const auto entries = static_cast<double>(mac.published.take()->size());
    state.counters["entries"] = entries;
    state.counters["exchanges"] = static_cast<double>(mac.hardware.exchanges - exchangesBefore) / refreshes;
    state.counters["allocationsPerEntry"] =
        static_cast<double>(allocationCount() - allocationsBefore) / refreshes / entries;
}

void bareLoop(benchmark::State& state)
{
    auto& mac = measured();
    mac.refresh();
    const auto readings = mac.published.take();
    mac.smc.open();
    for (auto _ : state) {
        exchangeKeys(mac.machine, mac.smc);
        const auto message = newMessage(mac.bus);
        appendByHand(message.get(), *readings);
    }
    mac.smc.close();
}

// What is asked once and what is asked never: the walk over the keys, and a request.
void exchangesOfOneRefresh(benchmark::State& state)
{
    auto& mac = measured();
    SMC fresh;
    auto before = mac.hardware.exchanges;
    Orv_SMCHelper::collectThermalReadings(mac.profile, fresh, mac.simulation.mac);
    const auto first = mac.hardware.exchanges - before;
    before = mac.hardware.exchanges;
    for (auto _ : state)
        mac.reply();
    state.counters["first"] = static_cast<double>(first);
    state.counters["request"] = static_cast<double>(mac.hardware.exchanges - before);
}

BENCHMARK(refreshAndReply)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareLoop)->Unit(benchmark::kMicrosecond);
BENCHMARK(exchangesOfOneRefresh)->Unit(benchmark::kMicrosecond);

} // namespace
